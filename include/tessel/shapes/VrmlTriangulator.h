// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

class SoMFInt32;
class SoMFVec3f;

/// Cuts simple polygons in the plane y = 0 into triangles.
///
/// Polygons are runs of indices into a list of points, each closed by -1, the last one also by the end of the list.
/// All operations look at x and z alone.
class TESSEL_API VrmlTriangulator {
public:
  VrmlTriangulator() = delete;

  /// Cuts each polygon of `input`. Those with up to three corners stay in place; corners on a straight side go.
  /// @param output  triangles, and what was no more than that; after a failure it must not be used
  /// @return 1; 0 if a point lies off the plane or is not there, or a polygon crosses itself so that no triangle
  ///         can be cut off, or it takes more than a second or so
  static int triangulate(const SoMFVec3f& points, const SoMFInt32& input, SoMFInt32& output);

  /// 1 if the polygon of `count` indices from `start` winds the way that `triangulate` gives its triangles: then its
  /// normal by the right hand points to negative y.
  static int clockWiseTest(const SoMFVec3f& points, const SoMFInt32& indices, int start, int count);

  /// 0 if the segment from point a to b crosses that from c to d, 1 if not. Segments that meet at an end don't cross.
  static int triangEdgeTest(const SoMFVec3f& points, int a, int b, int c, int d);

  /// 1 if point p lies inside the triangle a, b, c of the winding above, 0 if not or on its edge.
  static int triangInsideTest(const SoMFVec3f& points, int p, int a, int b, int c);
};
