// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/toolkit/VrmlContainerElement.h>

#include <utility>

#include <Inventor/actions/SoActions.h>

SO_ELEMENT_SOURCE(VrmlContainerElement);

namespace {

int defaultBits = 0;
constexpr int lowHalf = 0xFFFF;

}  // namespace

void VrmlContainerElement::initClass() {
  SO_ELEMENT_INIT_CLASS(VrmlContainerElement, SoInt32Element);
  SO_ENABLE(SoGLRenderAction, VrmlContainerElement);
  SO_ENABLE(SoCallbackAction, VrmlContainerElement);
  SO_ENABLE(SoHandleEventAction, VrmlContainerElement);
  SO_ENABLE(SoGetBoundingBoxAction, VrmlContainerElement);
  SO_ENABLE(SoGetMatrixAction, VrmlContainerElement);
  SO_ENABLE(SoPickAction, VrmlContainerElement);
  SO_ENABLE(SoSearchAction, VrmlContainerElement);
}

VrmlContainerElement::~VrmlContainerElement() = default;

void VrmlContainerElement::init(SoState* state) {
  inherited::init(state);
  data = defaultBits;
}

int VrmlContainerElement::get(SoState* state) { return inherited::get(classStackIndex, state); }

void VrmlContainerElement::set(SoState* state, SoNode* node, int bits) {
  inherited::set(classStackIndex, state, node, bits);
}

int VrmlContainerElement::enter(SoState* state, SoNode* node, int lowBits) {
  const int before = get(state);
  set(state, node, (before & ~lowHalf) | (lowBits & lowHalf));
  return before;
}

int VrmlContainerElement::setDefault(int bits) { return std::exchange(defaultBits, bits); }
