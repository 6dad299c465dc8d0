// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

/// A colour of a GIF file's table.
struct GifColor {
  std::uint32_t pixel;             ///< its index
  std::uint16_t red, green, blue;  ///< a byte b of the file is b * 0x101
  std::uint8_t flags;              ///< which of the three count: all, 7
};

inline constexpr int gifColors = 256;

/// An index a pixel, from `calloc`.
struct FreeGifIndices {
  void operator()(unsigned char* indices) const { std::free(indices); }
};
using GifIndices = std::unique_ptr<unsigned char[], FreeGifIndices>;

/// Decodes the first image of a GIF file, read from where the file stands.
///
/// @param colormap          gets `gifColors` colours: those of the image, zero beyond
/// @param numColors         gets how many colours the file has
/// @param transparentIndex  gets the index that is to be seen through, -1 for none
/// @param error             gets 0, or what is wrong with the file: -1 shorter than its signature, -2 no GIF, -3 another
///                          version, -4 no screen descriptor, -5 a short colour table, -6 the end where a block begins,
///                          -7 no image, -8 a short extension, -9 a byte that begins no block, -10 a short image
///                          descriptor, -11 a short colour table of the image
/// @return an index a pixel, the top row first, which the caller frees with `free`; there may be one despite an error.
///         Null if there is no image, or none of a size that is to be read
unsigned char* tessel_readGIF(std::FILE* file, int* width, int* height, GifColor* colormap, int* numColors,
                              int* transparentIndex, int* error);
