// SPDX-License-Identifier: BSD-3-Clause
// How a group holds the mouse for the sensors in it.
#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include <Inventor/actions/SoHandleEventAction.h>
#include <Inventor/events/SoLocation2Event.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoEventCallback.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/pointing/VrmlTouchSensor.h>

#include "support/TestWorld.h"

using tessel::SoRef;

namespace {

/// Drags from any press to any release.
class DragProbe : public VrmlTouchSensor {
public:
  void handleEvent(SoHandleEventAction* action) override {
    const SoEvent* event = action->getEvent();
    if (SO_MOUSE_PRESS_EVENT(event, BUTTON1)) {
      active = true;
      action->setGrabber(this);
    } else if (!active) {
      return;
    } else if (SO_MOUSE_RELEASE_EVENT(event, BUTTON1)) {
      action->setGrabber(nullptr);
    } else {
      ++moves;
      if (onMove) onMove();
    }
    action->setHandled();
  }
  void ignoreGrabRelease() override { ignoreRelease = true; }
  void grabEventsCleanup() override {
    if (!std::exchange(ignoreRelease, false)) active = false;
  }

  bool active = false;
  int moves = 0;
  std::function<void()> onMove;

private:
  bool ignoreRelease = false;
};

/// A group with two sensors, and beside it one that sees what is left over.
struct Grab : ::testing::Test {
  Grab() : action(SbViewportRegion(100, 100)) {
    group->addChild(first.get());
    group->addChild(second.get());
    root->addChild(new SoPerspectiveCamera);
    root->addChild(group.get());
  }
  void send(const SoEvent& event) {
    action.setEvent(&event);
    action.apply(root.get());
  }
  void button(SoButtonEvent::State state) {
    SoMouseButtonEvent event;
    event.setButton(SoMouseButtonEvent::BUTTON1);
    event.setState(state);
    send(event);
  }
  void press() { button(SoButtonEvent::DOWN); }
  void release() { button(SoButtonEvent::UP); }
  void move() { send(SoLocation2Event()); }

  const tessel::test::TestWorld library{"Group { }"};
  const SoRef<DragProbe> first{new DragProbe}, second{new DragProbe};
  const SoRef<VrmlGroup> group{new VrmlGroup};
  const SoRef<SoSeparator> root{new SoSeparator};
  SoHandleEventAction action;
};

TEST_F(Grab, AllSensorsOfAGroupHoldTheMouseFromPressToRelease) {
  press();
  EXPECT_EQ(action.getGrabber(), group.get());
  move();
  EXPECT_TRUE(action.isHandled());
  EXPECT_EQ(first->moves, 1);
  EXPECT_EQ(second->moves, 1);
  release();
  EXPECT_EQ(action.getGrabber(), nullptr);
  EXPECT_FALSE(first->active || second->active);
}

TEST_F(Grab, ASensorThatLeavesTheGroupLetsGo) {
  press();
  group->removeChild(0);
  EXPECT_FALSE(first->active);
  move();
  EXPECT_EQ(first->moves, 0);
  EXPECT_EQ(second->moves, 1) << "the other one drags on";
  release();
  EXPECT_EQ(action.getGrabber(), nullptr);
}

TEST_F(Grab, AGroupWhoseSensorsHaveGoneLetsEventsPass) {
  press();
  group->removeAllChildren();
  EXPECT_FALSE(first->active || second->active);
  int passed = 0;
  auto* after = new SoEventCallback;
  after->addEventCallback(
      SoLocation2Event::getClassTypeId(), [](void* count, SoEventCallback*) { ++*static_cast<int*>(count); },
      &passed);
  root->addChild(after);
  move();
  EXPECT_EQ(action.getGrabber(), nullptr);
  EXPECT_EQ(passed, 1);
}

TEST_F(Grab, OneThatOnlyChangesItsPlaceHoldsOn) {
  press();
  SoNode* const turned[] = {second.get(), first.get()};
  group->children.setChildren(turned);
  EXPECT_TRUE(first->active && second->active);
  move();
  EXPECT_EQ(first->moves, 1);
  release();
  EXPECT_EQ(action.getGrabber(), nullptr);
}

TEST_F(Grab, ASensorMayBeRemovedByItsOwnEvent) {
  DragProbe* doomed = new DragProbe;
  group->addChild(doomed);
  press();
  doomed->onMove = [this] { group->removeChild(2); };
  move();
  EXPECT_EQ(first->moves, 1);
  release();
  EXPECT_EQ(action.getGrabber(), nullptr);
}

}  // namespace
