// SPDX-License-Identifier: BSD-3-Clause
#include <csetjmp>

#include <png.h>

#include "textures/ImageReaders.h"

namespace tessel {
namespace {

constexpr double screenGamma = 1.7;
constexpr double usualFileGamma = 0.45;  // of a file that does not tell

[[noreturn]] void jumpOut(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void sayNothing(png_structp, png_const_charp) {}

/// libpng's two objects.
class PngDecoder {
public:
  PngDecoder() : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, jumpOut, sayNothing)) {
    if (png) info = png_create_info_struct(png);
  }
  ~PngDecoder() { png_destroy_read_struct(&png, &info, nullptr); }
  PngDecoder(const PngDecoder&) = delete;
  PngDecoder& operator=(const PngDecoder&) = delete;

  /// False after an error of libpng's, which comes back here by longjmp: neither this nor what it calls may own
  /// anything but through `this` and `image`.
  bool decode(std::FILE* file, DecodedImage& image) {
    if (!info || setjmp(png_jmpbuf(png))) return false;
    // These two tell the gamma, too, but only a chunk that does nothing else is to count.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, reinterpret_cast<png_const_bytep>("sRGB\0iCCP"),
                                2);
    png_init_io(png, file);
    png_read_info(png, info);
    if (!isReadableSize(png_get_image_width(png, info), png_get_image_height(png, info))) return false;
    const int passes = askForBytes();
    if (png_get_bit_depth(png, info) != 8 ||
        !image.allocate(png_get_image_width(png, info), png_get_image_height(png, info),
                        png_get_channels(png, info)))
      return false;
    for (int pass = 0; pass < passes; ++pass)
      for (int y = image.height; y-- > 0;) png_read_row(png, image.row(y), nullptr);
    png_read_end(png, nullptr);
    return true;
  }

private:
  /// Chooses the transformations: 8 bits a component, no palette, our gamma. Gives the number of passes.
  int askForBytes() {
    const int depth = png_get_bit_depth(png, info);
    if (depth < 8 || png_get_color_type(png, info) == PNG_COLOR_TYPE_PALETTE)
      png_set_expand(png);
    else if (depth == 16)
      png_set_strip_16(png);
    if (png_get_valid(png, info, PNG_INFO_tRNS)) png_set_expand(png);
    double fileGamma = usualFileGamma;
    png_get_gAMA(png, info, &fileGamma);
    png_set_gamma(png, screenGamma, fileGamma);
    const int passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);
    return passes;
  }

  png_structp png;
  png_infop info = nullptr;
};

bool decodePng(std::FILE* file, DecodedImage& image) {
  std::rewind(file);
  return PngDecoder().decode(file, image);
}

}  // namespace
}  // namespace tessel

int tessel_ReadPNGImage(const SoInput& in, int& width, int& height, int& components, unsigned char*& bytes) {
  return tessel::readImageFile(tessel::decodePng, in, width, height, components, bytes);
}
