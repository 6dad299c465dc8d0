// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlBillboard.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include <Inventor/SbViewVolume.h>
#include <Inventor/SbXfBox3f.h>
#include <Inventor/actions/SoActions.h>
#include <Inventor/elements/SoLocalBBoxMatrixElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/toolkit/Scoped.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

namespace {

// Cosine above which two directions count as the same.
constexpr float nearlyParallel = 0.999F;

template <class Action> void enableElements() {
  SO_ENABLE(Action, SoModelMatrixElement);
  SO_ENABLE(Action, SoViewVolumeElement);
  SO_ENABLE(Action, SoViewingMatrixElement);
}

SbVec3f normalized(SbVec3f v) {
  if (v.sqrLength() > 0) v.normalize();
  return v;
}

SbVec3f turnedBy(const SbMatrix& m, const SbVec3f& direction) {
  SbVec3f result;
  m.multDirMatrix(direction, result);
  return normalized(result);
}

float angleBetween(const SbVec3f& a, const SbVec3f& b) {
  return std::acos(std::clamp(a.dot(b), -1.0F, 1.0F));
}

}  // namespace

std::span<const FieldSpec> VrmlBillboard::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlBillboard::axisOfRotation>("axisOfRotation", FieldKind::exposedField, {0, 1, 0}),
  };
  return table;
}

void VrmlBillboard::initClass() {
  NodeClass::initClass();
  enableElements<SoPickAction>();
  enableElements<SoCallbackAction>();
  enableElements<SoGetMatrixAction>();
  enableElements<SoGLRenderAction>();
  enableElements<SoGetBoundingBoxAction>();
}

VrmlBillboard::VrmlBillboard() : rotationAmount(SbRotation::identity()) { setUpFields(); }
VrmlBillboard::~VrmlBillboard() = default;

void VrmlBillboard::setRotationAmount(SbRotation rotation) { rotationAmount = rotation; }
SbRotation VrmlBillboard::getRotationAmount() const { return rotationAmount; }

SbRotation VrmlBillboard::calculateRotation(SoAction* action) {
  SoState* state = action->getState();
  const SbMatrix toLocal = SoModelMatrixElement::get(state).inverse();
  const SbViewVolume& view = SoViewVolumeElement::get(state);
  const SbVec3f axis = axisOfRotation.getValue();

  if (axis == SbVec3f(0, 0, 0)) {
    const SbVec3f d = turnedBy(toLocal, view.getProjectionDirection());
    const SbRotation turn(SbVec3f(0, 0, 1), -d);
    SbVec3f y;
    turn.multVec(SbVec3f(0, 1, 0), y);
    y = normalized(y);
    const SbMatrix& viewing = SoViewingMatrixElement::get(state);
    const SbVec3f up = turnedBy(toLocal, SbVec3f(viewing[0][1], viewing[1][1], viewing[2][1]));
    float angle = angleBetween(y, up);
    if (y.cross(up).dot(d) < 0) angle = -angle;
    return turn * SbRotation(d, angle);
  }

  SbVec3f viewer;
  toLocal.multVecMatrix(view.getProjectionPoint(), viewer);
  const SbVec3f v = normalized(-viewer);
  const SbVec3f a = normalized(axis);
  if (a[2] > nearlyParallel || std::abs(a.dot(v)) > nearlyParallel) return rotationAmount;
  const SbVec3f z(0, 0, 1);
  const float angle = angleBetween(normalized(a.cross(v)), normalized(a.cross(z)));
  const float pi = std::numbers::pi_v<float>;
  return SbRotation(a, z.cross(v).dot(a) < 0 ? pi - angle : angle - pi);
}

void VrmlBillboard::doAction(SoAction* action) {
  SoState* state = action->getState();
  const tessel::StateScope scope(state);
  // Some traversals have no place in space (a count), others no viewer (a collision): there the children are, or
  // stay, as they were turned last.
  const bool inSpace = state->isElementEnabled(SoModelMatrixElement::getClassStackIndex());
  const bool seen = state->isElementEnabled(SoViewVolumeElement::getClassStackIndex()) &&
                    state->isElementEnabled(SoViewingMatrixElement::getClassStackIndex());
  if (inSpace && seen) rotationAmount = calculateRotation(action);
  if (inSpace) SoModelMatrixElement::rotateBy(state, this, rotationAmount);
  VrmlBaseGroup::doAction(action);
}

void VrmlBillboard::callback(SoCallbackAction* action) { doAction(action); }
void VrmlBillboard::pick(SoPickAction* action) { doAction(action); }

// The group's own test would ask the box of the children as they are before they turn.
void VrmlBillboard::rayPick(SoRayPickAction* action) {
  if (action->getCurPathCode() != SoAction::OFF_PATH) pick(action);
}

void VrmlBillboard::getMatrix(SoGetMatrixAction* action) { doAction(action); }
void VrmlBillboard::GLRender(SoGLRenderAction* action) { doAction(action); }
void VrmlBillboard::GLRenderBelowPath(SoGLRenderAction* action) { doAction(action); }
void VrmlBillboard::GLRenderInPath(SoGLRenderAction* action) { doAction(action); }
void VrmlBillboard::GLRenderOffPath(SoGLRenderAction* action) { doAction(action); }
void VrmlBillboard::collisionDetect(VrmlCollideAction* action) { doAction(action); }

void VrmlBillboard::doPreTraverse(VrmlPreTraverseAction* action) {
  if (hasKidType(action->kidTypeMask)) doAction(action);
}

// The children may face any way, so the box holds them in all rotations.
void VrmlBillboard::getBoundingBox(SoGetBoundingBoxAction* action) {
  const SoAction::PathCode code = action->getCurPathCode();
  if (code == SoAction::IN_PATH || code == SoAction::OFF_PATH) return;

  SbXfBox3f& box = action->getXfBoundingBox();
  const SbXfBox3f before = box;
  box.makeEmpty();
  SbBox3f children;
  {
    const tessel::StateScope scope(action->getState());
    SoLocalBBoxMatrixElement::makeIdentity(action->getState());
    VrmlCullingGroup::getBoundingBox(action);
    children = box.project();
  }
  const bool resetHere = action->getResetPath() && (action->getWhatReset() & SoGetBoundingBoxAction::BBOX) &&
                         action->getResetPath()->containsNode(this) && !children.isEmpty();
  if (resetHere)
    box.makeEmpty();
  else
    box = before;
  if (children.isEmpty()) return;
  const float r = std::max(children.getMin().length(), children.getMax().length());
  action->extendBy(SbBox3f(-r, -r, -r, r, r, r));
}

template class tessel::NodeClass<VrmlBillboard, VrmlCullingGroup>;
