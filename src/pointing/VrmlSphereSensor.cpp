// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/pointing/VrmlSphereSensor.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlSphereSensor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlSphereSensor::offset>("offset", FieldKind::exposedField, {0, 0, 1, 0}),
      fieldSpec<&VrmlSphereSensor::autoOffset>("autoOffset", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlSphereSensor::trackPoint_changed>("trackPoint_changed", FieldKind::eventOut, {0, 0, 0}),
      fieldSpec<&VrmlSphereSensor::rotation_changed>("rotation_changed", FieldKind::eventOut, {0, 0, 1, 0}),
  };
  return table;
}

VrmlSphereSensor::VrmlSphereSensor() { setUpFields(); }

VrmlSphereSensor::~VrmlSphereSensor() = default;

template class tessel::NodeClass<VrmlSphereSensor, VrmlGeometricSensor>;
