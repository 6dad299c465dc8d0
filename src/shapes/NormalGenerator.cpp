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
constexpr std::size_t groupSize = 64;

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
                               bool ccw, float creaseAngle, bool keepFaces) {
  computeFaceNormals(points, coordIndex, ccw);
  if (!(creaseAngle > 0)) {
    shared = Sharing::perFace;
    values.swap(faceNormals);
    index.clear();
    return;
  }
  const bool sameFaces = keepFaces && std::ranges::equal(coordIndex, keptFaces);
  lastPlace.swap(place);
  weld(points, coordIndex);
  if (!sameFaces || place != lastPlace) {
    collectFaces(coordIndex);
    if (keepFaces) keptFaces.assign(coordIndex.begin(), coordIndex.end());
  }
  if (keepFaces) cornerNormals.resize(cornerFaces.size());
  std::vector<std::int32_t>& numbers = keepFaces ? cornerNormals : cornerFaces;
  if (!keepFaces) keptFaces.clear();
  smooth(creaseAngle, numbers.data());
  if (shared == Sharing::perCorner) indexCorners(coordIndex, numbers);
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
  numPlaces = static_cast<std::size_t>(places);
}

// Sorts the faces of all corners by place. Those of place p begin at firstCorner[p].
void NormalGenerator::collectFaces(std::span<const std::int32_t> coordIndex) {
  firstCorner.assign(numPlaces + 1, 0);
  for (const std::int32_t point : coordIndex)
    if (point >= 0) ++firstCorner[place[point]];
  std::int32_t sum = 0;
  for (std::int32_t& first : firstCorner) sum += std::exchange(first, sum);
  cornerFaces.resize(static_cast<std::size_t>(sum));

  std::int32_t face = 0;
  for (const std::int32_t point : coordIndex) {
    if (point < 0)
      ++face;
    else
      cornerFaces[firstCorner[place[point]]++] = face;
  }
  rewindPlaces();
}

// Puts the beginnings of places right after each has moved on to its end.
void NormalGenerator::rewindPlaces() {
  std::shift_right(firstCorner.begin(), firstCorner.end(), 1);
  firstCorner[0] = 0;
}

void NormalGenerator::smooth(float creaseAngle, std::int32_t* numbers) {
  const bool all = creaseAngle >= std::numbers::pi_v<float>;
  const float threshold = std::cos(creaseAngle), halfThreshold = std::cos(creaseAngle / 2);
  values.clear();
  for (std::size_t p = 0; p < numPlaces; ++p) {
    const auto begin = static_cast<std::size_t>(firstCorner[p]),
               end = static_cast<std::size_t>(firstCorner[p + 1]);
    const std::span faces(cornerFaces.data() + begin, end - begin);
    if (all)
      smoothAll(faces, numbers + begin);
    else if (!smoothTogether(faces, numbers + begin, halfThreshold))
      for (std::size_t at = 0; at < faces.size(); at += groupSize)
        smoothGroup(faces.subspan(at, std::min(groupSize, faces.size() - at)), numbers + begin + at,
                    threshold);
  }
  shared = values.size() == numPlaces ? Sharing::perPoint : Sharing::perCorner;
}

// The three below write the numbers of the normals that corners at one place get, perhaps over their faces.

void NormalGenerator::smoothAll(Faces faces, std::int32_t* numbers) {
  SbVec3f sum(0, 0, 0);
  for (const std::int32_t face : faces) sum += faceNormals[face];
  const SbVec3f normal = meanOf(sum);
  const bool cancels = isZero(normal);
  if (!cancels) values.push_back(normal);
  for (std::size_t i = 0; i < faces.size(); ++i) {
    if (cancels) values.push_back(faceNormals[faces[i]]);
    numbers[i] = static_cast<std::int32_t>(values.size() - 1);
  }
}

// What most places of most meshes are: all faces within the crease angle of each other. That is so where they are
// within half of it of their mean. False if it is not certain.
bool NormalGenerator::smoothTogether(Faces faces, std::int32_t* numbers, float halfThreshold) {
  SbVec3f sum(0, 0, 0);
  for (std::size_t i = 0; i < faces.size(); ++i) {
    if (i > 0 && faces[i] == faces[i - 1]) return false;
    sum += faceNormals[faces[i]];
  }
  const SbVec3f normal = meanOf(sum);
  for (const std::int32_t face : faces)
    if (!(normal.dot(faceNormals[face]) > halfThreshold)) return false;
  std::fill_n(numbers, faces.size(), static_cast<std::int32_t>(values.size()));
  values.push_back(normal);
  return true;
}

void NormalGenerator::smoothGroup(Faces faces, std::int32_t* numbers, float threshold) {
  const std::size_t count = faces.size();

  // together[i]: the corners whose faces shape the normal of corner i.
  std::uint64_t together[groupSize];
  std::uint64_t solid = 0;  // the corners of faces that have a normal
  for (std::size_t i = 0; i < count; ++i) {
    together[i] = std::uint64_t(1) << i;
    if (!isZero(faceNormals[faces[i]])) solid |= together[i];
  }
  for (std::size_t i = 0; i < count; ++i) {
    const SbVec3f& normal = faceNormals[faces[i]];
    for (std::size_t k = i + 1; k < count; ++k) {
      if (faces[i] == faces[k] || !(normal.dot(faceNormals[faces[k]]) > threshold)) continue;
      together[i] |= std::uint64_t(1) << k;
      together[k] |= std::uint64_t(1) << i;
    }
  }

  // Corners with the same set of faces share a normal.
  std::uint64_t seen[groupSize];
  std::int32_t number[groupSize];
  std::int32_t result[groupSize];
  std::size_t distinct = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const bool hasNormal = (solid >> i & 1) != 0;
    const std::uint64_t set = hasNormal ? together[i] & solid : solid;
    std::size_t k = 0;
    while (k < distinct && seen[k] != set) ++k;
    if (k < distinct) {
      result[i] = number[k];
      continue;
    }
    SbVec3f sum(0, 0, 0);
    for (std::uint64_t rest = set; rest; rest &= rest - 1) sum += faceNormals[faces[std::countr_zero(rest)]];
    const SbVec3f normal = meanOf(sum);
    result[i] = static_cast<std::int32_t>(values.size());
    if (isZero(normal)) {
      values.push_back(faceNormals[faces[i]]);
    } else {
      values.push_back(normal);
      seen[distinct] = set;
      number[distinct++] = result[i];
    }
  }
  std::copy_n(result, count, numbers);
}

// The corners of a place are met again in the order in which they were collected.
void NormalGenerator::indexCorners(std::span<const std::int32_t> coordIndex,
                                   std::span<const std::int32_t> numbers) {
  bool same = index.size() == coordIndex.size();
  index.resize(coordIndex.size());
  for (std::size_t i = 0; i < coordIndex.size(); ++i) {
    const std::int32_t number = coordIndex[i] < 0 ? -1 : numbers[firstCorner[place[coordIndex[i]]]++];
    same = same && number == index[i];
    index[i] = number;
  }
  rewindPlaces();
  sameCorners = same;
}

}  // namespace tessel
