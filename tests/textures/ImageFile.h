// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
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

using OpenFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// A file of these bytes, open at its end.
OpenFile fileOf(const Bytes& bytes);

/// Gives a file of these bytes to a reader.
ReadImage readImage(ImageReader reader, const Bytes& file);

/// Gives a file on disk to all readers in their order, as textures do.
ReadImage readImage(const std::filesystem::path& file);

/// The image as RGBA, the top row first.
Bytes toRgba(const ReadImage& image);

/// Appends a number, its low byte first (`little`) or last (`big`).
template <class Number> void little(Bytes& to, Number value) {
  for (std::size_t i = 0; i < sizeof value; ++i) to.push_back(static_cast<unsigned char>(value >> (8 * i)));
}
template <class Number> void big(Bytes& to, Number value) {
  for (std::size_t i = sizeof value; i-- > 0;) to.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

/// Hears what goes to standard error from its construction to its end.
class PlainTexts {
public:
  PlainTexts();
  ~PlainTexts();
  PlainTexts(const PlainTexts&) = delete;
  PlainTexts& operator=(const PlainTexts&) = delete;
  std::string text;
};

}  // namespace tessel::test
