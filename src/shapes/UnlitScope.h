// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLTextureEnabledElement.h>
#include <Inventor/elements/SoOverrideElement.h>
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

  /// Sends the state, and the color to begin with: the first of the node's own; else the one that the material emits,
  /// if it emits any.
  void send(const VrmlVertexPropertyCache& properties) {
    SoGLLazyElement::getInstance(state)->send(state, SoLazyElement::ALL_MASK);
    if (properties.colorIsInVP) {
      sendColor(static_cast<const SbColor*>(properties.colorPtr)->getPackedValue(0));
    } else if (!SoOverrideElement::getDiffuseColorOverride(state)) {
      const SbColor& emitted = SoLazyElement::getEmissive(state);
      if (emitted != SbColor(0, 0, 0))
        sendColor(emitted.getPackedValue(SoLazyElement::getTransparency(state, 0)));
    }
  }

private:
  void sendColor(std::uint32_t packed) {
    sentColors = true;
    SoGLLazyElement::sendPackedDiffuse(state, packed);
  }

  SoState* state;
  bool sentColors = false;
};

}  // namespace tessel
