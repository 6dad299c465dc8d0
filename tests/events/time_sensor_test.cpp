// SPDX-License-Identifier: BSD-3-Clause
// TimeSensor: its runs, what it sends in them, and how the sensors of a world tick together.
#include <tessel/events/VrmlTimeSensor.h>

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/engines/SoBoolOperation.h>
#include <Inventor/sensors/SoFieldSensor.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <Inventor/sensors/SoSensorManager.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/toolkit/Scoped.h>

#include "core/PrototypeScope.h"
#include "events/Clock.h"
#include "support/TestWorld.h"

using tessel::PrototypeScope;
using tessel::ScopedValue;
using tessel::SoRef;
using tessel::test::Clock;
using tessel::test::TestWorld;

namespace {

// Calls back inside the notification of a field.
class Listener : public SoFieldSensor {
public:
  Listener(SoField& field, std::function<void()> f) : heard(std::move(f)) { attach(&field); }
  void notify(SoNotList*) override { heard(); }
  void schedule() override {}

private:
  std::function<void()> heard;
};

std::string shortest(double number) {
  char text[40];
  return {text, std::to_chars(text, text + sizeof text, number, std::chars_format::general, 9).ptr};
}

// The events of a sensor in their order: "active", "cycle S", "fraction F", "time S", "inactive".
class EventLog {
public:
  explicit EventLog(VrmlTimeSensor& t) : sensor(t) {
    listen(t.isActive, [this] { return std::string(sensor.isActive.getValue() ? "active" : "inactive"); });
    listen(t.cycleTime, [this] { return "cycle " + seconds(sensor.cycleTime); });
    listen(t.fraction_changed, [this] { return "fraction " + shortest(sensor.fraction_changed.getValue()); });
    listen(t.time, [this] { return "time " + seconds(sensor.time); });
  }
  std::string take() { return std::exchange(text, {}); }

private:
  static std::string seconds(const SoSFTime& field) {
    return shortest(std::round((field.getValue().getValue() - Clock::start) * 1e6) / 1e6);
  }
  void listen(SoField& field, std::function<std::string()> event) {
    listeners.push_back(std::make_unique<Listener>(field, [this, event = std::move(event)] {
      if (!text.empty()) text += ", ";
      text += event();
    }));
  }

  VrmlTimeSensor& sensor;
  std::string text;
  std::vector<std::unique_ptr<Listener>> listeners;
};

// A world with the sensor T, on the test's clock.
struct Timed {
  explicit Timed(const std::string& body)
      : world("DEF T TimeSensor { " + body + " }"), t(*world.get<VrmlTimeSensor>("T")), log(t) {}

  // The events of the frame at that time.
  std::string at(double seconds) {
    clock.to(seconds);
    return log.take();
  }
  // The events that an input causes by itself.
  template <class Field, class Value> std::string set(Field& field, const Value& value) {
    field.setValue(value);
    return log.take();
  }

