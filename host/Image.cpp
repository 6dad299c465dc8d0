// SPDX-License-Identifier: BSD-3-Clause
#include "Image.h"

#include <cerrno>
#include <cstring>

#include <png.h>
#include <unistd.h>

namespace tessel::host {

std::string writePng(const Image& image, const std::string& path) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image.width);
  png.height = static_cast<png_uint_32>(image.height);
  png.format = PNG_FORMAT_RGB;
  // A negative stride says that the first row in memory is the bottom of the picture.
  errno = 0;
  if (png_image_write_to_file(&png, path.c_str(), 0, image.rgb.data(), -3 * image.width, nullptr)) return {};
  const std::string reason = errno ? std::strerror(errno) : png.message;
  png_image_free(&png);
  return reason;
}

}  // namespace tessel::host
