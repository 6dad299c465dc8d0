// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/events/VrmlNotifySensor.h>
#include <tessel/events/VrmlRoute.h>

#include <gtest/gtest.h>

#include <Inventor/SoFullPath.h>
#include <Inventor/nodes/SoSwitch.h>

#include "events/RouteProbe.h"

using tessel::test::ProbeWorld;

namespace {

struct Heard {
  int calls = 0;
  SoNode* node = nullptr;
  SoField* field = nullptr;
  int pathLength = 0;
  SoNode* tail = nullptr;

  static void hear(void* data, SoSensor* sensor) {
    auto* s = static_cast<VrmlNotifySensor*>(sensor);
    auto& heard = *static_cast<Heard*>(data);
    ++heard.calls;
    heard.node = s->getTriggerNode();
    heard.field = s->getTriggerField();
    if (const auto* path = static_cast<SoFullPath*>(s->getTriggerPath())) {
      heard.pathLength = path->getLength();
      heard.tail = path->getTail();
    }
  }
};

struct NotifySensor : ::testing::Test {
  ProbeWorld world{
      "DEF ROOT Group { children DEF T Transform { children DEF P RouteProbe {} } }\n"
      "DEF Q RouteProbe {}"};
  VrmlGroup& root = *world.get<VrmlGroup>("ROOT");
  VrmlTransform& transform = *world.get<VrmlTransform>("T");
  Heard heard;
  VrmlNotifySensor sensor{&Heard::hear, &heard};

  void SetUp() override { sensor.attach(&root); }
};

TEST_F(NotifySensor, CallsInsideTheNotificationAndSaysWhereItBegan) {
  transform.translation.setValue(1, 2, 3);
  EXPECT_EQ(heard.calls, 1);
  EXPECT_EQ(heard.node, &transform);
  EXPECT_EQ(heard.field, &transform.translation);
  EXPECT_FALSE(sensor.getTriggerPath());
  EXPECT_EQ(sensor.getPriority(), 0U);
}

TEST_F(NotifySensor, AcrossARouteItNamesTheNodeWhereTheRouteEnds) {
  VrmlRoute::add(&world.probe("Q").out, &world.probe("P").in);
  world.probe("Q").out = 1;
  EXPECT_EQ(heard.calls, 1);
  EXPECT_EQ(heard.node, &world.probe("P"));
  EXPECT_EQ(heard.field, &world.probe("P").in);
}

TEST_F(NotifySensor, ATouchedNodeHasNoField) {
  world.probe("P").touch();
  EXPECT_EQ(heard.node, &world.probe("P"));
  EXPECT_EQ(heard.field, nullptr);
}

TEST_F(NotifySensor, ThePathLeadsFromTheAttachedNodeToTheTrigger) {
  sensor.setTriggerPathFlag(TRUE);
  world.probe("P").level = 1;
  EXPECT_EQ(heard.pathLength, 3);
  EXPECT_EQ(heard.tail, &world.probe("P"));
  root.touch();
  EXPECT_EQ(heard.pathLength, 1);
  EXPECT_EQ(heard.tail, &root);
}

TEST_F(NotifySensor, ANodeHeldByAFieldEndsThePathAtItsHolder) {
  sensor.setTriggerPathFlag(TRUE);
  const tessel::SoRef<tessel::test::RouteProbe> held(new tessel::test::RouteProbe);
  world.probe("P").nodes.setValue(held.get());
  held->level = 1;
  EXPECT_EQ(heard.field, &world.probe("P").nodes);
  EXPECT_EQ(heard.tail, &world.probe("P"));
}

TEST_F(NotifySensor, IsNeverScheduled) {
  sensor.schedule();
  EXPECT_FALSE(sensor.isScheduled());
  sensor.detach();
  transform.translation.setValue(1, 2, 3);
  EXPECT_EQ(heard.calls, 0);
}

}  // namespace
