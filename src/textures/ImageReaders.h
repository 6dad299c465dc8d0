// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdio>

#include "textures/DecodedImage.h"

class SoInput;

// The readers of image files. A reader knows its format by the contents of the file alone.
//
// Each takes the FILE that `in` reads now (`SoInput::getCurFile`), from its beginning, and leaves it open, wherever its
// position was or is. It answers 1 and gives the image, or answers 0 and leaves the results as they were.
//
//   width, height  in pixels, 1 to 32767, and together within `tessel::imagePixelLimit`
//   components     1 luminance, 2 luminance and alpha, 3 RGB, 4 RGBA
//   bytes          width x height x components bytes of `new unsigned char[]`, which the caller deletes; components
//                  interleaved, rows packed, the bottom row of the picture first (as in SoSFImage and glTexImage2D)
//
// A refusal is silent, but for the words of libjpeg and "Cannot allocate space for image data" of the GIF reader,
// which go to `postPlain`: what is said of the file is up to the caller.
//
// A file is read by the first of these that takes it, in this order: RGB, GIF, PNG, JPEG.

/// The RGB image format (magic 474), verbatim or run-length, 8 or 16 bits a value, of which the low 8 bits count. An
/// alpha channel that is 255 throughout is dropped. A file that ends early is black from there.
int tessel_ReadRgbImage(const SoInput& in, int& width, int& height, int& components, unsigned char*& bytes);

/// The first image of a GIF file, 87a or 89a. Grey images have one component, and one more if the file names a
/// transparent colour. Image data that end early have colour 0 from there.
int tessel_ReadGIFImage(const SoInput& in, int& width, int& height, int& components, unsigned char*& bytes);

/// PNG of every kind: palettes, fewer than 8 bits and transparency chunks are expanded, 16 bits reduced to 8, and the
/// values corrected for a screen gamma of 1.7. A broken file is refused as a whole.
int tessel_ReadPNGImage(const SoInput& in, int& width, int& height, int& components, unsigned char*& bytes);

/// JPEG: grey, colour, and CMYK as RGB. Image data that end early are filled by libjpeg.
int tessel_ReadJPEGImage(const SoInput& in, int& width, int& height, int& components, unsigned char*& bytes);

namespace tessel {

using ImageReader = int (*)(const SoInput& in, int& width, int& height, int& components,
                            unsigned char*& bytes);

/// All readers, in the order in which a file is offered to them.
inline constexpr ImageReader imageReaders[] = {tessel_ReadRgbImage, tessel_ReadGIFImage, tessel_ReadPNGImage,
                                               tessel_ReadJPEGImage};

/// What a reader is inside: it decodes an open file of its format. False if it refuses.
using DecodeFile = bool (*)(std::FILE* file, DecodedImage& image);

/// Decodes the current file of `in` and hands the image to the caller of a reader.
int readImageFile(DecodeFile decode, const SoInput& in, int& width, int& height, int& components,
                  unsigned char*& bytes);

}  // namespace tessel
