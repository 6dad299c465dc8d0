// SPDX-License-Identifier: BSD-3-Clause
#include "support/Drawing.h"

#include <Inventor/SbViewportRegion.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/system/gl.h>

#include <tessel/shapes/VrmlLight.h>

#include "support/TestWorld.h"

namespace tessel::test {

namespace {

/// One for the program: a context of its own for each test costs more than the test.
host::OffscreenContext& context() {
  static const std::unique_ptr<host::OffscreenContext> shared = openContext(Drawing::size, Drawing::size);
  return *shared;
}

constexpr float reach = 2;  // half of what the picture spans

}  // namespace

Drawing::Drawing(SoNode* drawn)
    : root(new SoSeparator),
      camera(new SoOrthographicCamera),
      action(SbViewportRegion(size, size)),
      world(drawn) {
  camera->position.setValue(0, 0, 10);
  camera->nearDistance = 1;
  camera->farDistance = 100;
  camera->height = 2 * reach;
  auto* lights = new SoCallback;
  lights->setCallback(drawLightsCB, this);
  root->addChild(camera);
  root->addChild(lights);
  root->addChild(drawn);
  root->renderCaching = SoSeparator::OFF;
  action.setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
  context().makeCurrent();
}

Drawing::~Drawing() = default;

void Drawing::drawLightsCB(void* self, SoAction* action) {
  if (!action->isOfType(SoGLRenderAction::getClassTypeId())) return;
  for (const auto& light : static_cast<Drawing*>(self)->preTraverse.getLights()) {
    light->setRenderEnabled(1);
    light->GLRender(static_cast<SoGLRenderAction*>(action));
    light->setRenderEnabled(0);
  }
}

const host::Image& Drawing::frame(int count) {
  context().makeCurrent();
  for (int i = 0; i < count; ++i) {
    preTraverse.apply(world.get());
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    action.apply(root.get());
  }
  glFinish();
  last = context().picture();
  return last;
}

Colour Drawing::at(float x, float y) const {
  const auto pixelOf = [](float v) { return static_cast<int>((v + reach) / (2 * reach) * size); };
  return pixel(last, pixelOf(x), pixelOf(y));
}

}  // namespace tessel::test
