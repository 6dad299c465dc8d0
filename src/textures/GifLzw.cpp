// SPDX-License-Identifier: BSD-3-Clause
#include "textures/GifLzw.h"

#include <algorithm>
#include <cstring>

namespace tessel {

/// The next code, or -1 if the blocks end before it is whole.
inline int GifLzw::nextCode() {
  while (bitCount < width) {
    if (blockAt == blockLength) {
      blockAt = 0;
      blockLength = std::max(blocks.next(block), 0);
      if (blockLength == 0) return -1;
    }
    bits |= std::uint64_t{block[blockAt++]} << bitCount;
    bitCount += 8;
  }
  const int code = static_cast<int>(bits & ((1U << width) - 1));
  bits >>= width;
  bitCount -= width;
  return code;
}

GifLzw::GifLzw(std::FILE* file, int leastCodeSize) : blocks(file), leastWidth(leastCodeSize) {
  if (leastWidth >= widest) return;
  clearCode = 1 << leastWidth;
  maxCode = clearCode;
  for (int i = 0; i < clearCode; ++i) {
    prefix[i] = static_cast<std::uint16_t>(i);
    suffix[i] = static_cast<unsigned char>(i);
  }
}

/// Empties table and stack. The first code behind is an index by itself; false if there is none.
bool GifLzw::start() {
  if (leastWidth >= widest) return false;
  std::fill(prefix + clearCode, prefix + maxCode, std::uint16_t{0});
  std::fill(suffix + clearCode, suffix + maxCode, static_cast<unsigned char>(0));
  width = leastWidth + 1;
  maxCode = clearCode + 2;
  maxCodeSize = 2 * clearCode;
  top = stackLength;
  do oldCode = nextCode();
  while (oldCode == clearCode);
  if (oldCode < 0) return false;
  firstIndex = static_cast<unsigned char>(oldCode);
  push(firstIndex);
  return true;
}

/// False if that was the last place.
inline bool GifLzw::push(int index) {
  stack[--top] = static_cast<unsigned char>(index);
  return top > 0;
}

inline void GifLzw::addEntry(int prefixCode, int index) {
  if (maxCode >= tableLength) return;
  prefix[maxCode] = static_cast<std::uint16_t>(prefixCode);
  suffix[maxCode] = static_cast<unsigned char>(index);
  if (++maxCode >= maxCodeSize && maxCodeSize < tableLength) {
    maxCodeSize *= 2;
    ++width;
  }
}

std::size_t GifLzw::decode(unsigned char* indices, std::size_t count) {
  unsigned char* to = indices;
  unsigned char* const end = indices + count;
  if (!started) {
    started = true;
    if (!start()) return 0;
  }
  while (to != end) {
    if (top < stackLength) {
      const auto ready = std::min<std::size_t>(stackLength - top, end - to);
      to = std::copy_n(stack + top, ready, to);
      top += static_cast<int>(ready);
      continue;
    }
    int code = nextCode();
    if (code < 0) break;
    if (code == clearCode) {
      if (!start()) break;
      continue;
    }
    if (code == clearCode + 1) {
      blocks.skip();
      break;
    }
    const int wholeCode = code;
    if (code >= maxCode) {  // the string of the code before, and its first index once more
      push(firstIndex);
      code = oldCode;
    }
    // A broken file makes chains that lead nowhere: they end at an entry that follows itself or with the stack, and
    // the code that they reached counts as the next index.
    bool lost = false;
    while (code >= clearCode && !lost) {
      lost = !push(suffix[code]) || prefix[code] == code;
      if (!lost) code = prefix[code];
    }
    if (lost) {
      *to++ = static_cast<unsigned char>(code);
      continue;
    }
    firstIndex = suffix[code];
    push(firstIndex);
    addEntry(oldCode, firstIndex);
    oldCode = wholeCode;
  }
  return static_cast<std::size_t>(to - indices);
}

}  // namespace tessel
