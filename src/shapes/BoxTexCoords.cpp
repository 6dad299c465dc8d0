// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/BoxTexCoords.h"

#include <Inventor/elements/SoGLMultiTextureCoordinateElement.h>
#include <Inventor/system/gl.h>

namespace tessel {

namespace {

/// The plane whose distance is the coordinate along an axis of a box.
SbVec4f planeAlong(int axis, const SbVec3f& lowest, float scale) {
  SbVec4f plane(0, 0, 0, -lowest[axis] * scale);
  plane[axis] = scale;
  return plane;
}

float distance(const SbVec4f& plane, const SbVec3f& p) {
  return plane[0] * p[0] + plane[1] * p[1] + plane[2] * p[2] + plane[3];
}

}  // namespace

BoxTexCoords::BoxTexCoords(const SbBox3f& box) : planeS(0, 0, 0, 0), planeT(0, 0, 0, 0) {
  if (box.isEmpty()) return;
  const SbVec3f lowest = box.getMin();
  const SbVec3f side = box.getMax() - lowest;
  int s = 0;
  for (int axis = 1; axis < 3; ++axis)
    if (side[axis] > side[s]) s = axis;
  int t = s == 0 ? 1 : 0;
  for (int axis = t + 1; axis < 3; ++axis)
    if (axis != s && side[axis] > side[t]) t = axis;
  const float scale = side[s] > 0 ? 1 / side[s] : 0;
  planeS = planeAlong(s, lowest, scale);
  planeT = planeAlong(t, lowest, scale);
}

SbVec4f BoxTexCoords::at(const SbVec3f& point) const {
  return SbVec4f(distance(planeS, point), distance(planeT, point), 0, 1);
}

void BoxTexCoords::generate(SoState* state, SoNode* node) const {
  auto* self = const_cast<BoxTexCoords*>(this);
  SoGLMultiTextureCoordinateElement::setTexGen(state, node, 0, sendPlanes, self, evaluate, self);
}

void BoxTexCoords::sendPlanes(void* self) {
  const auto& box = *static_cast<const BoxTexCoords*>(self);
  const SbVec4f planeR(0, 0, 0, 0), planeQ(0, 0, 0, 1);
  const struct {
    GLenum coordinate;
    const SbVec4f& plane;
  } rows[] = {{GL_S, box.planeS}, {GL_T, box.planeT}, {GL_R, planeR}, {GL_Q, planeQ}};
  for (const auto& row : rows) {
    glTexGeni(row.coordinate, GL_TEXTURE_GEN_MODE, GL_OBJECT_LINEAR);
    glTexGenfv(row.coordinate, GL_OBJECT_PLANE, row.plane.getValue());
  }
}

const SbVec4f& BoxTexCoords::evaluate(void* self, const SbVec3f& point, const SbVec3f&) {
  static SbVec4f result;
  result = static_cast<const BoxTexCoords*>(self)->at(point);
  return result;
}

}  // namespace tessel
