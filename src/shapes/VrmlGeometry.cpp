// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlGeometry.h>

#include <algorithm>

#include <Inventor/SbMatrix.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/SbXfBox3f.h>
#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/caches/SoBoundingBoxCache.h>
#include <Inventor/details/SoDetail.h>
#include <Inventor/elements/SoComplexityTypeElement.h>
#include <Inventor/elements/SoDrawStyleElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoMultiTextureEnabledElement.h>
#include <Inventor/elements/SoPickStyleElement.h>
#include <Inventor/elements/SoProjectionMatrixElement.h>
#include <Inventor/elements/SoShapeHintsElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/misc/SoNotification.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlRenderAction.h>
#include <tessel/shapes/VrmlBox.h>
#include <tessel/shapes/VrmlShape.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "actions/VrmlCallbackAction.h"
#include "core/NodeClassImpl.h"
#include "shapes/PrimitiveState.h"

namespace {

bool isInShape(SoAction* action) {
  return VrmlContainerElement::has(action->getState(), VrmlContainerElement::shape);
}

/// Draws and picks the boxes of other geometries.
VrmlBox& bboxCube() {
  static const tessel::SoRef<VrmlBox> cube(new VrmlBox);
  return *cube;
}

}  // namespace

std::span<const tessel::FieldSpec> VrmlGeometry::fields() { return {}; }

VrmlGeometry::VrmlGeometry() { setUpFields(); }

VrmlGeometry::~VrmlGeometry() = default;

int VrmlGeometry::getContainerFlags() const { return 0; }

SoDetail* VrmlGeometry::createTriangleDetail(SoRayPickAction*, const SoPrimitiveVertex*,
                                             const SoPrimitiveVertex*, const SoPrimitiveVertex*,
                                             SoPickedPoint*) {
  return nullptr;
}

SoDetail* VrmlGeometry::createLineSegmentDetail(SoRayPickAction*, const SoPrimitiveVertex*,
                                                const SoPrimitiveVertex*, SoPickedPoint*) {
  return nullptr;
}

SoDetail* VrmlGeometry::createPointDetail(SoRayPickAction*, const SoPrimitiveVertex*, SoPickedPoint*) {
  return nullptr;
}

void VrmlGeometry::notify(SoNotList* list) {
  bboxCache.reset();
  VrmlNode::notify(list);
}

const SoField* VrmlGeometry::mirrorSource(const SoNotList* list, const SoField& values,
                                          const SoField& event) const {
  const SoField* changed = list->getLastField();
  if (isMirroring || isTakingCopy()) return nullptr;  // in a copy both come as they are
  if (changed == &event) return changed;
  // During a read nobody looks, and a second copy of a large list is dear.
  return changed == &values && isNotifyEnabled() ? changed : nullptr;
}

// Bounding boxes

void VrmlGeometry::computeGuardedBBox(SoAction* action, SbBox3f& box, SbVec3f& center) {
  box.makeEmpty();
  center.setValue(0, 0, 0);
  if (!isInShape(action)) return;
  const tessel::ContainerScope scope(action->getState(), this, getContainerFlags());
  computeBBox(action, box, center);
}

void VrmlGeometry::getBoundingBox(SoGetBoundingBoxAction* action) {
  SbBox3f box;
  SbVec3f center;
  computeGuardedBBox(action, box, center);
  if (box.isEmpty()) return;
  action->extendBy(box);
  action->setCenter(center, TRUE);
}

bool VrmlGeometry::haveBBoxCache(SbBox3f& box, SbVec3f& center) const {
  if (!bboxCache) return false;
  box = bboxCache->getProjectedBox();
  if (bboxCache->isCenterSet()) center = bboxCache->getCenter();
  return true;
}

void VrmlGeometry::createBBoxCache(SoState* state, const SbBox3f& box, const SbVec3f& center) {
  bboxCache.reset(new SoBoundingBoxCache(state));
  bboxCache->set(SbXfBox3f(box), TRUE, center);
}

SbVec2s VrmlGeometry::getScreenSize(SoState* state, const SbBox3f& box) {
  if (box.isEmpty()) return SbVec2s(0, 0);
  const SbMatrix toScreen = SoModelMatrixElement::get(state) * SoViewingMatrixElement::get(state) *
                            SoProjectionMatrixElement::get(state);
  const SbVec2s pixels = SoViewportRegionElement::get(state).getViewportSizePixels();
  SbBox3f projected(box);
  projected.transform(toScreen);  // by its eight corners
  SbVec2s size;
  for (int axis = 0; axis < 2; ++axis) {
    // From -1 to 1 across the viewport: half the extent is the share of its size.
    const float extent = (projected.getMax()[axis] - projected.getMin()[axis]) * 0.5f * pixels[axis] * 0.5f;
    size[axis] =
        extent < 32767 ? static_cast<short>(std::max(extent, -32768.0f)) : 32767;  // also what is no number
  }
  return size;
}

