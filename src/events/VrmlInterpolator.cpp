// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlInterpolator.h>

#include <algorithm>
#include <utility>

#include <Inventor/misc/SoNotification.h>

#include <tessel/toolkit/Scoped.h>

#include "core/Effort.h"
#include "core/EventWatch.h"
#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlInterpolator::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlInterpolator::key>("key", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlInterpolator::set_fraction>("set_fraction", FieldKind::eventIn, {0}),
  };
  return table;
}

VrmlInterpolator::VrmlInterpolator() { setUpFields(); }

// A field may hold the engine for a little longer.
VrmlInterpolator::~VrmlInterpolator() {
  if (engine) engine->forget();
}

void VrmlInterpolator::connectOutput() {
  SoField& output = *getOutputField();
  engine.reset(new VrmlInterpEvalManager(this, output.getTypeId()));
  const tessel::NotifyOff silence(output);
  output.connectFrom(&engine->output, TRUE);
}

// The connection of the copied output leads to the copy's own engine.
void VrmlInterpolator::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  addCopy(static_cast<const VrmlInterpolator*>(from)->engine.get(), engine.get());
  NodeClass::copyContents(from, copyConnections);
}

bool VrmlInterpolator::ownsOutput() {
  SoEngineOutput* master = nullptr;
  return getOutputField()->getConnectedEngine(master) && master == &engine->output;
}

bool tessel::evaluateOnDemand(const SoField& output) {
  auto* interpolator = static_cast<VrmlInterpolator*>(output.getContainer());
  if (!interpolator->ownsOutput()) return false;
  const NotifyOff silence(*interpolator->getOutputField());
  interpolator->evaluate();
  return true;
}

// Notification.

// What the engine would do, which knows one destination only.
void VrmlInterpolator::sendOutput() {
  SoField& output = *getOutputField();
  if (ownsOutput()) {
    output.setDirty(TRUE);
    output.touch();
  } else {
    engine->startNotify();
  }
}

void VrmlInterpolator::notify(SoNotList* list) {
  tessel::Effort::addHearer();
  tessel::EventWatch::tellSent(*this, *list);
  if (!isNotifyEnabled()) return;
  const SoField* field = list->getLastField();
  const SoNotRec* last = list->getLastRec();
  if (!field || !last || last->getType() != SoNotRec::CONTAINER || field == getOutputField()) return;
  if (enableState == EnableState::enabled)
    sendOutput();
  else
    enableState = EnableState::changed;
}

void VrmlInterpolator::enable(int on) {
  const auto before = std::exchange(enableState, on ? EnableState::enabled : EnableState::disabled);
  if (on && before == EnableState::changed) sendOutput();
}

// The keys.

// Takes all keys; true if there is another number of them than the last evaluation used. What that one found then
// holds no more.
bool VrmlInterpolator::countKeys() {
  if (numKeys == key.getNum()) return false;
  numKeys = key.getNum();
  index = 0;
  if (numKeys >= 2) inverseInterval = 1.0 / (static_cast<double>(key[1]) - static_cast<double>(key[0]));
  return true;
}

void VrmlInterpolator::limitKeys(int numValues) { numKeys = std::min(numKeys, numValues); }

void VrmlInterpolator::setupInterpolation() {
  const float f = set_fraction.getValue();
  const float* const keys = key.getValues(0);
  const int n = numKeys;
  if (!isEnabled() || n < 1) {
    index = -1;
    return;
  }
  if (n == 1 || !(f >= keys[0])) {
    index = 0;
    return;
  }
  if (f >= keys[n - 1]) {
    index = n;
    return;
  }
  // Mostly the fraction lies in the same interval as the last time.
  const bool known = 0 < index && index < n;
  const bool above = known && keys[index - 1] < f;
  if (above && f < keys[index]) {
    weight = static_cast<float>(static_cast<double>(keys[index] - f) * inverseInterval);
    return;
  }
  int low = above ? index : 0;
  int high = known && f <= keys[index - 1] ? index - 1 : n;
  while (low + 1 < high) {
    const int middle = (low + high) / 2;
    (keys[middle] <= f ? low : high) = middle;
  }
  high = std::min(high, n - 1);  // a last key that is no number ends no search
  if (keys[low] < keys[high]) {
    inverseInterval = 1.0 / (static_cast<double>(keys[high]) - static_cast<double>(keys[low]));
    weight = (keys[high] - f) * static_cast<float>(inverseInterval);
  } else {
    inverseInterval = 1.0;
    weight = 0;
  }
  index = high;
}

template class tessel::NodeClass<VrmlInterpolator, VrmlNode>;
