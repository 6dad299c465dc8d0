// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlTriangulator.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <utility>
#include <vector>

#include <Inventor/fields/SoMFInt32.h>
#include <Inventor/fields/SoMFVec3f.h>

namespace {

struct Corner {
  float x, z;
  std::int32_t index;
};

Corner cornerAt(const SoMFVec3f& points, int index) {
  const SbVec3f& point = points[index];
  return {point[0], point[2], index};
}

// Twice the area of a, b, c: above 0 if b to c turns the way that is wanted.
float turn(const Corner& a, const Corner& b, const Corner& c) {
  return (b.x - a.x) * (c.z - a.z) - (c.x - a.x) * (b.z - a.z);
}

bool isInside(const Corner& p, const Corner& a, const Corner& b, const Corner& c) {
  constexpr float margin = 0.0000001f;
  const auto side = [&p](const Corner& from, const Corner& to) {
    return (p.z - from.z) * (to.x - from.x) - (p.x - from.x) * (to.z - from.z);
  };
  return side(a, b) > margin && side(b, c) > margin && side(c, a) > margin;
}

bool cross(const Corner& a, const Corner& b, const Corner& c, const Corner& d) {
  const float left = (b.z - a.z) * (d.x - c.x), right = (b.x - a.x) * (d.z - c.z);
  if (left == right) return false;
  const auto isWithin = [](float place) { return !(place > 0.99999f || place < 0.00001f); };
  const float divisor = left - right;
  return isWithin(((d.x - c.x) * (c.z - a.z) - (d.z - c.z) * (c.x - a.x)) / divisor) &&
         isWithin(((b.x - a.x) * (c.z - a.z) - (b.z - a.z) * (c.x - a.x)) / divisor);
}

// The inner angles of a polygon of n corners sum up to (n - 2) pi if it winds the way that is wanted, else to
// (n + 2) pi.
template <class CornerOf> bool isWound(int count, CornerOf cornerOf) {
  struct Direction {
    float x, z;
  };
  const auto direction = [](const Corner& from, const Corner& to) {
    const float x = to.x - from.x, z = to.z - from.z, length = std::hypot(x, z);
    return length > 0 ? Direction{x / length, z / length} : Direction{0, 0};
  };
  constexpr float pi = std::numbers::pi_v<float>;
  float total = 0;
  for (int i = 0; i < count; ++i) {
    const Corner& at = cornerOf(i);
    const Direction next = direction(at, cornerOf(i + 1 < count ? i + 1 : 0));
    const Direction before = direction(at, cornerOf(i > 0 ? i - 1 : count - 1));
    const float angle = std::acos(std::clamp(before.x * next.x + before.z * next.z, -1.0f, 1.0f));
    total += before.z * next.x - before.x * next.z > 0 ? angle : 2 * pi - angle;
  }
  return total <= std::numbers::pi * count;
}

class PolygonCutter {
public:
  explicit PolygonCutter(std::vector<std::int32_t> polygons) : queue(std::move(polygons)) {}

  bool cutAll(const SoMFVec3f& points);
  std::vector<std::int32_t> result;

private:
  void removeStraightCorners();
  bool cutTriangle();
  bool isTriangle(std::size_t second, std::size_t third);
  bool isFreeSide(const Corner& from, const Corner& to);
  void reduce(std::size_t second, std::size_t third);
  void append(std::initializer_list<std::int32_t> indices) { queue.insert(queue.end(), indices); }

  // What is cut off waits behind the polygons that were given.
  std::vector<std::int32_t> queue;
  std::vector<Corner> run;  // the polygon at work
  // Each look at a corner is counted: a hostile outline takes the cube of its corners.
  std::int64_t looksLeft = 400'000'000;
};

bool PolygonCutter::cutAll(const SoMFVec3f& points) {
  for (std::size_t pos = 0; pos < queue.size();) {
    run.clear();
    for (; pos < queue.size() && queue[pos] >= 0; ++pos) run.push_back(cornerAt(points, queue[pos]));
    const bool isClosed = pos < queue.size();
    const std::int32_t close = isClosed ? queue[pos++] : -1;

    std::size_t rotations = 0;
    for (removeStraightCorners(); run.size() > 3; removeStraightCorners()) {
      const auto cornerOf = [this](int i) -> const Corner& { return run[static_cast<std::size_t>(i)]; };
      looksLeft -= static_cast<std::int64_t>(8 * run.size());  // angles take long
      if (!isWound(static_cast<int>(run.size()), cornerOf)) std::reverse(run.begin(), run.end());
      if (cutTriangle()) {
        rotations = 0;
        continue;
      }
      std::rotate(run.begin(), run.begin() + 1, run.end());
      if (++rotations >= run.size() || looksLeft < 0) return false;
    }
    for (const Corner& corner : run) result.push_back(corner.index);
    if (!run.empty() && (isClosed || pos < queue.size())) result.push_back(close);
  }
  return true;
}

// The corners that stay move to the front.
void PolygonCutter::removeStraightCorners() {
  constexpr float margin = 0.0000001f;
  const std::size_t count = run.size();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const Corner& before = kept > 0 ? run[kept - 1] : run[count - 1];
    const Corner& after = i + 1 < count ? run[i + 1] : run[kept > 0 ? 0 : i];
    if (!(std::abs(turn(run[i], before, after)) < margin)) run[kept++] = run[i];
  }
  run.resize(kept);
  looksLeft -= static_cast<std::int64_t>(2 * count);
}

