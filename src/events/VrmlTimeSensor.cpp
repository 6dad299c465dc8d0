// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlTimeSensor.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

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

VrmlTimeSensor::VrmlTimeSensor() { setUpFields(); }

VrmlTimeSensor::~VrmlTimeSensor() = default;

template class tessel::NodeClass<VrmlTimeSensor, VrmlSensor>;
