// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <vector>

#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/details/SoPointDetail.h>

class GLUtesselator;

namespace tessel {

/// Cuts polygons of any form into triangles.
///
/// Vertices that it makes where edges cross blend position, normal and texture coordinates of the vertices
/// around them, and take the material index of the last of these. A polygon that cannot be cut gives none.
class PolygonTessellator {
public:
  using TriangleFn = void (*)(void* closure, const SoPrimitiveVertex* v1, const SoPrimitiveVertex* v2,
                              const SoPrimitiveVertex* v3);

  PolygonTessellator();
  ~PolygonTessellator();
  PolygonTessellator(const PolygonTessellator&) = delete;
  PolygonTessellator& operator=(const PolygonTessellator&) = delete;

  void clear();
  /// Adds a copy of a vertex; its detail, if it has one, must be a SoPointDetail and is copied too.
  void add(const SoPrimitiveVertex& vertex);
  /// Adds a vertex of which only the position counts.
  void add(const SbVec3f& point);
  std::size_t size() const { return used; }
  /// Hands each triangle of the polygon to `triangle`, then clears. Fewer than three vertices give nothing.
  void finish(TriangleFn triangle, void* closure);

private:
  struct Corner {
    SoPrimitiveVertex vertex;
    SoPointDetail detail;
  };
  Corner& next();
  static void beginCB(unsigned primitive, void* self);
  static void vertexCB(void* vertex, void* self);
  static void combineCB(double position[3], void* corners[4], float weights[4], void** out, void* self);

  struct Release {
    void operator()(GLUtesselator* object) const;
  };
  std::unique_ptr<GLUtesselator, Release> glu;
  std::deque<Corner> corners;  // addresses stay; reused from one polygon to the next
  std::size_t used = 0;

  // The primitive that GLU is handing out.
  unsigned primitive = 0;
  int count = 0;
  const SoPrimitiveVertex* held[2] = {};
  TriangleFn deliver = nullptr;
  void* deliverTo = nullptr;
};

}  // namespace tessel
