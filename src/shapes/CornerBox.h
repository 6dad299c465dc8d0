// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cmath>

#include <Inventor/SbBox3f.h>

namespace tessel {

/// The box with these two opposite corners, whichever is the lower one in each direction. Empty if one of
/// their coordinates is not finite, so that the boxes of the groups around stay usable.
inline SbBox3f cornerBox(const SbVec3f& a, const SbVec3f& b) {
  SbBox3f box;
  for (int i = 0; i < 3; ++i)
    if (!std::isfinite(a[i]) || !std::isfinite(b[i])) return box;
  box.extendBy(a);
  box.extendBy(b);
  return box;
}

}  // namespace tessel
