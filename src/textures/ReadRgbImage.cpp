// SPDX-License-Identifier: BSD-3-Clause
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "textures/ImageReaders.h"
#include "textures/RgbImage.h"

namespace tessel {
namespace {

struct CloseImage {
  void operator()(RgbImage* image) const { iclose(image); }
};
using OpenImage = std::unique_ptr<RgbImage, CloseImage>;

/// Opens the image on a descriptor of its own, so that closing it does the caller's file nothing.
OpenImage openImage(std::FILE* file) {
  const int own = dup(fileno(file));
  if (own < 0) return nullptr;
  OpenImage image(fiopen(own, "r", 0, 0, 0, 0, 0));
  if (!image) close(own);
  return image;
}

template <int Components>
void interleave(const unsigned short* channels, std::size_t width, unsigned char* row) {
  for (std::size_t x = 0; x < width; ++x)
    for (std::size_t z = 0; z < Components; ++z)
      row[x * Components + z] = static_cast<unsigned char>(channels[z * width + x]);
}
using Interleave = void (*)(const unsigned short* channels, std::size_t width, unsigned char* row);
constexpr Interleave interleaves[] = {interleave<1>, interleave<2>, interleave<3>, interleave<4>};

/// Reads the rows until one fails; what is missing then is 0.
bool readRows(RgbImage& file, DecodedImage& image) {
  const std::size_t width = file.xsize;
  const std::unique_ptr<unsigned short[]> channels(
      new (std::nothrow) unsigned short[width * static_cast<std::size_t>(file.zsize)]);
  if (!channels) return false;
  bool whole = true;
  for (int y = 0; y < image.height; ++y) {
    if (!whole) {
      std::memset(image.row(y), 0, image.rowBytes());
      continue;
    }
    for (unsigned z = 0; z < file.zsize; ++z) {
      unsigned short* const channel = channels.get() + z * width;
      whole = whole && getrow(&file, channel, static_cast<unsigned>(y), z) >= 0;
      if (!whole) std::fill_n(channel, width, static_cast<unsigned short>(0));
    }
    interleaves[image.components - 1](channels.get(), width, image.row(y));
  }
  return true;
}

/// Drops an alpha channel that is 255 throughout, so that a solid image doesn't count as transparent.
bool dropSolidAlpha(DecodedImage& image) {
  const auto components = static_cast<std::size_t>(image.components);
  if (components % 2 != 0) return true;
  const unsigned char* from = image.bytes.get();
  const unsigned char* const end = from + image.pixels() * components;
  for (const unsigned char* alpha = from + components - 1; alpha < end; alpha += components)
    if (*alpha != 255) return true;
  DecodedImage solid;
  if (!solid.allocate(static_cast<std::size_t>(image.width), static_cast<std::size_t>(image.height),
                      image.components - 1))
    return false;
  for (unsigned char* to = solid.bytes.get(); from != end; from += components)
    to = std::copy_n(from, components - 1, to);
  image = std::move(solid);
  return true;
}

bool decodeRgb(std::FILE* file, DecodedImage& image) {
  i_seterror([](const char*) {});
  const OpenImage rgb = openImage(file);
  return rgb && image.allocate(rgb->xsize, rgb->ysize, rgb->zsize) && readRows(*rgb, image) &&
         dropSolidAlpha(image);
}

}  // namespace
}  // namespace tessel

int tessel_ReadRgbImage(const SoInput& in, int& width, int& height, int& components, unsigned char*& bytes) {
  return tessel::readImageFile(tessel::decodeRgb, in, width, height, components, bytes);
}
