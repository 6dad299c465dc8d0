// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <memory>

namespace tessel {

/// What a file is decoded to: 8 bits a component, components interleaved, rows packed, the bottom row first.
struct DecodedImage {
  int width = 0;
  int height = 0;
  int components = 0;  ///< 1 luminance, 2 luminance and alpha, 3 RGB, 4 RGBA
  std::unique_ptr<unsigned char[]> bytes;

  /// Takes the size and memory for it, whose bytes have no value yet. False, and nothing is taken, if an image of
  /// that size is not to be read or there is no memory.
  [[nodiscard]] bool allocate(std::size_t newWidth, std::size_t newHeight, int newComponents);

  /// Row y, from the bottom.
  unsigned char* row(int y) { return bytes.get() + rowBytes() * static_cast<std::size_t>(y); }
  std::size_t rowBytes() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(components);
  }
  std::size_t pixels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
};

/// Whether an image of that size is to be read: it has pixels, no more than the host allows, and sides that the
/// toolkit's sizes can hold.
bool isReadableSize(std::size_t width, std::size_t height);

}  // namespace tessel
