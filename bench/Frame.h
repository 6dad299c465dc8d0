// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdlib>
#include <memory>
#include <string>

#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/system/gl.h>

#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/actions/VrmlRenderAction.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/SoRef.h>

#include "host/gl/OffscreenContext.h"

/// A context, a camera that sees all of a world, and the action that draws it.
class Frame {
public:
  static constexpr int width = 256, height = 256;

  /// @param text    a world without its header
  /// @param frames  drawn at once, so that every display list stands
  explicit Frame(const std::string& text, int frames = 32)
      : root(new SoSeparator), action(SbViewportRegion(width, height)) {
    context().makeCurrent();
    tessel::ReadStatus status;
    world.reset(
        VrmlDB::read(text.starts_with("#VRML") ? text : "#VRML V2.0 utf8\n" + text, "bench.wrl", status));
    if (!world) std::abort();
    camera = new SoPerspectiveCamera;
    root->addChild(camera);
    root->addChild(world.get());
    root->renderCaching = SoSeparator::OFF;
    camera->viewAll(world.get(), action.getViewportRegion(), 1);
    action.setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
    for (int i = 0; i < frames; ++i) draw();
  }

  void draw() {
    clear();
    preTraverse.apply(world.get());
    action.apply(root.get());
    glFinish();
  }

  /// Gives GL the camera.
  void loadMatrices() const {
    SbMatrix viewing, projection;
    camera->getViewVolume(float(width) / height).getMatrices(viewing, projection);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(projection[0]);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(viewing[0]);
  }

  static void clear() {
    context().makeCurrent();
    glEnable(GL_DEPTH_TEST);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  }

  SoNode* getWorld() const { return world.get(); }
  const SoPerspectiveCamera* getCamera() const { return camera; }

private:
  static tessel::host::OffscreenContext& context() {
    static std::string failure;
    static const auto shared = tessel::host::OffscreenContext::create(width, height, failure);
    return *shared;
  }

  tessel::SoRef<SoSeparator> root;
  tessel::SoRef<SoNode> world;
  SoPerspectiveCamera* camera;
  VrmlRenderAction action;
  VrmlPreTraverseAction preTraverse;
};
