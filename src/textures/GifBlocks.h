// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdio>

namespace tessel {

/// A sequence of sub-blocks of a GIF file: a length byte and as many bytes each, ended by a length of 0.
class GifBlocks {
public:
  static constexpr int longest = 255;

  explicit GifBlocks(std::FILE* from) : file(from) {}

  /// Reads the next block to `to`, which has room for the longest. Its length, 0 for the end, -1 for a file that ends.
  int next(unsigned char* to) {
    if (ended) return 0;
    const int length = std::getc(file);
    ended = length == 0;
    if (length <= 0) return length;
    return std::fread(to, 1, static_cast<std::size_t>(length), file) == static_cast<std::size_t>(length)
               ? length
               : -1;
  }

  /// Reads over the rest of the sequence.
  void skip() {
    unsigned char block[longest];
    while (next(block) > 0) {
    }
  }

private:
  std::FILE* file;
  bool ended = false;
};

}  // namespace tessel
