// SPDX-License-Identifier: BSD-3-Clause
#include "host/Navigation.h"

#include <gtest/gtest.h>

namespace tessel::host {
namespace {

constexpr float quarterTurn = 1.57079633f;

SbVec3f turnedAxis(const Pose& pose, float x, float y, float z) {
  SbVec3f out;
  pose.orientation.multVec(SbVec3f(x, y, z), out);
  return out;
}
SbVec3f ahead(const Pose& pose) { return turnedAxis(pose, 0, 0, -1); }

void expectNear(const SbVec3f& actual, float x, float y, float z) {
  EXPECT_TRUE(actual.equals(SbVec3f(x, y, z), 1e-6f)) << actual[0] << ' ' << actual[1] << ' ' << actual[2];
}

TEST(Navigation, ExamineSwingsTheWorldWithTheHand) {
  Navigation navigation;
  navigation.pivot.setValue(0, 0, 5);
  const Pose start{SbVec3f(0, 0, 15), SbRotation::identity()};
  // Half a window to the right: what was in front has gone to the right, so its left side shows.
  const Pose right = navigation.turned(start, SbVec2f(0.5f, 0));
  expectNear(right.position, -10, 0, 5);
  expectNear(ahead(right), 1, 0, 0);
  const Pose up = navigation.turned(start, SbVec2f(0, 0.5f));
  expectNear(up.position, 0, -10, 5);
  expectNear(ahead(up), 0, 1, 0);
}

TEST(Navigation, ThousandSmallTurnsKeepTheDistanceToThePivot) {
  Navigation navigation;
  navigation.pivot.setValue(3, 2, 1);
  Pose pose{SbVec3f(3, 2, 101), SbRotation::identity()};
  for (int i = 0; i < 1000; ++i) pose = navigation.turned(pose, SbVec2f(0.013f, -0.007f));
  EXPECT_NEAR((pose.position - navigation.pivot).length(), 100, 0.05);
  EXPECT_GT(ahead(pose).dot((navigation.pivot - pose.position) / 100), 0.9999f);
}

TEST(Navigation, FlyTurnsOnTheSpotAndKeepsTheHorizon) {
  Navigation navigation;
  navigation.mode = Navigation::Mode::fly;
  Pose pose{SbVec3f(1, 2, 3), SbRotation::identity()};
  const Pose right = navigation.turned(pose, SbVec2f(0.5f, 0));
  expectNear(right.position, 1, 2, 3);
  expectNear(ahead(right), 1, 0, 0);

  for (int i = 0; i < 100; ++i) pose = navigation.turned(pose, SbVec2f(0.03f, 0.05f));
  EXPECT_GT(turnedAxis(pose, 0, 1, 0)[1], 0) << "looked past the zenith";
  EXPECT_GT(ahead(pose)[1], 0.99f);
  EXPECT_NEAR(turnedAxis(pose, 1, 0, 0)[1], 0, 1e-3) << "the horizon tilted";
}

TEST(Navigation, PanKeepsThePivotUnderThePointer) {
  Navigation navigation;
  navigation.fieldOfView = quarterTurn;  // at distance 10 the window is 20 wide
  const Pose pose = navigation.panned({SbVec3f(0, 0, 10), SbRotation::identity()}, SbVec2f(0.25f, -0.5f));
  expectNear(pose.position, -5, 10, 10);
}

TEST(Navigation, ExamineNearsThePivotWithoutReachingIt) {
  for (const float size : {1e-10f, 1.0f, 1e7f}) {
    Navigation navigation;
    navigation.sceneSize = size;
    Pose pose{SbVec3f(0, 0, 3 * size), SbRotation::identity()};
    const Pose there = navigation.advanced(pose, 0.1f);
    EXPECT_LT(there.position[2], pose.position[2]);
    EXPECT_NEAR(navigation.advanced(there, -0.1f).position[2] / size, 3, 1e-3) << "back isn't where it was";
    for (int i = 0; i < 1000; ++i) pose = navigation.advanced(pose, 0.1f);
    EXPECT_GT(pose.position[2], 0) << "went through the pivot";
    pose = navigation.advanced(pose, -1);
    EXPECT_GT(pose.position[2], size * 1e-3f) << "stuck at the pivot";
  }
}

TEST(Navigation, ZoomKeepsThePivotAtItsPlaceInTheWindow) {
  Navigation navigation;
  navigation.pivot.setValue(3, 2, -10);
  const Pose pose = navigation.advanced({SbVec3f(0, 0, 0), SbRotation::identity()}, 0.3f);
  const SbVec3f seen = navigation.pivot - pose.position;
  EXPECT_LT(seen.length(), 9);
  EXPECT_NEAR(seen[0] / seen[2], -0.3, 1e-4);
  EXPECT_NEAR(seen[1] / seen[2], -0.2, 1e-4);
}

TEST(Navigation, FlyGoesWhereItLooksAtItsSpeed) {
  Navigation navigation;
  navigation.mode = Navigation::Mode::fly;
  navigation.speed = 3;
  const Pose start{SbVec3f(0, 1, 0), SbRotation(SbVec3f(0, 1, 0), quarterTurn)};  // looks along -x
  expectNear(navigation.advanced(start, 0.5f).position, -15, 1, 0);
  expectNear(navigation.advanced(start, -0.5f).position, 15, 1, 0);
}

}  // namespace
}  // namespace tessel::host
