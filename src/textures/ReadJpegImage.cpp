// SPDX-License-Identifier: BSD-3-Clause
#include <csetjmp>
#include <cstdio>
#include <string>

#include <jpeglib.h>

#include <tessel/toolkit/PlainReport.h>

#include "textures/ImageReaders.h"

namespace tessel {
namespace {

/// A progressive file may have any number of scans, each of which costs a pass over the whole image; honest ones have
/// some ten.
constexpr int mostScans = 100;

/// libjpeg's decompressor and where it jumps after an error.
class JpegDecoder {
public:
  JpegDecoder() {
    jpeg.err = jpeg_std_error(&errors);
    errors.error_exit = jumpOut;
    errors.output_message = say;
    jpeg.client_data = this;
    progress.progress_monitor = countScans;
  }
  ~JpegDecoder() { jpeg_destroy_decompress(&jpeg); }
  JpegDecoder(const JpegDecoder&) = delete;
  JpegDecoder& operator=(const JpegDecoder&) = delete;

  /// False after an error of libjpeg's, which comes back here by longjmp: neither this nor what it calls may own
  /// anything but through `this` and `image`.
  bool decode(std::FILE* file, DecodedImage& image) {
    if (setjmp(back)) return false;
    jpeg_create_decompress(&jpeg);
    jpeg.progress = &progress;
    jpeg_stdio_src(&jpeg, file);
    jpeg_read_header(&jpeg, TRUE);
    if (!isReadableSize(jpeg.image_width, jpeg.image_height)) return false;
    jpeg_calc_output_dimensions(&jpeg);
    const int kept = keptComponents(jpeg.output_components);
    if (kept == 0 || !image.allocate(jpeg.output_width, jpeg.output_height, kept)) return false;
    jpeg_start_decompress(&jpeg);
    if (kept == jpeg.output_components)
      readRows(image);
    else
      readInks(image);
    jpeg_finish_decompress(&jpeg);
    return true;
  }

private:
  /// Grey and RGB as they come, CMYK as RGB, no others.
  static int keptComponents(int decoded) {
    switch (decoded) {
      case 1:
      case 3:
        return decoded;
      case 4:
        return 3;
      default:
        return 0;
    }
  }

  void readRows(DecodedImage& image) {
    for (int y = image.height; y-- > 0;) {
      JSAMPROW row = image.row(y);
      jpeg_read_scanlines(&jpeg, &row, 1);
    }
  }

  void readInks(DecodedImage& image) {
    JSAMPARRAY inks =
        jpeg.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&jpeg), JPOOL_IMAGE, jpeg.output_width * 4, 1);
    // Files with Adobe's marker hold the light that the inks let through, others hold the inks.
    const unsigned char toLight = jpeg.saw_Adobe_marker ? 0 : 255;
    for (int y = image.height; y-- > 0;) {
      jpeg_read_scanlines(&jpeg, inks, 1);
      const unsigned char* from = inks[0];
      unsigned char* to = image.row(y);
      for (int x = 0; x < image.width; ++x, from += 4, to += 3) {
        const unsigned black = from[3] ^ toLight;
        for (int c = 0; c < 3; ++c)
          to[c] = static_cast<unsigned char>(((from[c] ^ toLight) * black + 127) / 255);
      }
    }
  }

  static void countScans(j_common_ptr common) {
    if (reinterpret_cast<j_decompress_ptr>(common)->input_scan_number > mostScans)
      std::longjmp(static_cast<JpegDecoder*>(common->client_data)->back, 1);
  }

  [[noreturn]] static void jumpOut(j_common_ptr common) {
    common->err->output_message(common);
    std::longjmp(static_cast<JpegDecoder*>(common->client_data)->back, 1);
  }

  static void say(j_common_ptr common) {
    char text[JMSG_LENGTH_MAX + 1];
    common->err->format_message(common, text);
    postPlain(std::string(text) + '\n');
  }

  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg_progress_mgr progress{};
  std::jmp_buf back{};
};

bool decodeJpeg(std::FILE* file, DecodedImage& image) {
  std::rewind(file);
  return JpegDecoder().decode(file, image);
}

}  // namespace
}  // namespace tessel

int tessel_ReadJPEGImage(const SoInput& in, int& width, int& height, int& components, unsigned char*& bytes) {
  return tessel::readImageFile(tessel::decodeJpeg, in, width, height, components, bytes);
}
