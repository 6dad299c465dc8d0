// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/pointing/VrmlCylinderSensor.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlCylinderSensor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlCylinderSensor::minAngle>("minAngle", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlCylinderSensor::maxAngle>("maxAngle", FieldKind::exposedField, {-1}),
      fieldSpec<&VrmlCylinderSensor::diskAngle>("diskAngle", FieldKind::exposedField, {0.262}),
      fieldSpec<&VrmlCylinderSensor::offset>("offset", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlCylinderSensor::autoOffset>("autoOffset", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlCylinderSensor::trackPoint_changed>("trackPoint_changed", FieldKind::eventOut,
                                                         {0, 0, 0}),
      fieldSpec<&VrmlCylinderSensor::rotation_changed>("rotation_changed", FieldKind::eventOut, {0, 0, 1, 0}),
  };
  return table;
}

VrmlCylinderSensor::VrmlCylinderSensor() { setUpFields(); }

VrmlCylinderSensor::~VrmlCylinderSensor() = default;

template class tessel::NodeClass<VrmlCylinderSensor, VrmlGeometricSensor>;
