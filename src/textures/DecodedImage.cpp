// SPDX-License-Identifier: BSD-3-Clause
#include "textures/DecodedImage.h"

#include <tessel/textures/ImageLimit.h>

#include <limits>
#include <new>

namespace tessel {
namespace {

std::int64_t pixelLimit = 64'000'000;
constexpr std::size_t longestSide = std::numeric_limits<short>::max();  // SbVec2s

}  // namespace

void setImagePixelLimit(std::int64_t pixels) { pixelLimit = pixels; }

std::int64_t imagePixelLimit() { return pixelLimit; }

bool isReadableSize(std::size_t width, std::size_t height) {
  return width > 0 && height > 0 && width <= longestSide && height <= longestSide &&
         static_cast<std::int64_t>(width * height) <= pixelLimit;
}

bool DecodedImage::allocate(std::size_t newWidth, std::size_t newHeight, int newComponents) {
  if (!isReadableSize(newWidth, newHeight) || newComponents < 1 || newComponents > 4) return false;
  bytes.reset(
      new (std::nothrow) unsigned char[newWidth * newHeight * static_cast<std::size_t>(newComponents)]);
  if (!bytes) return false;
  width = static_cast<int>(newWidth);
  height = static_cast<int>(newHeight);
  components = newComponents;
  return true;
}

}  // namespace tessel
