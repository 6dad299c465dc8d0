// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlPositionInterpolator.h>

#include "core/NodeClassImpl.h"
#include "events/KeyFrames.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlPositionInterpolator::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlPositionInterpolator::keyValue>("keyValue", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlPositionInterpolator::value_changed>("value_changed", FieldKind::eventOut, {0, 0, 0}),
  };
  return table;
}

VrmlPositionInterpolator::VrmlPositionInterpolator() {
  setUpFields();
  connectOutput();
}

VrmlPositionInterpolator::~VrmlPositionInterpolator() = default;

void VrmlPositionInterpolator::evaluate() {
  evaluateSingle(
      keyValue, value_changed, SbVec3f(0, 0, 0),
      [](float w, const SbVec3f& a, const SbVec3f& b) { return a * w + b * (1 - w); },
      "Warning: The number of keys does not match the number of values.\n"
      "         Adjustments being made...\n");
}

template class tessel::NodeClass<VrmlPositionInterpolator, VrmlInterpolator>;
