// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/pointing/VrmlTouchSensor.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlTouchSensor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlTouchSensor::isOver>("isOver", FieldKind::eventOut, {false}),
      fieldSpec<&VrmlTouchSensor::hitPoint_changed>("hitPoint_changed", FieldKind::eventOut, {0, 0, 0}),
      fieldSpec<&VrmlTouchSensor::hitNormal_changed>("hitNormal_changed", FieldKind::eventOut, {0, 0, 1}),
      fieldSpec<&VrmlTouchSensor::hitTexCoord_changed>("hitTexCoord_changed", FieldKind::eventOut, {0, 0}),
      fieldSpec<&VrmlTouchSensor::touchTime>("touchTime", FieldKind::eventOut, {0}),
  };
  return table;
}

VrmlTouchSensor::VrmlTouchSensor() { setUpFields(); }

VrmlTouchSensor::~VrmlTouchSensor() = default;

template class tessel::NodeClass<VrmlTouchSensor, VrmlGeometricSensor>;
