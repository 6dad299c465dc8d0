// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlScalarInterpolator.h>

#include "core/NodeClassImpl.h"
#include "events/KeyFrames.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlScalarInterpolator::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlScalarInterpolator::keyValue>("keyValue", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlScalarInterpolator::value_changed>("value_changed", FieldKind::eventOut, {0}),
  };
  return table;
}

VrmlScalarInterpolator::VrmlScalarInterpolator() {
  setUpFields();
  connectOutput();
}

VrmlScalarInterpolator::~VrmlScalarInterpolator() = default;

void VrmlScalarInterpolator::evaluate() {
  evaluateSingle(keyValue, value_changed, 0.0F,
                 [](float w, float a, float b) { return w * a + (1 - w) * b; });
}

template class tessel::NodeClass<VrmlScalarInterpolator, VrmlInterpolator>;
