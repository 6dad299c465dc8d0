// SPDX-License-Identifier: BSD-3-Clause
// Scripts that know nodes above them must not keep these alive.
#include <gtest/gtest.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlMFNode.h>
#include <tessel/script/VrmlScript.h>
#include <tessel/toolkit/SoRef.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFInt32.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <Inventor/sensors/SoSensorManager.h>

#include "core/Loops.h"
#include "support/TestWorld.h"

using namespace tessel;
using namespace tessel::test;

namespace {

// Tells when a node dies.
class Watch {
public:
  explicit Watch(SoNode* node) {
    sensor.setDeleteCallback([](void* self, SoSensor*) { static_cast<Watch*>(self)->gone = true; }, this);
    sensor.attach(node);
  }
  bool dead() const { return gone; }

private:
  SoNodeSensor sensor;
  bool gone = false;
};

SoRef<SoNode> readWorld(const std::string& body) {
  startLibrary();
  ReadStatus status;
  const std::string text = "#VRML V2.0 utf8\n" + body;
  SoRef<SoNode> root(VrmlDB::read(text, "loop.wrl", status));
  EXPECT_TRUE(root);
  return root;
}

// What happens between two frames.
void settle() { SoDB::getSensorManager()->processDelayQueue(FALSE); }

SoNode* valueOf(const VrmlScript& script, const char* name) {
  return static_cast<SoSFNode*>(script.getField(name))->getValue();
}

class Loop : public testing::TestWithParam<const char*> {};

TEST_P(Loop, EndsWithItsWorld) {
  SoRef<SoNode> root = readWorld(GetParam());
  SoRef<SoNode> script(SoNode::getByName("S"));
  ASSERT_TRUE(script);
  Watch onScript(script.get());
  Watch onRoot(root.get());
  script.reset();
  settle();
  EXPECT_FALSE(onScript.dead());
  root.reset();
  settle();
  EXPECT_TRUE(onRoot.dead());
  EXPECT_TRUE(onScript.dead());
}

INSTANTIATE_TEST_SUITE_P(
    Script, Loop,
    testing::Values(
        "DEF T Transform { children DEF S Script { field SFNode t USE T } }",
        "Group { children DEF T Transform { children DEF S Script { field SFNode t USE T } } }",
        "DEF S Script { field SFNode self USE S }",
        "DEF S Script { field SFNode self USE S self USE S self NULL }",
        "DEF T Group { children DEF S Script { field MFNode all [ USE T USE S NULL USE T ] } }",
        "DEF T Group { children DEF S Script { field SFNode g Group { children USE T } } }",
        "DEF T Group { children [ DEF S Script { field SFNode t USE T } Script { field SFNode t USE T } ] }",
        "DEF A Group { children DEF B Group { children DEF S Script { field SFNode a USE A field SFNode b "
        "USE B } } }",
        "DEF T Group { children DEF S Script { field SFNode n Script { field SFNode up USE S field SFNode t "
        "USE T } } }",
        "DEF T Group { children DEF S Script { field SFNode t USE T } } Group { children [ USE T USE S ] }"));

TEST(Loops, AThousandWorldsLeaveNoneBehind) {
  std::vector<std::unique_ptr<Watch>> watches;
  for (int i = 0; i < 1000; ++i) {
    const SoRef<SoNode> root = readWorld("DEF T Transform { children Script { field SFNode t USE T } }");
    watches.push_back(std::make_unique<Watch>(root.get()));
  }
  int alive = 0;
  for (const auto& watch : watches) alive += !watch->dead();
  EXPECT_LE(alive, 1) << "each read frees what the world before it left, also where no queue runs";
  settle();
}

// The events reach the Script's eventIn, which keeps its value, and through it a field; the world is the loop.
TEST(Loops, ThoseThatEventsCloseEndTooWhenOtherWorldsAreRead) {
  std::vector<std::unique_ptr<Watch>> watches;
  for (int i = 0; i < 100; ++i) {
    const SoRef<SoNode> root = readWorld(R"(DEF T Transform { children DEF S Script {
      eventIn SFNode set field MFNode all [ ] url "vrmlscript: function set(n) { all = new MFNode(n); }" } })");
    auto* script = static_cast<VrmlScript*>(SoNode::getByName("S"));
    watches.push_back(std::make_unique<Watch>(root.get()));
    static_cast<SoSFNode*>(script->getField("set"))->setValue(root.get());
    if (i == 0) releaseLoopsBeforeRead(std::size_t{1} << 40);  // pays for the worlds of other tests
  }
  const SoRef<SoNode> kept = readWorld("DEF T Transform { children DEF S Script { field SFNode f NULL } }");
  static_cast<SoSFNode*>(static_cast<VrmlScript*>(SoNode::getByName("S"))->getField("f"))
      ->setValue(kept.get());
  const Watch living(kept.get());
  for (int i = 0; i < 100; ++i) readWorld("Group { }");
  int alive = 0;
  for (const auto& watch : watches) alive += !watch->dead();
  EXPECT_EQ(alive, 0);
  EXPECT_FALSE(living.dead());
}