// Rendering

bool VrmlGeometry::shouldGLRender(SoGLRenderAction* action) {
  SoState* state = action->getState();
  if (!isInShape(action)) return false;
  if (SoDrawStyleElement::get(state) == SoDrawStyleElement::INVISIBLE) return false;
  if (VrmlRenderAction::mustDelay(action, false)) return false;
  if (SoComplexityTypeElement::get(state) == SoComplexityTypeElement::BOUNDING_BOX) {
    GLRenderBoundingBox(action);
    return false;
  }
  return true;
}

void VrmlGeometry::GLRender(SoGLRenderAction* action) {
  if (!shouldGLRender(action)) return;
  auto& primitives = tessel::PrimitiveState::get();
  SoMaterialBundle bundle(action);
  bundle.sendFirst();
  primitives.matlBundle = &bundle;
  primitives.sendTexCoords = SoMultiTextureEnabledElement::get(action->getState(), 0);
  generateGuarded(action);
  primitives.matlBundle = nullptr;
}

void VrmlGeometry::GLRenderBoundingBox(SoGLRenderAction* action) {
  SbBox3f box;
  SbVec3f center;
  computeGuardedBBox(action, box, center);
  if (!box.isEmpty()) bboxCube().GLRenderBoundingBox(action, box);
}

void VrmlGeometry::beginSolidShape(SoGLRenderAction* action) {
  SoState* state = action->getState();
  state->push();
  if (SoDrawStyleElement::get(state) != SoDrawStyleElement::FILLED) return;
  SoShapeHintsElement::VertexOrdering ordering;
  SoShapeHintsElement::ShapeType type;
  SoShapeHintsElement::FaceType face;
  SoShapeHintsElement::get(state, ordering, type, face);
  if (ordering != SoShapeHintsElement::COUNTERCLOCKWISE || type != SoShapeHintsElement::SOLID)
    SoShapeHintsElement::set(state, this, SoShapeHintsElement::COUNTERCLOCKWISE, SoShapeHintsElement::SOLID,
                             SoShapeHintsElement::FACE_TYPE_AS_IS);
}

void VrmlGeometry::endSolidShape(SoGLRenderAction* action) { action->getState()->pop(); }

// Other actions

void VrmlGeometry::generateGuarded(SoAction* action) {
  const tessel::ContainerScope scope(action->getState(), this, getContainerFlags());
  generatePrimitives(action);
}

void VrmlGeometry::callback(SoCallbackAction* action) {
  if (isInShape(action) && VrmlCallbackAction(action).shouldGeneratePrimitives(getTypeId()))
    generateGuarded(action);
}

void VrmlGeometry::collisionDetect(VrmlCollideAction* action) {
  if (!isInShape(action) || !action->isCollisionTestOn()) return;
  action->updateCollisionVolume();
  generateGuarded(action);
}

void VrmlGeometry::rayPick(SoRayPickAction* action) {
  if (!shouldRayPick(action)) return;
  computeObjectSpaceRay(action);
  generateGuarded(action);
}

bool VrmlGeometry::shouldRayPick(SoRayPickAction* action) {
  if (!isInShape(action)) return false;
  switch (SoPickStyleElement::get(action->getState())) {
    case SoPickStyleElement::SHAPE:
      return true;
    case SoPickStyleElement::BOUNDING_BOX:
      rayPickBoundingBox(action);
      return false;
    default:
      return false;
  }
}

void VrmlGeometry::rayPickBoundingBox(SoRayPickAction* action) {
  SbBox3f box;
  SbVec3f center;
  computeGuardedBBox(action, box, center);
  if (!box.isEmpty()) bboxCube().rayPickBoundingBox(action, box);
}

void VrmlGeometry::computeObjectSpaceRay(SoRayPickAction* action) { action->setObjectSpace(); }

void VrmlGeometry::computeObjectSpaceRay(SoRayPickAction* action, const SbMatrix& matrix) {
  action->setObjectSpace(matrix);
}

void VrmlGeometry::setDetail(SoPickedPoint* point, SoDetail* detail, SoAction* action) {
  SoNode* tail = action->getCurPathTail();
  const bool endsInShape = tail->isOfType(VrmlShape::getClassTypeId());
  point->setDetail(detail, endsInShape ? tail : this);
}

template class tessel::NodeClass<VrmlGeometry, VrmlNode>;
