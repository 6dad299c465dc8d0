// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace tessel {

/// Pixels that somebody else owns: 8 bits a component, rows packed, the bottom row first.
struct Picture {
  int width = 0;
  int height = 0;
  int components = 0;  ///< 1 luminance, 2 luminance and alpha, 3 RGB, 4 RGBA
  const unsigned char* bytes = nullptr;

  bool empty() const { return width <= 0 || height <= 0 || components < 1 || components > 4 || !bytes; }
  bool hasAlpha() const { return components == 2 || components == 4; }
};

}  // namespace tessel
