// SPDX-License-Identifier: BSD-3-Clause
// Inline: what it asks a host for and when, what it shows until the answer, and what it is after it.
#include <tessel/proto/VrmlInline.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/frame/VrmlViewpoint.h>
#include <tessel/frame/VrmlViewpointManager.h>

#include "support/Drawing.h"
#include "support/TestWorld.h"

namespace tessel::test {
namespace {

/// A host that writes down what it is asked for, and answers when the test says so.
class InlineTest : public testing::Test {
protected:
  InlineTest() {
    startLibrary();
    VrmlInline::setFetchURLCallBack(
        [](const SbString& url, void* self, VrmlInline*) {
          static_cast<InlineTest*>(self)->asked.emplace_back(url.getString());
        },
        this);
  }
  ~InlineTest() override {
    VrmlInline::setFetchURLCallBack(nullptr, nullptr);
    VrmlInline::setFetchOnRead(0);
    VrmlDB::setBaseURL(nullptr);
  }

  static SbBox3f boxOf(SoNode* node) {
    SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
    action.apply(node);
    return action.getBoundingBox();
  }
  static void answer(VrmlInline* node, const TestWorld& world) {
    node->setChildData(static_cast<VrmlNode*>(world.root()));
  }

  std::vector<std::string> asked;
};

using Urls = std::vector<std::string>;

TEST_F(InlineTest, AsksWhenItIsMeasuredAndOnlyOnce) {
  TestWorld world("DEF I Inline { url \"a.wrl\" }");
  EXPECT_EQ(asked, Urls{}) << "nobody has looked at it";
  EXPECT_TRUE(boxOf(world.root()).isEmpty());
  boxOf(world.root());
  EXPECT_EQ(asked, Urls{"a.wrl"});
}

TEST_F(InlineTest, AsksAtOnceIfTheHostWantsThat) {
  VrmlInline::setFetchOnRead(1);
  TestWorld world("Inline { url \"a.wrl\" }");
  EXPECT_EQ(asked, Urls{"a.wrl"});
}

TEST_F(InlineTest, IsQuietWithoutAHost) {
  VrmlInline::setFetchURLCallBack(nullptr, nullptr);
  TestWorld world("DEF I Inline { url \"a.wrl\" }");
  boxOf(world.root());
  EXPECT_FALSE(world.get<VrmlInline>("I")->isFetchRequested()) << "a host that comes later is to be asked";
}

TEST_F(InlineTest, TriesTheAlternativesInTheirOrder) {
  TestWorld world(R"(DEF I Inline { url ["a.wrl" "b.wrl"] })");
  auto* node = world.get<VrmlInline>("I");
  boxOf(node);
  node->fetchFailed();
  node->fetchFailed();
  EXPECT_EQ(asked, (Urls{"a.wrl", "b.wrl"}));
  boxOf(node);
  EXPECT_EQ(asked.size(), 2U) << "nothing is left to ask for";
}

TEST_F(InlineTest, ResolvesAgainstTheBaseOfItsFileAndNeverAsksForThatFile) {
  VrmlDB::setBaseURL("http://host/dir/self.wrl");
  TestWorld world(R"(DEF I Inline { url ["self.wrl" "../b.wrl" ""] })");
  VrmlDB::setBaseURL("http://elsewhere/x.wrl");
  auto* node = world.get<VrmlInline>("I");
  boxOf(node);
  node->fetchFailed();
  node->fetchFailed();
  EXPECT_EQ(asked, (Urls{"", "http://host/b.wrl", ""}));
}

TEST_F(InlineTest, ANewUrlIsAskedForAndPutsTheOldWorldAway) {
  TestWorld world(R"(DEF I Inline { url ["a.wrl" "b.wrl"] })"), box("Box {}"),
      shape("Shape { geometry Box {} }");
  auto* node = world.get<VrmlInline>("I");
  boxOf(node);
  node->fetchFailed();
  answer(node, shape);
  node->url = "c.wrl";
  EXPECT_EQ(node->getChildData(), nullptr);
  EXPECT_EQ(node->getUrlIndex(), 0);
  EXPECT_EQ(boxOf(node).getSize(), SbVec3f(2, 2, 2)) << "the box of the old world stands for the new one";
  TestWorld sphere("Shape { geometry Sphere { radius 3 } }");
  node->requestChildrenFromURL();
  answer(node, sphere);
  EXPECT_EQ(asked.back(), "c.wrl");
  EXPECT_EQ(boxOf(node).getSize(), SbVec3f(6, 6, 6));
}

TEST_F(InlineTest, FindsItsBoxOutFromTheWorldUnlessItIsGiven) {
  TestWorld shape("Transform { translation 1 2 3 children Shape { geometry Box {} } }");
  TestWorld open("DEF I Inline {}");
  answer(open.get<VrmlInline>("I"), shape);
  EXPECT_EQ(open.get<VrmlInline>("I")->bboxSize.getValue(), SbVec3f(2, 2, 2));
  EXPECT_EQ(open.get<VrmlInline>("I")->bboxCenter.getValue(), SbVec3f(1, 2, 3));

  TestWorld given("DEF J Inline { bboxSize 8 8 8 }");
  EXPECT_EQ(boxOf(given.root()).getSize(), SbVec3f(8, 8, 8));
  answer(given.get<VrmlInline>("J"), shape);
  EXPECT_EQ(given.get<VrmlInline>("J")->bboxSize.getValue(), SbVec3f(8, 8, 8));
  EXPECT_EQ(boxOf(given.root()).getSize(), SbVec3f(2, 2, 2)) << "what is there is measured";
}

TEST_F(InlineTest, TheBoxCanBePickedUntilTheWorldIsThere) {
  TestWorld world("DEF I Inline { bboxSize 2 2 2 }"), shape("Shape { geometry Sphere { radius 0.5 } }");
  SoRayPickAction pick(SbViewportRegion(100, 100));
  pick.setRadius(2);
  const auto hitsAt = [&](float x, float y) {
    pick.setRay(SbVec3f(x, y, 10), SbVec3f(0, 0, -1));
    pick.apply(world.root());
    return pick.getPickedPoint() != nullptr;
  };
  EXPECT_TRUE(hitsAt(1, 0)) << "an edge of the box";
  EXPECT_FALSE(hitsAt(0, 0)) << "between its lines";
  answer(world.get<VrmlInline>("I"), shape);
  EXPECT_FALSE(hitsAt(1, 0));
  EXPECT_TRUE(hitsAt(0, 0));
}

TEST_F(InlineTest, PathsToItOutliveTheAnswer) {
  TestWorld world("Group { children DEF I Inline { url \"a.wrl\" } }"), answered("Group { }");
  auto* node = world.get<VrmlInline>("I");
  const SoChildList* before = node->getChildren();
  {
    SoSearchAction search;
    search.setNode(node);
    search.apply(world.root());
    const SoRef<SoPath> path(search.getPath());
    ASSERT_TRUE(path);
    answer(node, answered);
    ASSERT_EQ(node->getChildren(), before) << "a path takes itself off the list that it has told of itself";
  }
  EXPECT_TRUE(node->getChildData());
}

TEST_F(InlineTest, ACopyHasACopyOfTheWorldAndNeedsNoFetch) {
  TestWorld world("DEF I Inline { url \"a.wrl\" }"), shape("DEF T Transform { translation 5 0 0 }");
  VrmlInline* node = world.get<VrmlInline>("I");
  answer(node, shape);
  const SoRef<SoNode> copied(VrmlNode::deepCopy(node, TRUE));
  auto* copy = static_cast<VrmlInline*>(copied.get());
  ASSERT_NE(copy->getChildData(), nullptr);
  EXPECT_NE(copy->getChildData(), node->getChildData());
  EXPECT_EQ(static_cast<VrmlTransform*>(copy->getChildData())->translation.getValue(), SbVec3f(5, 0, 0));
  boxOf(copy);
  EXPECT_EQ(asked, Urls{});

  node->url = "b.wrl";
  const SoRef<SoNode> empty(VrmlNode::deepCopy(node, TRUE));
  EXPECT_EQ(static_cast<VrmlInline*>(empty.get())->getChildData(), nullptr);
}

TEST_F(InlineTest, ViewpointsOfTheWorldAreFoundWhenItComesAndLostWhenItGoes) {
  TestWorld world("DEF I Inline { url \"a.wrl\" }"), other("DEF V Viewpoint { description \"within\" }");
  VrmlSceneManager manager;
  manager.setSceneGraph(world.root());
  EXPECT_EQ(manager.getViewpointManager()->getNumViewpoints(), 1) << "the manager's own";
  answer(world.get<VrmlInline>("I"), other);
  EXPECT_EQ(manager.getViewpointManager()->getNumViewpoints(), 2);
  manager.bindToNamedViewpoint("V");
  EXPECT_EQ(manager.getCurrentBinding(VrmlViewpoint::getClassTypeId()), other.root());
  world.get<VrmlInline>("I")->url = "b.wrl";
  manager.updateBindingNodes();
  EXPECT_EQ(manager.getViewpointManager()->getNumViewpoints(), 1);
  manager.setSceneGraph(nullptr);
}

TEST_F(InlineTest, LightsOfTheWorldCountOnlyWhenItIsThere) {
  TestWorld world("Transform { children DEF I Inline {} }"), light("Group { children PointLight {} }");
  auto* root = static_cast<VrmlNode*>(world.root());
  EXPECT_EQ(root->getKidType() & KidType::spatialLight, 0U);
  answer(world.get<VrmlInline>("I"), light);
  EXPECT_NE(root->getKidType() & KidType::spatialLight, 0U);
  world.get<VrmlInline>("I")->url = "b.wrl";
  EXPECT_EQ(root->getKidType() & KidType::spatialLight, 0U);
}

TEST_F(InlineTest, DrawsGrayLinesThenTheWorldGL) {
  const auto context = openContext(Drawing::size, Drawing::size);
  TestWorld world("DEF I Inline { url \"a.wrl\" bboxSize 2 2 2 }");
  TestWorld shape(
      "Shape { appearance Appearance { material Material { emissiveColor 1 0 0 } } geometry Box {} }");
  {
    Drawing drawing(world.root());
    const host::Image picture = drawing.frame();
    constexpr int pixels = Drawing::size * Drawing::size;
    EXPECT_EQ(countLit(picture), pixels - countLit(picture, {204, 204, 204}))
        << "all lit ones are light grey";
    EXPECT_GT(countLit(picture), 60);
    EXPECT_EQ(drawing.at(0, 0), Colour()) << "only the edges are drawn";
    EXPECT_EQ(asked, Urls{"a.wrl"}) << "drawn many times, asked for once";
    answer(world.get<VrmlInline>("I"), shape);
    drawing.frame();
    EXPECT_TRUE(near(drawing.at(0, 0), {255, 0, 0})) << drawing.at(0, 0);
    world.get<VrmlInline>("I")->setShowBox(true);
    drawing.frame();
    EXPECT_EQ(drawing.at(0, 0), Colour());
  }
}

}  // namespace
}  // namespace tessel::test
