// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

#include "textures/GifBlocks.h"

namespace tessel {

/// Decodes the image data of a GIF file to indices, a run of them at a time.
class GifLzw {
public:
  /// For the data blocks of `file`, which stands behind the byte with the least code size.
  GifLzw(std::FILE* file, int leastCodeSize);

  /// Gives up to `count` indices; fewer if the data end, by their end code or without it.
  std::size_t decode(unsigned char* indices, std::size_t count);

private:
  static constexpr int tableLength = 4096;
  static constexpr int stackLength = 2 * tableLength;
  static constexpr int widest = 12;

  int nextCode();
  bool start();
  bool push(int index);
  void addEntry(int prefixCode, int index);

  GifBlocks blocks;
  int leastWidth;

  // Codes: their first bits are the low ones.
  std::uint64_t bits = 0;
  int bitCount = 0;
  int blockAt = 0, blockLength = 0;
  unsigned char block[GifBlocks::longest];

  // The table. Each entry is an index behind the string of another entry; those below `clearCode` are one index.
  int width = 0;
  int clearCode = 0;
  int maxCode = 0;      // entries there are
  int maxCodeSize = 0;  // entries that codes of `width` bits can name
  int oldCode = 0;
  unsigned char firstIndex = 0;            // of the string of the last code
  std::uint16_t prefix[tableLength] = {};  // 0 from `maxCode` on
  unsigned char suffix[tableLength] = {};

  // The string of a code is found from its end: the stack grows downwards, so that it is read upwards.
  bool started = false;
  int top = stackLength;
  unsigned char stack[stackLength];
};

}  // namespace tessel
