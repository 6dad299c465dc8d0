// SPDX-License-Identifier: BSD-3-Clause
// In which order transparent shapes are drawn: seen in the colours of panes that lie over one another.
#include <gtest/gtest.h>

#include <tessel/core/VrmlTransform.h>

#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoGroup.h>
#include <Inventor/nodes/SoMaterial.h>

#include "support/Drawing.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

/// A half transparent pane of unlit colour at a depth.
std::string pane(const char* colour, float z, const char* more = "") {
  return "Transform { translation 0 0 " + std::to_string(z) +
         " children Shape { appearance Appearance { material Material { diffuseColor 0 0 0 ambientIntensity "
         "0 "
         "emissiveColor " +
         colour + " transparency 0.5 } } geometry Box { size 2 2 0.1 } } " + more + " } ";
}

const char* const red = "1 0 0";
const char* const green = "0 1 0";
const char* const blue = "0 0 1";
const char* const opaqueWall =
    "Transform { translation 0 0 -3 children Shape { geometry Box { size 4 4 0.1 } } } ";

/// Half of the nearest, a quarter of the second, an eighth of the third, an eighth of what is behind.
Colour over(const Colour& nearest, const Colour& second) {
  const auto mix = [](int a, int b) { return (2 * a + b) / 4; };
  return {mix(nearest.r, second.r), mix(nearest.g, second.g), mix(nearest.b, second.b)};
}
const Colour redSeen{255, 0, 0}, greenSeen{0, 255, 0};

}  // namespace

TEST(TransparencyGL, PanesAreDrawnFromFarToNearWhateverTheirOrderInTheFile) {
  for (const std::string& children : {pane(red, 0) + pane(green, 1), pane(green, 1) + pane(red, 0)}) {
    TestWorld world("Group { children [ " + children + "] }");
    ASSERT_TRUE(world.root()) << world.messages.text();
    Drawing drawing(world.root());
    for (int i = 0; i < 4; ++i) {
      drawing.frame();
      EXPECT_TRUE(near(drawing.at(0, 0), over(greenSeen, redSeen), 3))
          << drawing.at(0, 0) << " in frame " << i;
    }
  }
}

