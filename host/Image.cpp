// SPDX-License-Identifier: BSD-3-Clause
#include "Image.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include <png.h>

namespace tessel::host {

std::string writePng(const Image& image, const std::string& path) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image.width);
  png.height = static_cast<png_uint_32>(image.height);
  png.format = PNG_FORMAT_RGB;

  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"), std::fclose);
  if (!file) return std::strerror(errno);
  errno = 0;
  // A negative stride says that the first row in memory is the bottom of the picture.
  const bool packed =
      png_image_write_to_stdio(&png, file.get(), 0, image.rgb.data(), -3 * image.width, nullptr);
  const bool closed = std::fclose(file.release()) == 0;
  if (packed && closed) return {};

  std::string reason = errno ? std::strerror(errno) : png.message;
  // Half a picture is worse than none; a device stays, of course.
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored)) std::filesystem::remove(path, ignored);
  return reason;
}

}  // namespace tessel::host
