// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "textures/GifImage.h"
#include "textures/ImageReaders.h"

namespace tessel {
namespace {

/// What an index becomes, as RGBA.
using Entry = std::array<unsigned char, 4>;
using Palette = std::array<Entry, gifColors>;

bool isGrey(const GifColor& c) { return c.red == c.green && c.green == c.blue; }

Palette makePalette(std::span<const GifColor> colors, int transparentIndex) {
  const auto high = [](std::uint16_t value) { return static_cast<unsigned char>(value >> 8); };
  Palette palette;
  palette.fill({0, 0, 0, 255});  // what is no colour of the file is black
  std::transform(colors.begin(), colors.end(), palette.begin(), [high](const GifColor& c) {
    return Entry{high(c.red), high(c.green), high(c.blue), 255};
  });
  if (transparentIndex >= 0) palette[static_cast<std::size_t>(transparentIndex)][3] = 0;
  return palette;
}

/// Whether a pixel has a colour that is not grey; of a coloured image the first rows mostly tell.
bool usesColor(std::span<const unsigned char> indices, std::span<const GifColor> colors) {
  std::array<bool, gifColors> colored{};
  std::transform(colors.begin(), colors.end(), colored.begin(), [](const GifColor& c) { return !isGrey(c); });
  return std::any_of(indices.begin(), indices.end(), [&colored](unsigned char i) { return colored[i]; });
}

/// A row of the image: of each entry the components from `First` in steps of `Step`.
template <std::size_t Count, std::size_t First, std::size_t Step>
void paintRow(const unsigned char* indices, int width, const Palette& palette, unsigned char* row) {
  for (int x = 0; x < width; ++x, row += Count)
    for (std::size_t c = 0; c < Count; ++c) row[c] = palette[indices[x]][First + c * Step];
}
using PaintRow = void (*)(const unsigned char* indices, int width, const Palette& palette,
                          unsigned char* row);
/// For 1 to 4 components; those of grey images are red, and red and alpha.
constexpr PaintRow paintRows[] = {paintRow<1, 0, 1>, paintRow<2, 0, 3>, paintRow<3, 0, 1>, paintRow<4, 0, 1>};

bool decodeGif(std::FILE* file, DecodedImage& image) {
  std::rewind(file);
  std::array<GifColor, gifColors> colormap;
  int width, height, numColors, transparentIndex, error;
  const GifIndices indices(
      tessel_readGIF(file, &width, &height, colormap.data(), &numColors, &transparentIndex, &error));
  if (!indices || error != 0) return false;

  const auto w = static_cast<std::size_t>(width), h = static_cast<std::size_t>(height);
  const std::span<const GifColor> colors(colormap.data(), static_cast<std::size_t>(numColors));
  const bool seenThrough = transparentIndex >= 0 && transparentIndex < numColors;
  const int components = (usesColor({indices.get(), w * h}, colors) ? 3 : 1) + (seenThrough ? 1 : 0);
  if (!image.allocate(w, h, components)) return false;
  const Palette palette = makePalette(colors, seenThrough ? transparentIndex : -1);
  for (int y = 0; y < height; ++y)
    paintRows[components - 1](indices.get() + static_cast<std::size_t>(y) * w, width, palette,
                              image.row(height - 1 - y));
  return true;
}

}  // namespace
}  // namespace tessel

int tessel_ReadGIFImage(const SoInput& in, int& width, int& height, int& components, unsigned char*& bytes) {
  return tessel::readImageFile(tessel::decodeGif, in, width, height, components, bytes);
}
