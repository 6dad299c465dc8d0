// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <string>

#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoTexture2.h>

#include <tessel/shapes/VrmlText.h>

#include "shapes/FakeFonts.h"
#include "shapes/Probe.h"
#include "support/Drawing.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

constexpr Colour black{0, 0, 0}, white{255, 255, 255};
constexpr Colour plain{204, 204, 204};  // without a material

std::string text(const std::string& fields, const std::string& appearance = "") {
  return "Shape { " + appearance + " geometry DEF TEXT Text { " + fields + " } }";
}

const std::string small = " fontStyle FontStyle { } ";
const std::string lit =
    "appearance Appearance { material Material { diffuseColor 1 1 1 ambientIntensity 0 } }";

std::string repeated(const std::string& what, int times) {
  std::string result;
  while (times-- > 0) result += what;
  return result;
}

}  // namespace

// Strings of few characters go into display lists, long ones into buffers; both are tried.

TEST(TextGL, DrawsEachCharacterAtItsPlace) {
  const FakeFonts fonts;
  for (const int behind : {0, 2000}) {
    const TestWorld world(text("string \"A O" + repeated("B", behind) + "\"" + small));
    Drawing drawing(world.root());
    for (int frame = 0; frame < 6; ++frame) {
      drawing.frame();
      EXPECT_EQ(drawing.at(0.5f, 0.5f), plain) << frame;
      EXPECT_EQ(drawing.at(1.25f, 0.5f), black) << "the space";
      EXPECT_EQ(drawing.at(1.65f, 0.5f), plain);
      EXPECT_EQ(drawing.at(0.5f, -0.1f), black) << "below";
    }
    world.get<VrmlText>("TEXT")->string = "  A";
    drawing.frame();
    EXPECT_EQ(drawing.at(0.5f, 0.5f), black);
    EXPECT_EQ(drawing.at(1.5f, 0.5f), plain);
  }
}

TEST(TextGL, IsLitFromBothSides) {
  const FakeFonts fonts;
  for (const int behind : {0, 2000}) {
    const TestWorld world(text("string \"A" + repeated("A", behind) + "\"" + small, lit));
    LitDrawing front(world.root());
    front.frame(3);
    EXPECT_TRUE(near(front.at(0.5f, 0.5f), white)) << front.at(0.5f, 0.5f);
  }
  const TestWorld turned("Transform { rotation 0 1 0 3.1416 children " + text("string \"A\"" + small, lit) +
                         " }");
  LitDrawing back(turned.root());
  back.frame();
  EXPECT_TRUE(near(back.at(-0.5f, 0.5f), white)) << back.at(-0.5f, 0.5f);
}

TEST(TextGL, EachCharacterHasTheWholeTexture) {
  const FakeFonts fonts;
  // Black on the left, red on the right; and without a texture at first, so that coordinates come later.
  const unsigned char pixels[] = {0, 0, 0, 255, 0, 0};
  for (const int behind : {0, 2000}) {
    const TestWorld world(
        text("string \"AA" + repeated("B", behind) + "\" fontStyle FontStyle { size 1.5 }"));
    Drawing drawing(world.root());
    drawing.frame();
    EXPECT_EQ(drawing.at(0.3f, 0.5f), plain);
    auto* texture = new SoTexture2;
    texture->image.setValue(SbVec2s(2, 1), 3, pixels);
    drawing.root->insertChild(texture, 1);
    drawing.frame(3);
    EXPECT_LT(drawing.at(0.15f, 0.5f).r, 80);
    EXPECT_GT(drawing.at(1.25f, 0.5f).r, 140);
    EXPECT_LT(drawing.at(1.65f, 0.5f).r, 80);
  }
}

TEST(TextGL, AnUntexturedShapeBesideItKeepsItsOwnCoordinates) {
  const FakeFonts fonts;
  const unsigned char pixels[] = {0, 0, 0, 255, 0, 0};
  const TestWorld world(text("string \"A\"" + small) +
                        "Transform { translation -1 0 0 children Shape { geometry Box { } } }");
  Drawing drawing(world.root());
  auto* texture = new SoTexture2;
  texture->image.setValue(SbVec2s(2, 1), 3, pixels);
  drawing.root->insertChild(texture, 1);
  drawing.frame(3);
  EXPECT_LT(drawing.at(-1.75f, -0.5f).r, 80);
  EXPECT_GT(drawing.at(-0.25f, -0.5f).r, 140);
}

TEST(TextGL, ATransparentTextIsDelayed) {
  const FakeFonts fonts;
  const TestWorld world(
      text("string \"AA\" fontStyle FontStyle { justify \"MIDDLE\" }",
           "appearance Appearance { material Material { diffuseColor 0 0 0 emissiveColor 1 0 0 "
           "transparency 0.5 } }") +
      "Transform { translation 0 0 -1 children Shape { geometry Box { size 1 4 1 } } }");
  Drawing drawing(world.root());
  drawing.action.setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
  drawing.frame(3);
  EXPECT_TRUE(near(drawing.at(-0.75f, 0.5f), {128, 0, 0}));
  EXPECT_TRUE(near(drawing.at(0.25f, 0.5f), {230, 102, 102}));
}

TEST(TextGL, AQualityOnTheScreenFollowsTheSizeThere) {
  const FakeFonts fonts;
  const TestWorld world("Transform { children " + text("string \"A\"" + small) + " }");
  Drawing drawing(world.root());
  auto* complexity = new SoComplexity;
  complexity->type = SoComplexity::SCREEN_SPACE;
  drawing.root->insertChild(complexity, 1);
  drawing.frame(4);
  EXPECT_EQ(drawing.at(0.5f, 0.5f), plain);
  const int before = fonts.log->fetched[u'A'];
  boxOf(drawing.root.get());  // does not know how large it is drawn
  trianglesOf(drawing.root.get());
  drawing.frame(3);
  EXPECT_EQ(fonts.log->fetched[u'A'], before);
  drawing.camera->height = 8;
  drawing.frame(3);
  EXPECT_EQ(fonts.log->fetched[u'A'], before + 1);
}

TEST(TextGL, TheMachinesFontsReachThePicture) {
  const TestWorld world(text("string \"H\" fontStyle FontStyle { size 2 family \"SANS\" style \"BOLD\" }"));
  Drawing drawing(world.root());
  drawing.frame();
  // Two posts and a bar between them.
  EXPECT_EQ(drawing.at(0.27f, 1.2f), plain);
  EXPECT_EQ(drawing.at(0.72f, 1.2f), black);
  EXPECT_EQ(drawing.at(0.72f, 0.75f), plain);
  EXPECT_EQ(drawing.at(1.17f, 0.2f), plain);
}
