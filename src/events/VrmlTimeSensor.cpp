// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlTimeSensor.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <Inventor/misc/SoNotification.h>

#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/Scoped.h>

#include "core/EventWatch.h"
#include "core/NodeClassImpl.h"
#include "core/PrototypeScope.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;
using tessel::NotifyOff;
using tessel::PrototypeScope;
using tessel::ScopedValue;

namespace {

enum Changed { cycleIntervalBit = 1, enabledBit = 2, loopBit = 4, startTimeBit = 8, stopTimeBit = 16 };
constexpr int allInputs = 31;

constexpr double never = std::numeric_limits<double>::infinity();

// A microsecond is what times are told apart by: the double of a date resolves little more.
constexpr double halfMicrosecond = 5e-7;
bool isBefore(double a, double b) { return b - a > halfMicrosecond; }
bool isSame(double a, double b) { return !isBefore(a, b) && !isBefore(b, a); }

// Whatever a script may have put into the field, as a number that can be reckoned with.
double secondsOf(const SoSFTime& field) {
  constexpr double largest = 1e300;
  const double seconds = field.getValue().getValue();
  return std::isnan(seconds) ? 0 : std::clamp(seconds, -largest, largest);
}

double frameTime() { return VrmlDB::getFrameTime().getValue(); }

// A change that came too late is taken back without a word.
void restore(SoSFTime& field, double value) {
  if (isSame(field.getValue().getValue(), value)) return;
  const NotifyOff silence(static_cast<SoField&>(field));
  field.setValue(SbTime(value));
}

// Keeps a node through what its own events may do to the world. One that nobody holds can't be held.
class Held {
public:
  explicit Held(SoBase* object) : held(object->getRefCount() > 0 ? object : nullptr) {
    if (held) held->ref();
  }
  ~Held() {
    if (held) held->unref();
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

private:
  SoBase* held;
};

}  // namespace

std::span<const FieldSpec> VrmlTimeSensor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlTimeSensor::cycleInterval>("cycleInterval", FieldKind::exposedField, {1}),
      fieldSpec<&VrmlTimeSensor::enabled>("enabled", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlTimeSensor::loop>("loop", FieldKind::exposedField, {false}),
      fieldSpec<&VrmlTimeSensor::startTime>("startTime", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlTimeSensor::stopTime>("stopTime", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlTimeSensor::cycleTime>("cycleTime", FieldKind::eventOut, {0}),
      fieldSpec<&VrmlTimeSensor::fraction_changed>("fraction_changed", FieldKind::eventOut, {0}),
      fieldSpec<&VrmlTimeSensor::isActive>("isActive", FieldKind::eventOut, {false}),
      fieldSpec<&VrmlTimeSensor::time>("time", FieldKind::eventOut, {0}),
  };
  return table;
}

VrmlTimeSensor::VrmlTimeSensor()
    : changedMask(allInputs),
      inputSensor(inputChangedCB, this),
      tickSensor(sensorCB, this),
      inDefinition(PrototypeScope::openDefinitions > 0),
      openInstance(inDefinition ? nullptr : PrototypeScope::openInstance) {
  setUpFields();
  inputSensor.setPriority(0);
  if (openInstance) tickSensor.attach();
}

VrmlTimeSensor::~VrmlTimeSensor() = default;

bool VrmlTimeSensor::readBody(tessel::WorldReader& reader) {
  if (!NodeClass::readBody(reader)) return false;
  checkInputs();
  return true;
}

void VrmlTimeSensor::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  const NotifyOff silence(static_cast<SoNode&>(*this));
  NodeClass::copyContents(from, copyConnections);
}

// Inputs.

int VrmlTimeSensor::bitOf(const SoField* field) const {
  if (field == &cycleInterval) return cycleIntervalBit;
  if (field == &enabled) return enabledBit;
  if (field == &loop) return loopBit;
  if (field == &startTime) return startTimeBit;
  return field == &stopTime ? stopTimeBit : 0;
}

void VrmlTimeSensor::notify(SoNotList* list) {
  if (!isNotifyEnabled()) return;
  const SoField* field = list->getLastField();
  if (field && list->getLastRec() && list->getLastRec()->getType() == SoNotRec::CONTAINER) {
    const int input = bitOf(field);
    if (input == 0) {  // an output: nobody above listens
      tessel::EventWatch::tellSent(*this, *list);
      return;
    }
    changedMask |= input;
    inputSensor.schedule();
  }
  if (optimizedNotify) {
    tessel::EventWatch::tellSent(*this, *list);
    uniqueId = SoNode::getNextNodeId();
  } else {
    NodeClass::notify(list);
  }
}

void VrmlTimeSensor::inputChangedCB(void* self, SoSensor*) {
  auto* sensor = static_cast<VrmlTimeSensor*>(self);
  const Held held(sensor);
  sensor->checkInputs();
}

void VrmlTimeSensor::checkInputs() {
  if (outputting || changedMask == 0 || inDefinition) return;
  const double now = frameTime();
  if (mayPlan(now)) {
    const int changes = std::exchange(changedMask, 0);
    const bool active = isActive.getValue();
    const bool lostLoop = (changes & loopBit) && active && !loop.getValue();
    if ((changes & enabledBit) && active && !enabled.getValue()) outputValues(true, now, true, false);
    setUpSensor(lostLoop, changes);
  }
  if (changedMask != 0) tickSensor.attach();  // looked at again with the next tick
}

// Routes may lead from the outputs back to the inputs, so that each plan makes the next: only so many are made in
// one frame.
bool VrmlTimeSensor::mayPlan(double now) {
  constexpr int mostInAFrame = 100;
  if (planTime != now) numPlans = 0;
  planTime = now;
  return ++numPlans <= mostInAFrame;
}

// The plan for a run.

void VrmlTimeSensor::setUpSensor(bool loopTurnedOff, int changes) {
  if (inDefinition || openInstance) return;
  tickSensor.detach();
  if (!isEnabled()) return;

  const double now = frameTime();
  const bool active = isActive.getValue();
  double stop = secondsOf(stopTime);
  // A stop in the past works at once; one before the start of the run was meant for another run.
  if (active && (changes & stopTimeBit) && isBefore(stop, now) && !isBefore(stop, activeStart)) stop = now;
  if (active && !shouldStop(loopTurnedOff)) {
    restore(startTime, activeStart);
    restore(cycleInterval, activeInterval);
  } else {
    activeStart = secondsOf(startTime);
    activeInterval = secondsOf(cycleInterval);
  }
  activeStop = endOfRun(loopTurnedOff, stop, now);

  // Each way out is the last thing done here, since the events that it sends may lead to another plan.
  if (isSame(activeStop, activeStart) && isSame(activeStop, now)) {
    nextCycle = now;
    outputValues(true, now, true, false);
  } else if (!isBefore(now, activeStart) && !isBefore(activeStop, now)) {
    turnItOn(SbTime(now));
    if (isSame(activeStop, now)) {
      tickSensor.detach();
      outputValues(false, now, true, false);
    } else {
      outputValues(true, now, true, true);
    }
  } else if (isBefore(now, activeStart) && !isBefore(activeStop, activeStart)) {
    turnItOn(SbTime(now));
    if (active) outputValues(false, now, true, false);  // that run is over, the next one waits
  } else if (active) {
    outputValues(true, std::min(activeStop, now), true, false);
  }
}

// When the run that began at `activeStart` ends, with that stop time.
double VrmlTimeSensor::endOfRun(bool loopTurnedOff, double stop, double now) const {
  const bool stopCounts = isBefore(activeStart, stop);
  if (loop.getValue()) return stopCounts ? stop : never;
  double end = activeStart + activeInterval;
  // A run that loses its loop plays to the end of its cycle.
  if (loopTurnedOff) end = isBefore(nextCycle, now) ? nextCycle + activeInterval : nextCycle;
  return stopCounts && isBefore(stop, end) ? stop : end;
}

bool VrmlTimeSensor::shouldStop(bool loopTurnedOff) const {
  const double now = frameTime();
  return !isBefore(now, endOfRun(loopTurnedOff, secondsOf(stopTime), now));
}

int VrmlTimeSensor::isEnabled() { return allEnabled && enabled.getValue(); }

void VrmlTimeSensor::turnItOn(const SbTime& when) {
  const double now = when.getValue();
  if (isBefore(0, activeInterval)) nextCycle = isBefore(now, activeStart) ? activeStart : now - inCycle(now);
  tickSensor.attach();
}

// Ticks and outputs.

void VrmlTimeSensor::sensorCB(void* self) {
  auto* sensor = static_cast<VrmlTimeSensor*>(self);
  const Held held(sensor);
  sensor->tick();
}

void VrmlTimeSensor::tick() {
  if (openInstance) {
    if (openInstance == PrototypeScope::openInstance) return;
    openInstance = nullptr;
    changedMask = allInputs;
  }
  if (changedMask != 0) {
    checkInputs();
    return;
  }
  const double now = frameTime();
  if (!enabled.getValue() || isBefore(now, activeStart)) return;
  const double t = isBefore(activeStop, now) ? activeStop : now;
  outputValues(true, t, !isActive.getValue(), true);
  if (isBefore(t, activeStop)) return;
  tickSensor.detach();
  outputValues(false, t, true, false);
}

void VrmlTimeSensor::outputValues(bool sendEvents, double t, bool changesActivity, bool activity) {
  {
    const ScopedValue<bool> busy(outputting, true);
    if (changesActivity && activity) setActive(true);
    if (sendEvents) sendOutEvents(SbTime(t));
    if (changesActivity && !activity) setActive(false);
  }
  checkInputs();  // what routes changed meanwhile
}

void VrmlTimeSensor::setActive(bool active) {
  if (static_cast<bool>(isActive.getValue()) != active) isActive.setValue(active);
}

// How far `t` is in its cycle, 0 where a cycle begins. `fmod` takes long where many cycles have passed.
double VrmlTimeSensor::inCycle(double t) const {
  constexpr double mostCycles = 1e15;
  const double elapsed = t - activeStart;
  const double cycles = std::floor(elapsed / activeInterval);
  const double passed =
      cycles < mostCycles ? std::fma(-cycles, activeInterval, elapsed) : std::fmod(elapsed, activeInterval);
  return isSame(passed, 0) || isSame(passed, activeInterval) ? 0 : passed;
}

void VrmlTimeSensor::sendOutEvents(const SbTime& when) {
  const double t = when.getValue();
  const bool isNew = !isSame(t, time.getValue().getValue());
  if (isBefore(0, activeInterval)) {
    const double passed = inCycle(t);
    // Where one cycle ends and the next begins, it is the end that counts.
    const bool atEnd = passed == 0 && isBefore(activeStart, t);
    const auto fraction = atEnd ? 1.0F : static_cast<float>(passed / activeInterval);
    if (!isBefore(t, nextCycle)) {
      const double begin = t - passed;
      if (!isSame(begin, cycleTime.getValue().getValue())) cycleTime.setValue(SbTime(begin));
      nextCycle = begin + activeInterval;
    }
    if (isNew || fraction != fraction_changed.getValue()) fraction_changed.setValue(fraction);
  }
  if (isNew) time.setValue(when);
}

template class tessel::NodeClass<VrmlTimeSensor, VrmlSensor>;
