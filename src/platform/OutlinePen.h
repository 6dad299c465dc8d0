// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <cmath>

#include "platform/OutlineFonts.h"

namespace tessel {

/// Draws contours of lines and curves into an outline, with curves as straight pieces.
class OutlinePen {
public:
  OutlinePen(FontOutline& to, float farthest) : outline(to), tolerance(farthest) {}
  OutlinePen(const OutlinePen&) = delete;
  OutlinePen& operator=(const OutlinePen&) = delete;

  void moveTo(const SbVec2f& p) {
    endContour();
    first = outline.points.size();
    add(p);
  }
  void lineTo(const SbVec2f& p) { add(p); }
  /// A parabola.
  void curveTo(const SbVec2f& control, const SbVec2f& end) {
    const SbVec2f from = outline.points.back();
    // n pieces are off by the n-th part squared of what one is off: a quarter of the second difference.
    const int n = pieces((from - control * 2 + end).length() / 4);
    for (int i = 1; i < n; ++i) {
      const float t = part(i, n), u = 1 - t;
      add(from * (u * u) + control * (2 * u * t) + end * (t * t));
    }
    add(end);
  }
  /// A cubic curve.
  void curveTo(const SbVec2f& control1, const SbVec2f& control2, const SbVec2f& end) {
    const SbVec2f from = outline.points.back();
    const float bend =
        std::max((from - control1 * 2 + control2).length(), (control1 - control2 * 2 + end).length());
    const int n = pieces(bend * 3 / 4);
    for (int i = 1; i < n; ++i) {
      const float t = part(i, n), u = 1 - t;
      add(from * (u * u * u) + control1 * (3 * u * u * t) + control2 * (3 * u * t * t) + end * (t * t * t));
    }
    add(end);
  }
  /// Ends the contour in work, if there is one. One that encloses nothing is dropped.
  void endContour() {
    auto& points = outline.points;
    if (points.size() > first && points.back() == points[first]) points.pop_back();
    if (points.size() < first + 3)
      points.resize(first);
    else
      outline.contours.push_back(static_cast<int>(points.size() - first));
    first = points.size();
  }

private:
  static constexpr int mostPieces = 64;

  int pieces(float offAsOne) const {
    const float n = std::ceil(std::sqrt(offAsOne / tolerance));
    return n > 1 ? static_cast<int>(std::min<float>(n, mostPieces)) : 1;
  }
  static float part(int i, int n) { return static_cast<float>(i) / static_cast<float>(n); }
  /// A point that repeats the last one would upset a tessellator.
  void add(const SbVec2f& p) {
    if (outline.points.size() == first || outline.points.back() != p) outline.points.push_back(p);
  }

  FontOutline& outline;
  float tolerance;
  std::size_t first = 0;  // the point that the contour in work began with
};

}  // namespace tessel
