// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cmath>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbViewVolume.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/frame/VrmlNavigationInfo.h>
#include <tessel/pointing/VrmlPlaneSensor.h>

#include "frame/Stage.h"

using namespace tessel;
using namespace tessel::test;

namespace {

testing::AssertionResult same(const SbVec3f& a, const SbVec3f& b) {
  if (a.equals(b, 1e-8F)) return testing::AssertionSuccess();
  return testing::AssertionFailure() << a[0] << ' ' << a[1] << ' ' << a[2] << " is not " << b[0] << ' '
                                     << b[1] << ' ' << b[2];
}

std::vector<int> modesOf(const std::vector<Stage::CameraCall>& calls) {
  std::vector<int> modes;
  for (const auto& call : calls) modes.push_back(call.mode);
  return modes;
}

using Modes = std::vector<int>;

}  // namespace

TEST(Viewpoint, TheHostIsToldHowToMoveTheCamera) {
  Stage stage(R"(Transform { translation 1 2 3 children DEF A Viewpoint {} }
                 DEF B Viewpoint { jump FALSE } DEF C Viewpoint {})");
  auto calls = stage.takeCameraCalls();
  ASSERT_FALSE(calls.empty());
  EXPECT_EQ(calls.back().mode, VrmlViewpointManager::jumpThere);
  EXPECT_EQ(calls.back().viewpoint, stage.get<VrmlViewpoint>("A"));
  EXPECT_TRUE(same(calls.back().origin, SbVec3f(1, 2, 3)));

  stage.bind("B");
  EXPECT_EQ(modesOf(stage.takeCameraCalls()), Modes{VrmlViewpointManager::keepPlace});
  stage.bind("C");
  EXPECT_EQ(modesOf(stage.takeCameraCalls()), Modes{VrmlViewpointManager::jumpThere});
  // What comes up moves the viewer as the one that goes says.
  stage.bind("C", false);
  EXPECT_EQ(modesOf(stage.takeCameraCalls()), Modes{VrmlViewpointManager::jumpThere});
  stage.bind("B", false);
  EXPECT_EQ(modesOf(stage.takeCameraCalls()), Modes{VrmlViewpointManager::keepPlace});
}

TEST(Viewpoint, AJumpOfTheUserIsAJumpWhateverTheNodeSays) {
  Stage stage("DEF A Viewpoint {} DEF B Viewpoint { jump FALSE }");
  stage.takeCameraCalls();
  auto* b = stage.get<VrmlViewpoint>("B");
  EXPECT_EQ(stage.manager.getViewpointManager()->jumpToViewpoint(b), 1);
  EXPECT_EQ(modesOf(stage.takeCameraCalls()), Modes{VrmlViewpointManager::jumpThere});
  EXPECT_FALSE(b->jump.getValue());
  const SoRef<VrmlViewpoint> stranger(new VrmlViewpoint);
  EXPECT_EQ(stage.manager.getViewpointManager()->jumpToViewpoint(stranger.get()), 0);
}

TEST(Viewpoint, AnEventThatPutsItElsewhereInItsGroupMovesNobody) {
  Stage stage(
      "DEF G Group { children [ DEF T Transform { translation 1 2 3 children DEF A Viewpoint {} } "
      "DEF B Group {} ] }");
  stage.takeCameraCalls();
  SoNode* const turned[] = {stage.get<VrmlNode>("B"), stage.get<VrmlNode>("T")};
  stage.get<VrmlGroup>("G")->children.setChildren(turned);
  EXPECT_TRUE(stage.takeCameraCalls().empty());
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "A");
  stage.get<VrmlTransform>("T")->translation.setValue(4, 5, 6);
  const auto calls = stage.takeCameraCalls();
  ASSERT_EQ(modesOf(calls), Modes{VrmlViewpointManager::moved});
  EXPECT_TRUE(same(calls.back().origin, SbVec3f(4, 5, 6)));
}

