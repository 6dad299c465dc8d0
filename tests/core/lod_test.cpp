// SPDX-License-Identifier: BSD-3-Clause
// Which level of an LOD is there, by the distance and by what has come over the network.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/misc/SoState.h>
#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlLOD.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/toolkit/Scoped.h>

#include "support/Drawing.h"
#include "support/TestWorld.h"

using namespace tessel::test;
using tessel::ScopedValue;
using tessel::SoRef;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string box(const std::string& color) {
  return "Shape { appearance Appearance { material Material { emissiveColor " + color +
         " } } geometry Box { size 6 6 0.2 } } ";
}
const std::string levels3 = box("1 0 0") + box("0 1 0") + box("0 0 1");

std::string lod(const std::string& range, const std::string& levels) {
  return "DEF L LOD { range [ " + range + " ] level [ " + levels + "] }";
}

struct Scene {
  explicit Scene(const std::string& text)
      : world(text), drawing(world.root()), node(world.get<VrmlLOD>("L")) {}
  /// The level that is drawn for a viewer at that distance.
  int levelFrom(float distance) {
    drawing.camera->position.setValue(0, 0, distance);
    drawing.camera->nearDistance = 0.01F;
    drawing.camera->farDistance = 2000;
    drawing.frame();
    return node->getLevel();
  }
  TestWorld world;
  Drawing drawing;
  VrmlLOD* node;
};

class Asked {
public:
  Asked() {
    VrmlInline::setFetchURLCallBack(
        [](const SbString& url, void* self, VrmlInline* node) {
          static_cast<Asked*>(self)->urls.emplace_back(url.getString());
          static_cast<Asked*>(self)->nodes.emplace_back(node);
        },
        this);
  }
  ~Asked() { VrmlInline::setFetchURLCallBack(nullptr, nullptr); }
  void bring(std::size_t index) { nodes[index]->setChildData(new VrmlGroup); }
  std::vector<std::string> urls;
  std::vector<SoRef<VrmlInline>> nodes;
};

}  // namespace

TEST(LodGL, TakesTheLevelOfTheDistance) {
  Scene scene(lod("10 20", levels3));
  for (const auto& [distance, level] :
       std::vector<std::pair<float, int>>{{1, 0}, {9.9F, 0}, {10, 1}, {15, 1}, {20, 2}, {1000, 2}, {9, 0}})
    EXPECT_EQ(scene.levelFrom(distance), level) << distance;
  EXPECT_TRUE(near(scene.drawing.at(0, 0), {255, 0, 0}));
  scene.levelFrom(12);
  EXPECT_TRUE(near(scene.drawing.at(0, 0), {0, 255, 0}));
}

TEST(LodGL, UsesOnlyAsManyRangesAndLevelsAsMatch) {
  Scene few(lod("10", levels3)), many(lod("10 20 30 40", box("1 0 0") + box("0 1 0"))),
      none(lod("", levels3)), mixed(lod("30 10", levels3)), empty(lod("10", ""));
  EXPECT_EQ(few.levelFrom(1000), 1) << "the level at the last range is the last one";
  EXPECT_EQ(many.levelFrom(1000), 1);
  EXPECT_EQ(none.levelFrom(1000), 0);
  EXPECT_EQ(mixed.levelFrom(20), 0) << "the first range that the distance is below decides";
  EXPECT_EQ(empty.levelFrom(5), -1);
}

TEST(LodGL, ObeysTheSwitchesOfTheHost) {
  Scene scene(lod("10 20", levels3));
  {
    const ScopedValue<float> stress(VrmlLOD::stressFactor, 0.5F);
    EXPECT_EQ(scene.levelFrom(6), 1);
    const ScopedValue<int> lowest(VrmlLOD::showLowestLODOnly, 1);
    EXPECT_EQ(scene.levelFrom(1), 2);
  }
  scene.node->setLevel(2);
  EXPECT_EQ(scene.levelFrom(1), 0) << "the level follows the distance";
  scene.node->setAutoLevel(false);
  scene.node->setLevel(1);
  EXPECT_EQ(scene.levelFrom(100), 1);
  scene.node->setLevel(7);
  EXPECT_EQ(scene.levelFrom(100), 7) << "no such child, so nothing is drawn";
  EXPECT_EQ(scene.drawing.at(0, 0), Colour{});
  int rendered = 0;
  scene.node->setRenderedCallback([](void* count, VrmlLOD*) { ++*static_cast<int*>(count); }, &rendered);
  scene.node->setAutoLevel(true);
  scene.levelFrom(5);
  scene.levelFrom(5);
  EXPECT_EQ(rendered, 2) << "a level is chosen in each frame";
  const ScopedValue<int> debug(VrmlLOD::debugMode, 1);
  scene.levelFrom(5);
  EXPECT_EQ(rendered, 3);
}

TEST(LodGL, ShowsACoarserLevelUntilTheWantedOneHasCome) {
  Asked asked;
  Scene scene(
      lod("10 20", "Inline { url \"http://h/fine\" } Inline { url \"http://h/middle\" } " + box("0 0 1")));
  EXPECT_THAT(asked.urls, IsEmpty());
  EXPECT_EQ(scene.levelFrom(1), 2);
  EXPECT_THAT(asked.urls, ElementsAre("http://h/fine")) << "only what is wanted";
  asked.bring(0);
  EXPECT_EQ(scene.levelFrom(1), 0);
  EXPECT_EQ(scene.levelFrom(15), 2);
  EXPECT_EQ(asked.urls.back(), "http://h/middle");
}

