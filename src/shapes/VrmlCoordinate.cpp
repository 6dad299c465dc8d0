// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlCoordinate.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoPickAction.h>
#include <Inventor/elements/SoCoordinateElement.h>
#include <Inventor/elements/SoGLCoordinateElement.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlCoordinate::fields() {
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlCoordinate::point>("point", tessel::FieldKind::exposedField, {0, 0, 0}),
  };
  return table;
}

void VrmlCoordinate::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoCallbackAction, SoCoordinateElement);
  SO_ENABLE(SoGetBoundingBoxAction, SoCoordinateElement);
  SO_ENABLE(SoPickAction, SoCoordinateElement);
  SO_ENABLE(SoGLRenderAction, SoGLCoordinateElement);
}

VrmlCoordinate::VrmlCoordinate() { setUpFields(); }

VrmlCoordinate::~VrmlCoordinate() = default;

void VrmlCoordinate::doAction(SoAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::coordinate) || point.isIgnored()) return;
  if (point.getNum() > 0) SoCoordinateElement::set3(state, this, point.getNum(), point.getValues(0));
}

void VrmlCoordinate::GLRender(SoGLRenderAction* action) { doAction(action); }
void VrmlCoordinate::callback(SoCallbackAction* action) { doAction(action); }
void VrmlCoordinate::pick(SoPickAction* action) { doAction(action); }
void VrmlCoordinate::getBoundingBox(SoGetBoundingBoxAction* action) { doAction(action); }
void VrmlCoordinate::collisionDetect(VrmlCollideAction* action) { doAction(action); }

template class tessel::NodeClass<VrmlCoordinate, VrmlNode>;
