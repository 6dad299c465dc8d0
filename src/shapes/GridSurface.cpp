// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/GridSurface.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Inventor/SbLine.h>

#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlElevationGrid.h>
#include <tessel/shapes/VrmlNormal.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>

#include "shapes/RealNode.h"

namespace tessel {

namespace {

template <class Value, class Field> std::span<const Value> valuesOf(const Field& field) {
  return {static_cast<const Value*>(field.getValues(0)), static_cast<std::size_t>(field.getNum())};
}

// A place on an axis: a large spacing must not run over, since nothing could be done with what is infinite.
float placeOn(float spacing, int steps) {
  constexpr double most = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(double{spacing} * steps, -most, most));
}

}  // namespace

GridSurface::GridSurface(const VrmlElevationGrid& grid)
    : numColumns(std::max(grid.xDimension.getValue(), 0)),
      numRows(std::max(grid.zDimension.getValue(), 0)),
      xSpacing(grid.xSpacing.getValue()),
      zSpacing(grid.zSpacing.getValue()),
      heights(valuesOf<float>(grid.height)),
      colorPerPoint(grid.colorPerVertex.getValue()),
      normalPerPoint(grid.normalPerVertex.getValue()),
      ccw(grid.ccw.getValue()) {
  if (const auto* node = realNode<VrmlColor>(grid.color)) colors = valuesOf<SbColor>(node->color);
  if (const auto* node = realNode<VrmlNormal>(grid.normal)) normals = valuesOf<SbVec3f>(node->vector);
  if (const auto* node = realNode<VrmlTextureCoordinate>(grid.texCoord))
    texCoords = valuesOf<SbVec2f>(node->point);
}

int GridSurface::placeOf(std::size_t point, std::size_t size, bool perPoint) {
  return perPoint && size > 0 ? static_cast<int>(std::min(point, size - 1)) : 0;
}

SbVec3f GridSurface::pointAt(int i, int j) const {
  return SbVec3f(placeOn(xSpacing, i), static_cast<float>(heightAt(i, j)), placeOn(zSpacing, j));
}

SbVec3f GridSurface::normalAt(int i, int j) const {
  if (normals.empty()) return computedNormalAt(i, j);
  const auto point =
      static_cast<std::size_t>(j) * static_cast<std::size_t>(numColumns) + static_cast<std::size_t>(i);
  return normals[static_cast<std::size_t>(normalIndex(point))];
}

// The tangents along z and x, from one neighbour to the other, crossed. In double precision nothing runs over.
SbVec3f GridSurface::computedNormalAt(int i, int j) const {
  const int left = std::max(i - 1, 0), right = std::min(i + 1, numColumns - 1);
  const int back = std::max(j - 1, 0), front = std::min(j + 1, numRows - 1);
  const double dx = double{xSpacing} * (right - left), dz = double{zSpacing} * (front - back);
  const double alongX = heightAt(right, j) - heightAt(left, j),
               alongZ = heightAt(i, front) - heightAt(i, back);
  const double x = -dz * alongX, y = dz * dx, z = -dx * alongZ;
  const double length = std::sqrt(x * x + y * y + z * z);
  if (!(length > 0) || !std::isfinite(length)) return SbVec3f(0, 0, 0);
  const double scale = (ccw ? 1 : -1) / length;
  return SbVec3f(static_cast<float>(x * scale), static_cast<float>(y * scale), static_cast<float>(z * scale));
}

SbVec2f GridSurface::texCoordAt(int i, int j) const {
  const auto point =
      static_cast<std::size_t>(j) * static_cast<std::size_t>(numColumns) + static_cast<std::size_t>(i);
  if (!texCoords.empty()) return texCoords[std::min(point, texCoords.size() - 1)];
  return SbVec2f(static_cast<float>(i) / static_cast<float>(numColumns - 1),
                 static_cast<float>(j) / static_cast<float>(numRows - 1));
}

SbBox3f GridSurface::box() const {
  SbBox3f box;
  if (numColumns == 0 || numRows == 0) return box;
  float low = std::numeric_limits<float>::infinity(), high = -low;
  for (const float height : heights) {
    low = std::min(low, height);
    high = std::max(high, height);
  }
  if (low > high) return box;
  box.extendBy(SbVec3f(0, low, 0));
  box.extendBy(SbVec3f(placeOn(xSpacing, numColumns - 1), high, placeOn(zSpacing, numRows - 1)));
  return box;
}

// Rays

// Cuts the piece of a line that lies between two planes from what is left of it.
bool GridSurface::clip(const SbLine& ray, double low, double high, int axis, double& from, double& to) const {
  const double start = ray.getPosition()[axis], along = ray.getDirection()[axis];
  if (along == 0) return start >= low && start <= high;
  const double a = (low - start) / along, b = (high - start) / along;
  from = std::max(from, std::min(a, b));
  to = std::min(to, std::max(a, b));
  return from <= to;
}

