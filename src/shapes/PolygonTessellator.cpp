// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/PolygonTessellator.h"

#include <cmath>

#include <GL/glu.h>

namespace tessel {

namespace {

using Callback = void (*)();

bool isFinite(const SbVec3f& p) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); }

}  // namespace

void PolygonTessellator::Release::operator()(GLUtesselator* object) const { gluDeleteTess(object); }

PolygonTessellator::PolygonTessellator() = default;
PolygonTessellator::~PolygonTessellator() = default;

void PolygonTessellator::clear() { used = 0; }

PolygonTessellator::Corner& PolygonTessellator::next() {
  if (used == corners.size()) corners.emplace_back();
  return corners[used++];
}

void PolygonTessellator::add(const SoPrimitiveVertex& vertex) {
  Corner& corner = next();
  corner.vertex = vertex;
  if (const SoDetail* detail = vertex.getDetail()) {
    corner.detail = *static_cast<const SoPointDetail*>(detail);
    corner.vertex.setDetail(&corner.detail);
  }
}

void PolygonTessellator::add(const SbVec3f& point) {
  SoPrimitiveVertex vertex;
  vertex.setPoint(point);
  add(vertex);
}

void PolygonTessellator::finish(TriangleFn triangle, void* closure) {
  const std::size_t outline = used;
  bool sound = outline >= 3;
  // GLU does not come to an end with coordinates that are no numbers.
  for (std::size_t i = 0; sound && i < outline; ++i) sound = isFinite(corners[i].vertex.getPoint());
  if (sound) {
    if (!glu) {
      glu.reset(gluNewTess());
      gluTessCallback(glu.get(), GLU_TESS_BEGIN_DATA, reinterpret_cast<Callback>(beginCB));
      gluTessCallback(glu.get(), GLU_TESS_VERTEX_DATA, reinterpret_cast<Callback>(vertexCB));
      gluTessCallback(glu.get(), GLU_TESS_COMBINE_DATA, reinterpret_cast<Callback>(combineCB));
    }
    deliver = triangle;
    deliverTo = closure;
    gluTessBeginPolygon(glu.get(), this);
    gluTessBeginContour(glu.get());
    for (std::size_t i = 0; i < outline; ++i) {
      const SbVec3f& p = corners[i].vertex.getPoint();
      double position[3] = {p[0], p[1], p[2]};
      gluTessVertex(glu.get(), position, &corners[i]);
    }
    gluTessEndContour(glu.get());
    gluTessEndPolygon(glu.get());
  }
  clear();
}

void PolygonTessellator::beginCB(unsigned primitive, void* self) {
  auto& t = *static_cast<PolygonTessellator*>(self);
  t.primitive = primitive;
  t.count = 0;
}

void PolygonTessellator::vertexCB(void* vertex, void* self) {
  auto& t = *static_cast<PolygonTessellator*>(self);
  const SoPrimitiveVertex* v = &static_cast<Corner*>(vertex)->vertex;
  if (t.count >= 2) t.deliver(t.deliverTo, t.held[0], t.held[1], v);
  // Which of the two held corners gives way to this one; a strip changes sides, which keeps the winding.
  switch (t.primitive) {
    case GL_TRIANGLE_STRIP:
      t.held[t.count++ & 1] = v;
      break;
    case GL_TRIANGLE_FAN:
      t.held[t.count++ == 0 ? 0 : 1] = v;
      break;
    default:
      if (t.count < 2) t.held[t.count] = v;
      t.count = (t.count + 1) % 3;
  }
}

void PolygonTessellator::combineCB(double position[3], void* sources[4], float weights[4], void** out,
                                   void* self) {
  auto& t = *static_cast<PolygonTessellator*>(self);
  Corner& made = t.next();
  SbVec3f normal(0, 0, 0);
  SbVec4f texCoords(0, 0, 0, 0);
  int material = 0;
  for (int i = 0; i < 4; ++i) {
    if (!(weights[i] > 0)) continue;
    const SoPrimitiveVertex& v = static_cast<Corner*>(sources[i])->vertex;
    normal += weights[i] * v.getNormal();
    texCoords += weights[i] * v.getTextureCoords();
    material = v.getMaterialIndex();
  }
  normal.normalize();
  made.vertex.setPoint(SbVec3f(static_cast<float>(position[0]), static_cast<float>(position[1]),
                               static_cast<float>(position[2])));
  made.vertex.setNormal(normal);
  made.vertex.setTextureCoords(texCoords);
  made.vertex.setMaterialIndex(material);
  made.detail = SoPointDetail();
  made.vertex.setDetail(&made.detail);
  *out = &made;
}

}  // namespace tessel
