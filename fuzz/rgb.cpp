// SPDX-License-Identifier: BSD-3-Clause
// Any bytes to the reader of the RGB image format.
#include "Images.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tessel::fuzz::readImage(tessel_ReadRgbImage, {data, size});
  return 0;
}
