// SPDX-License-Identifier: BSD-3-Clause
#include "actions/DrawScopeElement.h"

#include <Inventor/actions/SoGLRenderAction.h>

namespace tessel {

SO_ELEMENT_SOURCE(DrawScopeElement);

void DrawScopeElement::initClass() {
  SO_ELEMENT_INIT_CLASS(DrawScopeElement, SoInt32Element);
  SO_ENABLE(SoGLRenderAction, DrawScopeElement);
}

DrawScopeElement::~DrawScopeElement() = default;

void DrawScopeElement::begin(SoState* state, SoNode* node) { set(classStackIndex, state, node, unused()); }

int DrawScopeElement::unused() {
  static int last = 0;
  return ++last;
}

SbBool DrawScopeElement::matches(const SoElement*) const { return TRUE; }

}  // namespace tessel
