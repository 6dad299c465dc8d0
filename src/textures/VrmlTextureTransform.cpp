// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlTextureTransform.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetMatrixAction.h>
#include <Inventor/actions/SoPickAction.h>
#include <Inventor/elements/SoGLMultiTextureMatrixElement.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlTextureTransform::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlTextureTransform::translation>("translation", FieldKind::exposedField, {0, 0}),
      fieldSpec<&VrmlTextureTransform::rotation>("rotation", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlTextureTransform::scale>("scale", FieldKind::exposedField, {1, 1}),
      fieldSpec<&VrmlTextureTransform::center>("center", FieldKind::exposedField, {0, 0}),
  };
  return table;
}

VrmlTextureTransform::VrmlTextureTransform() { setUpFields(); }

VrmlTextureTransform::~VrmlTextureTransform() = default;

void VrmlTextureTransform::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoCallbackAction, SoMultiTextureMatrixElement);
  SO_ENABLE(SoPickAction, SoMultiTextureMatrixElement);
  SO_ENABLE(SoGLRenderAction, SoGLMultiTextureMatrixElement);
}

namespace {

bool isGiven(const SoField& field) { return !field.isIgnored() && !field.isDefault(); }

/// Tells the steps of a transform to `out`, the outermost first.
template <class Out> void tellSteps(const VrmlTextureTransform& node, Out& out) {
  const bool useCenter = isGiven(node.center);
  const SbVec2f center = node.center.getValue();
  if (isGiven(node.translation)) {
    const SbVec2f by = node.translation.getValue();
    out.translate(SbVec3f(by[0], by[1], 0));
  }
  if (useCenter) out.translate(SbVec3f(center[0], center[1], 0));
  if (isGiven(node.rotation)) out.rotate(SbRotation(SbVec3f(0, 0, 1), node.rotation.getValue()));
  if (isGiven(node.scale)) {
    const SbVec2f by = node.scale.getValue();
    out.scale(SbVec3f(by[0], by[1], 1));
  }
  if (useCenter) out.translate(SbVec3f(-center[0], -center[1], 0));
}

/// A matrix and its inverse that steps go into.
struct MatrixSteps {
  SbMatrix& matrix;
  SbMatrix& inverse;

  void translate(const SbVec3f& by) {
    add([&](SbMatrix& m) { m.setTranslate(by); }, [&](SbMatrix& m) { m.setTranslate(-by); });
  }
  void rotate(const SbRotation& by) {
    add([&](SbMatrix& m) { m.setRotate(by); }, [&](SbMatrix& m) { m.setRotate(by.inverse()); });
  }
  void scale(const SbVec3f& by) {
    add([&](SbMatrix& m) { m.setScale(by); },
        [&](SbMatrix& m) { m.setScale(SbVec3f(1 / by[0], 1 / by[1], 1)); });
  }

private:
  template <class Set, class SetInverse> void add(Set set, SetInverse setInverse) {
    SbMatrix step;
    set(step);
    matrix.multLeft(step);
    setInverse(step);
    inverse.multRight(step);
  }
};

}  // namespace

void VrmlTextureTransform::doAction(SoAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::appearance)) return;
  SbMatrix matrix = SbMatrix::identity(), inverse = matrix;
  MatrixSteps steps{matrix, inverse};
  tellSteps(*this, steps);
  if (matrix != SbMatrix::identity()) SoMultiTextureMatrixElement::mult(state, this, 0, matrix);
}

void VrmlTextureTransform::GLRender(SoGLRenderAction* action) { doAction(action); }
void VrmlTextureTransform::callback(SoCallbackAction* action) { doAction(action); }
void VrmlTextureTransform::pick(SoPickAction* action) { doAction(action); }

void VrmlTextureTransform::getMatrix(SoGetMatrixAction* action) {
  MatrixSteps steps{action->getTextureMatrix(), action->getTextureInverse()};
  tellSteps(*this, steps);
}

template class tessel::NodeClass<VrmlTextureTransform, VrmlNode>;
