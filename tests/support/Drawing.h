// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>

#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/actions/VrmlRenderAction.h>
#include <tessel/toolkit/SoRef.h>

#include "support/Picture.h"

namespace tessel::test {

/// Draws a world without a scene manager: black ground, an orthographic camera that looks down the z axis from
/// z = 10 at x and y from -2 to 2, and the point and spot lights of the world. No headlight.
class Drawing {
public:
  static constexpr int size = 64;  ///< pixels a side

  explicit Drawing(SoNode* world);
  ~Drawing();

  /// Draws so many frames and looks at the last.
  const host::Image& frame(int count = 1);
  /// The pixel of the last frame at a point of the world.
  Colour at(float x, float y) const;

  SoRef<SoSeparator> root;
  SoOrthographicCamera* camera;
  VrmlPreTraverseAction preTraverse;
  VrmlRenderAction action;

private:
  static void drawLightsCB(void* self, SoAction* action);

  SoRef<SoNode> world;
  host::Image last;
};

}  // namespace tessel::test
