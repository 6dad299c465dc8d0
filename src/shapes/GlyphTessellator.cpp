// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/GlyphTessellator.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <GL/glu.h>

namespace tessel {
namespace {

using Callback = void (*)();

// GLU hands on whatever a vertex is called by: here, the number of its point.
void* nameOf(std::size_t number) { return reinterpret_cast<void*>(number); }

void edgeFlagCB(unsigned char, void*) {}

bool isFinite(const SbVec2f& p) { return std::isfinite(p[0]) && std::isfinite(p[1]); }

}  // namespace

SbBox2f boxOf(const FontOutline& outline) {
  SbBox2f box;
  for (const SbVec2f& p : outline.points) box.extendBy(p);
  return box;
}

void GlyphTessellator::Release::operator()(GLUtesselator* object) const { gluDeleteTess(object); }

GlyphTessellator::GlyphTessellator() : glu(gluNewTess()) {
  gluTessNormal(glu.get(), 0, 0, 1);
  gluTessProperty(glu.get(), GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_NONZERO);
  gluTessCallback(glu.get(), GLU_TESS_VERTEX_DATA, reinterpret_cast<Callback>(vertexCB));
  gluTessCallback(glu.get(), GLU_TESS_COMBINE_DATA, reinterpret_cast<Callback>(combineCB));
  gluTessCallback(glu.get(), GLU_TESS_ERROR_DATA, reinterpret_cast<Callback>(errorCB));
  // Who asks for edge flags gets single triangles instead of strips and fans.
  gluTessCallback(glu.get(), GLU_TESS_EDGE_FLAG_DATA, reinterpret_cast<Callback>(edgeFlagCB));
}

GlyphTessellator::~GlyphTessellator() = default;

GlyphMesh GlyphTessellator::fill(const FontOutline& outline) {
  if (!std::ranges::all_of(outline.points, isFinite)) return {};  // GLU would not come to an end
  if (!tessellate(outline)) {
    const SbBox2f box = boxOf(outline);
    const SbVec2f low = box.getMin(), high = box.getMax();
    if (low[0] < high[0] && low[1] < high[1])
      mesh = {{low, {high[0], low[1]}, high, {low[0], high[1]}}, {0, 1, 2, 0, 2, 3}};
    else
      mesh = {};
  }
  return std::exchange(mesh, {});
}

bool GlyphTessellator::tessellate(const FontOutline& outline) {
  mesh = {outline.points, {}};
  failed = false;
  std::size_t number = 0;
  gluTessBeginPolygon(glu.get(), this);
  for (const int size : outline.contours) {
    gluTessBeginContour(glu.get());
    for (const std::size_t end = number + static_cast<std::size_t>(size); number < end; ++number) {
      double position[3] = {outline.points[number][0], outline.points[number][1], 0};
      gluTessVertex(glu.get(), position, nameOf(number));
    }
    gluTessEndContour(glu.get());
  }
  gluTessEndPolygon(glu.get());
  return !failed;
}

void GlyphTessellator::vertexCB(void* number, void* self) {
  static_cast<GlyphTessellator*>(self)->mesh.triangles.push_back(
      static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(number)));
}

void GlyphTessellator::combineCB(double position[3], void**, float*, void** out, void* self) {
  auto& points = static_cast<GlyphTessellator*>(self)->mesh.points;
  *out = nameOf(points.size());
  points.emplace_back(static_cast<float>(position[0]), static_cast<float>(position[1]));
}

void GlyphTessellator::errorCB(unsigned, void* self) { static_cast<GlyphTessellator*>(self)->failed = true; }

}  // namespace tessel
