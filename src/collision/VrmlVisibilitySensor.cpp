// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/collision/VrmlVisibilitySensor.h>

#include <utility>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlVisibilitySensor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlVisibilitySensor::center>("center", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlVisibilitySensor::size>("size", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlVisibilitySensor::enabled>("enabled", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlVisibilitySensor::isActive>("isActive", FieldKind::eventOut, {false}),
      fieldSpec<&VrmlVisibilitySensor::enterTime>("enterTime", FieldKind::eventOut, {0}),
      fieldSpec<&VrmlVisibilitySensor::exitTime>("exitTime", FieldKind::eventOut, {0}),
  };
  return table;
}

VrmlVisibilityList* VrmlVisibilitySensor::listInForce = nullptr;

VrmlVisibilitySensor::VrmlVisibilitySensor() { setUpFields(); }

VrmlVisibilitySensor::~VrmlVisibilitySensor() = default;

VrmlVisibilityList* VrmlVisibilitySensor::startTraversal(VrmlVisibilityList* list) {
  return std::exchange(listInForce, list);
}

void VrmlVisibilitySensor::finishTraversal(VrmlVisibilityList* outer) { listInForce = outer; }

template class tessel::NodeClass<VrmlVisibilitySensor, VrmlSensor>;
