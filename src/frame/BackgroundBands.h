// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <span>
#include <vector>

#include <Inventor/SbColor.h>

namespace tessel {

/// Sky and ground as edges of bands of colour, from the nadir up to the zenith. Between two edges the colour is
/// blended; two edges at one angle make a sharp border.
struct BackgroundBands {
  std::vector<float> angles;  ///< elevations in radians, rising, from -pi/2 to pi/2
  std::vector<SbColor> colors;

  bool empty() const { return angles.empty(); }
  void clear() { *this = {}; }
  void add(float angle, const SbColor& color) {
    angles.push_back(angle);
    colors.push_back(color);
  }
};

/// The fields of a Background, angles in radians from the nadir and from the zenith, each of them that of the colour
/// after the one of its index. Empty if there is neither a sky nor a ground of two colours.
BackgroundBands makeBackgroundBands(std::span<const float> groundAngle, std::span<const SbColor> groundColor,
                                    std::span<const float> skyAngle, std::span<const SbColor> skyColor);

}  // namespace tessel
