// SPDX-License-Identifier: BSD-3-Clause
// Any bytes to the reader of PNG files, as they are and with the right checksums: few others get past the first chunk.
#include <algorithm>
#include <vector>

#include <zlib.h>

#include "Images.h"

namespace {

/// Gives each chunk (length, name, contents, checksum) the checksum that it needs.
void mendChecksums(std::vector<std::uint8_t>& png) {
  constexpr std::size_t signature = 8, frame = 12;
  for (std::size_t at = signature; at + frame <= png.size();) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < 4; ++i) length = length << 8 | png[at + i];
    if (length > png.size() - at - frame) return;
    auto sum = crc32(0, png.data() + at + 4, static_cast<uInt>(length + 4));
    at += frame + length;
    for (std::size_t i = 1; i <= 4; ++i, sum >>= 8) png[at - i] = static_cast<std::uint8_t>(sum);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tessel::fuzz::readImage(tessel_ReadPNGImage, {data, size});
  std::vector<std::uint8_t> mended(data, data + size);
  mendChecksums(mended);
  if (!std::equal(mended.begin(), mended.end(), data)) tessel::fuzz::readImage(tessel_ReadPNGImage, mended);
  return 0;
}