// The steps of an axis that lie between two places, and one more on either side for what was rounded.
static GridSurface::Columns stepsBetween(double a, double b, double spacing, int steps) {
  const double first = std::min(a / spacing, b / spacing), last = std::max(a / spacing, b / spacing);
  if (!std::isfinite(first) || !std::isfinite(last)) return {0, steps};
  const auto held = [steps](double step) { return static_cast<int>(std::clamp<double>(step, 0, steps)); };
  return {held(std::floor(first) - 1), held(std::floor(last) + 2)};
}

GridSurface::Columns GridSurface::rowsOf(const SbLine& ray) const {
  const SbBox3f bounds = box();
  constexpr double far = std::numeric_limits<double>::infinity();
  double from = -far, to = far;
  for (int axis = 0; axis < 3; ++axis) {
    const double low = bounds.getMin()[axis], high = bounds.getMax()[axis];
    const double blur = 1e-5 * (std::abs(low) + std::abs(high)) + std::numeric_limits<float>::min();
    if (!clip(ray, low - blur, high + blur, axis, from, to)) return {0, 0};
  }
  const double start = ray.getPosition()[2], along = ray.getDirection()[2];
  return stepsBetween(start + (along == 0 ? 0 : along * from), start + (along == 0 ? 0 : along * to),
                      zSpacing, numRows - 1);
}

GridSurface::Columns GridSurface::columnsOf(const SbLine& ray, int row) const {
  constexpr double far = std::numeric_limits<double>::infinity();
  double from = -far, to = far;
  const double a = double{zSpacing} * (row - 1), b = double{zSpacing} * (row + 2);
  if (!clip(ray, std::min(a, b), std::max(a, b), 2, from, to)) return {0, 0};
  const double start = ray.getPosition()[0], along = ray.getDirection()[0];
  const double span[2] = {along == 0 ? start : start + along * from, along == 0 ? start : start + along * to};
  return stepsBetween(span[0], span[1], xSpacing, numColumns - 1);
}

// Buffers

template <bool withNormals, bool withColors, bool withTexCoords>
void GridSurface::writeVertices(const VertexFormat& format, std::uint8_t alpha, std::size_t first,
                                std::size_t count, std::byte* out) const {
  const auto width = static_cast<std::size_t>(numColumns);
  int i = static_cast<int>(first % width), j = static_cast<int>(first / width);
  for (std::size_t point = first; point < first + count; ++point, out += format.stride()) {
    storeVertexPart(out, pointAt(i, j));
    if constexpr (withNormals) storeNormal(out + format.normalAt(), format.normalForm, normalAt(i, j));
    if constexpr (withColors)
      storeVertexPart(out + format.colorAt(),
                      colorBytes(colors[static_cast<std::size_t>(colorIndex(point))], alpha));
    if constexpr (withTexCoords) storeVertexPart(out + format.texCoordAt(), texCoordAt(i, j));
    if (++i == numColumns) {
      i = 0;
      ++j;
    }
  }
}

BufferContent GridSurface::content(const VertexFormat& format, std::uint8_t alpha,
                                   std::vector<std::uint32_t>& indices) const {
  indices.resize(6 * static_cast<std::size_t>(numColumns - 1) * static_cast<std::size_t>(numRows - 1));
  std::uint32_t* to = indices.data();
  const auto width = static_cast<std::uint32_t>(numColumns);
  for (std::uint32_t j = 0; j + 1 < static_cast<std::uint32_t>(numRows); ++j)
    for (std::uint32_t i = 0; i + 1 < width; ++i) {
      const std::uint32_t a = j * width + i, b = a + width;
      for (const std::uint32_t index : {a, b, a + 1, a + 1, b, b + 1}) *to++ = index;
    }

  using Writer =
      void (GridSurface::*)(const VertexFormat&, std::uint8_t, std::size_t, std::size_t, std::byte*) const;
  using G = GridSurface;
  static constexpr Writer renderFunc[] = {
      &G::writeVertices<false, false, false>, &G::writeVertices<true, false, false>,
      &G::writeVertices<false, true, false>,  &G::writeVertices<true, true, false>,
      &G::writeVertices<false, false, true>,  &G::writeVertices<true, false, true>,
      &G::writeVertices<false, true, true>,   &G::writeVertices<true, true, true>,
  };
  const Writer writer =
      renderFunc[(format.normals ? 1 : 0) + (format.colors ? 2 : 0) + (format.texCoords ? 4 : 0)];

  BufferContent content;
  content.format = format;
  content.vertexCount = heights.size();
  content.indices = indices;
  content.primitiveSize = 3;
  content.writeVertices = [this, format, alpha, writer](std::size_t first, std::size_t count,
                                                        std::byte* out) {
    (this->*writer)(format, alpha, first, count, out);
  };
  return content;
}

}  // namespace tessel
