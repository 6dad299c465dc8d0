// SPDX-License-Identifier: BSD-3-Clause

// VrmlGeometry's pipeline: from vertices to primitives, from primitives to what the action does with them.

#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/elements/SoShapeHintsElement.h>
#include <Inventor/system/gl.h>

#include <tessel/actions/VrmlCollideAction.h>

#include "actions/VrmlCallbackAction.h"
#include "core/NodeClassImpl.h"
#include "shapes/PickHit.h"
#include "shapes/PrimitiveState.h"

using tessel::PrimitiveState;

namespace {

template <class A> A* asAction(SoAction* action) {
  return action->isOfType(A::getClassTypeId()) ? static_cast<A*>(action) : nullptr;
}

/// The third vertex of a triangle makes it; the others are held. A slot of -1 holds nothing.
void triangleVertex(const SoPrimitiveVertex& v, int slot, void (*make)(const SoPrimitiveVertex&)) {
  auto& s = PrimitiveState::get();
  if (!s.faceDetail) {
    if (s.vertNum >= 2) make(v);
    if (slot >= 0) s.verts[slot] = v;
  } else {
    SoPrimitiveVertex inFace(v);
    const auto* point = static_cast<const SoPointDetail*>(v.getDetail());
    inFace.setDetail(s.faceDetail);
    if (s.vertNum >= 2) {
      s.faceDetail->setPoint(0, &s.vertDetails[0]);
      s.faceDetail->setPoint(1, &s.vertDetails[1]);
      if (point) s.faceDetail->setPoint(2, point);
      make(inFace);
    }
    if (slot >= 0) {
      s.verts[slot] = inFace;
      s.vertDetails[slot] = point ? *point : SoPointDetail();
    }
  }
  ++s.vertNum;
}

/// One GL primitive of corners; each sends texture coordinates, material, normal, point.
void drawPrimitive(GLenum primitive, std::initializer_list<const SoPrimitiveVertex*> corners) {
  const auto& s = PrimitiveState::get();
  const bool sendNormals = !s.matlBundle->isColorOnly();
  glBegin(primitive);
  for (const SoPrimitiveVertex* v : corners) {
    if (s.sendTexCoords) glTexCoord4fv(v->getTextureCoords().getValue());
    s.matlBundle->send(v->getMaterialIndex(), TRUE);
    if (sendNormals) glNormal3fv(v->getNormal().getValue());
    glVertex3fv(v->getPoint().getValue());
  }
  glEnd();
}

}  // namespace

void VrmlGeometry::beginShape(SoAction* action, TriangleShape type, SoFaceDetail* detail) {
  auto& s = PrimitiveState::get();
  s.shape = this;
  s.action = action;
  s.type = type;
  s.vertNum = 0;
  if (s.nestLevel++ == 0) s.faceDetail = detail;
  if (type == POLYGON) {
    s.polygon.clear();
    if (SoShapeHintsElement::getFaceType(action->getState()) != SoShapeHintsElement::CONVEX) return;
    s.type = TRIANGLE_FAN;
  }
  if (s.faceDetail) s.faceDetail->setNumPoints(3);
}

void VrmlGeometry::shapeVertex(const SoPrimitiveVertex* v) {
  auto& s = PrimitiveState::get();
  const auto make = [](const SoPrimitiveVertex& third) {
    auto& state = PrimitiveState::get();
    state.shape->invokeTriangleCallbacks(state.action, &state.verts[0], &state.verts[1], &third);
  };
  switch (s.type) {
    case TRIANGLE_STRIP:
      triangleVertex(*v, s.vertNum & 1, make);
      break;
    case TRIANGLE_FAN:
      triangleVertex(*v, s.vertNum == 0 ? 0 : 1, make);
      break;
    case TRIANGLES:
      triangleVertex(*v, s.vertNum < 2 ? s.vertNum : -1, make);
      if (s.vertNum == 3) s.vertNum = 0;
      break;
    case POLYGON:
      s.polygon.add(*v);
      break;
  }
}

void VrmlGeometry::endShape() {
  auto& s = PrimitiveState::get();
  s.vertNum = 0;
  if (s.type == POLYGON) {
    // Its triangles take the ordinary way, inside this shape and so with its detail.
    s.type = TRIANGLES;
    if (s.faceDetail) s.faceDetail->setNumPoints(3);
    s.polygon.finish(
        [](void*, const SoPrimitiveVertex* v1, const SoPrimitiveVertex* v2, const SoPrimitiveVertex* v3) {
          shapeVertex(v1);
          shapeVertex(v2);
          shapeVertex(v3);
        },
        nullptr);
  }
  --s.nestLevel;
}

