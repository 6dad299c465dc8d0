// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlTextureCoordinate.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoPickAction.h>
#include <Inventor/elements/SoGLMultiTextureCoordinateElement.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlTextureCoordinate::fields() {
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlTextureCoordinate::point>("point", tessel::FieldKind::exposedField),
  };
  return table;
}

void VrmlTextureCoordinate::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoCallbackAction, SoMultiTextureCoordinateElement);
  SO_ENABLE(SoPickAction, SoMultiTextureCoordinateElement);
  SO_ENABLE(SoGLRenderAction, SoGLMultiTextureCoordinateElement);
}

VrmlTextureCoordinate::VrmlTextureCoordinate() { setUpFields(); }

VrmlTextureCoordinate::~VrmlTextureCoordinate() = default;

void VrmlTextureCoordinate::doAction(SoAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::texCoord) || point.isIgnored()) return;
  if (point.getNum() > 0)
    SoMultiTextureCoordinateElement::set2(state, this, 0, point.getNum(), point.getValues(0));
}

void VrmlTextureCoordinate::GLRender(SoGLRenderAction* action) {
  SoGLMultiTextureCoordinateElement::setTexGen(action->getState(), this, 0, nullptr);
  doAction(action);
}

void VrmlTextureCoordinate::callback(SoCallbackAction* action) { doAction(action); }
void VrmlTextureCoordinate::pick(SoPickAction* action) { doAction(action); }

template class tessel::NodeClass<VrmlTextureCoordinate, VrmlNode>;