TEST(LodGL, AsksForTheCoarsestLevelFirst) {
  Asked asked;
  Scene scene(lod("10 20", "Inline { url \"http://h/fine\" } Group { } Inline { url \"http://h/coarse\" }"));
  EXPECT_EQ(scene.levelFrom(1), 1);
  EXPECT_THAT(asked.urls, ElementsAre("http://h/coarse", "http://h/fine"));
}

TEST(LodGL, WaitsForInlinesInWhatComesAtOnce) {
  startLibrary();
  VrmlInline::setFetchURLCallBack(
      [](const SbString& url, void*, VrmlInline* node) {
        SoRef<VrmlGroup> data(new VrmlGroup);
        SoRef<VrmlInline> inner(new VrmlInline);
        inner->url.setValue("http://h/inner");
        data->addChild(inner.get());
        if (url == "http://h/fine") node->setChildData(data.get());
      },
      nullptr);
  Scene scene(lod("10", "Inline { url \"http://h/fine\" } " + box("0 0 1")));
  EXPECT_EQ(scene.levelFrom(1), 1);
  EXPECT_EQ(scene.levelFrom(1), 1) << "the inner one has not come";
  VrmlInline::setFetchURLCallBack(nullptr, nullptr);
}

TEST(LodGL, OutlivesAHostThatTakesTheLevelsAwayWhenAsked) {
  Scene scene(lod("10", "Inline { url \"http://h/fine\" } " + box("0 0 1")));
  VrmlInline::setFetchURLCallBack(
      [](const SbString&, void* self, VrmlInline*) { static_cast<VrmlLOD*>(self)->removeAllChildren(); },
      scene.node);
  EXPECT_EQ(scene.levelFrom(1), -1);
  EXPECT_EQ(scene.node->getNumChildren(), 0);
  VrmlInline::setFetchURLCallBack(nullptr, nullptr);
}

TEST(LodGL, HasNoLevelsBeyondItsChildren) {
  Scene scene(lod("10 20", levels3));
  constexpr int most = std::numeric_limits<int>::max();
  for (const int level : {-1, -most, 3, most})
    EXPECT_FALSE(scene.node->isURLDataFetched(level, true)) << level;
  scene.node->setAutoLevel(false);
  scene.node->setLevel(-9);
  EXPECT_EQ(scene.levelFrom(50), 0) << "as if none was ever chosen";
  scene.node->setLevel(most);
  EXPECT_EQ(scene.levelFrom(50), most);
}

TEST(LodGL, AsksForNothingWhileTheHostLowersTheDetail) {
  Asked asked;
  const ScopedValue<int> degrading(VrmlLOD::isDegrading, 1);
  Scene scene(lod("10", "Inline { url \"http://h/fine\" } " + box("0 0 1")));
  EXPECT_EQ(scene.levelFrom(1), 1);
  EXPECT_THAT(asked.urls, IsEmpty());
}

TEST(LodGL, IsPickedAndCountedAtTheLevelThatIsSeen) {
  Scene scene(lod("10 20", box("1 0 0") + "Transform { translation 50 0 0 children [ " + box("0 1 0") +
                               box("0 1 0") + "] } " + box("0 0 1")));
  VrmlCountAction count;
  count.apply(scene.node);
  EXPECT_EQ(count.numTriangles, 0) << "nothing was drawn yet";
  const auto isHitFrom = [&](float distance) {
    scene.levelFrom(distance);
    SoRayPickAction pick(SbViewportRegion(Drawing::size, Drawing::size));
    pick.setPoint(SbVec2s(Drawing::size / 2, Drawing::size / 2));
    pick.apply(scene.drawing.root.get());
    return pick.getPickedPoint() != nullptr;
  };
  EXPECT_TRUE(isHitFrom(5));
  EXPECT_FALSE(isHitFrom(15)) << "that level stands elsewhere";
  for (const auto& [mode, triangles] : std::vector<std::pair<int, int>>{{0, 24}, {1, 12}, {2, 12}}) {
    count.lodMode = mode;
    count.apply(scene.node);
    EXPECT_EQ(count.numTriangles, triangles) << mode;
  }
}

TEST(Lod, CollidesAtTheLevelOfTheMiddleOfTheMove) {
  TestWorld world(lod("10 20", levels3));
  struct Chooser : VrmlCollideAction {
    int chosen = -1;
    void beginTraversal(SoNode* node) override {
      getState()->push();
      chosen = static_cast<VrmlLOD*>(node)->whichToCollide(this);
      getState()->pop();
    }
  } action;
  const auto levelAt = [&](float from, float to) {
    action.proximityLineStart.setValue(from, 0, 0);
    action.proximityLineEnd.setValue(to, 0, 0);
    action.apply(world.get<VrmlLOD>("L"));
    return action.chosen;
  };
  EXPECT_EQ(levelAt(0, 8), 0);
  EXPECT_EQ(levelAt(8, 14), 1);
  EXPECT_EQ(levelAt(-30, -20), 2);
  EXPECT_EQ(levelAt(-20, 20), 0);
}
