// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <Inventor/SoDB.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/fields/SoSFTime.h>
#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoTranslation.h>
#include <Inventor/sensors/SoSensorManager.h>

#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/frame/VrmlBackground.h>
#include <tessel/toolkit/Scoped.h>

#include "frame/Stage.h"
#include "support/Picture.h"

using namespace tessel;
using namespace tessel::test;

namespace {

constexpr Colour red{255, 0, 0}, green{0, 255, 0}, blue{0, 0, 255}, black{0, 0, 0};
constexpr int size = 64;

void tick() {
  auto* clock = static_cast<SoSFTime*>(SoDB::getGlobalField("realTime"));
  clock->setValue(clock->getValue() + SbTime(0.25));
  SoDB::getSensorManager()->processDelayQueue(TRUE);
}

// A toolkit scene of one unlit square, `x` across, as wide as the picture is 4.
SoRef<SoSeparator> square(const SbColor& color, float x) {
  SoRef<SoSeparator> scene(new SoSeparator);
  auto* camera = new SoOrthographicCamera;
  camera->height.setValue(4);
  auto* place = new SoTranslation;
  place->translation.setValue(x, 0, 0);
  auto* paint = new SoBaseColor;
  paint->rgb.setValue(color);
  auto* light = new SoLightModel;
  light->model.setValue(SoLightModel::BASE_COLOR);
  auto* cube = new SoCube;
  cube->width.setValue(1);
  cube->height.setValue(1);
  cube->depth.setValue(1);
  for (SoNode* node : std::initializer_list<SoNode*>{camera, light, paint, place, cube})
    scene->addChild(node);
  return scene;
}

// Counts the visits of the traversal before rendering, as a sound or light would get them.
class Probe : public VrmlGroup {
public:
  explicit Probe(std::uint32_t kind) { kidType = kind; }
  std::uint32_t getKidType() override { return kidType; }
  void doPreTraverse(VrmlPreTraverseAction* action) override {
    if (hasKidType(action->kidTypeMask)) ++visits;
    silenced = action->silence;
  }
  int takeVisits() { return std::exchange(visits, 0); }
  int silenced = 0;

private:
  int visits = 0;
};

class RedrawCount {
public:
  explicit RedrawCount(VrmlSceneManager& manager) {
    manager.setRenderCallback([](void* data, SoSceneManager*) { ++*static_cast<int*>(data); }, &count);
  }
  int take() {
    SoDB::getSensorManager()->processDelayQueue(TRUE);
    return std::exchange(count, 0);
  }

private:
  int count = 0;
};

}  // namespace

TEST(Frame, IsAskedForByChangesAloneAndOnceForAllOfThem) {
  Stage stage("DEF T Transform { children DEF A Viewpoint {} } DEF F Fog {}");
  RedrawCount redraws(stage.manager);
  stage.manager.scheduleRedraw();
  EXPECT_EQ(redraws.take(), 1);
  for (int i = 0; i < 10; ++i) tick();
  EXPECT_EQ(redraws.take(), 0);
  EXPECT_FALSE(stage.manager.isRedrawScheduled());

  for (int i = 0; i < 10; ++i) stage.get<VrmlTransform>("T")->translation.setValue(float(i), 0, 0);
  stage.camera->position.setValue(0, 0, 3);
  EXPECT_TRUE(stage.manager.isRedrawScheduled());
  EXPECT_EQ(redraws.take(), 1);

  stage.manager.deactivate();
  stage.get<VrmlTransform>("T")->translation.setValue(1, 1, 1);
  EXPECT_EQ(redraws.take(), 0);
}

TEST(Frame, OneClockServesSeveralManagers) {
  const Stage one("Group {}");
  const Stage other("Group {}");
  const SbTime before = VrmlDB::getFrameTime();
  tick();
  tick();
  EXPECT_DOUBLE_EQ((VrmlDB::getFrameTime() - VrmlDB::getPrevFrameTime()).getValue(), 0.25);
  EXPECT_GT(VrmlDB::getFrameTime(), before);
}

TEST(Frame, SoundsAreLookedAfterBetweenTheFrames) {
  Stage stage("DEF G Group {}");
  const SoRef<Probe> sound(new Probe(KidType::sound)), light(new Probe(KidType::spatialLight));
  RedrawCount redraws(stage.manager);
  stage.get<VrmlGroup>("G")->addChild(sound.get());
  stage.get<VrmlGroup>("G")->addChild(light.get());
  redraws.take();
  light->takeVisits();
  sound->takeVisits();
  tick();
  EXPECT_EQ(sound->takeVisits(), 1);
  EXPECT_EQ(light->takeVisits(), 0);

  stage.manager.scheduleRedraw();  // at a redraw's priority, so behind the tick: the frame will see to it
  tick();
  EXPECT_EQ(sound->takeVisits(), 0);

  stage.manager.setMute(1);
  EXPECT_EQ(sound->takeVisits(), 1);
  EXPECT_EQ(sound->silenced, 1);
  tick();
  EXPECT_EQ(sound->takeVisits(), 0);
  stage.manager.setMute(0);
  tick();
  EXPECT_EQ(sound->takeVisits(), 1);
  EXPECT_EQ(sound->silenced, 0);
}