  Clock clock;
  TestWorld world;
  VrmlTimeSensor& t;
  EventLog log;
};

// The start of a run is at this time, so that files can say it.
constexpr const char* startsNow = "startTime 1000000000 ";
std::string from0(const char* rest) { return std::string(startsNow) + rest; }

TEST(TimeSensor, DoesNothingWhereItsOnlyCycleIsLongPast) {
  Timed run("");
  EXPECT_EQ(run.at(1), "");
  EXPECT_EQ(run.set(run.t.cycleInterval, 5.0), "");
  EXPECT_EQ(run.at(2), "");
  EXPECT_EQ(run.t.time.getValue(), SbTime::zero());
}

TEST(TimeSensor, RunsOnceFromAnEventToTheEndOfTheCycleHoweverLateTheFrame) {
  Timed run("cycleInterval 2");
  run.at(3);
  EXPECT_EQ(run.set(run.t.startTime, Clock::time(3)), "active, cycle 3, fraction 0, time 3");
  EXPECT_EQ(run.at(3.5), "fraction 0.25, time 3.5");
  EXPECT_EQ(run.at(3.5), "");
  EXPECT_EQ(run.at(7), "cycle 5, fraction 1, time 5, inactive");
  EXPECT_EQ(run.at(8), "");
}

TEST(TimeSensor, StartsAsSoonAsItIsRead) {
  Timed run(from0("loop TRUE"));
  EXPECT_TRUE(run.t.isActive.getValue());
  EXPECT_EQ(run.t.time.getValue(), Clock::time(0));
}

TEST(TimeSensor, WaitsForItsStartAndKeepsItsPhase) {
  Timed run("startTime 1000000010 cycleInterval 4 loop TRUE");
  EXPECT_EQ(run.at(9.9), "");
  EXPECT_FALSE(run.t.isActive.getValue());
  EXPECT_EQ(run.at(11), "active, cycle 10, fraction 0.25, time 11");
  EXPECT_EQ(run.at(23), "cycle 22, fraction 0.25, time 23");
}

// A double of today's date holds no tenth of a second, and no third.
TEST(TimeSensor, EndsEachCycleAtOneWhateverItsLength) {
  for (const double interval : {0.1, 0.3, 1.0 / 3, 0.7, 1.1}) {
    Timed run(from0("loop TRUE"));
    run.t.enabled = FALSE;
    run.t.cycleInterval = interval;
    run.t.enabled = TRUE;
    run.log.take();
    for (int k = 1; k < 50; ++k) {
      const std::string when = shortest(std::round(k * interval * 1e6) / 1e6);
      ASSERT_EQ(run.at((k - 0.25) * interval).find("cycle"), std::string::npos) << interval << " " << k;
      ASSERT_EQ(run.at(k * interval), "cycle " + when + ", fraction 1, time " + when) << interval << " " << k;
    }
    run.t.loop = FALSE;
    run.at(50 * interval);
    EXPECT_EQ(run.t.fraction_changed.getValue(), 1) << interval;
    EXPECT_FALSE(run.t.isActive.getValue()) << interval;
  }
}

TEST(TimeSensor, DropsStartAndLengthThatComeDuringARun) {
  Timed run(from0("cycleInterval 2"));
  run.at(1);
  EXPECT_EQ(run.set(run.t.startTime, Clock::time(1)).find("active"), std::string::npos);
  EXPECT_EQ(run.t.startTime.getValue(), Clock::time(0));
  run.set(run.t.cycleInterval, 100.0);
  EXPECT_EQ(run.t.cycleInterval.getValue(), SbTime(2.0));
  EXPECT_EQ(run.at(3), "cycle 2, fraction 1, time 2, inactive");
  EXPECT_EQ(run.set(run.t.startTime, Clock::time(3)), "active, cycle 3, fraction 0, time 3");
}

TEST(TimeSensor, PlaysItsCycleToTheEndWhenItLosesItsLoop) {
  Timed run(from0("cycleInterval 2 loop TRUE"));
  run.at(5);
  EXPECT_EQ(run.set(run.t.loop, FALSE), "");
  EXPECT_EQ(run.at(5.5), "fraction 0.75, time 5.5");
  EXPECT_EQ(run.at(6.5), "cycle 6, fraction 1, time 6, inactive");
}

TEST(TimeSensor, SendsOnceMoreWhenItIsDisabledAndGoesOnInPhase) {
  Timed run(from0("cycleInterval 4 loop TRUE"));
  run.at(1);
  VrmlDB::setClock(Clock::time(2));
  VrmlDB::setFrameTime();
  EXPECT_EQ(run.set(run.t.enabled, FALSE), "fraction 0.5, time 2, inactive");
  EXPECT_EQ(run.at(3), "");
  EXPECT_EQ(run.set(run.t.enabled, TRUE), "active, fraction 0.75, time 3");
}

TEST(TimeSensor, StopsAtItsStopTime) {
  Timed run(from0("cycleInterval 4 loop TRUE stopTime 1000000005"));
  EXPECT_EQ(run.at(4.5), "cycle 4, fraction 0.125, time 4.5");
  EXPECT_EQ(run.at(6), "fraction 0.25, time 5, inactive");

  Timed once(from0("cycleInterval 4 stopTime 1000000001"));
  EXPECT_EQ(once.at(2), "fraction 0.25, time 1, inactive");
}

TEST(TimeSensor, StopsAtOnceForAStopInThePastButNotForOneBeforeItsStart) {
  Timed run(from0("cycleInterval 4 loop TRUE"));
  run.at(3);
  EXPECT_EQ(run.set(run.t.stopTime, Clock::time(-1)).find("inactive"), std::string::npos);
  EXPECT_TRUE(run.t.isActive.getValue());
  EXPECT_EQ(run.set(run.t.stopTime, Clock::time(0)), "inactive");
  EXPECT_EQ(run.at(4), "");
}

TEST(TimeSensor, IsInactiveWhileItWaitsForAnotherRun) {
  Timed run(from0("cycleInterval 4 loop TRUE"));
  run.at(1);
  {
    const tessel::NotifyOff silence(static_cast<SoField&>(run.t.startTime));
    run.t.startTime.setValue(Clock::time(5));
  }
  EXPECT_EQ(run.set(run.t.stopTime, Clock::time(1)), "inactive");
  EXPECT_EQ(run.at(4), "");
  EXPECT_EQ(run.at(6), "active, cycle 5, fraction 0.25, time 6");
}

TEST(TimeSensor, SendsOnlyTimeWithoutAUsableInterval) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double interval : {0.0, -1.0, nan, 1e-9}) {
    Timed run("");
    run.t.cycleInterval = interval;
    EXPECT_EQ(run.set(run.t.startTime, Clock::time(0)), interval < 0 ? "" : "time 0") << interval;
    run.t.loop = TRUE;
    run.log.take();
    EXPECT_EQ(run.at(1), "time 1") << interval;
    EXPECT_EQ(run.set(run.t.stopTime, Clock::time(1)), "inactive") << interval;
    EXPECT_EQ(run.at(2), "") << interval;
  }
}