// What each action does with a primitive

void VrmlGeometry::invokeTriangleCallbacks(SoAction* action, const SoPrimitiveVertex* v1,
                                           const SoPrimitiveVertex* v2, const SoPrimitiveVertex* v3) {
  if (auto* pick = asAction<SoRayPickAction>(action))
    rayPickTriangle(pick, v1, v2, v3);
  else if (asAction<SoGLRenderAction>(action))
    drawPrimitive(GL_TRIANGLES, {v1, v2, v3});
  else if (auto* collide = asAction<VrmlCollideAction>(action))
    collide->collideTriangle(v1->getPoint(), v2->getPoint(), v3->getPoint());
  else if (auto* callback = asAction<SoCallbackAction>(action))
    VrmlCallbackAction(callback).invokeTriangleCallbacks(getTypeId(), v1, v2, v3);
}

void VrmlGeometry::invokeLineSegmentCallbacks(SoAction* action, const SoPrimitiveVertex* v1,
                                              const SoPrimitiveVertex* v2) {
  if (auto* pick = asAction<SoRayPickAction>(action))
    rayPickLineSegment(pick, v1, v2);
  else if (asAction<SoGLRenderAction>(action))
    drawPrimitive(GL_LINES, {v1, v2});
  else if (auto* callback = asAction<SoCallbackAction>(action))
    VrmlCallbackAction(callback).invokeLineSegmentCallbacks(getTypeId(), v1, v2);
}

void VrmlGeometry::invokePointCallbacks(SoAction* action, const SoPrimitiveVertex* v) {
  if (auto* pick = asAction<SoRayPickAction>(action))
    rayPickPoint(pick, v);
  else if (asAction<SoGLRenderAction>(action))
    drawPrimitive(GL_POINTS, {v});
  else if (auto* callback = asAction<SoCallbackAction>(action))
    VrmlCallbackAction(callback).invokePointCallbacks(getTypeId(), v);
}

void VrmlGeometry::rayPickTriangle(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                   const SoPrimitiveVertex* v2, const SoPrimitiveVertex* v3) {
  SbVec3f hit, weight;
  SbBool front;
  if (!action->intersect(v1->getPoint(), v2->getPoint(), v3->getPoint(), hit, weight, front)) return;
  SoPickedPoint* point = tessel::addIntersection(action, hit, front);
  if (!point) return;
  SbVec3f normal = v1->getNormal() * weight[0] + v2->getNormal() * weight[1] + v3->getNormal() * weight[2];
  normal.normalize();
  point->setObjectNormal(normal);
  point->setObjectTextureCoords(v1->getTextureCoords() * weight[0] + v2->getTextureCoords() * weight[1] +
                                v3->getTextureCoords() * weight[2]);
  const SoPrimitiveVertex* least = v3;
  if (weight[0] < weight[1] && weight[0] < weight[2])
    least = v1;
  else if (weight[1] < weight[2])
    least = v2;
  point->setMaterialIndex(least->getMaterialIndex());
  if (SoDetail* detail = createTriangleDetail(action, v1, v2, v3, point)) setDetail(point, detail, action);
}

void VrmlGeometry::rayPickLineSegment(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                      const SoPrimitiveVertex* v2) {
  SbVec3f hit;
  if (!action->intersect(v1->getPoint(), v2->getPoint(), hit)) return;
  SoPickedPoint* point = tessel::addIntersection(action, hit);
  if (!point) return;
  const float length = (v2->getPoint() - v1->getPoint()).length();
  const float second = length > 0 ? (hit - v1->getPoint()).length() / length : 0;
  const float first = 1 - second;
  SbVec3f normal = v1->getNormal() * first + v2->getNormal() * second;
  normal.normalize();
  point->setObjectNormal(normal);
  point->setObjectTextureCoords(v1->getTextureCoords() * first + v2->getTextureCoords() * second);
  point->setMaterialIndex((first < second ? v1 : v2)->getMaterialIndex());
  if (SoDetail* detail = createLineSegmentDetail(action, v1, v2, point)) setDetail(point, detail, action);
}

void VrmlGeometry::rayPickPoint(SoRayPickAction* action, const SoPrimitiveVertex* v) {
  if (!action->intersect(v->getPoint())) return;
  SoPickedPoint* point = tessel::addIntersection(action, v->getPoint());
  if (!point) return;
  point->setObjectNormal(v->getNormal());
  point->setObjectTextureCoords(v->getTextureCoords());
  point->setMaterialIndex(v->getMaterialIndex());
  if (SoDetail* detail = createPointDetail(action, v, point)) setDetail(point, detail, action);
}
