// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>

#include <Inventor/SbVec2s.h>

namespace tessel {

/// The most pieces into which a primitive is cut along one of its directions, whatever the complexity and
/// the size on the screen: finer than that none is seen, and the count of triangles grows with its square.
constexpr int maxSubdivision = 256;

/// The whole part of a count, from 0 to the most that is drawn; 0 for what is no number.
constexpr int wholeCount(float count) {
  if (!(count > 0)) return 0;
  return count < static_cast<float>(maxSubdivision) ? static_cast<int>(count) : maxSubdivision;
}

/// A number of pieces: at least `least`, since a mesh needs that many to be one.
constexpr int pieces(int count, int least = 1) { return std::clamp(count, least, maxSubdivision); }

/// The larger extent of a size on the screen.
inline float largerExtent(const SbVec2s& pixels) { return std::max(pixels[0], pixels[1]); }

}  // namespace tessel
