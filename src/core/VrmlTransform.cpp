// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlTransform.h>

#include <cmath>

#include <Inventor/actions/SoActions.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/toolkit/Scoped.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

namespace {

bool isUsed(const SoField& field) { return !field.isDefault() && !field.isIgnored(); }

SbMatrix translation(const SbVec3f& by) {
  SbMatrix m;
  m.setTranslate(by);
  return m;
}

SbMatrix rotation(const SbRotation& by) {
  SbMatrix m;
  m.setRotate(by);
  return m;
}

SbMatrix scale(const SbVec3f& by) {
  SbMatrix m;
  m.setScale(by);
  return m;
}

SbVec3f reciprocal(const SbVec3f& v) { return {1 / v[0], 1 / v[1], 1 / v[2]}; }

template <class Field, class Value> void setIfDifferent(Field& field, const Value& value) {
  if (field.getValue() != value) field.setValue(value);
}

// Makes one step of a matrix and of its inverse.
struct MatrixPair {
  SbMatrix& matrix;
  SbMatrix& inverse;
  void step(const SbMatrix& forward, const SbMatrix& back) {
    matrix.multLeft(forward);
    inverse.multRight(back);
  }
};

}  // namespace

std::span<const FieldSpec> VrmlTransform::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlTransform::translation>("translation", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlTransform::rotation>("rotation", FieldKind::exposedField, {0, 0, 1, 0}),
      fieldSpec<&VrmlTransform::scale>("scale", FieldKind::exposedField, {1, 1, 1}),
      fieldSpec<&VrmlTransform::scaleOrientation>("scaleOrientation", FieldKind::exposedField, {0, 0, 1, 0}),
      fieldSpec<&VrmlTransform::center>("center", FieldKind::exposedField, {0, 0, 0}),
  };
  return table;
}

VrmlTransform::VrmlTransform() { setUpFields(); }
VrmlTransform::~VrmlTransform() = default;

void VrmlTransform::doTransform(SoAction* action) {
  SoState* state = action->getState();
  // A connection may have a value waiting that makes the field a used one.
  for (SoField* field :
       {static_cast<SoField*>(&translation), static_cast<SoField*>(&rotation), static_cast<SoField*>(&scale),
        static_cast<SoField*>(&scaleOrientation), static_cast<SoField*>(&center)})
    field->evaluate();
  const bool centered = isUsed(center);
  if (isUsed(translation)) SoModelMatrixElement::translateBy(state, this, translation.getValue());
  if (centered) SoModelMatrixElement::translateBy(state, this, center.getValue());
  if (isUsed(rotation)) SoModelMatrixElement::rotateBy(state, this, rotation.getValue());
  if (isUsed(scale)) {
    const bool oriented = isUsed(scaleOrientation);
    if (oriented) SoModelMatrixElement::rotateBy(state, this, scaleOrientation.getValue());
    SoModelMatrixElement::scaleBy(state, this, scale.getValue());
    if (oriented) SoModelMatrixElement::rotateBy(state, this, scaleOrientation.getValue().inverse());
  }
  if (centered) SoModelMatrixElement::translateBy(state, this, -center.getValue());
}

// Matrices.

void VrmlTransform::getScaleSpaceMatrix(SbMatrix& mat, SbMatrix& inv) const {
  mat.makeIdentity();
  inv.makeIdentity();
  MatrixPair pair{mat, inv};
  if (isUsed(scale)) pair.step(::scale(scale.getValue()), ::scale(reciprocal(scale.getValue())));
  if (isUsed(scaleOrientation))
    pair.step(::rotation(scaleOrientation.getValue().inverse()), ::rotation(scaleOrientation.getValue()));
  if (isUsed(center)) pair.step(::translation(-center.getValue()), ::translation(center.getValue()));
}

void VrmlTransform::getRotationSpaceMatrix(SbMatrix& mat, SbMatrix& inv) const {
  mat.makeIdentity();
  inv.makeIdentity();
  MatrixPair pair{mat, inv};
  if (isUsed(rotation)) pair.step(::rotation(rotation.getValue()), ::rotation(rotation.getValue().inverse()));
  if (!isUsed(scale) && !isUsed(center)) return;
  if (isUsed(scaleOrientation))
    pair.step(::rotation(scaleOrientation.getValue()), ::rotation(scaleOrientation.getValue().inverse()));
  SbMatrix below, belowInverse;
  getScaleSpaceMatrix(below, belowInverse);
  pair.step(below, belowInverse);
}

void VrmlTransform::getTranslationSpaceMatrix(SbMatrix& mat, SbMatrix& inv) const {
  mat.makeIdentity();
  inv.makeIdentity();
  MatrixPair pair{mat, inv};
  if (isUsed(translation))
    pair.step(::translation(translation.getValue()), ::translation(-translation.getValue()));
  if (isUsed(center)) pair.step(::translation(center.getValue()), ::translation(-center.getValue()));
  SbMatrix below, belowInverse;
  getRotationSpaceMatrix(below, belowInverse);
  pair.step(below, belowInverse);
}

