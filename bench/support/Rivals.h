// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <tessel/core/VrmlGroup.h>
#include <tessel/toolkit/SoRef.h>

#include "support/Worlds.h"

/// What the library is measured against.
namespace bench {

/// The numbers of a text: whole ones behind a word that ends in "Index", all others as fractions.
struct Numbers {
  std::vector<float> fractions;
  std::vector<std::int32_t> indices;
  std::size_t words = 0;
  std::size_t bytes() const { return 4 * (fractions.size() + indices.size()); }
};

/// The limit of reading: the file read once, cut into tokens, std::from_chars for each number, nothing built. The
/// room that the numbers of `known` take is reserved ahead.
Numbers readNumbers(const std::string& path, const Numbers& known = {});
/// The same for a text in memory.
Numbers scanNumbers(std::string_view text, const Numbers& known = {});

/// The tree that its text says, by calls: createInstance, setValue, addChild.
tessel::SoRef<VrmlGroup> buildByCalls(const PartTree& tree);

}  // namespace bench