TEST(TransparencyGL, EqualDepthsKeepTheOrderInWhichTheyWereMet) {
  // Of panes in one plane the later must pass the depth test, which the toolkit sets so.
  TestWorld world("Group { children [ " + pane(red, 1) + pane(green, 1) + "] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  drawing.frame(2);
  EXPECT_TRUE(near(drawing.at(0, 0), over(greenSeen, redSeen), 3)) << drawing.at(0, 0);
}

TEST(TransparencyGL, DepthIsThatOfTheFarthestPoint) {
  // The red one reaches farther back and also nearer: it is drawn first, the flat green one over it.
  const std::string deepRed =
      "Transform { rotation 1 0 0 -0.025 children Shape { appearance Appearance { material Material { "
      "diffuseColor "
      "0 0 0 ambientIntensity 0 emissiveColor 1 0 0 transparency 0.5 } } geometry Box { size 2 0.1 8 } } }";
  TestWorld world("Group { children [ " + pane(green, 0) + deepRed + " ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  drawing.frame(2);
  // Its front end stands before the green one, yet green was drawn over it.
  EXPECT_TRUE(near(drawing.at(0, 0.1f), over(greenSeen, redSeen), 3)) << drawing.at(0, 0.1f);
}

TEST(TransparencyGL, DelayedTypesDrawBehindTheOpaqueInFileOrderAndScreenDoorAtOnce) {
  TestWorld world("Group { children [ " + pane(green, 1) + pane(red, 0) + opaqueWall + "] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  drawing.action.setTransparencyType(SoGLRenderAction::DELAYED_BLEND);
  drawing.frame(2);
  // The red pane is behind, but drawn over the green one, for no depth is written.
  EXPECT_TRUE(near(drawing.at(0, 0), {178, 115, 51}, 3)) << drawing.at(0, 0);

  drawing.action.setTransparencyType(SoGLRenderAction::DELAYED_ADD);
  drawing.frame(2);
  EXPECT_TRUE(near(drawing.at(0, 0), {255, 255, 204}, 6)) << drawing.at(0, 0);

  // A shape that writes depth hides what comes later: the green pane, half of the wall's pixels, no red.
  drawing.action.setTransparencyType(SoGLRenderAction::SCREEN_DOOR);
  drawing.frame(2);
  int greens = 0, all = 0;
  for (float x = -0.9f; x < 0.9f; x += 0.0625f)
    for (float y = -0.9f; y < 0.9f; y += 0.0625f, ++all) greens += drawing.at(x, y) == greenSeen;
  EXPECT_NEAR(static_cast<double>(greens) / all, 0.5, 0.1);
}

TEST(TransparencyGL, EachShapeIsDrawnOnceAlsoWithoutABoxOrInSeveralPlaces) {
  // One node in two places, one geometry that has no extent and thus no depth, and a light for some only.
  TestWorld world("Group { children [ DEF P " + pane(red, 0) +
                  "Transform { translation 0 0 1 children [ DirectionalLight {} USE P ] } "
                  "Shape { appearance Appearance { material Material { transparency 0.5 } } "
                  "geometry PointSet { coord Coordinate { point [] } } } ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  for (int i = 0; i < 4; ++i) {
    drawing.frame();
    EXPECT_TRUE(near(drawing.at(0, 0), {191, 0, 0}, 3)) << drawing.at(0, 0);
  }
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

TEST(TransparencyGL, ShapesKeepTheLightsOfTheirGroup) {
  const std::string lit =
      "Shape { appearance Appearance { material Material { diffuseColor 1 1 1 ambientIntensity 0 "
      "transparency 0.5 } } geometry Box { size 0.8 0.8 0.1 } } ";
  const auto in = [&](const char* place, const char* light) {
    return "Transform { translation " + std::string(place) + " children [ " + lit + light + " ] } ";
  };
  // Depths alternate between the groups, so that neighbours in the drawing stand under different lights.
  TestWorld world("Group { children [ " + in("-1 1 0", "DirectionalLight { color 1 0 0 }") +
                  in("0 1 0.5", "DirectionalLight { color 0 1 0 }") + in("1 1 0.2", "") +
                  "Transform { translation -1 -1 0.3 children [ DirectionalLight { color 0 0 1 } " + lit +
                  "Transform { translation 1 0 0.4 children " + lit + "} ] } ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  for (int i = 0; i < 3; ++i) {
    drawing.frame();
    EXPECT_TRUE(near(drawing.at(-1, 1), {128, 0, 0}, 3)) << drawing.at(-1, 1);
    EXPECT_TRUE(near(drawing.at(0, 1), {0, 128, 0}, 3)) << drawing.at(0, 1);
    EXPECT_TRUE(near(drawing.at(1, 1), {0, 0, 0}, 3)) << drawing.at(1, 1);
    EXPECT_TRUE(near(drawing.at(-1, -1), {0, 0, 128}, 3)) << drawing.at(-1, -1);
    EXPECT_TRUE(near(drawing.at(0, -1), {0, 0, 128}, 3)) << drawing.at(0, -1);
  }
}

TEST(TransparencyGL, AMovedPaneIsSortedAnewAndAnAbortLeavesNothingBehind) {
  TestWorld world("Group { children [ " + pane(red, 0) + "DEF G " + pane(green, 1) + "] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  drawing.frame(3);
  world.get<VrmlTransform>("G")->translation.setValue(0, 0, -1);
  drawing.frame();
  EXPECT_TRUE(near(drawing.at(0, 0), over(redSeen, greenSeen), 3)) << drawing.at(0, 0);

  int calls = 0;
  drawing.action.setAbortCallback(
      [](void* count) {
        return ++*static_cast<int*>(count) > 6 ? SoGLRenderAction::ABORT : SoGLRenderAction::CONTINUE;
      },
      &calls);
  drawing.frame();
  drawing.action.setAbortCallback(nullptr, nullptr);
  drawing.frame();
  EXPECT_TRUE(near(drawing.at(0, 0), over(redSeen, greenSeen), 3)) << drawing.at(0, 0);
}

TEST(TransparencyGL, ShapesOfTheToolkitBesideTheWorldStayWhatTheyAre) {
  TestWorld world("Group { children [ " + pane(green, 1) + "] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  auto* material = new SoMaterial;
  material->emissiveColor.setValue(0, 0, 0);
  material->diffuseColor.setValue(0, 0, 0);
  material->ambientColor.setValue(0, 0, 0);
  material->emissiveColor.setValue(1, 0, 0);
  material->transparency = 0.5;
  drawing.root->addChild(material);
  drawing.root->addChild(new SoCube);
  drawing.frame(3);
  // Drawn after the world's own: the back and the front of the cube over green.
  EXPECT_TRUE(near(drawing.at(0, 0), {191, 32, 0}, 3)) << drawing.at(0, 0);
}

TEST(TransparencyGL, GlassDoesNotKeepItsWorldOutOfDisplayLists) {
  // The opaque shapes of a still world come out of a list, and the panes again in their order: also when the world
  // that the list stands for is moved, and when one of its parts stands in two places.
  TestWorld world("DEF W Transform { children [ DEF PAIR Group { children [ " + pane(red, 0) +
                  pane(green, 1) + opaqueWall +
                  "] } Transform { translation 0 0 -10 children [ DirectionalLight {} USE PAIR ] } ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  drawing.frame(5);
  const Colour seen = drawing.at(0, 0);
  EXPECT_TRUE(near(seen, {114, 179, 51}, 3)) << seen;
  drawing.frame(3);
  EXPECT_EQ(drawing.at(0, 0), seen);
  world.get<VrmlTransform>("W")->translation.setValue(1, 0, 0);
  for (int i = 0; i < 4; ++i) {
    drawing.frame();
    EXPECT_EQ(drawing.at(1.5f, 0), seen) << "frame " << i;
    EXPECT_EQ(drawing.at(-1.5f, 0), (Colour{0, 0, 0})) << "frame " << i;
  }
}
