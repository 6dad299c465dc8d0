// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <Inventor/SbVec3f.h>

namespace tessel {

/// Cuts simple polygons into triangles by clipping ears, far faster than a general tessellator on the small
/// outlines that faces have.
class EarClipper {
public:
  /// Outlines above this size are left to a tessellator that does not compare all pairs of edges.
  static constexpr std::size_t largestOutline = 128;

  /// @param outline    corners in order, roughly in a plane
  /// @param triangles  three numbers of corners a triangle, appended, with the winding of the outline
  /// @return false, with nothing appended, if the outline is too large, touches or crosses itself, or has no
  ///         area: then only a tessellator tells what is inside
  bool cut(std::span<const SbVec3f> outline, std::vector<std::int32_t>& triangles);

private:
  struct Corner {
    double x, y;
    std::int32_t before, after;
    bool reflex;
  };

  bool project(std::span<const SbVec3f> outline);
  bool isConvex() const;
  bool isSimple() const;
  double turn(std::int32_t a, std::int32_t b, std::int32_t c) const;
  bool isEar(std::int32_t corner) const;

  std::vector<Corner> corners;
};

}  // namespace tessel
