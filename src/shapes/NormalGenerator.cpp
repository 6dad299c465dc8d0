// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/NormalGenerator.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

namespace tessel {

namespace {

// Corners at one position are compared with each other in groups of this size, in file order, so that a point
// where a million faces meet stays linear. The bits of a word stand for the corners of a group.
constexpr std::ptrdiff_t groupSize = 64;

bool isZero(const SbVec3f& v) { return v[0] == 0 && v[1] == 0 && v[2] == 0; }

// In double precision, so that the square of a tiny length does not vanish.
SbVec3f normalized(double x, double y, double z) {
  const double length = std::sqrt(x * x + y * y + z * z);
  if (!(length > 0) || !std::isfinite(length)) return {0, 0, 0};
  const double scale = 1 / length;
  return {static_cast<float>(x * scale), static_cast<float>(y * scale), static_cast<float>(z * scale)};
}

// The direction of a sum of unit normals, zero if they cancel out.
SbVec3f meanOf(const SbVec3f& sum) {
  constexpr float least = 1e-4f;  // rounding makes opposite normals differ by less
  const float square = sum.dot(sum);
  if (square < least * least) return {0, 0, 0};
  return sum * (1 / std::sqrt(square));
}

std::size_t hashOf(const SbVec3f& p) {
  std::uint64_t h = 0;
  for (int i = 0; i < 3; ++i) {
    h = (h ^ std::bit_cast<std::uint32_t>(p[i] + 0.0f)) *
        0x9E3779B97F4A7C15u;  // adding 0 makes -0 and 0 equal
    h ^= h >> 32;
  }
  return static_cast<std::size_t>(h);
}

}  // namespace

void NormalGenerator::generate(std::span<const SbVec3f> points, std::span<const std::int32_t> coordIndex,
                               bool ccw, float creaseAngle) {
  computeFaceNormals(points, coordIndex, ccw);
  if (!(creaseAngle > 0)) {
    shared = Sharing::perFace;
    values.swap(faceNormals);
    index.clear();
    return;
  }
  weld(points, coordIndex);
  collectFaces(coordIndex);
  smooth(creaseAngle);
  if (shared == Sharing::perPoint)
    indexPoints();
  else
    indexCorners(coordIndex);
}

void NormalGenerator::computeFaceNormals(std::span<const SbVec3f> points,
                                         std::span<const std::int32_t> coordIndex, bool ccw) {
  faceNormals.clear();
  const std::size_t count = coordIndex.size();
  const double sign = ccw ? 1 : -1;
  for (std::size_t i = 0; i < count; ++i) {
    // Newell's normal, taken from the first corner so that a small face far from the origin keeps its digits.
    double x = 0, y = 0, z = 0;
    std::size_t end = i;
    while (end < count && coordIndex[end] >= 0) ++end;
    const auto addCross = [&](const SbVec3f& a, const SbVec3f& b) {
      x += double(a[1]) * b[2] - double(a[2]) * b[1];
      y += double(a[2]) * b[0] - double(a[0]) * b[2];
      z += double(a[0]) * b[1] - double(a[1]) * b[0];
    };
    const auto corner = [&](std::size_t k) -> const SbVec3f& { return points[coordIndex[k]]; };
    if (end - i == 4) {
      addCross(corner(i + 2) - corner(i), corner(i + 3) - corner(i + 1));  // comes to the same
    } else if (end - i >= 3) {
      SbVec3f a = corner(i + 1) - corner(i);
      for (std::size_t k = i + 2; k < end; ++k) {
        const SbVec3f b = corner(k) - corner(i);
        addCross(a, b);
        a = b;
      }
    }
    faceNormals.push_back(normalized(sign * x, sign * y, sign * z));
    i = end;
  }
}

// Numbers the positions in the order in which corners meet them.
void NormalGenerator::weld(std::span<const SbVec3f> points, std::span<const std::int32_t> coordIndex) {
  place.assign(points.size(), -1);
  const std::size_t used = std::min(points.size(), coordIndex.size());
  table.assign(std::bit_ceil(2 * used + 1), -1);
  const std::size_t mask = table.size() - 1;
  std::int32_t places = 0;
  for (const std::int32_t point : coordIndex) {
    if (point < 0 || place[point] >= 0) continue;
    const SbVec3f& position = points[point];
    std::size_t slot = hashOf(position) & mask;
    while (table[slot] >= 0 && points[table[slot]] != position) slot = (slot + 1) & mask;
    if (table[slot] < 0) {
      table[slot] = point;
      place[point] = places++;
    } else {
      place[point] = place[table[slot]];
    }
  }
  firstCorner.assign(static_cast<std::size_t>(places) + 1, 0);
}

// Sorts the faces of all corners by place. Afterwards the corners of place p begin at firstCorner[p].
void NormalGenerator::collectFaces(std::span<const std::int32_t> coordIndex) {
  for (const std::int32_t point : coordIndex)
    if (point >= 0) ++firstCorner[place[point]];
  std::int32_t sum = 0;
  for (std::int32_t& first : firstCorner) sum += std::exchange(first, sum);
  corners.resize(static_cast<std::size_t>(sum));

  std::int32_t face = 0;
  for (const std::int32_t point : coordIndex) {
    if (point < 0)
      ++face;
    else
      corners[firstCorner[place[point]]++] = face;
  }
  std::shift_right(firstCorner.begin(), firstCorner.end(), 1);  // each had moved on to its end
  firstCorner[0] = 0;
}

void NormalGenerator::smooth(float creaseAngle) {
  const bool all = creaseAngle >= std::numbers::pi_v<float>;
  const float threshold = std::cos(creaseAngle);
  values.clear();
  for (std::size_t p = 0; p + 1 < firstCorner.size(); ++p) {
    std::int32_t* const end = corners.data() + firstCorner[p + 1];
    std::int32_t* k = corners.data() + firstCorner[p];
    if (all)
      smoothAll(k, end);
    else
      for (std::ptrdiff_t n; (n = std::min(groupSize, end - k)) > 0; k += n) smoothGroup(k, k + n, threshold);
  }
  const bool oneEach = values.size() + 1 == firstCorner.size();
  shared = oneEach ? Sharing::perPoint : Sharing::perCorner;
}

// The three below replace the faces of corners at one place by the numbers of their normals.

void NormalGenerator::smoothAll(std::int32_t* first, std::int32_t* last) {
  SbVec3f sum(0, 0, 0);
  for (const std::int32_t* k = first; k < last; ++k) sum += faceNormals[*k];
  const SbVec3f normal = meanOf(sum);
  const bool cancels = isZero(normal);
  if (!cancels) values.push_back(normal);
  for (std::int32_t* k = first; k < last; ++k) {
    if (cancels) values.push_back(faceNormals[*k]);
    *k = static_cast<std::int32_t>(values.size() - 1);
  }
}

// What most places of most meshes are: all faces within the crease angle of each other. False if it is not so.
bool NormalGenerator::smoothTogether(std::int32_t* first, std::int32_t* last, float threshold) {
  constexpr std::ptrdiff_t most = 8;
  const std::ptrdiff_t count = last - first;
  if (count > most) return false;
  SbVec3f normals[most];
  SbVec3f sum(0, 0, 0);
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    normals[i] = faceNormals[first[i]];
    if (isZero(normals[i])) return false;
    for (std::ptrdiff_t k = 0; k < i; ++k)
      if (first[i] == first[k] || !(normals[i].dot(normals[k]) > threshold)) return false;
    sum += normals[i];
  }
  const SbVec3f normal = meanOf(sum);
  if (isZero(normal)) return false;
  std::fill(first, last, static_cast<std::int32_t>(values.size()));
  values.push_back(normal);
  return true;
}

