// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "textures/ImageReaders.h"

namespace tessel::test {

using Bytes = std::vector<unsigned char>;

/// What a reader gave; all zero if it refused.
struct ReadImage {
  int width = 0, height = 0, components = 0;
  Bytes bytes;  ///< the bottom row first

  explicit operator bool() const { return components != 0; }
  std::size_t pixels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
  friend bool operator==(const ReadImage&, const ReadImage&) = default;
};

/// Gives a file of these bytes to a reader.
ReadImage readImage(ImageReader reader, const Bytes& file);

/// Gives a file on disk to all readers in their order, as textures do.
ReadImage readImage(const std::filesystem::path& file);

/// The image as RGBA, the top row first.
Bytes toRgba(const ReadImage& image);

}  // namespace tessel::test