TEST(Viewpoint, AMovingTransformAboveCarriesTheViewer) {
  Stage stage(R"(DEF OUTER Transform { children Transform { translation 0 1 0 children DEF A Viewpoint {} } }
                 DEF OTHER Transform {}
                 DEF P PlaneSensor {} ROUTE P.translation_changed TO OUTER.set_translation)");
  ASSERT_EQ(stage.world.status, ReadStatus::world) << stage.world.messages.text();
  stage.takeCameraCalls();
  stage.get<VrmlTransform>("OTHER")->translation.setValue(9, 9, 9);
  EXPECT_TRUE(stage.takeCameraCalls().empty());

  stage.get<VrmlTransform>("OUTER")->translation.setValue(5, 0, 0);
  stage.get<VrmlPlaneSensor>("P")->translation_changed.setValue(6, 0, 0);
  stage.get<VrmlViewpoint>("A")->position.setValue(0, 0, 1);
  const auto calls = stage.takeCameraCalls();
  ASSERT_EQ(modesOf(calls), Modes(3, VrmlViewpointManager::moved));
  EXPECT_TRUE(same(calls[0].origin, SbVec3f(5, 1, 0)));
  EXPECT_TRUE(same(calls[1].origin, SbVec3f(6, 1, 0)));
}

TEST(Viewpoint, OneEventThatMovesSeveralThingsAboveIsToldWhole) {
  Stage stage(R"(DEF OTHER Transform {}
                 DEF OUTER Transform { children Transform { translation 0 1 0 children DEF A Viewpoint {} } }
                 DEF P PlaneSensor {} ROUTE P.translation_changed TO OTHER.set_translation
                 ROUTE P.translation_changed TO OUTER.set_translation
                 ROUTE P.translation_changed TO OUTER.set_scale)");
  stage.takeCameraCalls();
  stage.get<VrmlPlaneSensor>("P")->translation_changed.setValue(6, 2, 1);
  const auto calls = stage.takeCameraCalls();
  ASSERT_FALSE(calls.empty());
  EXPECT_EQ(calls.back().mode, VrmlViewpointManager::moved);
  EXPECT_TRUE(same(calls.back().origin, SbVec3f(6, 4, 1)));  // moved, and with twice the height
}

TEST(Viewpoint, TheUsersRoundLeavesOutWhatHasNoDescription) {
  Stage stage(
      R"(DEF A Viewpoint { description "a" } DEF B Viewpoint {} DEF C Viewpoint { description "c" })");
  auto* manager = stage.manager.getViewpointManager();
  const auto next = [&] { return Stage::nameOf(manager->getNextViewpoint()); };
  const auto previous = [&] { return Stage::nameOf(manager->getPrevViewpoint()); };
  EXPECT_EQ(manager->getNumViewpoints(), 4);  // and the default
  EXPECT_EQ(next(), "C");
  EXPECT_EQ(previous(), "C");
  stage.bind("B");
  EXPECT_EQ(next(), "C");
  EXPECT_EQ(previous(), "A");
  stage.bind("C");
  EXPECT_EQ(next(), "A");

  stage.manager.bindToNamedViewpoint("nowhere");
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "C");
  stage.manager.bindToNamedViewpoint("A");
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "A");
  EXPECT_STREQ(stage.manager.getCurrentViewpointName().getString(), "a");

  const Stage silent("DEF D Viewpoint {} DEF E Viewpoint {}");
  EXPECT_EQ(Stage::nameOf(silent.manager.getViewpointManager()->getNextViewpoint()), "D");
}

TEST(Viewpoint, AWorldWithoutOneIsSeenFromTheDefault) {
  Stage stage("Group {}");
  auto* manager = stage.manager.getViewpointManager();
  ASSERT_EQ(manager->getNumViewpoints(), 1);
  EXPECT_EQ(manager->getViewpoint(0), manager->getCurrViewpoint());
  EXPECT_TRUE(same(manager->getCurrViewpoint()->position.getValue(), SbVec3f(0, 0, 10)));
  EXPECT_EQ(stage.takeCameraCalls().back().mode, VrmlViewpointManager::jumpThere);
}

