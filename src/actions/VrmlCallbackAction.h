// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SoType.h>
#include <Inventor/actions/SoCallbackAction.h>

/// A view on a callback action of the toolkit: its primitive callbacks for geometry that is no SoShape.
/// A callback is called if it was registered for a type that the geometry's type is derived from.
class VrmlCallbackAction {
public:
  explicit VrmlCallbackAction(SoCallbackAction* viewed) : action(viewed) {}

  /// Whether a callback for triangles, lines or points waits for that type.
  bool shouldGeneratePrimitives(SoType type) const;
  void invokeTriangleCallbacks(SoType type, const SoPrimitiveVertex* v1, const SoPrimitiveVertex* v2,
                               const SoPrimitiveVertex* v3) const;
  void invokeLineSegmentCallbacks(SoType type, const SoPrimitiveVertex* v1,
                                  const SoPrimitiveVertex* v2) const;
  void invokePointCallbacks(SoType type, const SoPrimitiveVertex* v) const;

private:
  SoCallbackAction* action;
};
