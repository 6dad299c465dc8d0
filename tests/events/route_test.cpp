// SPDX-License-Identifier: BSD-3-Clause
// Routes at work: fan-in, loops, lists, observers.
#include <tessel/core/VrmlGroup.h>
#include <tessel/events/VrmlFanIn.h>
#include <tessel/events/VrmlRoute.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Inventor/engines/SoElapsedTime.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoGroup.h>

#include "events/RouteProbe.h"

using tessel::SoRef;
using tessel::test::Messages;
using tessel::test::ProbeWorld;
using tessel::test::RouteProbe;

namespace {

struct Routes : ::testing::Test {
  ProbeWorld world{"DEF A RouteProbe {} DEF B RouteProbe {} DEF C RouteProbe {} DEF D RouteProbe {}"};
  RouteProbe &a = world.probe("A"), &b = world.probe("B"), &c = world.probe("C"), &d = world.probe("D");

  // The names of the inputs that have a source, and the source.
  static std::string inputsOf(const SoField& to) {
    const VrmlFanIn* fanIn = VrmlFanIn::feeding(&to);
    if (!fanIn) return "no fan-in";
    std::string text;
    for (int i = 0; i < fanIn->getNumInputs(); ++i) {
      SbName name;
      SoField* source = nullptr;
      fanIn->getFieldName(fanIn->getInput(i), name);
      fanIn->getInput(i)->getConnectedField(source);
      const char* from = source ? source->getContainer()->getName().getString() : "-";
      text += std::string(name.getString()) + "=" + from + " ";
    }
    return text;
  }
};

TEST_F(Routes, MakingOneSendsNothing) {
  a.out = 5;
  b.in = 3;
  const int before = b.notifications;
  EXPECT_EQ(VrmlRoute::add(&a.out, &b.in), 1);
  EXPECT_EQ(VrmlRoute::add(&c.out, &b.in), 1);
  EXPECT_EQ(b.notifications, before);
  EXPECT_EQ(b.in.getValue(), 3);
  a.out = 6;
  EXPECT_EQ(b.notifications, before + 1);
  EXPECT_EQ(b.in.getValue(), 6);
}

TEST_F(Routes, AnEventThatWaitsToBeReadOutlivesASecondRouteAndARemoval) {
  VrmlRoute::add(&a.out, &b.in);
  a.out = 6;
  VrmlRoute::add(&c.out, &b.in);
  EXPECT_EQ(b.in.getValue(), 6);
  c.out = 7;
  VrmlRoute::remove(&c.out, &b.in);
  EXPECT_EQ(b.in.getValue(), 7);
}

TEST_F(Routes, OfSeveralSourcesTheLastToFireCounts) {
  VrmlRoute::add(&c.out, &b.in);
  VrmlRoute::add(&a.out, &b.in);
  VrmlRoute::add(&d.level, &b.in);
  EXPECT_EQ(inputsOf(b.in), "input0=C input1=A input2=D ");
  const int before = b.notifications;
  d.level = 1;
  c.out = 2;
  a.out = 3;
  EXPECT_EQ(b.notifications, before + 3);
  EXPECT_EQ(b.in.getValue(), 3);
  c.out = 4;
  EXPECT_EQ(b.in.getValue(), 4);
}

TEST_F(Routes, ARouteMadeTwiceStaysOneBehindAFanIn) {
  VrmlRoute::add(&a.out, &b.in);
  EXPECT_EQ(VrmlRoute::add(&a.out, &b.in), 1);
  EXPECT_EQ(inputsOf(b.in), "input0=A ");
  EXPECT_EQ(world.messages.text(),
            "Coin warning in VrmlRoute::add(): ROUTE already exists from A.out to B.in!  Ignoring...");
}

TEST_F(Routes, TheUnnamedAreNamedAsSuchInTheWarning) {
  const SoRef<RouteProbe> nameless(new RouteProbe);
  SoSFFloat loose;
  for (int i = 0; i < 2; ++i) VrmlRoute::add(&loose, &nameless->in);
  EXPECT_EQ(world.messages.text(),
            "Coin warning in VrmlRoute::add(): ROUTE already exists from "
            "<NONAME>.<UNKNOWN> to <NONAME>.in!  Ignoring...");
}

TEST_F(Routes, ARemovedRouteIsGoneAndComesBackOnANewInput) {
  VrmlRoute::add(&a.out, &b.in);
  VrmlRoute::add(&c.out, &b.in);
  EXPECT_EQ(VrmlRoute::remove(&a.out, &b.in), 1);
  EXPECT_EQ(VrmlRoute::remove(&a.out, &b.in), 0);
  EXPECT_FALSE(VrmlRoute::routeExists(&a.out, &b.in));
  a.out = 9;
  EXPECT_EQ(b.in.getValue(), 0);
  VrmlRoute::add(&a.out, &b.in);
  EXPECT_EQ(inputsOf(b.in), "input0=- input1=C input2=A ");
  a.out = 10;
  EXPECT_EQ(b.in.getValue(), 10);

  VrmlRoute::add(&a.out, &d.in);
  EXPECT_EQ(VrmlRoute::remove(&c.out, &d.in), 0);
  EXPECT_EQ(VrmlRoute::remove(&a.out, &d.in), 1);
  EXPECT_FALSE(d.in.isConnected());
}

TEST_F(Routes, KindsAndTypesDecideWhatCanBeRouted) {
  EXPECT_EQ(VrmlRoute::add(&a.in, &b.in), 0);
  EXPECT_EQ(VrmlRoute::add(&a.out, &b.out), 0);
  EXPECT_EQ(VrmlRoute::add(&a.size, &b.in), 0);
  EXPECT_EQ(VrmlRoute::add(&a.in, &b.out, 1), 1);
  EXPECT_EQ(VrmlRoute::add(&a.level, &b.time), 0) << "the toolkit would convert";
  EXPECT_FALSE(b.time.isConnected());
}

TEST_F(Routes, ALoopEndsAndLeavesOneValueEverywhere) {
  VrmlRoute::add(&a.level, &b.level);
  VrmlRoute::add(&b.level, &c.level);
  VrmlRoute::add(&c.level, &a.level);
  a.level = 1;
  EXPECT_EQ(c.level.getValue(), 1);
  b.level = 2;
  EXPECT_EQ(a.level.getValue(), 2);

  VrmlRoute::add(&d.level, &a.level);  // the loop now passes through a fan-in
  const int before = a.notifications;
  d.level = 3;
  EXPECT_EQ(a.notifications, before + 1);
  for (const RouteProbe* probe : {&a, &b, &c}) EXPECT_EQ(probe->level.getValue(), 3);
  b.level = 4;
  for (const RouteProbe* probe : {&a, &b, &c}) EXPECT_EQ(probe->level.getValue(), 4);
}

TEST_F(Routes, AnEngineThatDroveAFieldGoesOnBehindTheFanIn) {
  const SoRef<SoElapsedTime> clock(new SoElapsedTime);
  b.time.connectFrom(&clock->timeOut);
  VrmlRoute::add(&a.time, &b.time);
  SoEngineOutput* engine = nullptr;
  VrmlFanIn* fanIn = VrmlFanIn::feeding(&b.time);
  ASSERT_TRUE(fanIn);
  EXPECT_TRUE(fanIn->getInput(0)->getConnectedEngine(engine));
  EXPECT_EQ(engine, &clock->timeOut);
  a.time = SbTime(12.0);
  EXPECT_EQ(b.time.getValue(), SbTime(12.0));
}

TEST_F(Routes, ManySourcesOfOneFieldAllCount) {
  std::vector<SoRef<RouteProbe>> sources;
  for (int i = 0; i < 100; ++i) {
    sources.emplace_back(new RouteProbe);
    EXPECT_EQ(VrmlRoute::add(&sources.back()->out, &b.in), 1);
  }
  for (int i = 0; i < 100; ++i) {
    sources[static_cast<std::size_t>(i)]->out = static_cast<float>(i + 1);
    EXPECT_EQ(b.in.getValue(), static_cast<float>(i + 1));
  }
  EXPECT_EQ(VrmlRoute::remove(&sources[50]->out, &b.in), 1);
  VrmlRoute::add(&sources[51]->out, &b.in);
  EXPECT_EQ(world.messages.count("ROUTE already exists"), 1);
  EXPECT_EQ(VrmlFanIn::feeding(&b.in)->getNumInputs(), 100);
}

TEST_F(Routes, ListsLookThroughFanInsAndLeaveOutWhatIsNoRoute) {
  VrmlRoute::add(&a.out, &b.in);
  VrmlRoute::add(&c.out, &b.in);
  VrmlRoute::add(&a.out, &d.in);
  SoSFFloat loose;
  d.level.connectFrom(&loose);
  SoFieldList incoming, outgoing, none;
  EXPECT_EQ(VrmlRoute::getIncoming(&b.in, incoming), 2);
  EXPECT_EQ(incoming[0], &a.out);
  EXPECT_EQ(incoming[1], &c.out);
  EXPECT_EQ(VrmlRoute::getOutgoing(&a.out, outgoing), 2);
  EXPECT_GE(outgoing.find(&b.in), 0);
  EXPECT_GE(outgoing.find(&d.in), 0);
  EXPECT_EQ(VrmlRoute::getAllIncoming(&d.level, none), 0) << "a field on no node";

  c.hasOnlyLinks = true;
  SoFieldList routes, all;
  EXPECT_EQ(VrmlRoute::getIncoming(&b.in, routes), 1);
  EXPECT_EQ(VrmlRoute::getAllIncoming(&b.in, all), 2);
  EXPECT_TRUE(VrmlRoute::connectionExists(&c.out, &b.in));
  EXPECT_FALSE(VrmlRoute::routeExists(&c.out, &b.in));
}

TEST_F(Routes, ObserversHearOfEachRouteOnce) {
  std::vector<std::string> heard;
  const auto observer = [](void* data, SoField* from, SoField* to, int added) {
    static_cast<std::vector<std::string>*>(data)->push_back(std::string(added ? "+" : "-") +
                                                            from->getContainer()->getName().getString() +
                                                            to->getContainer()->getName().getString());
  };
  VrmlRoute::addCallback(observer, &heard);
  VrmlRoute::add(&a.out, &b.in);
  VrmlRoute::add(&a.out, &b.in);  // is there already
  VrmlRoute::add(&c.out, &b.in);
  VrmlRoute::remove(&d.out, &b.in);  // was never there
  VrmlRoute::remove(&a.out, &b.in);
  VrmlRoute::doInvoke = 0;
  VrmlRoute::remove(&c.out, &b.in);
  VrmlRoute::doInvoke = 1;
  VrmlRoute::removeCallback(observer, &heard);
  VrmlRoute::add(&a.out, &b.in);
  EXPECT_EQ(heard, (std::vector<std::string>{"+AB", "+CB", "-AB"}));
}

TEST_F(Routes, EndsMayDieInAnyOrder) {
  SoRef<RouteProbe> first(new RouteProbe), second(new RouteProbe), sink(new RouteProbe);
  VrmlRoute::add(&first->out, &sink->in);
  VrmlRoute::add(&second->out, &sink->in);
  first->out = 1;
  EXPECT_EQ(sink->in.getValue(), 1);
  second->out = 2;
  second.reset();
  EXPECT_EQ(sink->in.getValue(), 1) << "the event died with its source";
  first->out = 4;
  EXPECT_EQ(sink->in.getValue(), 4);
  sink.reset();
  first->out = 3;
}

TEST_F(Routes, ACopiedGraphHasAFanInOfItsOwn) {
  const SoRef<SoGroup> group(new SoGroup);
  for (RouteProbe* probe : {&a, &b, &c}) group->addChild(probe);
  VrmlRoute::add(&a.out, &b.in);
  VrmlRoute::add(&c.out, &b.in);
  const SoRef<SoGroup> copy(static_cast<SoGroup*>(group->copy(TRUE)));
  auto probe = [&](int i) { return static_cast<RouteProbe*>(copy->getChild(i)); };
  ASSERT_TRUE(VrmlFanIn::feeding(&probe(1)->in));
  EXPECT_NE(VrmlFanIn::feeding(&probe(1)->in), VrmlFanIn::feeding(&b.in));
  probe(0)->out = 7;
  EXPECT_EQ(probe(1)->in.getValue(), 7);
  probe(2)->out = 8;
  EXPECT_EQ(probe(1)->in.getValue(), 8);
  EXPECT_EQ(b.in.getValue(), 0);
}

TEST_F(Routes, ARouteThatIsSwitchedOffIsSoInCopies) {
  const SoRef<VrmlGroup> group(new VrmlGroup);
  for (RouteProbe* probe : {&a, &b}) group->addChild(probe);
  VrmlRoute::add(&a.out, &b.in);
  b.in.enableConnection(FALSE);
  a.out = 5;
  for (const bool deep : {false, true}) {
    const SoRef<SoNode> copy(deep ? VrmlNode::deepCopy(group.get(), TRUE) : group->copy(TRUE));
    const auto* copied = static_cast<VrmlGroup*>(copy.get());
    auto& in = static_cast<RouteProbe*>(copied->getChild(1))->in;
    EXPECT_EQ(in.getValue(), 0);
    in.enableConnection(TRUE);
    EXPECT_EQ(in.getValue(), 5);
  }
}

}  // namespace
