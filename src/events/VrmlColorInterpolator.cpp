// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlColorInterpolator.h>

#include "core/NodeClassImpl.h"
#include "events/KeyFrames.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlColorInterpolator::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlColorInterpolator::keyValue>("keyValue", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlColorInterpolator::value_changed>("value_changed", FieldKind::eventOut, {0, 0, 0}),
  };
  return table;
}

VrmlColorInterpolator::VrmlColorInterpolator() {
  setUpFields();
  connectOutput();
}

VrmlColorInterpolator::~VrmlColorInterpolator() = default;

void VrmlColorInterpolator::evaluate() {
  evaluateSingle(
      keyValue, value_changed, SbColor(0, 0, 0),
      [](float w, const SbColor& a, const SbColor& b) { return SbColor(a * w + b * (1 - w)); },
      "VrmlColorInterpolator Warning: The number of keys does not match the number of values.\n"
      "         Adjustments being made...\n");
}

template class tessel::NodeClass<VrmlColorInterpolator, VrmlInterpolator>;
