// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoSubAction.h>

/// Draws a frame of a VRML world: the toolkit's render action, with the depth of a delayed transparent shape
/// recorded when the shape is met, so that sorting needs no second traversal from the root.
class TESSEL_API VrmlRenderAction : public SoGLRenderAction {
  typedef SoGLRenderAction inherited;
  SO_ACTION_HEADER(VrmlRenderAction);

public:
  explicit VrmlRenderAction(const SbViewportRegion& region);
  ~VrmlRenderAction() override;
  static void initClass();

  /// Whether an action has to draw what was delayed, so that nothing may be delayed again.
  static bool isDrawingDelayed(const SoGLRenderAction* action);

protected:
  void beginTraversal(SoNode* node) override;
};
