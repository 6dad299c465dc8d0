// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <cstdint>

namespace tessel {

/// A limit for the pixels of an image file; 64,000,000 unless a host sets another. A file with more is refused before
/// memory is taken for it, with the same message as one that can't be read. It is for all reads that follow, in all
/// worlds. Sides of more than 32,767 pixels are refused in any case, since the toolkit can't hold them.
TESSEL_API void setImagePixelLimit(std::int64_t pixels);

/// The limit that `setImagePixelLimit` set.
TESSEL_API std::int64_t imagePixelLimit();

}  // namespace tessel
