// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

// Run-length rows of the RGB image format. A row is a sequence of packets of items, which are bytes or 16-bit words.
// The low 7 bits of a packet's first item are a count; with its bit 0x80 that many values follow, without it one that
// is repeated that many times. A count of 0 ends the row.

namespace tessel {

/// The items of a packed row, in the byte order of its file.
struct ByteItems {
  static constexpr std::size_t size = 1;
  static unsigned short get(const unsigned char* at) { return at[0]; }
  static void put(unsigned char* at, unsigned value) { at[0] = static_cast<unsigned char>(value); }
};
struct BigEndianItems {
  static constexpr std::size_t size = 2;
  static unsigned short get(const unsigned char* at) {
    return static_cast<unsigned short>(at[0] << 8 | at[1]);
  }
  static void put(unsigned char* at, unsigned value) {
    at[0] = static_cast<unsigned char>(value >> 8);
    at[1] = static_cast<unsigned char>(value);
  }
};
struct LittleEndianItems {
  static constexpr std::size_t size = 2;
  static unsigned short get(const unsigned char* at) {
    return static_cast<unsigned short>(at[1] << 8 | at[0]);
  }
};

/// Unpacks a row of `length` bytes to `count` values. What it holds beyond them is left out; what it lacks is 0.
template <class Items>
void img_rle_expand(const unsigned char* packed, std::size_t length, unsigned short* values,
                    std::size_t count) {
  const unsigned char* const end = packed + length / Items::size * Items::size;
  unsigned short* const last = values + count;
  while (packed != end && values != last) {
    const unsigned control = Items::get(packed);
    packed += Items::size;
    std::size_t run = std::min<std::size_t>(control & 0x7f, static_cast<std::size_t>(last - values));
    if ((control & 0x7f) == 0) break;
    if (control & 0x80) {
      run = std::min(run, static_cast<std::size_t>(end - packed) / Items::size);
      for (std::size_t i = 0; i < run; ++i) values[i] = Items::get(packed + i * Items::size);
      packed += run * Items::size;
    } else {
      if (packed == end) break;
      std::fill_n(values, run, Items::get(packed));
      packed += Items::size;
    }
    values += run;
  }
  std::fill(values, last, static_cast<unsigned short>(0));
}

/// The most bytes that `img_rle_compact` makes of `count` values: a packet a value, and the end.
template <class Items> constexpr std::size_t longestPacked(std::size_t count) {
  return (2 * count + 1) * Items::size;
}

/// Packs a row; gives its length in bytes.
template <class Items>
std::size_t img_rle_compact(const unsigned short* values, std::size_t count, unsigned char* packed) {
  constexpr std::size_t longestPacket = 126;
  const unsigned char* const begin = packed;
  const auto emit = [&packed](unsigned item) {
    Items::put(packed, item);
    packed += Items::size;
  };
  for (std::size_t at = 0; at < count;) {
    // Literals, up to where three equal values follow one another; the last two scanned are left to the run.
    std::size_t scan = at + 2;
    while (scan < count && (values[scan - 2] != values[scan - 1] || values[scan - 1] != values[scan])) ++scan;
    for (const std::size_t literals = scan - 2; at < literals;) {
      const std::size_t length = std::min(literals - at, longestPacket);
      emit(0x80 | static_cast<unsigned>(length));
      for (const std::size_t end = at + length; at < end; ++at) emit(values[at]);
    }
    // A run.
    const unsigned short value = values[at];
    std::size_t left = 0;
    for (; at < count && values[at] == value; ++at) ++left;
    for (; left > 0; left -= std::min(left, longestPacket)) {
      emit(static_cast<unsigned>(std::min(left, longestPacket)));
      emit(value);
    }
  }
  emit(0);
  return static_cast<std::size_t>(packed - begin);
}

}  // namespace tessel
