// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlIndexedFaceSet.h>

#include <algorithm>
#include <utility>

#include <Inventor/SbLine.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/elements/SoCreaseAngleElement.h>
#include <Inventor/elements/SoNormalBindingElement.h>
#include <Inventor/elements/SoShapeHintsElement.h>
#include <Inventor/misc/SoNotification.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlNormal.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"
#include "shapes/EarClipper.h"
#include "shapes/FaceDrawing.h"
#include "shapes/FaceIndices.h"
#include "shapes/FaceWalk.h"
#include "shapes/NormalGenerator.h"
#include "shapes/PolygonTessellator.h"
#include "shapes/RealNode.h"

namespace {

/// Tells for most faces of a mesh at once that a ray does not hit them.
class RayFilter {
public:
  explicit RayFilter(const SbLine& ray) : origin(ray.getPosition()) {
    const SbVec3f direction = ray.getDirection();
    const SbVec3f across = std::abs(direction[0]) < 0.5f ? SbVec3f(1, 0, 0) : SbVec3f(0, 1, 0);
    u = direction.cross(across);
    v = direction.cross(u);
  }

  /// Whether all corners lie on one side of a plane through the ray.
  bool misses(const tessel::FaceWalk& walk) const {
    unsigned everywhere = 0xF;
    for (int i = 0; i < walk.size() && everywhere; ++i) {
      const SbVec3f p = walk.pointAt(i) - origin;
      // What rounding may have moved across a plane counts as on both sides.
      const float blur = 1e-5f * (std::abs(p[0]) + std::abs(p[1]) + std::abs(p[2]));
      const float x = p.dot(u), y = p.dot(v);
      everywhere &=
          (x > blur ? 1u : 0u) | (x < -blur ? 2u : 0u) | (y > blur ? 4u : 0u) | (y < -blur ? 8u : 0u);
    }
    return everywhere != 0;
  }

private:
  SbVec3f origin, u, v;
};

}  // namespace

std::span<const tessel::FieldSpec> VrmlIndexedFaceSet::fields() {
  using enum tessel::FieldKind;
  using Self = VrmlIndexedFaceSet;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&Self::normal>("normal", exposedField),
      tessel::fieldSpec<&Self::texCoord>("texCoord", exposedField),
      tessel::fieldSpec<&Self::colorPerVertex>("colorPerVertex", field, {TRUE}),
      tessel::fieldSpec<&Self::normalPerVertex>("normalPerVertex", field, {TRUE}),
      tessel::fieldSpec<&Self::normalIndex>("normalIndex", field, {-1}),
      tessel::fieldSpec<&Self::texCoordIndex>("texCoordIndex", field, {-1}),
      tessel::fieldSpec<&Self::ccw>("ccw", field, {TRUE}),
      tessel::fieldSpec<&Self::solid>("solid", field, {TRUE}),
      tessel::fieldSpec<&Self::convex>("convex", field, {TRUE}),
      tessel::fieldSpec<&Self::creaseAngle>("creaseAngle", field, {0}),
      tessel::fieldSpec<&Self::set_normalIndex>("set_normalIndex", eventIn, {-1}),
      tessel::fieldSpec<&Self::set_texCoordIndex>("set_texCoordIndex", eventIn, {-1}),
  };
  return table;
}

VrmlIndexedFaceSet::VrmlIndexedFaceSet() : drawing(std::make_unique<tessel::FaceDrawing>()) { setUpFields(); }

VrmlIndexedFaceSet::~VrmlIndexedFaceSet() = default;

int VrmlIndexedFaceSet::getContainerFlags() const {
  using enum VrmlContainerElement::TypeBits;
  return coordinate | VrmlContainerElement::normal | VrmlContainerElement::color |
         VrmlContainerElement::texCoord;
}

void VrmlIndexedFaceSet::notify(SoNotList* list) {
  drawing->changed(list->getLastField() == &coord);
  pickNormals.reset();
  mirror(list, normalIndex, set_normalIndex);
  mirror(list, texCoordIndex, set_texCoordIndex);
  VrmlIndexedShape::notify(list);
}

std::span<const std::int32_t> VrmlIndexedFaceSet::indices() const {
  return {coordIndex.getValues(0), static_cast<std::size_t>(coordIndex.getNum())};
}

void VrmlIndexedFaceSet::sendShapeHintsToState(SoState* state) {
  using Hints = SoShapeHintsElement;
  Hints::set(state, this, ccw.getValue() ? Hints::COUNTERCLOCKWISE : Hints::CLOCKWISE,
             solid.getValue() ? Hints::SOLID : Hints::UNKNOWN_SHAPE_TYPE,
             convex.getValue() ? Hints::CONVEX : Hints::UNKNOWN_FACE_TYPE);
  SoCreaseAngleElement::set(state, this, creaseAngle.getValue());
}

void VrmlIndexedFaceSet::doVertexPropertyAction(SoAction* action) {
  tessel::actIfReal<VrmlCoordinate>(action, coord);
  tessel::actIfReal<VrmlNormal>(action, normal);
  tessel::actIfReal<VrmlColor>(action, color);
  tessel::actIfReal<VrmlTextureCoordinate>(action, texCoord);
}

// Primitives

void VrmlIndexedFaceSet::callback(SoCallbackAction* action) {
  sendShapeHintsToState(action->getState());
  NodeClass::callback(action);
}

