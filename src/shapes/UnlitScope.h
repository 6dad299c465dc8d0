// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLTextureEnabledElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "shapes/VrmlVertexPropertyCache.h"

namespace tessel {

/// A scope in which a geometry without a surface draws: without light and texture, its coordinates and colors
/// let in, the state as it was at the end.
class [[nodiscard]] UnlitScope {
public:
  UnlitScope(SoState* s, SoNode* node) : state(s) {
    state->push();
    VrmlContainerElement::enter(state, node, VrmlContainerElement::coordinate | VrmlContainerElement::color);
    SoLazyElement::setLightModel(state, SoLazyElement::BASE_COLOR);
    SoGLTextureEnabledElement::set(state, node, FALSE);
  }
  ~UnlitScope() {
    // The draw loops send colors behind the back of the state.
    if (sentColors) SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK);
    state->pop();
  }
  UnlitScope(const UnlitScope&) = delete;
  UnlitScope& operator=(const UnlitScope&) = delete;

  /// Sends the state, and the first of the node's own colors if it has any.
  void send(const VrmlVertexPropertyCache& properties) {
    SoGLLazyElement::getInstance(state)->send(state, SoLazyElement::ALL_MASK);
    if (!properties.colorIsInVP) return;
    sentColors = true;
    const SbColor& first = *static_cast<const SbColor*>(properties.colorPtr);
    SoGLLazyElement::sendPackedDiffuse(state, first.getPackedValue(0));
  }

private:
  SoState* state;
  bool sentColors = false;
};

}  // namespace tessel
