// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tessel::host {

/// A picture of 8-bit red, green and blue; rows packed, bottom row first, as OpenGL reads them back.
struct Image {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgb;
};

/// Writes `image` as a PNG file. Gives an error text, empty on success; after a failure no half file is left.
std::string writePng(const Image& image, const std::string& path);

}  // namespace tessel::host
