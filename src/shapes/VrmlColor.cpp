// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlColor.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoOverrideElement.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlColor::fields() {
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlColor::color>("color", tessel::FieldKind::exposedField, {0.8, 0.8, 0.8}),
  };
  return table;
}

VrmlColor::VrmlColor() { setUpFields(); }

VrmlColor::~VrmlColor() = default;

void VrmlColor::doAction(SoAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::color) || color.isIgnored()) return;
  if (color.getNum() == 0 || SoOverrideElement::getDiffuseColorOverride(state)) return;
  if (isOverride()) SoOverrideElement::setDiffuseColorOverride(state, this, TRUE);
  SoLazyElement::setDiffuse(state, this, color.getNum(), color.getValues(0), &colorPacker);
}

void VrmlColor::GLRender(SoGLRenderAction* action) {
  doAction(action);
  // One color is an overall material: the geometry will not send it vertex by vertex.
  if (color.getNum() == 1)
    SoGLLazyElement::getInstance(action->getState())->send(action->getState(), SoLazyElement::ALL_MASK);
}

void VrmlColor::callback(SoCallbackAction* action) { doAction(action); }

template class tessel::NodeClass<VrmlColor, VrmlNode>;
