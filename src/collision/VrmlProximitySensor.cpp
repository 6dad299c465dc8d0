// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/collision/VrmlProximitySensor.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlProximitySensor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlProximitySensor::center>("center", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlProximitySensor::size>("size", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlProximitySensor::enabled>("enabled", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlProximitySensor::isActive>("isActive", FieldKind::eventOut, {false}),
      fieldSpec<&VrmlProximitySensor::position_changed>("position_changed", FieldKind::eventOut, {0, 0, 0}),
      fieldSpec<&VrmlProximitySensor::orientation_changed>("orientation_changed", FieldKind::eventOut),
      fieldSpec<&VrmlProximitySensor::enterTime>("enterTime", FieldKind::eventOut, {0}),
      fieldSpec<&VrmlProximitySensor::exitTime>("exitTime", FieldKind::eventOut, {0}),
  };
  return table;
}

VrmlProximitySensor::VrmlProximitySensor() {
  setUpFields();
  // Half a turn to the last bit, which no angle gives.
  orientation_changed.setValue(SbRotation(0, 0, 1, 0));
  orientation_changed.setDefault(TRUE);
}

VrmlProximitySensor::~VrmlProximitySensor() = default;

template class tessel::NodeClass<VrmlProximitySensor, VrmlSensor>;