TEST(FrameGL, ABackgroundClearsTheWindowUnlessTheHostSwitchesItOff) {
  const auto context = openContext(size, size);
  Stage stage("DEF A Background { skyColor 0 0 1 } DEF B Background { skyColor 1 0 0 }");
  stage.manager.setViewportRegion(SbViewportRegion(size, size));
  stage.manager.setBackgroundColor(SbColor(0, 1, 0));
  stage.manager.render();
  EXPECT_EQ(pixel(context->picture(), 1, 1), blue);
  stage.bind("B");
  stage.manager.render();
  EXPECT_EQ(pixel(context->picture(), 1, 1), red);
  {
    const ScopedValue<int> off(VrmlBackground::enabled, 0);
    stage.manager.render();
    EXPECT_EQ(pixel(context->picture(), 1, 1), green);
  }
  stage.bind("A");
  stage.manager.render(FALSE, TRUE);
  EXPECT_EQ(pixel(context->picture(), 1, 1), green) << "the host keeps its picture";
}

TEST(FrameGL, ABackgroundTurnsWithItsTransformsAndIgnoresTheirScale) {
  const auto context = openContext(size, size);
  const Stage stage("DEF T Transform { scale 1 3 0.5 children Group { children DEF A Background {} } }");
  auto* background = stage.get<VrmlBackground>("A");
  auto& manager = const_cast<VrmlSceneManager&>(stage.manager);
  manager.setViewportRegion(SbViewportRegion(size, size));
  manager.render();
  EXPECT_TRUE(background->getRotationMatrix().equals(SbMatrix::identity(), 1e-6F));
  const SbRotation turn(SbVec3f(0, 0, 1), 0.5F);
  stage.get<VrmlTransform>("T")->rotation.setValue(turn);
  manager.render();
  SbMatrix expected;
  expected.setRotate(turn);
  EXPECT_TRUE(background->getRotationMatrix().equals(expected, 1e-5F));
}

TEST(FrameGL, ASecondCameraLeavesThePictureOfTheFirst) {
  const auto context = openContext(size, size);
  startLibrary();
  VrmlSceneManager manager;
  manager.setViewportRegion(SbViewportRegion(size, size));
  const SoRef<SoSeparator> both(new SoSeparator);
  both->addChild(square(SbColor(1, 0, 0), -1).get());
  both->addChild(square(SbColor(0, 1, 0), 1).get());
  manager.setSceneGraph(both.get());
  manager.render();
  EXPECT_EQ(pixel(context->picture(), size / 4, size / 2), red);
  EXPECT_EQ(pixel(context->picture(), 3 * size / 4, size / 2), green);
  EXPECT_EQ(pixel(context->picture(), size / 2, 2), black);
}

TEST(FrameGL, PointLightsShineOnWhatStandsBeforeThemAlsoInAMutedWorld) {
  const auto context = openContext(size, size);
  Stage stage(R"(Shape { appearance Appearance { material Material { diffuseColor 1 1 1 } } geometry Box {} }
                 Transform { translation 0 0 5 children DEF L PointLight { location 0 0 0 color 1 0 0 } })");
  ASSERT_EQ(stage.world.status, ReadStatus::world) << stage.world.messages.text();
  stage.camera->position.setValue(0, 0, 5);
  stage.manager.setViewportRegion(SbViewportRegion(size, size));
  for (const int muted : {0, 1, 0}) {
    stage.manager.setMute(muted);
    stage.manager.render();
    const Colour middle = pixel(context->picture(), size / 2, size / 2);
    EXPECT_GT(middle.r, 200);
    EXPECT_LT(middle.g, 60);
  }
}

TEST(FrameGL, ManagersAndAPlainSceneShareAProcessInPeace) {
  const auto first = openContext(size, size);
  startLibrary();
  VrmlSceneManager left, right;
  SoSceneManager plain;
  left.setSceneGraph(square(SbColor(1, 0, 0), -1).get());
  right.setSceneGraph(square(SbColor(0, 1, 0), 1).get());
  plain.setSceneGraph(square(SbColor(0, 0, 1), 0).get());
  EXPECT_NE(left.getGLRenderAction()->getCacheContext(), right.getGLRenderAction()->getCacheContext());
  for (SoSceneManager* manager : std::initializer_list<SoSceneManager*>{&left, &right, &plain})
    manager->setViewportRegion(SbViewportRegion(size, size));

  const auto second = openContext(size, size);
  for (int frame = 0; frame < 4; ++frame) {
    first->makeCurrent();
    left.render();
    EXPECT_EQ(pixel(first->picture(), size / 4, size / 2), red);
    plain.render();  // draws into the same context, over the other's picture
    EXPECT_EQ(pixel(first->picture(), size / 4, size / 2), black);
    EXPECT_EQ(pixel(first->picture(), size / 2, size / 2), blue);
    second->makeCurrent();
    right.render();
    EXPECT_EQ(pixel(second->picture(), 3 * size / 4, size / 2), green);
    EXPECT_EQ(VrmlSceneManager::getActiveSceneManager(), nullptr);
  }
}

TEST(FrameGL, TheWallClockGoesOnBehindAFrameWithoutAskingForAnother) {
  const auto context = openContext(size, size);
  Stage stage("DEF A Viewpoint {}");
  stage.manager.setViewportRegion(SbViewportRegion(size, size));
  stage.manager.render();
  RedrawCount redraws(stage.manager);
  redraws.take();
  stage.manager.render();
  auto* clock = static_cast<SoSFTime*>(SoDB::getGlobalField("realTime"));
  clock->setValue(SbTime::zero());
  SoDB::getSensorManager()->processTimerQueue();
  EXPECT_GT(clock->getValue().getValue(), 1e9);
  EXPECT_EQ(redraws.take(), 0);
}
