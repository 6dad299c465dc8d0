// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbVec2s.h>

namespace tessel {

/// Pixels that somebody else owns: 8 bits a component, rows packed, the bottom row first.
struct Picture {
  SbVec2s size;
  int components = 0;  ///< 1 luminance, 2 luminance and alpha, 3 RGB, 4 RGBA
  const unsigned char* bytes = nullptr;

  bool empty() const { return size[0] <= 0 || size[1] <= 0 || components <= 0 || !bytes; }
  bool hasAlpha() const { return components == 2 || components == 4; }
};

}  // namespace tessel
