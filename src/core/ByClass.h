// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <Inventor/SoType.h>

namespace tessel {

/// What `find` tells of a class of the toolkit's, which walks up its ancestors or through a table. It is asked once for
/// each class; every event asks here. What is known is never destroyed: nodes may outlive static objects.
template <auto find> auto byClass(SoType type) {
  using Answer = decltype(find(type));
  static auto& known = *new std::vector<std::optional<Answer>>;
  const auto key = static_cast<std::size_t>(type.getKey());
  if (key >= known.size()) known.resize(key + 1);
  if (!known[key]) known[key] = find(type);
  return *known[key];
}

}  // namespace tessel