void NormalGenerator::smoothGroup(std::int32_t* first, std::int32_t* last, float threshold) {
  if (smoothTogether(first, last, threshold)) return;
  const auto count = static_cast<int>(last - first);

  // together[i]: the corners whose faces shape the normal of corner i.
  std::uint64_t together[groupSize];
  std::uint64_t solid = 0;  // the corners of faces that have a normal
  for (int i = 0; i < count; ++i) {
    together[i] = std::uint64_t(1) << i;
    if (!isZero(faceNormals[first[i]])) solid |= together[i];
  }
  for (int i = 0; i < count; ++i) {
    const SbVec3f& normal = faceNormals[first[i]];
    for (int k = i + 1; k < count; ++k) {
      if (first[i] == first[k] || !(normal.dot(faceNormals[first[k]]) > threshold)) continue;
      together[i] |= std::uint64_t(1) << k;
      together[k] |= std::uint64_t(1) << i;
    }
  }

  // Corners with the same set of faces share a normal.
  std::uint64_t seen[groupSize];
  std::int32_t number[groupSize];
  std::int32_t result[groupSize];
  int distinct = 0;
  for (int i = 0; i < count; ++i) {
    const bool hasNormal = (solid >> i & 1) != 0;
    const std::uint64_t faces = hasNormal ? together[i] & solid : solid;
    int k = 0;
    while (k < distinct && seen[k] != faces) ++k;
    if (k < distinct) {
      result[i] = number[k];
      continue;
    }
    SbVec3f sum(0, 0, 0);
    for (std::uint64_t rest = faces; rest; rest &= rest - 1)
      sum += faceNormals[first[std::countr_zero(rest)]];
    const SbVec3f normal = meanOf(sum);
    result[i] = static_cast<std::int32_t>(values.size());
    if (isZero(normal)) {
      values.push_back(faceNormals[first[i]]);
    } else {
      values.push_back(normal);
      seen[distinct] = faces;
      number[distinct++] = result[i];
    }
  }
  std::copy_n(result, count, first);
}

void NormalGenerator::indexPoints() { index.assign(place.begin(), place.end()); }

// The corners of a place are met again in the order in which they were collected.
void NormalGenerator::indexCorners(std::span<const std::int32_t> coordIndex) {
  index.resize(coordIndex.size());
  for (std::size_t i = 0; i < coordIndex.size(); ++i)
    index[i] = coordIndex[i] < 0 ? -1 : corners[firstCorner[place[coordIndex[i]]]++];
}

}  // namespace tessel