TEST(Viewpoint, RemembersHowFarTheViewerHadGone) {
  Stage stage("DEF A Viewpoint { position 1 0 0 orientation 0 1 0 0.5 } DEF B Viewpoint {}");
  stage.camera->position.setValue(1, 0, -4);
  stage.camera->orientation.setValue(SbVec3f(0, 1, 0), 0.75F);
  stage.bind("B");
  const auto* a = stage.get<VrmlViewpoint>("A");
  EXPECT_TRUE(same(a->getOffsetPosition(), SbVec3f(0, 0, -4)));
  EXPECT_TRUE(a->getOffsetOrientation().equals(SbRotation(SbVec3f(0, 1, 0), 0.25F), 1e-6F));
  stage.bind("B", false);  // A comes up with its offsets
  EXPECT_TRUE(same(a->getOffsetPosition(), SbVec3f(0, 0, -4)));
  stage.bind("A");  // a bind of its own forgets them
  EXPECT_TRUE(same(a->getOffsetPosition(), SbVec3f(0, 0, 0)));

  stage.bind("B");
  const SoRef<SoPerspectiveCamera> plain(new SoPerspectiveCamera);
  plain->position.setValue(7, 7, 7);
  stage.manager.setSceneCamera(plain.get());
  stage.bind("A");
  EXPECT_TRUE(same(stage.get<VrmlViewpoint>("B")->getOffsetPosition(), SbVec3f(0, 0, 0)));
}

TEST(Viewpoint, BindTimeIsTheFrameTimeOfBindAndUnbind) {
  Stage stage("DEF A Viewpoint {} DEF B Viewpoint {}");
  const SbTime now = VrmlDB::getFrameTime();
  stage.get<VrmlViewpoint>("A")->bindTime.setValue(SbTime::zero());
  stage.bind("B");
  EXPECT_EQ(stage.get<VrmlViewpoint>("A")->bindTime.getValue(), now);
  EXPECT_EQ(stage.get<VrmlViewpoint>("B")->bindTime.getValue(), now);
}

TEST(Camera, StandsInTheFrameOfItsMatrixWithoutItsScale) {
  startLibrary();
  const SoRef<VrmlTransformedCamera> camera(new VrmlTransformedCamera);
  const SbRotation quarter(SbVec3f(0, 1, 0), static_cast<float>(M_PI_2));
  SbMatrix frame;
  frame.setTransform(SbVec3f(10, 0, 0), quarter, SbVec3f(2, 2, 2));
  camera->matrix.setValue(frame);
  camera->position.setValue(0, 0, 5);

  SbVec3f place;
  camera->getRealPosition(place);
  EXPECT_TRUE(place.equals(SbVec3f(20, 0, 0), 1e-5F));  // 5 along z, scaled by 2 and turned on to x
  EXPECT_TRUE(camera->getMatrixRotation().equals(quarter, 1e-6F));
  const SbViewVolume volume = camera->getViewVolume(1);
  EXPECT_TRUE(volume.getProjectionDirection().equals(SbVec3f(-1, 0, 0), 1e-5F));
  EXPECT_NEAR(volume.getNearDist(), camera->nearDistance.getValue(), 1e-5F);
  EXPECT_TRUE(camera->getLocalViewVolume(1).getProjectionPoint().equals(SbVec3f(0, 0, 5), 1e-5F));
}

TEST(Camera, FramesABox) {
  startLibrary();
  const SoRef<VrmlTransformedCamera> camera(new VrmlTransformedCamera);
  SbMatrix frame;
  frame.setTransform(SbVec3f(1, 2, 3), SbRotation(SbVec3f(1, 0, 0), 0.3F), SbVec3f(3, 3, 3));
  camera->matrix.setValue(frame);
  camera->heightAngle.setValue(static_cast<float>(M_PI_2));

  const SbBox3f box(-1, 9, -1, 1, 11, 1);
  const float radius = std::sqrt(3.0F);
  camera->viewBoundingBox(box, 0.5F, 1.25F);
  SbVec3f eye;
  camera->getRealPosition(eye);
  const float distance = radius / 0.5F;  // a view taller than wide must go twice as far
  EXPECT_NEAR((eye - box.getCenter()).length(), distance, 1e-4F);
  SbVec3f towards = box.getCenter() - eye;
  towards.normalize();
  EXPECT_TRUE(camera->getViewVolume(1).getProjectionDirection().equals(towards, 1e-5F));
  EXPECT_NEAR(camera->nearDistance.getValue(), distance - 1.25F * radius, 1e-4F);
  EXPECT_NEAR(camera->farDistance.getValue(), distance + 1.25F * radius, 1e-4F);
  EXPECT_NEAR(camera->focalDistance.getValue(), distance, 1e-4F);

  camera->viewBoundingBox(SbBox3f(), 1, 5);  // nothing to see: the unit sphere
  camera->getRealPosition(eye);
  EXPECT_NEAR(eye.length(), 1, 1e-4F);
  EXPECT_NEAR(camera->nearDistance.getValue(), 0.01F, 1e-5F);
}
