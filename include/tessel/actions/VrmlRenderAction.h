// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <memory>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoSubAction.h>

class VrmlShape;

namespace tessel {
class DelayedShapes;
}

/// Draws a frame of a VRML world: the toolkit's render action with transparency of its own.
///
/// With a transparency type that delays, a transparent shape is recorded when the traversal meets it, with its
/// matrix and its depth: the eye-space z of the farthest point of its box. Behind all opaque shapes of a pass
/// the recorded ones are drawn, each once, without writing depth: in the order in which they were met, or from
/// far to near with a sorted type, where equal depths keep that order and an empty box comes last. Sorting
/// needs no second traversal, and shapes that stand under the same lights are drawn by one.
///
/// Shapes of the toolkit keep its own ways and are drawn after these.
class TESSEL_API VrmlRenderAction : public SoGLRenderAction {
  typedef SoGLRenderAction inherited;
  SO_ACTION_HEADER(VrmlRenderAction);

public:
  explicit VrmlRenderAction(const SbViewportRegion& region);
  ~VrmlRenderAction() override;
  static void initClass();

  /// Whether the shape of the current path must not be drawn now, since it has been delayed. Sets up blending
  /// if it is to be drawn. FALSE as argument: the state tells whether it is transparent.
  SbBool handleTransparency(SbBool isTransparent = FALSE);

  // The same for any render action; one of the toolkit's own does as it would with its own shapes.
  static bool mustDelay(SoGLRenderAction* action, bool isTransparent);
  /// Whether an action draws what was delayed, so that nothing may be delayed again.
  static bool isDrawingDelayed(const SoGLRenderAction* action);
  /// Whether what is drawn with this state is transparent, by its material or its texture.
  static bool isStateTransparent(SoState* state);

  /// For a shape that is met while delayed ones are drawn: draws those that stand in its place, itself among
  /// them, and gives true. False: it has only to draw itself.
  static bool drawDelayedHere(SoGLRenderAction* action);
  /// The list of delayed shapes, of the library's own use; null for an action of the toolkit.
  static tessel::DelayedShapes* delayedShapesOf(SoGLRenderAction* action);

protected:
  void beginTraversal(SoNode* node) override;

private:
  void drawDelayed();

  std::unique_ptr<tessel::DelayedShapes> delayed;
  int level = 0;  // depth of nested traversals: 1 the frame, 2 a pass
  bool drawingDelayed = false;
};
