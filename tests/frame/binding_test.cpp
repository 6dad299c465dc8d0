// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/frame/VrmlBackground.h>
#include <tessel/frame/VrmlFog.h>
#include <tessel/frame/VrmlNavigationInfo.h>
#include <tessel/pointing/VrmlTouchSensor.h>
#include <tessel/proto/VrmlInline.h>

#include "frame/Stage.h"

using namespace tessel;
using namespace tessel::test;

TEST(Binding, AWorldComesWithTheFirstOfEachKindBoundAndTheRestWaiting) {
  const Stage stage(
      "DEF FA Fog {} Group { children [ DEF NA NavigationInfo {} DEF FB Fog {} ] } DEF VA Viewpoint {}");
  EXPECT_EQ(stage.bound<VrmlFog>(), "FA");
  EXPECT_EQ(stage.bound<VrmlNavigationInfo>(), "NA");
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "VA");
  EXPECT_TRUE(stage.get<VrmlFog>("FA")->isBound.getValue());
  EXPECT_FALSE(stage.get<VrmlFog>("FB")->isBound.getValue());
  // There is no Background: the default serves.
  auto* background = stage.manager.getCurrentBinding(VrmlBackground::getClassTypeId());
  ASSERT_NE(background, nullptr);
  EXPECT_TRUE(background->isBound.getValue());
}

TEST(Binding, WorldsThatArriveTogetherAreLookedThroughOnce) {
  Stage stage("DEF A Inline { } DEF B Inline { } DEF PLACE Group { }");
  const TestWorld first("DEF VA Viewpoint { }"), second("DEF VB Viewpoint { }");
  const VrmlViewpointManager& known = *stage.manager.getViewpointManager();
  const int before = known.getNumViewpoints();
  {
    const VrmlSceneManager::Arrivals together;
    stage.get<VrmlInline>("A")->setChildData(first.get<VrmlViewpoint>("VA"));
    {
      const VrmlSceneManager::Arrivals inside;
      stage.get<VrmlInline>("B")->setChildData(second.get<VrmlViewpoint>("VB"));
    }
    EXPECT_EQ(known.getNumViewpoints(), before);
    const Stage brief("DEF C Inline { }");
    brief.get<VrmlInline>("C")->setChildData(first.get<VrmlViewpoint>("VA"));
  }
  EXPECT_EQ(known.getNumViewpoints(), before + 2);
}

TEST(Binding, ASecondFogOfALivingWorldWaitsForItsEvent) {
  Stage stage("DEF PLACE Group { children DEF FA Fog {} }");
  const SoRef<VrmlFog> late(new VrmlFog);
  stage.get<VrmlGroup>("PLACE")->insertChild(late.get(), 0);
  stage.manager.updateBindingNodes();
  EXPECT_EQ(stage.bound<VrmlFog>(), "FA");
  late->set_bind.setValue(TRUE);
  EXPECT_EQ(stage.manager.getCurrentBinding(VrmlFog::getClassTypeId()), late.get());
}

TEST(Binding, EventsComeInTheOrderOfUnbindAndBind) {
  Stage stage("DEF A Viewpoint {} DEF B Viewpoint {} DEF C Viewpoint {}");
  stage.takeBindEvents();
  stage.bind("B");
  EXPECT_EQ(stage.takeBindEvents(), "A:0 B:1");
  stage.bind("C");
  stage.bind("A");  // from the bottom to the top
  EXPECT_EQ(stage.takeBindEvents(), "B:0 C:1 C:0 A:1");
  stage.bind("A", false);
  EXPECT_EQ(stage.takeBindEvents(), "A:0 C:1 A:0");
  stage.bind("B", false);  // below the top: nobody else hears of it
  EXPECT_EQ(stage.takeBindEvents(), "B:0");
  stage.bind("C", false);
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "-");
}

TEST(Binding, TheLastNodeOfAStackStaysBound) {
  Stage stage("Group {}");
  VrmlBindingNode* fallback = stage.manager.getCurrentBinding(VrmlFog::getClassTypeId());
  fallback->set_bind.setValue(FALSE);
  EXPECT_EQ(stage.manager.getCurrentBinding(VrmlFog::getClassTypeId()), fallback);
  // It is still listened to.
  stage.manager.getCurrentBinding(VrmlFog::getClassTypeId())->set_bind.setValue(TRUE);
  EXPECT_TRUE(fallback->isBound.getValue());
}

TEST(Binding, ARouteBindsAtOnce) {
  const Stage stage(
      "DEF T TouchSensor {} DEF A Viewpoint {} DEF B Viewpoint {} ROUTE T.isActive TO B.set_bind");
  ASSERT_EQ(stage.world.status, ReadStatus::world) << stage.world.messages.text();
  stage.get<VrmlTouchSensor>("T")->isActive.setValue(TRUE);
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "B");
  stage.get<VrmlTouchSensor>("T")->isActive.setValue(FALSE);
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "A");
}

