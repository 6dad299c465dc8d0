// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/pointing/VrmlPlaneSensor.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlPlaneSensor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlPlaneSensor::minPosition>("minPosition", FieldKind::exposedField, {0, 0}),
      fieldSpec<&VrmlPlaneSensor::maxPosition>("maxPosition", FieldKind::exposedField, {-1, -1}),
      fieldSpec<&VrmlPlaneSensor::offset>("offset", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlPlaneSensor::autoOffset>("autoOffset", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlPlaneSensor::trackPoint_changed>("trackPoint_changed", FieldKind::eventOut, {0, 0, 0}),
      fieldSpec<&VrmlPlaneSensor::translation_changed>("translation_changed", FieldKind::eventOut, {0, 0, 0}),
  };
  return table;
}

VrmlPlaneSensor::VrmlPlaneSensor() { setUpFields(); }

VrmlPlaneSensor::~VrmlPlaneSensor() = default;

template class tessel::NodeClass<VrmlPlaneSensor, VrmlGeometricSensor>;
