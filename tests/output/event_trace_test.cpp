// SPDX-License-Identifier: BSD-3-Clause
// Names of nodes, and events as they are told, where the program's own runs do not reach.
#include <gtest/gtest.h>

#include <Inventor/lists/SoFieldList.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/output/EventTrace.h>
#include <tessel/output/NodeNames.h>
#include <tessel/shapes/VrmlMaterial.h>

#include "support/TestWorld.h"

using tessel::EventTrace;
using tessel::NodeNames;
using tessel::SoRef;
using tessel::test::TestWorld;

namespace {

// Collects what a trace tells, one line an event.
struct Told {
  explicit Told(NodeNames& names)
      : trace(names, [this](auto node, auto field, auto value) {
          lines.append(node).append(".").append(field).append(" ").append(value).append("\n");
        }) {
    trace.select("all");
  }
  std::string take() {
    trace.flush();
    return std::exchange(lines, {});
  }
  std::string lines;
  EventTrace trace;
};

class Traced : public testing::Test {
protected:
  void use(TestWorld& world) { names.setWorld(world.root()); }
  NodeNames names;
};

TEST_F(Traced, TheGroupRoundSeveralNodesOfAFileIsNotCounted) {
  TestWorld one("Group { children Group { } }"), two("Group { }\nGroup { }");
  use(one);
  EXPECT_EQ(names.find("Group#1"), one.root());
  EXPECT_TRUE(names.find("Group#2"));
  use(two);
  EXPECT_EQ(names.find("Group#1"), static_cast<VrmlGroup*>(two.root())->getChild(0));
  EXPECT_FALSE(names.find("Group#3"));
  EXPECT_EQ(names.nameOf(*static_cast<VrmlGroup*>(two.root())), "Group");
}

TEST_F(Traced, NoNodeIsKeptAliveAndNoNameIsGivenTwice) {
  TestWorld world("DEF G Group { children [ Transform { } Transform { } ] }");
  use(world);
  Told told(names);
  auto* group = world.get<VrmlGroup>("G");
  group->removeChild(0);
  EXPECT_FALSE(names.find("Transform#1"));
  group->addChild(new VrmlTransform);
  EXPECT_EQ(names.nameOf(*static_cast<VrmlTransform*>(group->getChild(0))), "Transform#2");
  EXPECT_EQ(names.nameOf(*static_cast<VrmlTransform*>(group->getChild(1))), "Transform#3");
}

TEST_F(Traced, WhatANodeSentIsToldThoughItIsGone) {
  TestWorld world("DEF G Group { children Transform { } }");
  use(world);
  Told told(names);
  auto* group = world.get<VrmlGroup>("G");
  static_cast<VrmlTransform*>(group->getChild(0))->scale.setValue(2, 2, 2);
  group->removeAllChildren();
  EXPECT_EQ(told.take(), "Transform#1.scale 2 2 2\nG.children []\n");
}

TEST_F(Traced, WhatANodeSentBeforeItCameIsTold) {
  TestWorld world("DEF G Group { }");
  use(world);
  Told told(names);
  const SoRef<VrmlTransform> inside(new VrmlTransform), outside(new VrmlTransform);
  inside->scale.setValue(2, 2, 2);
  outside->scale.setValue(3, 3, 3);
  world.get<VrmlGroup>("G")->addChild(inside.get());
  EXPECT_EQ(told.take(), "Transform#1.scale 2 2 2\nG.children [Transform#1]\n");
}

TEST_F(Traced, ANodeThatChangesInsideAFieldIsNoEventOfTheField) {
  TestWorld world("Shape { appearance Appearance { material DEF M Material { } } }");
  use(world);
  Told told(names);
  world.get<VrmlMaterial>("M")->shininess = 0.5;
  EXPECT_EQ(told.take(), "M.shininess 0.5\n");
}

// A value that is fetched early may be another one than the world would see.
TEST_F(Traced, NothingIsFetchedAlongRoutes) {
  TestWorld world(
      "DEF A Transform { }\nDEF B Transform { }\nDEF C Transform { }\nDEF D Transform { }\n"
      "ROUTE A.translation TO C.translation\nROUTE B.translation TO C.translation\n"
      "ROUTE C.translation TO D.translation\n");
  use(world);
  Told told(names);
  world.get<VrmlTransform>("A")->translation.setValue(1, 1, 1);
  world.get<VrmlTransform>("B")->translation.setValue(2, 2, 2);
  EXPECT_TRUE(world.get<VrmlTransform>("C")->translation.getDirty());
  EXPECT_TRUE(world.get<VrmlTransform>("D")->translation.getDirty());
  EXPECT_EQ(told.take(),
            "A.translation 1 1 1\nC.translation 1 1 1\nD.translation 1 1 1\n"
            "B.translation 2 2 2\nC.translation 2 2 2\nD.translation 2 2 2\n");
}

TEST_F(Traced, WhatIsNoEventIsNotTold) {
  TestWorld world("DEF T Transform { translation 1 2 3 }\nDEF S Switch { choice Group { } }");
  use(world);
  Told told(names);
  auto* transform = world.get<VrmlTransform>("T");
  transform->bboxSize.setValue(1, 1, 1);  // a plain field
  transform->enableNotify(FALSE);
  transform->scale.setValue(2, 2, 2);
  transform->enableNotify(TRUE);
  EXPECT_EQ(told.take(), "");
  transform->scale.setValue(2, 2, 2);
  transform->scale.setValue(2, 2, 2);
  EXPECT_EQ(told.take(), "T.scale 2 2 2\nT.scale 2 2 2\n") << "an event is one though the value stays";
}

// A field of an instance is connected with the body when it is first needed, which is dear.
TEST_F(Traced, RoutesAndTracesConnectNothingElseOfAnInstance) {
  TestWorld world(
      "PROTO P [ exposedField SFVec3f idle 1 1 1 eventIn SFVec3f set_place eventOut SFVec3f place_changed ] {"
      "  Transform { scale IS idle set_translation IS set_place translation_changed IS place_changed } }"
      "DEF FROM Transform { } DEF I P { } DEF TO Transform { }"
      "ROUTE FROM.translation TO I.set_place ROUTE I.place_changed TO TO.translation");
  use(world);
  Told told(names);
  told.trace.select("I.nothing");
  world.get<VrmlTransform>("FROM")->translation.setValue(1, 2, 3);
  EXPECT_NE(told.take().find("I.place_changed 1 2 3"), std::string::npos);
  EXPECT_EQ(told.trace.unknownSelections(), std::vector<std::string>{"I.nothing"});
  SoFieldList ends;
  auto* instance = world.get<VrmlNode>("I");
  for (const int field : {0, 1, 2})
    EXPECT_EQ(instance->getFieldAt(field)->getForwardConnections(ends), field > 0);
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

}  // namespace