TEST(TimeSensor, SurvivesTimesBeyondAllClocks) {
  const double inf = std::numeric_limits<double>::infinity();
  const double times[] = {1e300, -1e300, inf, -inf, std::numeric_limits<double>::quiet_NaN(), 1e18, 0};
  for (const double start : times)
    for (const double stop : times)
      for (const double interval : times)
        for (const bool loop : {false, true}) {
          Timed run("enabled FALSE");
          run.t.startTime = start;
          run.t.stopTime = stop;
          run.t.cycleInterval = interval;
          run.t.loop = loop;
          run.t.enabled = TRUE;
          run.at(1);
          run.at(2);
          const float fraction = run.t.fraction_changed.getValue();
          ASSERT_TRUE(fraction >= 0 && fraction <= 1) << start << " " << stop << " " << interval;
          ASSERT_TRUE(std::isfinite(run.t.time.getValue().getValue())) << start << " " << stop;
        }
}

TEST(TimeSensor, StartsNoRunWhileTheHostForbidsItButEndsThoseThatRun) {
  Timed run(from0("cycleInterval 2"));
  const ScopedValue<int> off(VrmlSensor::allEnabled, 0);
  EXPECT_EQ(run.at(1), "fraction 0.5, time 1");
  EXPECT_EQ(run.at(2), "cycle 2, fraction 1, time 2, inactive");
  EXPECT_EQ(run.set(run.t.startTime, Clock::time(2)), "");
}

// Routes from outputs back to inputs.

TEST(TimeSensor, TakesAnInputThatItsOwnOutputSetsWhenTheOutputIsDone) {
  Timed run(from0("cycleInterval 1"));
  VrmlRoute::add(&run.t.time, &run.t.startTime);  // each end is a new start
  EXPECT_EQ(run.at(0.5), "fraction 0.5, time 0.5");
  EXPECT_EQ(run.t.startTime.getValue(), Clock::time(0));
  EXPECT_EQ(run.at(1), "cycle 1, fraction 1, time 1, fraction 0");
  EXPECT_TRUE(run.t.isActive.getValue());
  EXPECT_EQ(run.at(1.5), "fraction 0.5, time 1.5");
}

TEST(TimeSensor, ComesToAnEndWhereItSwitchesItselfOffAndOn) {
  Timed run("loop TRUE enabled FALSE");
  const SoRef<SoBoolOperation> negation(new SoBoolOperation);
  negation->operation = SoBoolOperation::NOT_A;
  negation->a.connectFrom(&run.t.isActive);
  run.t.enabled.connectFrom(&negation->output);
  run.t.enabled.touch();
  run.at(1);
  run.at(2);
  EXPECT_EQ(run.t.time.getValue(), Clock::time(2));
}

// Notification.

TEST(TimeSensor, TellsNobodyAboveOfItsOutputs) {
  Timed run(from0("loop TRUE"));
  int heard = 0;
  SoNodeSensor above([](void* count, SoSensor*) { ++*static_cast<int*>(count); }, &heard);
  const SoRef<VrmlGroup> group(new VrmlGroup);
  group->addChild(&run.t);
  above.setPriority(0);
  above.attach(group.get());
  run.at(1);
  EXPECT_EQ(heard, 0);
  run.t.stopTime = Clock::time(3);
  EXPECT_EQ(heard, 1);
  const ScopedValue<int> cut(VrmlNode::optimizedNotify, 1);
  run.t.stopTime = Clock::time(4);
  EXPECT_EQ(heard, 1);
}

// Many sensors.

struct ManySensors : ::testing::Test {
  Clock clock;
  TestWorld world{
      "DEF A TimeSensor { loop TRUE } DEF B TimeSensor { loop TRUE } DEF C TimeSensor { loop TRUE }"};
  VrmlTimeSensor &a = *world.get<VrmlTimeSensor>("A"), &b = *world.get<VrmlTimeSensor>("B"),
                 &c = *world.get<VrmlTimeSensor>("C");
  std::string order;
  Listener onA{a.time, [this] { order += 'a'; }}, onB{b.time, [this] { order += 'b'; }},
      onC{c.time, [this] { order += 'c'; }};