void VrmlIndexedFaceSet::rayPick(SoRayPickAction* action) {
  sendShapeHintsToState(action->getState());
  NodeClass::rayPick(action);
}

void VrmlIndexedFaceSet::generatePrimitives(SoAction* action) {
  SoState* state = action->getState();
  auto* const pick =
      action->isOfType(SoRayPickAction::getClassTypeId()) ? static_cast<SoRayPickAction*>(action) : nullptr;
  if (pick) {
    SbBox3f box;
    SbVec3f center;
    computeBBox(action, box, center);
    if (box.isEmpty() || !pick->intersect(box)) return;
  }
  const tessel::StateScope scope(state);
  doVertexPropertyAction(action);
  tessel::FaceWalk faces(*this, action, pickNormals);
  if (!faces.isSound()) return;
  if (state->isElementEnabled(SoNormalBindingElement::getClassStackIndex()))
    SoNormalBindingElement::set(
        state, this,
        faces.normalBinding() == tessel::FaceWalk::overall
            ? SoNormalBindingElement::OVERALL
            : static_cast<SoNormalBindingElement::Binding>(faces.normalBinding() + 4));
  walk = &faces;
  std::optional<RayFilter> filter;
  if (pick) filter.emplace(pick->getLine());
  SoPrimitiveVertex corners[3];
  SoFaceDetail faceDetail;
  SoPointDetail pointDetail;
  while (faces.next()) {
    if (filter && filter->misses(faces)) continue;
    if (pick && faces.size() == 3) {
      for (int i = 0; i < 3; ++i) faces.fill(i, corners[i]);
      rayPickTriangle(pick, &corners[0], &corners[1], &corners[2]);
      continue;
    }
    faceDetail.setFaceIndex(faces.face());
    corners[0].setDetail(pick ? nullptr : &pointDetail);
    beginShape(action, POLYGON, pick ? nullptr : &faceDetail);
    for (int i = 0; i < faces.size(); ++i) {
      if (i > 0 && faces.pointOf(i) == faces.pointOf(i - 1)) continue;  // it could upset a tessellator
      faces.fill(i, corners[0]);
      if (!pick) faces.fillDetail(i, pointDetail);
      shapeVertex(&corners[0]);
    }
    endShape();
  }
  walk = nullptr;
}

SoDetail* VrmlIndexedFaceSet::createTriangleDetail(SoRayPickAction*, const SoPrimitiveVertex*,
                                                   const SoPrimitiveVertex*, const SoPrimitiveVertex*,
                                                   SoPickedPoint* point) {
  if (!walk) return nullptr;
  auto detail = std::make_unique<SoFaceDetail>();
  detail->setFaceIndex(walk->face());
  detail->setPartIndex(walk->face());
  detail->setNumPoints(walk->size());
  for (int i = 0; i < walk->size(); ++i) walk->fillDetail(i, detail->getPoints()[i]);
  if (walk->isTexFunction())
    point->setObjectTextureCoords(walk->texCoordsAt(point->getObjectPoint(), point->getObjectNormal()));
  return detail.release();
}

void VrmlIndexedFaceSet::count(VrmlCountAction* action) {
  const tessel::FaceRuns runs = tessel::countRuns(indices());
  std::int64_t triangles = runs.triangles + 2 * runs.quads;
  if (runs.faces > 0) {
    triangles = 0;
    int corners = 0;
    const auto endFace = [&] { triangles += std::max(std::exchange(corners, 0) - 2, 0); };
    for (const std::int32_t index : indices()) {
      if (index == -1)
        endFace();
      else
        ++corners;
    }
    endFace();
  }
  VrmlCountAction::add(action->numTriangles, triangles);
}

// Only positions matter here, and triangles go straight on.
void VrmlIndexedFaceSet::collisionDetect(VrmlCollideAction* action) {
  if (!VrmlContainerElement::has(action->getState(), VrmlContainerElement::shape) ||
      !action->isCollisionTestOn())
    return;
  if (!tessel::realNode<VrmlCoordinate>(coord)) return;
  tessel::FaceWalk faces(*this, action, pickNormals);
  if (!faces.isSound()) return;
  action->updateCollisionVolume();

  tessel::EarClipper clipper;
  tessel::PolygonTessellator tessellator;
  std::vector<SbVec3f> outline;
  std::vector<std::int32_t> pieces;
  while (faces.next()) {
    if (faces.size() == 3) {
      action->collideTriangle(faces.pointAt(0), faces.pointAt(1), faces.pointAt(2));
      continue;
    }
    outline.clear();
    for (int i = 0; i < faces.size(); ++i)
      if (i == 0 || faces.pointOf(i) != faces.pointOf(i - 1)) outline.push_back(faces.pointAt(i));
    pieces.clear();
    if (clipper.cut(outline, pieces)) {
      for (std::size_t i = 0; i < pieces.size(); i += 3)
        action->collideTriangle(outline[pieces[i]], outline[pieces[i + 1]], outline[pieces[i + 2]]);
      continue;
    }
    for (const SbVec3f& point : outline) tessellator.add(point);
    tessellator.finish(
        [](void* to, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b, const SoPrimitiveVertex* c) {
          static_cast<VrmlCollideAction*>(to)->collideTriangle(a->getPoint(), b->getPoint(), c->getPoint());
        },
        action);
  }
}

template class tessel::NodeClass<VrmlIndexedFaceSet, VrmlIndexedShape>;
