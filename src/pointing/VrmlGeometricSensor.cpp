// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/pointing/VrmlGeometricSensor.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlGeometricSensor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlGeometricSensor::enabled>("enabled", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlGeometricSensor::isActive>("isActive", FieldKind::eventOut, {false}),
  };
  return table;
}

VrmlGeometricSensor::VrmlGeometricSensor() { setUpFields(); }

VrmlGeometricSensor::~VrmlGeometricSensor() = default;

template class tessel::NodeClass<VrmlGeometricSensor, VrmlSensor>;
