// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/elements/SoInt32Element.h>

namespace tessel {

/// Tells the branches of a world apart that are drawn under different state: a node that changes more than the
/// matrix for what follows it (a directional light, a highlight) begins a scope, which ends with the state.
///
/// Transparent shapes of one scope can be drawn one after the other without a traversal between them.
class DrawScopeElement : public SoInt32Element {
  typedef SoInt32Element inherited;
  SO_ELEMENT_HEADER(DrawScopeElement);

public:
  static void initClass();

  static void begin(SoState* state, SoNode* node);
  /// A scope that no other has, for a branch that is drawn out of a display list.
  static int unused();
  static int get(SoState* state) { return inherited::get(classStackIndex, state); }

  /// A display list does not depend on the scope in which it was made.
  SbBool matches(const SoElement* element) const override;

protected:
  ~DrawScopeElement() override;
};

}  // namespace tessel