// Of a node that stands in the scene, and that a field holds too, the scene must hear what it says.
TEST(Binding, NodesThatInstancesAndScriptsHoldAreHeard) {
  const std::string kids = "[ DEF T Transform { children DEF B Viewpoint {} } ]";
  const std::string group = "PROTO P [ field MFNode kids [] ] { Group { children IS kids } } ";
  for (const std::string& text : std::initializer_list<std::string>{
           group + "P { kids " + kids + " }",
           group + "PROTO Q [ field MFNode k [] ] { P { kids IS k } } Q { k " + kids + " }",
           "Script { field MFNode held " + kids + " } USE T",
           "Group { children Script { field SFNode held DEF B Viewpoint {} } } DEF T Transform { children "
           "USE B }"}) {
    Stage stage(("DEF A Viewpoint {} " + text).c_str());
    ASSERT_EQ(stage.world.status, ReadStatus::world) << stage.world.messages.text();
    stage.takeCameraCalls();
    stage.bind("B");
    EXPECT_EQ(stage.bound<VrmlViewpoint>(), "B") << text;
    stage.get<VrmlViewpoint>("B")->position.setValue(1, 2, 3);
    stage.get<VrmlTransform>("T")->translation.setValue(4, 5, 6);
    EXPECT_EQ(stage.takeCameraCalls().size(), 3U) << text;
    stage.get<VrmlTransform>("T")->addChild(new VrmlViewpoint);
    stage.bind("A");
    EXPECT_EQ(stage.manager.getViewpointManager()->getNumViewpoints(), 4) << text;
  }
}

TEST(Binding, ADeletedNodeLeavesItsStackAndSaysSo) {
  Stage stage("DEF G Group { children [ DEF A Background {} DEF B Background {} ] }");
  const SoRef<VrmlBackground> b(stage.get<VrmlBackground>("B"));
  stage.bind("B");
  stage.get<VrmlGroup>("G")->removeChild(1);
  EXPECT_TRUE(b->isBound.getValue());  // until the next update
  stage.manager.updateBindingNodes();
  EXPECT_EQ(stage.bound<VrmlBackground>(), "A");
  EXPECT_FALSE(b->isBound.getValue());
  EXPECT_EQ(b->getRefCount(), 1) << "still held by the manager";
}

TEST(Binding, ANewWorldIsBoundAndTheOldOneLetGo) {
  Stage stage("DEF A Viewpoint {} DEF BG Background {} DEF F Fog {}");
  const SoRef<VrmlViewpoint> old(stage.get<VrmlViewpoint>("A"));
  const SoRef<VrmlBackground> oldBackground(stage.get<VrmlBackground>("BG"));
  const TestWorld next("DEF NEW Viewpoint { description \"new\" } DEF MORE Viewpoint {}");
  stage.show(next.root());
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "NEW");
  EXPECT_EQ(stage.bound<VrmlBackground>(), "-");
  EXPECT_STREQ(stage.manager.getCurrentViewpointName().getString(), "new");
  EXPECT_FALSE(old->isBound.getValue());
  EXPECT_EQ(old->getPath(), nullptr);
  EXPECT_EQ(old->getRefCount(), 2) << "by this test and its own world";
  EXPECT_EQ(oldBackground->getRefCount(), 2);
  next.get<VrmlViewpoint>("NEW")->set_bind.setValue(FALSE);
  EXPECT_EQ(stage.bound<VrmlViewpoint>(), "-") << "the default stands below";
}

TEST(Binding, WorldsComeAndGoWithoutLeavingAnythingBehind) {
  tessel::test::startLibrary();
  SoRef<SoNode> tree;
  for (const bool active : {true, false}) {
    VrmlSceneManager manager;
    const TestWorld world("Transform { children [ DEF A Viewpoint {} DEF B Background {} ] }");
    tree.reset(world.root());
    const int before = tree->getRefCount();
    if (!active) manager.deactivate();
    manager.setSceneGraph(tree.get());
    if (!active) manager.activate();
    EXPECT_NE(world.get<VrmlViewpoint>("A")->getPath(), nullptr);
    if (!active) manager.deactivate();
    manager.setSceneGraph(nullptr);
    EXPECT_EQ(tree->getRefCount(), before);
  }
}

TEST(Binding, AnInactiveManagerBindsWhenItWakes) {
  const TestWorld world("DEF A Fog {}");
  VrmlSceneManager manager;
  manager.deactivate();
  manager.setSceneGraph(world.root());
  EXPECT_FALSE(world.get<VrmlFog>("A")->isBound.getValue());
  manager.activate();
  EXPECT_EQ(manager.getCurrentBinding(VrmlFog::getClassTypeId()), world.get<VrmlFog>("A"));
}

TEST(Binding, NavigationChangesReachTheHost) {
  Stage stage("DEF A NavigationInfo {} DEF B NavigationInfo { speed 2 }");
  std::string heard;
  stage.manager.setNavigationInfoChangedCallback(
      [](void* data, VrmlNavigationInfo* info, SoField* field) {
        SbName name("bound");
        if (field) info->getFieldName(field, name);
        *static_cast<std::string*>(data) += Stage::nameOf(info) + "." + name.getString() + " ";
      },
      &heard);
  stage.get<VrmlNavigationInfo>("A")->speed.setValue(3);
  EXPECT_EQ(heard, "A.speed ");
  heard.clear();
  stage.bind("B");
  EXPECT_NE(heard.find("B.bound"), std::string::npos) << heard;
}
