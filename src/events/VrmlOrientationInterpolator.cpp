// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlOrientationInterpolator.h>

#include "core/NodeClassImpl.h"
#include "events/KeyFrames.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlOrientationInterpolator::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlOrientationInterpolator::keyValue>("keyValue", FieldKind::exposedField, {0, 0, 1, 0}),
      fieldSpec<&VrmlOrientationInterpolator::value_changed>("value_changed", FieldKind::eventOut,
                                                             {0, 0, 1, 0}),
  };
  return table;
}

VrmlOrientationInterpolator::VrmlOrientationInterpolator() {
  setUpFields();
  connectOutput();
}

VrmlOrientationInterpolator::~VrmlOrientationInterpolator() = default;

void VrmlOrientationInterpolator::evaluate() {
  evaluateSingle(
      keyValue, value_changed, SbRotation(SbVec3f(0, 0, 1), 0),
      [](float w, const SbRotation& a, const SbRotation& b) { return SbRotation::slerp(a, b, 1 - w); });
}

template class tessel::NodeClass<VrmlOrientationInterpolator, VrmlInterpolator>;
