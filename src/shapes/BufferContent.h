// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <span>

#include <Inventor/SbColor.h>
#include <Inventor/SbVec3f.h>

namespace tessel {

/// Where the values stand in a vertex, in bytes. A vertex begins with its position, three floats.
struct VertexFormat {
  /// From the largest to the smallest.
  enum class NormalForm : std::uint8_t {
    floats,  ///< three
    shorts,  ///< three, 32767 for 1, and two bytes of nothing
    bytes    ///< three of any length, and a byte of nothing
  };

  bool normals = false;
  NormalForm normalForm = NormalForm::floats;
  bool colors = false;     ///< four bytes: red, green, blue, alpha
  bool texCoords = false;  ///< two floats

  std::size_t normalAt() const { return 12; }
  std::size_t colorAt() const { return normals ? 24 - 4 * static_cast<std::size_t>(normalForm) : 12; }
  std::size_t texCoordAt() const { return colorAt() + (colors ? 4 : 0); }
  std::size_t stride() const { return texCoordAt() + (texCoords ? 8 : 0); }

  bool operator==(const VertexFormat&) const = default;
};

/// Writes a value as a part of a vertex.
template <class T> void storeVertexPart(std::byte* out, const T& value) {
  std::memcpy(out, &value, sizeof value);
}

/// A color as a vertex holds it.
inline std::array<std::uint8_t, 4> colorBytes(const SbColor& color, std::uint8_t alpha) {
  const auto byteOf = [](float value) {
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): it is above 0, and a call for each color would cost
    return value > 0 ? static_cast<std::uint8_t>((value < 1 ? value : 1) * 255 + 0.5f) : std::uint8_t{0};
  };
  return {byteOf(color[0]), byteOf(color[1]), byteOf(color[2]), alpha};
}

/// A normal as a vertex holds it in shorts. Expects components from -1 to 1.
inline std::array<std::int16_t, 4> normalShorts(const SbVec3f& normal) {
  const auto shortOf = [](float value) {
    return static_cast<std::int16_t>(value * 32767 + (value < 0 ? -0.5f : 0.5f));
  };
  return {shortOf(normal[0]), shortOf(normal[1]), shortOf(normal[2]), 0};
}

/// A normal as a vertex holds it in bytes. GL makes it one long again, so of the vectors of several lengths the one
/// nearest to its direction is taken: that lies within a third of a degree, mostly within a twentieth.
inline std::array<std::int8_t, 4> normalBytes(const SbVec3f& normal) {
  constexpr int longest = 127, lengths = 16;
  const float largest = std::max({std::abs(normal[0]), std::abs(normal[1]), std::abs(normal[2])});
  if (!(largest > 0)) return {};
  const SbVec3f unit = normal / largest;
  // To add and take it away rounds to a whole number: floats of this size have no digits behind the point.
  const auto rounded = [](float value) { return value + (3 << 22) - (3 << 22); };
  // One loop without a condition, which the compiler makes parallel, and then one for the least.
  std::array<float, lengths> away;
  for (int i = 0; i < lengths; ++i) {
    const auto length = static_cast<float>(longest - i);
    const float x = unit[0] * length, y = unit[1] * length, z = unit[2] * length;
    const float dx = rounded(x) - x, dy = rounded(y) - y, dz = rounded(z) - z;
    away[static_cast<std::size_t>(i)] = dx * dx + dy * dy + dz * dz;
  }
  int best = 0;
  for (int i = 1; i < lengths; ++i) best = away[i] < away[best] ? i : best;
  const auto byteOf = [=](float value) {
    return static_cast<std::int8_t>(rounded(value * static_cast<float>(longest - best)));
  };
  return {byteOf(unit[0]), byteOf(unit[1]), byteOf(unit[2]), 0};
}

/// A normal as a part of a vertex. Expects components from -1 to 1 for shorts.
inline void storeNormal(std::byte* out, VertexFormat::NormalForm form, const SbVec3f& normal) {
  switch (form) {
    case VertexFormat::NormalForm::floats:
      return storeVertexPart(out, normal);
    case VertexFormat::NormalForm::shorts:
      return storeVertexPart(out, normalShorts(normal));
    case VertexFormat::NormalForm::bytes:
      return storeVertexPart(out, normalBytes(normal));
  }
}

/// A mesh on its way into buffers.
struct BufferContent {
  /// An index that ends a strip, so that the next vertex begins another.
  static constexpr std::uint32_t endOfStrip = 0xFFFFFFFF;
  /// Indices of two bytes reach as many vertices, beside an end of a strip.
  static constexpr int shortReach = 65535;

  VertexFormat format;
  std::size_t vertexCount = 0;
  /// Numbers of vertices in the order of drawing. Must live until the buffers are filled.
  std::span<const std::uint32_t> indices;
  /// How many indices make a primitive, so that a large mesh may be cut into parts; 0 if it may not.
  int primitiveSize = 0;
  bool isInOrder = false;     ///< no indices: all vertices in their order
  bool hasStripEnds = false;  ///< whether `indices` has ends of strips
  /// Writes `count` vertices from number `first` on. Called for large pieces.
  std::function<void(std::size_t first, std::size_t count, std::byte* out)> writeVertices;
};

}  // namespace tessel
