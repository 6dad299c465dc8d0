// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbColor.h>
#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec3f.h>

#include "shapes/BufferContent.h"

class SbLine;
class VrmlElevationGrid;

namespace tessel {

/// The surface of an ElevationGrid, computed from its fields as it is asked for. It reads them while it lives.
///
/// Point (i, j) stands in column i, along x, and row j, along z. Lists of properties go by point, row after row; one
/// that is short holds its last value, one that is bound to the whole grid its first.
class GridSurface {
public:
  explicit GridSurface(const VrmlElevationGrid& grid);

  std::int64_t numPoints() const { return std::int64_t{numColumns} * numRows; }
  /// Whether there is a height for each point.
  bool isSound() const { return numPoints() == static_cast<std::int64_t>(heights.size()); }
  int columns() const { return numColumns; }
  int rows() const { return numRows; }
  /// Whether there are triangles.
  bool hasFaces() const { return isSound() && numColumns > 1 && numRows > 1; }

  bool hasColors() const { return !colors.empty(); }
  bool hasNormals() const { return !normals.empty(); }

  SbVec3f pointAt(int i, int j) const;
  /// The given one, or one of unit length along the bisectors of the neighbours; zero where they are no numbers.
  SbVec3f normalAt(int i, int j) const;
  /// The given one, or from 0 to 1 across the grid.
  SbVec2f texCoordAt(int i, int j) const;
  /// The place in the list of colors or normals for a point. Computed normals stand as the points do.
  int colorIndex(std::size_t point) const { return placeOf(point, colors.size(), colorPerPoint); }
  int normalIndex(std::size_t point) const {
    return hasNormals() ? placeOf(point, normals.size(), normalPerPoint) : static_cast<int>(point);
  }

  /// Empty if there are no heights. Heights that are no numbers don't count.
  SbBox3f box() const;

  /// The quads that a ray may meet: from one column up to, not including, another.
  struct Columns {
    int begin, end;
  };
  /// Calls `look(row, columns)` for each row of quads that a ray in object space may meet.
  template <class Look> void alongRay(const SbLine& ray, Look look) const {
    Columns rowsMet = rowsOf(ray);
    for (int j = rowsMet.begin; j < rowsMet.end; ++j) look(j, columnsOf(ray, j));
  }

  /// For buffers, in the order of the points. Triangles are those of strips along x.
  /// @param indices  gets the numbers of vertices; must live until the buffers are filled, as must this
  BufferContent content(const VertexFormat& format, std::uint8_t alpha,
                        std::vector<std::uint32_t>& indices) const;

private:
  static int placeOf(std::size_t point, std::size_t size, bool perPoint);
  Columns rowsOf(const SbLine& ray) const;
  Columns columnsOf(const SbLine& ray, int row) const;
  bool clip(const SbLine& ray, double low, double high, int axis, double& from, double& to) const;
  SbVec3f computedNormalAt(int i, int j) const;
  double heightAt(int i, int j) const {
    return heights[static_cast<std::size_t>(j) * static_cast<std::size_t>(numColumns) +
                   static_cast<std::size_t>(i)];
  }
  template <bool withNormals, bool withColors, bool withTexCoords>
  void writeVertices(const VertexFormat& format, std::uint8_t alpha, std::size_t first, std::size_t count,
                     std::byte* out) const;

  int numColumns, numRows;
  float xSpacing, zSpacing;
  std::span<const float> heights;
  std::span<const SbColor> colors;
  std::span<const SbVec3f> normals;
  std::span<const SbVec2f> texCoords;
  bool colorPerPoint, normalPerPoint, ccw;
};

}  // namespace tessel