// What a Script holds may use the nodes around it, and stand in the scene, but not below those nodes.
TEST(Loops, NoneIsMadeInTheSceneByWayOfAScript) {
  const std::string above =
      "DEF A Group { children [ Group { children Script { field SFNode f DEF B Group { children "
      "DEF C Group { children USE A } } } } ";
  for (const char* use : {"USE B", "Group { children USE C }"}) {
    const TestWorld refused(above + use + " ] }");
    EXPECT_NE(refused.status, ReadStatus::world) << use;
    EXPECT_NE(refused.messages.text().find("inside itself"), std::string::npos) << use;
  }
  const TestWorld good(above + "Script { field SFNode f USE B } ] } USE C");
  EXPECT_EQ(good.status, ReadStatus::world) << good.messages.text();
}

// An event may take away nodes that are to hear of it too, or the very node that tells.
TEST(Loops, ANodeLivesToTheEndOfTheNotificationThatTakesItAway) {
  const TestWorld world(R"(DEF G Group { children [
      DEF S Script { eventIn SFInt32 go eventOut MFNode out field SFNode me USE S
        url "vrmlscript: function go(v) { out = v ? new MFNode(me) : new MFNode(); }" }
      DEF H Group { } DEF I Group { } ] }
    ROUTE S.out TO H.children ROUTE S.out TO G.children ROUTE S.out TO I.children)");
  auto* group = static_cast<VrmlGroup*>(SoNode::getByName("G"));
  const SoRef<VrmlScript> script(world.get<VrmlScript>("S"));
  Watch removed(SoNode::getByName("I"));
  for (int round = 1; round >= 0; --round) {
    static_cast<SoSFInt32*>(script->getField("go"))->setValue(round);
    EXPECT_EQ(group->getNumChildren(), round);
  }
  EXPECT_TRUE(removed.dead());
}

TEST(Loops, AListThatWasCutHoldsWhatItIsGiven) {
  startLibrary();
  const SoRef<VrmlGroup> nodes[] = {SoRef(new VrmlGroup), SoRef(new VrmlGroup), SoRef(new VrmlGroup)};
  VrmlMFNode list, other;
  for (int i = 0; i < 3; ++i) other.set1Value(i, nodes[i].get());
  list.copyFrom(other);
  list.setNum(2);
  list.copyFrom(other);
  EXPECT_EQ(nodes[2]->getRefCount(), 3);
  other.setNum(0);
  list.copyFrom(other);
  EXPECT_EQ(list.getNum(), 0);
  for (const auto& node : nodes) EXPECT_EQ(node->getRefCount(), 1);
}

TEST(Loops, AWorldThatNobodyHasReferencedYetStays) {
  startLibrary();
  ReadStatus status;
  SoNode* first = VrmlDB::read(
      "#VRML V2.0 utf8\nDEF T Transform { children Script { field SFNode t USE T } }", "a.wrl", status);
  Watch watch(first);
  const SoRef<SoNode> second = readWorld("Group { }");
  settle();
  ASSERT_FALSE(watch.dead());
  SoRef<SoNode>{first}.reset();
  settle();
  EXPECT_TRUE(watch.dead());
}

TEST(Loops, WhoHoldsAScriptHoldsWhatItKnows) {
  SoRef<SoNode> root =
      readWorld("Group { children DEF T Transform { children DEF S Script { field SFNode t USE T } } }");
  SoRef<VrmlScript> script(static_cast<VrmlScript*>(SoNode::getByName("S")));
  SoNode* t = valueOf(*script, "t");
  Watch watch(t);
  root.reset();
  settle();
  ASSERT_FALSE(watch.dead());
  EXPECT_EQ(valueOf(*script, "t"), t);
  script.reset();
  settle();
  EXPECT_TRUE(watch.dead());
}

TEST(Loops, ANodeThatItsScriptForgetsStaysWhereItHangs) {
  const SoRef<SoNode> root =
      readWorld("Group { children DEF T Transform { children DEF S Script { field SFNode t USE T } } }");
  auto* script = static_cast<VrmlScript*>(SoNode::getByName("S"));
  Watch watch(valueOf(*script, "t"));
  static_cast<SoSFNode*>(script->getField("t"))->setValue(nullptr);
  settle();
  EXPECT_FALSE(watch.dead());
  EXPECT_EQ(static_cast<VrmlGroup*>(root.get())->getChild(0)->getRefCount(), 1);
}

TEST(Loops, CopiesEndToo) {
  SoRef<SoNode> root = readWorld(
      "DEF T Transform { children DEF S Script { field SFNode t USE T field MFNode all [ USE T ] } }");
  SoRef<SoNode> copy(VrmlNode::deepCopy(static_cast<VrmlNode*>(root.get()), 1));
  const auto* script = static_cast<VrmlScript*>(static_cast<VrmlGroup*>(copy.get())->getChild(0));
  EXPECT_EQ(valueOf(*script, "t"), copy.get());
  Watch watch(copy.get());
  root.reset();
  settle();
  EXPECT_FALSE(watch.dead());
  copy.reset();
  settle();
  EXPECT_TRUE(watch.dead());
}

}  // namespace