  std::string at(double seconds) {
    order.clear();
    clock.to(seconds);
    return order;
  }
};

TEST_F(ManySensors, TickInTheOrderInWhichTheyBegan) {
  EXPECT_EQ(at(1), "abc");
  a.enabled = FALSE;
  a.enabled = TRUE;
  EXPECT_EQ(at(2), "bca");
}

TEST_F(ManySensors, LeaveAndEnterInTheMiddleOfATick) {
  c.enabled = FALSE;
  const Listener swap(a.time, [this] {
    if (!b.enabled.getValue()) return;
    b.enabled = FALSE;
    c.enabled = TRUE;
  });
  EXPECT_EQ(at(1), "abc");  // what the changes send by themselves
  EXPECT_EQ(at(2), "ac");
}

TEST_F(ManySensors, GoWithTheirNodesInTheMiddleOfATick) {
  auto* group = static_cast<VrmlGroup*>(world.root());
  const Listener remove(b.time, [group] {
    while (group->getNumChildren() > 0) group->removeChild(0);
  });
  EXPECT_EQ(at(1), "ab");
  EXPECT_EQ(at(2), "");
}

TEST_F(ManySensors, LeaveTheClockAloneWhenTheyAreDone) {
  EXPECT_EQ(at(1), "abc");
  for (VrmlTimeSensor* sensor : {&a, &b, &c}) sensor->enabled = FALSE;
  VrmlDB::setClock(Clock::time(2));
  EXPECT_FALSE(SoDB::getSensorManager()->isDelaySensorPending());
  b.enabled = TRUE;
  EXPECT_EQ(at(3), "b");
}

// Prototypes.

TEST(TimeSensor, NeverRunsInTheBodyOfAPrototype) {
  ScopedValue<int> reading(PrototypeScope::openDefinitions, 1);
  Timed run(from0("loop TRUE"));
  EXPECT_EQ(run.at(1), "");
  PrototypeScope::openDefinitions = 0;
  EXPECT_EQ(run.set(run.t.cycleInterval, 2.0), "");
  EXPECT_EQ(run.at(2), "");
}

TEST(TimeSensor, StartsInAnInstanceWithTheFirstTickAfterItIsComplete) {
  Timed run("");
  const int instance = 0;
  SoRef<VrmlTimeSensor> copy;
  {
    const ScopedValue<const void*> open(PrototypeScope::openInstance, &instance);
    copy.reset(static_cast<VrmlTimeSensor*>(VrmlNode::deepCopy(&run.t, 1)));
    copy->loop = TRUE;
    run.at(1);
    EXPECT_FALSE(copy->isActive.getValue());
  }
  EXPECT_FALSE(copy->isActive.getValue());
  EventLog log(*copy);
  run.at(2);
  EXPECT_EQ(log.take().substr(0, 7), "active,");
  EXPECT_EQ(run.t.isActive.getValue(), FALSE);
}

// The clock of a scene manager.

TEST(TimeSensor, SeesTheFrameTimeOfThePreviousTick) {
  Clock clock;
  TestWorld world("DEF T TimeSensor { loop TRUE cycleInterval 100 } DEF X Transform {}");
  VrmlSceneManager manager;
  manager.setSceneGraph(world.root());
  auto& t = *world.get<VrmlTimeSensor>("T");
  clock.tickAt(1);
  clock.tickAt(2);
  EXPECT_EQ(t.time.getValue(), Clock::time(1));
  EXPECT_EQ(VrmlDB::getFrameTime(), Clock::time(2));
}

TEST(TimeSensor, StartsOnTimeOnTheWallClockThoughNothingIsDrawn) {
  tessel::test::startLibrary();
  SoDB::enableRealTimeSensor(TRUE);  // other tests in the program may have taken the clock
  TestWorld world("DEF T TimeSensor { }");
  VrmlSceneManager manager;
  manager.setSceneGraph(world.root());
  auto& t = *world.get<VrmlTimeSensor>("T");
  t.startTime = SbTime::getTimeOfDay() + SbTime(0.4);
  const SbTime patience = SbTime::getTimeOfDay() + SbTime(5.0);
  SoSensorManager& sensors = *SoDB::getSensorManager();
  while (!t.isActive.getValue() && SbTime::getTimeOfDay() < patience) {
    sensors.processTimerQueue();
    sensors.processDelayQueue(TRUE);
    SbTime::sleep(5);
  }
  EXPECT_TRUE(t.isActive.getValue());
  EXPECT_LT((SbTime::getTimeOfDay() - t.startTime.getValue()).getValue(), 2);
}

}  // namespace