// Tries triangles of the first corner and a side, then the one that has both its neighbours.
bool PolygonCutter::cutTriangle() {
  const auto tryOne = [this](std::size_t second, std::size_t third) {
    if (!isTriangle(second, third)) return false;
    reduce(second, third);
    return true;
  };
  for (std::size_t second = 1; second + 1 < run.size() && looksLeft > 0; ++second)
    if (tryOne(second, second + 1)) return true;
  return tryOne(1, run.size() - 1);
}

bool PolygonCutter::isTriangle(std::size_t second, std::size_t third) {
  --looksLeft;
  const Corner a = run.front(), b = run[second], c = run[third];
  if (!(turn(a, b, c) > 0)) return false;
  // Few corners lie in the box of the triangle.
  const auto [lowX, highX] = std::minmax({a.x, b.x, c.x});
  const auto [lowZ, highZ] = std::minmax({a.z, b.z, c.z});
  for (std::size_t i = 0; i < run.size(); ++i) {
    const Corner& p = run[i];
    if (p.x <= lowX || p.x >= highX || p.z <= lowZ || p.z >= highZ) continue;
    if (isInside(p, a, b, c) && i != 0 && i != second && i != third) {
      looksLeft -= static_cast<std::int64_t>(i);
      return false;
    }
  }
  looksLeft -= static_cast<std::int64_t>(run.size());
  return (second == 1 || isFreeSide(a, b)) && (third == second + 1 || isFreeSide(b, c)) &&
         (third == run.size() - 1 || isFreeSide(c, a));
}

bool PolygonCutter::isFreeSide(const Corner& from, const Corner& to) {
  looksLeft -= static_cast<std::int64_t>(run.size());
  if (cross(from, to, run.back(), run.front())) return false;
  for (std::size_t i = 1; i < run.size(); ++i)
    if (cross(from, to, run[i - 1], run[i])) return false;
  return true;
}

// Takes a triangle from the polygon, which may leave two.
void PolygonCutter::reduce(std::size_t second, std::size_t third) {
  const auto at = [this](std::size_t i) { return run.begin() + static_cast<std::ptrdiff_t>(i); };
  append({run.front().index, run[second].index, run[third].index, -1});
  if (second == 1) {
    run.erase(at(third == run.size() - 1 ? 0 : 1));
  } else if (third == run.size() - 1) {
    run.pop_back();
  } else {
    for (std::size_t i = third; i < run.size(); ++i) append({run[i].index});
    append({run.front().index, -1});
    run.erase(at(third), run.end());
  }
}

}  // namespace

int VrmlTriangulator::triangulate(const SoMFVec3f& points, const SoMFInt32& input, SoMFInt32& output) {
  const SbVec3f* const firstPoint = points.getValues(0);
  const std::int32_t* const first = input.getValues(0);
  const bool isFlat =
      std::all_of(firstPoint, firstPoint + points.getNum(), [](const SbVec3f& p) { return p[1] == 0; });
  const bool isSound =
      std::all_of(first, first + input.getNum(), [&points](std::int32_t i) { return i < points.getNum(); });
  if (!isFlat || !isSound) return 0;
  PolygonCutter cutter({first, first + input.getNum()});
  const bool isWhole = cutter.cutAll(points);
  const int count = static_cast<int>(cutter.result.size());
  output.setNum(count);
  output.setValues(0, count, cutter.result.data());
  return isWhole;
}

int VrmlTriangulator::clockWiseTest(const SoMFVec3f& points, const SoMFInt32& indices, int start, int count) {
  return isWound(count, [&](int i) { return cornerAt(points, indices[start + i]); });
}

int VrmlTriangulator::triangEdgeTest(const SoMFVec3f& points, int a, int b, int c, int d) {
  return !cross(cornerAt(points, a), cornerAt(points, b), cornerAt(points, c), cornerAt(points, d));
}

int VrmlTriangulator::triangInsideTest(const SoMFVec3f& points, int p, int a, int b, int c) {
  return isInside(cornerAt(points, p), cornerAt(points, a), cornerAt(points, b), cornerAt(points, c));
}
