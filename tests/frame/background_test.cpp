// SPDX-License-Identifier: BSD-3-Clause
// Bands of sky and ground, the search for the images, and fog.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/system/gl.h>
#include <tessel/frame/VrmlBackground.h>
#include <tessel/frame/VrmlFog.h>

#include <tessel/toolkit/Scoped.h>

#include "frame/BackgroundBands.h"
#include "frame/Stage.h"
#include "support/Picture.h"
#include "support/TestWorld.h"

using namespace tessel::test;
using testing::ElementsAre;

namespace {

constexpr float right = 1.5707964F;
using Angles = std::vector<float>;
/// Colours are told apart by their red alone.
using Reds = std::vector<float>;

std::vector<SbColor> colors(const Reds& reds) {
  std::vector<SbColor> list;
  for (const float r : reds) list.emplace_back(r, 0, 0);
  return list;
}

struct Bands {
  const char* name;
  Angles groundAngle;
  Reds ground;
  Angles skyAngle;
  Reds sky;
  std::vector<std::pair<float, float>> edges;  // elevation and red
};

class BackgroundBands : public testing::TestWithParam<Bands> {};

const Bands bandTable[] = {
    {"NoColourIsBlack", {}, {}, {}, {}, {{0, 0}}},
    {"OneSkyColour", {}, {}, {1}, {0.5F}, {{0, 0.5F}}},
    {"OneOfEachIsTheSky", {}, {0.9F}, {}, {0.5F}, {{0, 0.5F}}},
    {"TwoSkyColoursWithoutAngle", {}, {}, {}, {0.5F, 1}, {{0, 0.5F}}},
    {"TwoGroundColoursWithoutAngle", {}, {0.5F, 1}, {}, {}, {}},
    {"TwoEqualSkyColours", {}, {}, {1}, {0.5F, 0.5F}, {{0, 0.5F}}},
    {"TwoSkyColours", {}, {}, {1}, {0, 1}, {{-right, 1}, {0, 0.5F}, {right, 0}}},
    {"TwoGroundColours", {0.3F}, {0, 1}, {}, {}, {{-right, 0}, {0, 0.5F}, {right, 1}}},
    {"SkyOfThree",
     {},
     {},
     {1, 1.5F},
     {0, 0.5F, 1},
     {{-right, 1}, {right - 1.5F, 1}, {right - 1.5F, 1}, {right - 1, 0.5F}, {right, 0}}},
    {"SkyDownToTheGround",
     {right},
     {0.1F, 0.2F},
     {1},
     {0, 1},
     {{-right, 0.1F}, {0, 0.2F}, {0, 1}, {right - 1, 1}, {right - 1, 1}, {right, 0}}},
    // The ground ends half way between the edges at 0.2 and -0.2.
    {"GroundInABand",
     {right},
     {0.1F, 0.2F},
     {right - 0.2F, right + 0.2F},
     {0, 0.4F, 0.8F},
     {{-right, 0.1F}, {0, 0.2F}, {0, 0.6F}, {0.2F, 0.4F}, {right, 0}}},
    {"GroundAtAnEdge",
     {right - 0.2F},
     {0.1F, 0.2F},
     {right - 0.2F, right + 0.200001F},
     {0, 0.4F, 0.8F},
     {{-right, 0.1F}, {-0.2F, 0.2F}, {-0.2F, 0.8F}, {-0.2F, 0.8F}, {0.2F, 0.4F}, {right, 0}}},
    {"AnglesOutOfOrderAreLifted",
     {1.2F, 0.5F},
     {0.1F, 0.2F, 0.3F},
     {},
     {0.9F},
     {{-right, 0.1F},
      {1.2F - right, 0.2F},
      {1.2F - right, 0.3F},
      {1.2F - right, 0.9F},
      {right, 0.9F},
      {right, 0.9F}}},
    {"AnEdgeAtTheHorizonIfThereIsNoneNear",
     {0.3F},
     {0, 0.2F},
     {},
     {1},
     {{-right, 0}, {0.3F - right, 0.2F}, {0.3F - right, 1}, {0, 1}, {right, 1}, {right, 1}}},
};

}  // namespace