void VrmlTransform::getMatrix(SoGetMatrixAction* action) {
  const SoAction::PathCode code = action->getCurPathCode();
  if (code == SoAction::BELOW_PATH || code == SoAction::OFF_PATH) return;

  MatrixPair pair{action->getMatrix(), action->getInverse()};
  const bool centered = isUsed(center);
  if (isUsed(translation))
    pair.step(::translation(translation.getValue()), ::translation(-translation.getValue()));
  if (centered) pair.step(::translation(center.getValue()), ::translation(-center.getValue()));
  if (isUsed(rotation)) pair.step(::rotation(rotation.getValue()), ::rotation(rotation.getValue().inverse()));
  if (isUsed(scale)) {
    const SbRotation orientation = scaleOrientation.getValue();
    const bool oriented = isUsed(scaleOrientation);
    if (oriented) pair.step(::rotation(orientation), ::rotation(orientation.inverse()));
    pair.step(::scale(scale.getValue()), ::scale(reciprocal(scale.getValue())));
    if (oriented) pair.step(::rotation(orientation.inverse()), ::rotation(orientation));
  }
  if (centered) pair.step(::translation(-center.getValue()), ::translation(center.getValue()));

  if (code == SoAction::IN_PATH) VrmlBaseGroup::getMatrix(action);
}

// Editing.

namespace {

SbMatrix matrixOf(SoNode* node) {
  SoGetMatrixAction action(SbViewportRegion(1, 1));
  node->ref();
  action.apply(node);
  node->unrefNoDelete();
  return action.getMatrix();
}

}  // namespace

SbMatrix VrmlTransform::currentMatrix() { return matrixOf(this); }

void VrmlTransform::pointAt(const SbVec3f& from, const SbVec3f& to) {
  setToDefaults();
  translation = from;
  rotation.setValue(SbRotation(SbVec3f(0, 0, -1), to - from));
}

void VrmlTransform::multLeft(const SbMatrix& m) {
  SbMatrix product = currentMatrix();
  product.multLeft(m);
  setMatrix(product);
}

void VrmlTransform::multRight(const SbMatrix& m) {
  SbMatrix product = currentMatrix();
  product.multRight(m);
  setMatrix(product);
}

void VrmlTransform::combineLeft(SoNode* node) { multLeft(matrixOf(node)); }
void VrmlTransform::combineRight(SoNode* node) { multRight(matrixOf(node)); }

void VrmlTransform::setMatrix(const SbMatrix& m) {
  setFactored(m, center.getValue(), "VrmlTransform::setMatrix", "Can't factor given matrix");
}

void VrmlTransform::recenter(const SbVec3f& newCenter) {
  setFactored(currentMatrix(), newCenter, "VrmlTransform::recenter", "Can't factor centering matrix");
}

void VrmlTransform::setFactored(const SbMatrix& matrix, const SbVec3f& aroundCenter, const char* where,
                                const char* complaint) {
  SbMatrix m = ::translation(-aroundCenter);
  m.multLeft(matrix);
  m.multLeft(::translation(aroundCenter));
  if (const float volume = m.det3(); !(volume != 0) || !std::isfinite(volume)) {
    SoDebugError::post(where, "%s", complaint);
    return;
  }
  SbVec3f shift, scaling;
  SbRotation turn, scaleAxes;
  m.getTransform(shift, turn, scaling, scaleAxes);
  setIfDifferent(center, aroundCenter);
  setIfDifferent(translation, shift);
  setIfDifferent(rotation, turn);
  setIfDifferent(scale, scaling);
  if (scaling != SbVec3f(1, 1, 1)) setIfDifferent(scaleOrientation, scaleAxes);
}

// Traversal.

void VrmlTransform::callback(SoCallbackAction* action) {
  const tessel::StateScope scope(action->getState());
  doTransform(action);
  VrmlBaseGroup::callback(action);
}

void VrmlTransform::getBoundingBox(SoGetBoundingBoxAction* action) {
  const tessel::StateScope scope(action->getState());
  doTransform(action);
  VrmlGroup::getBoundingBox(action);
}

void VrmlTransform::rayPick(SoRayPickAction* action) {
  const tessel::StateScope scope(action->getState());
  doTransform(action);
  VrmlCullingGroup::rayPick(action);
}

void VrmlTransform::GLRenderBelowPath(SoGLRenderAction* action) {
  const tessel::StateScope scope(action->getState());
  doTransform(action);
  VrmlCullingGroup::GLRenderBelowPath(action);
}

void VrmlTransform::GLRenderInPath(SoGLRenderAction* action) {
  switch (action->getCurPathCode()) {
    case SoAction::IN_PATH: {
      const tessel::StateScope scope(action->getState());
      doTransform(action);
      VrmlBaseGroup::GLRenderInPath(action);
      break;
    }
    case SoAction::NO_PATH:
    case SoAction::BELOW_PATH:
      GLRenderBelowPath(action);
      break;
    case SoAction::OFF_PATH:
      break;
  }
}

void VrmlTransform::collisionDetect(VrmlCollideAction* action) {
  const SoAction::PathCode code = action->getCurPathCode();
  if (code == SoAction::BELOW_PATH || code == SoAction::OFF_PATH) return;
  const tessel::StateScope scope(action->getState());
  doTransform(action);
  VrmlCullingGroup::collisionDetect(action);
}

void VrmlTransform::doPreTraverse(VrmlPreTraverseAction* action) {
  if (!hasKidType(action->kidTypeMask)) return;
  const tessel::StateScope scope(action->getState());
  doTransform(action);
  VrmlBaseGroup::doAction(action);
}

template class tessel::NodeClass<VrmlTransform, VrmlGroup>;
