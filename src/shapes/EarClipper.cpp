// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/EarClipper.h"

#include <algorithm>
#include <cmath>

namespace tessel {

bool EarClipper::cut(std::span<const SbVec3f> outline, std::vector<std::int32_t>& triangles) {
  if (outline.size() < 3 || outline.size() > largestOutline || !project(outline)) return false;
  const auto count = static_cast<std::int32_t>(outline.size());
  if (isConvex()) {
    for (std::int32_t i = 2; i < count; ++i) triangles.insert(triangles.end(), {0, i - 1, i});
    return true;
  }
  if (!isSimple()) return false;

  const std::size_t mark = triangles.size();
  for (std::int32_t i = 0; i < count; ++i)
    corners[i].reflex = turn(corners[i].before, i, corners[i].after) <= 0;
  std::int32_t at = 0;
  std::int32_t failed = 0;
  for (std::int32_t left = count; left > 2;) {
    if (!isEar(at)) {
      if (++failed > left) {  // rounding has left no ear
        triangles.resize(mark);
        return false;
      }
      at = corners[at].after;
      continue;
    }
    const auto [before, after] = std::pair(corners[at].before, corners[at].after);
    triangles.insert(triangles.end(), {before, at, after});
    corners[before].after = after;
    corners[after].before = before;
    corners[at].reflex = false;
    for (const std::int32_t i : {before, after})
      if (corners[i].reflex) corners[i].reflex = turn(corners[i].before, i, corners[i].after) <= 0;
    at = after;
    failed = 0;
    --left;
  }
  return true;
}

// Lays the outline into the plane of the two axes in which it extends most, counterclockwise.
bool EarClipper::project(std::span<const SbVec3f> outline) {
  double normal[3] = {0, 0, 0};
  const SbVec3f origin = outline[0];
  SbVec3f a = outline[1] - origin;
  for (const SbVec3f& corner : outline.subspan(2)) {
    const SbVec3f b = corner - origin;
    for (int i = 0; i < 3; ++i) {
      const int j = (i + 1) % 3, k = (i + 2) % 3;
      normal[i] += double(a[j]) * b[k] - double(a[k]) * b[j];
    }
    a = b;
  }
  int axis = 0;
  for (int i = 1; i < 3; ++i)
    if (std::abs(normal[i]) > std::abs(normal[axis])) axis = i;
  if (!(std::abs(normal[axis]) > 0) || !std::isfinite(normal[axis])) return false;

  int u = (axis + 1) % 3, v = (axis + 2) % 3;
  if (normal[axis] < 0) std::swap(u, v);
  const auto count = static_cast<std::int32_t>(outline.size());
  corners.resize(outline.size());
  for (std::int32_t i = 0; i < count; ++i)
    corners[i] = {double(outline[i][u]) - origin[u], double(outline[i][v]) - origin[v],
                  i == 0 ? count - 1 : i - 1, i + 1 == count ? 0 : i + 1, false};
  return true;
}

// Twice the area of a triangle, positive if it is counterclockwise.
double EarClipper::turn(std::int32_t a, std::int32_t b, std::int32_t c) const {
  const Corner &p = corners[a], &q = corners[b], &r = corners[c];
  return (q.x - p.x) * (r.y - p.y) - (q.y - p.y) * (r.x - p.x);
}

// All corners turn left, and the outline goes round once: it turns from right to left in x no more than once.
bool EarClipper::isConvex() const {
  int flips = 0;
  bool wasRightward = corners[0].x - corners.back().x > 0;
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(corners.size()); ++i) {
    const Corner& c = corners[i];
    if (!(turn(c.before, i, c.after) > 0)) return false;
    const bool rightward = corners[c.after].x - c.x > 0;
    flips += rightward != wasRightward;
    wasRightward = rightward;
  }
  return flips <= 2;
}

// No two edges have a point in common, apart from the corner between neighbours.
bool EarClipper::isSimple() const {
  const auto count = static_cast<std::int32_t>(corners.size());
  for (std::int32_t i = 0; i < count; ++i) {
    const Corner &a = corners[i], &b = corners[a.after];
    if (a.x == b.x && a.y == b.y) return false;
    const auto [left, right] = std::minmax(a.x, b.x);
    const auto [low, high] = std::minmax(a.y, b.y);
    for (std::int32_t k = i + 2; k < count; ++k) {
      if (i == 0 && k + 1 == count) continue;
      const Corner &c = corners[k], &d = corners[c.after];
      if (std::max(c.x, d.x) < left || std::min(c.x, d.x) > right || std::max(c.y, d.y) < low ||
          std::min(c.y, d.y) > high)
        continue;
      const double ofC = turn(i, a.after, k), ofD = turn(i, a.after, c.after);
      if ((ofC > 0 && ofD > 0) || (ofC < 0 && ofD < 0)) continue;
      const double ofA = turn(k, c.after, i), ofB = turn(k, c.after, a.after);
      if ((ofA > 0 && ofB > 0) || (ofA < 0 && ofB < 0)) continue;
      return false;
    }
    // Neighbours may meet in more than their corner only by doubling back.
    const Corner& c = corners[b.after];
    if (turn(i, a.after, b.after) == 0 && (b.x - a.x) * (c.x - b.x) + (b.y - a.y) * (c.y - b.y) < 0)
      return false;
  }
  return true;
}

// A corner that can be cut off: it turns left and no other corner lies in its triangle.
bool EarClipper::isEar(std::int32_t corner) const {
  const Corner& c = corners[corner];
  if (c.reflex || !(turn(c.before, corner, c.after) > 0)) return false;
  for (std::int32_t i = corners[c.after].after; i != c.before; i = corners[i].after) {
    if (!corners[i].reflex) continue;
    if (turn(c.before, corner, i) >= 0 && turn(corner, c.after, i) >= 0 && turn(c.after, c.before, i) >= 0)
      return false;
  }
  return true;
}

}  // namespace tessel