TEST_P(BackgroundBands, RiseFromTheNadir) {
  const Bands& row = GetParam();
  const auto ground = colors(row.ground), sky = colors(row.sky);
  const tessel::BackgroundBands made =
      tessel::makeBackgroundBands(row.groundAngle, ground, row.skyAngle, sky);
  ASSERT_EQ(made.angles.size(), made.colors.size());
  ASSERT_EQ(made.angles.size(), row.edges.size());
  for (std::size_t i = 0; i < row.edges.size(); ++i) {
    EXPECT_NEAR(made.angles[i], row.edges[i].first, 1e-4) << i;
    EXPECT_NEAR(made.colors[i][0], row.edges[i].second, 1e-4) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, BackgroundBands, testing::ValuesIn(bandTable),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(BackgroundBandsOf, HostileAnglesRiseToo) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
  const Angles values{nan, -inf, inf, -3, 7, 0.5F, nan, 1};
  const auto some = colors({0, 0.1F, 0.2F, 0.3F, 0.4F});
  for (std::size_t shift = 0; shift + 4 <= values.size(); ++shift) {
    const std::span<const float> angles(values.data() + shift, 4);
    for (std::size_t ground = 0; ground <= some.size(); ++ground) {
      const auto made = tessel::makeBackgroundBands(angles, std::span(some).first(ground), angles, some);
      ASSERT_FALSE(made.empty());
      for (std::size_t i = 0; i < made.angles.size(); ++i) {
        ASSERT_LE(std::abs(made.angles[i]), right) << shift << ' ' << ground;
      }
      ASSERT_TRUE(std::ranges::is_sorted(made.angles)) << shift << ' ' << ground;
    }
  }
}

TEST(Background, AsksForEachImageAndItsAlternatives) {
  struct Asked {
    std::vector<std::string> urls;
    std::vector<int> indices;
  } asked;
  VrmlBackground::setFetchURLCallBack(
      [](const SbString& url, void* data, VrmlBackground*, int index) {
        static_cast<Asked*>(data)->urls.emplace_back(url.getString());
        static_cast<Asked*>(data)->indices.push_back(index);
      },
      &asked);
  VrmlBackground::fetchOnRead = 1;
  TestWorld world("DEF B Background { frontUrl [ \"http://h/1\" \"http://h/2\" ] topUrl \"http://h/3\" }");
  VrmlBackground::fetchOnRead = 0;
  EXPECT_THAT(asked.urls, ElementsAre("http://h/1", "http://h/3"));
  EXPECT_THAT(asked.indices, ElementsAre(2, 5));
  auto* background = world.get<VrmlBackground>("B");
  background->fetchFailed(2);
  EXPECT_EQ(asked.urls.back(), "http://h/2");
  background->fetchFailed(2);
  EXPECT_EQ(asked.urls.size(), 3u) << "there is no further alternative";
  EXPECT_STREQ(background->getFullURLName(2).getString(), "");
  const unsigned char pixel[] = {1, 2, 3};
  for (const int bad : {-1, 6, 1000}) background->setImage(bad, SbVec2s(1, 1), 3, pixel);
  VrmlBackground::setFetchURLCallBack(nullptr, nullptr);
}

namespace {

/// A world in a window, seen from the origin along the horizon.
struct Window {
  explicit Window(const std::string& text) : context(openContext(size, size)), stage(text.c_str()) {
    stage.manager.setViewportRegion(SbViewportRegion(size, size));
  }
  Colour draw(int frames = 1) {
    while (frames-- > 0) stage.manager.render();
    return pixel(context->picture(), size / 2, size / 2);
  }
  VrmlBackground* background() const { return stage.get<VrmlBackground>("B"); }
  /// Pictures of one pixel all around.
  void setImages(const Colour& colour) const {
    const unsigned char bytes[] = {static_cast<unsigned char>(colour.r), static_cast<unsigned char>(colour.g),
                                   static_cast<unsigned char>(colour.b)};
    for (int i = 0; i < VrmlBackground::numImages; ++i) background()->setImage(i, SbVec2s(1, 1), 3, bytes);
  }

  static constexpr int size = 64;
  std::unique_ptr<tessel::host::OffscreenContext> context;
  Stage stage;
};

int displayLists() {
  int count = 0;
  for (GLuint id = 1; id < 1000; ++id) count += glIsList(id);
  return count;
}

constexpr Colour red{255, 0, 0}, green{0, 255, 0}, blue{0, 0, 255};
/// Red all over, but not so plain that it is cleared to.
const std::string redSky = "DEF B Background { skyAngle [ 1, 1.4 ] skyColor [ 1 0 0, 1 0 0, 1 0 0 ] }";

}  // namespace

TEST(BackgroundGL, IsOneDisplayListUntilItChanges) {
  Window window(redSky);
  for (int frame = 0; frame < 5; ++frame) EXPECT_EQ(window.draw(), red) << "frame " << frame;
  EXPECT_EQ(displayLists(), 1);
  const SbColor greens[] = {{0, 1, 0}, {0, 1, 0}, {0, 1, 0}};
  window.background()->skyColor.setValues(0, 3, greens);
  EXPECT_EQ(window.draw(), green);
  window.setImages(blue);
  for (int frame = 0; frame < 5; ++frame) EXPECT_EQ(window.draw(), blue) << "frame " << frame;
  for (int i = 0; i < 50; ++i) {
    window.background()->skyAngle.set1Value(0, static_cast<float>(i) / 50);
    window.draw(2);
  }
  EXPECT_LE(displayLists(), 2) << "old lists are given back";
}

TEST(BackgroundGL, ChangesByRoutesAsByItsOwnFields) {
  Window window("Group { children [ " + redSky +
                " DEF A Background { } ] } ROUTE A.skyColor_changed TO B.set_skyColor "
                "ROUTE A.backUrl_changed TO B.set_backUrl");
  EXPECT_EQ(window.draw(4), red);
  auto* source = window.stage.get<VrmlBackground>("A");
  const SbColor greens[] = {{0, 1, 0}, {0, 1, 0}, {0, 1, 0}};
  source->skyColor.setValues(0, 3, greens);
  EXPECT_EQ(window.draw(), green);
  window.setImages(blue);
  EXPECT_EQ(window.draw(), blue);
  source->backUrl = "";
  EXPECT_EQ(window.draw(), green) << "the image of the old URL is gone";
}

TEST(BackgroundGL, IsDrawnInTwoContextsInTurn) {
  Window window(redSky);
  window.setImages(blue);
  const auto context = openContext(Window::size, Window::size);
  VrmlSceneManager other;
  other.getGLRenderAction()->setCacheContext(SoGLCacheContextElement::getUniqueCacheContext());
  other.setSceneGraph(window.stage.root.get());
  other.setViewportRegion(SbViewportRegion(Window::size, Window::size));
  for (int frame = 0; frame < 4; ++frame) {
    window.context->makeCurrent();
    EXPECT_EQ(window.draw(2), blue);
    context->makeCurrent();
    for (int i = 0; i < 2; ++i) other.render();
    EXPECT_EQ(pixel(context->picture(), 32, 32), blue);
  }
}

TEST(BackgroundGL, LeavesTheStateToTheShapes) {
  // The last one leaves the lights off at the end of each frame; the first one is lit, and dark, for there are none.
  Window window(redSky +
                "Transform { translation 0 0 -5 children Shape { geometry Box { } appearance Appearance { "
                "material Material { ambientIntensity 0 } } } } "
                "Transform { translation 3 0 -5 children Shape { geometry Box { } } }");
  window.stage.camera->position.setValue(0, 0, 0);
  for (int frame = 0; frame < 5; ++frame) EXPECT_EQ(window.draw(), (Colour{0, 0, 0})) << "frame " << frame;
}

TEST(BackgroundGL, FollowsTheTextureQuality) {
  Window window(redSky);
  auto* complexity = new SoComplexity;
  window.stage.root->insertChild(complexity, 0);
  window.setImages(blue);
  for (const float quality : {0.0F, 1.0F, 0.0F}) {
    complexity->textureQuality = quality;
    for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(window.draw(), quality > 0 ? blue : red) << quality;
  }
}

TEST(BackgroundGL, FillsTheWindowFromWhereverItIsSeen) {
  Window window(redSky);
  for (const float distance : {0.0F, 999.0F, 1001.0F, 1e7F}) {
    window.stage.camera->position.setValue(distance, 0, -distance);
    for (int frame = 0; frame < 3; ++frame) {
      window.draw();
      EXPECT_EQ(countLit(window.context->picture(), red), 0) << distance << " in frame " << frame;
    }
  }
}

TEST(BackgroundGL, IsAPlainClearWithoutColoursOrPerspective) {
  Window bare("DEF B Background { skyColor [ ] groundColor [ 1 0 0, 0 1 0 ] }");
  glClearColor(0, 0, 1, 0);
  EXPECT_EQ(bare.draw(), blue);
  bare.setImages(green);
  EXPECT_EQ(bare.draw(3), green);
  Window flat(redSky);
  flat.stage.root->replaceChild(0, new SoOrthographicCamera);
  glClearColor(0, 0, 1, 0);
  EXPECT_EQ(flat.draw(), blue);
}

TEST(Fog, HasAKindByItsTypeAndRange) {
  TestWorld world("DEF F Fog { }");
  auto* fog = world.get<VrmlFog>("F");
  using Kind = VrmlFog::Kind;
  EXPECT_EQ(fog->getKind(), Kind::none);
  fog->visibilityRange = 8;
  EXPECT_EQ(fog->getKind(), Kind::linear);
  fog->fogType = "EXPONENTIAL";
  EXPECT_EQ(fog->getKind(), Kind::exponential);
  EXPECT_FLOAT_EQ(fog->computeDensity(), 0.5F);
  fog->fogType = "linear";
  EXPECT_EQ(fog->getKind(), Kind::none);
}

TEST(Fog, AsksForNoPictureWhileItIsNotBound) {
  const tessel::ScopedValue<int> cut(VrmlNode::optimizedNotify, 1);
  TestWorld world("Group { children [ DEF F Fog { } ] }");
  auto* fog = world.get<VrmlFog>("F");
  int heard = 0;
  VrmlNotifySensor ear([](void* count, SoSensor*) { ++*static_cast<int*>(count); }, &heard);
  ear.attach(world.root());
  fog->color.setValue(1, 0, 0);
  EXPECT_EQ(heard, 0);
  fog->visibilityRange = 5;
  EXPECT_EQ(heard, 1);
  fog->isBound = TRUE;
  heard = 0;
  fog->color.setValue(0, 1, 0);
  EXPECT_EQ(heard, 1);
}
