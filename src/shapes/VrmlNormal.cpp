// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlNormal.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoPickAction.h>
#include <Inventor/elements/SoGLNormalElement.h>
#include <Inventor/elements/SoNormalElement.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlNormal::fields() {
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlNormal::vector>("vector", tessel::FieldKind::exposedField),
  };
  return table;
}

void VrmlNormal::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoCallbackAction, SoNormalElement);
  SO_ENABLE(SoPickAction, SoNormalElement);
  SO_ENABLE(SoGLRenderAction, SoGLNormalElement);
}

VrmlNormal::VrmlNormal() { setUpFields(); }

VrmlNormal::~VrmlNormal() = default;

void VrmlNormal::doAction(SoAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::normal) || vector.isIgnored()) return;
  SoNormalElement::set(state, this, vector.getNum(), vector.getValues(0));
}

void VrmlNormal::GLRender(SoGLRenderAction* action) { doAction(action); }
void VrmlNormal::callback(SoCallbackAction* action) { doAction(action); }
void VrmlNormal::pick(SoPickAction* action) { doAction(action); }

template class tessel::NodeClass<VrmlNormal, VrmlNode>;
