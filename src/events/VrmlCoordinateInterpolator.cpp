// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlCoordinateInterpolator.h>

#include "core/NodeClassImpl.h"
#include "events/KeyFrames.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlCoordinateInterpolator::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlCoordinateInterpolator::keyValue>("keyValue", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlCoordinateInterpolator::value_changed>("value_changed", FieldKind::eventOut, {0, 0, 0}),
  };
  return table;
}

VrmlCoordinateInterpolator::VrmlCoordinateInterpolator() {
  setUpFields();
  connectOutput();
}

VrmlCoordinateInterpolator::~VrmlCoordinateInterpolator() = default;

void VrmlCoordinateInterpolator::evaluate() {
  evaluateLists(keyValue, value_changed, SbVec3f(0, 0, 0), lists,
                [](float w, const SbVec3f* a, const SbVec3f* b, SbVec3f* result, int length) {
                  const float u = 1 - w;
                  for (int i = 0; i < length; ++i) result[i] = a[i] * w + b[i] * u;
                });
}

template class tessel::NodeClass<VrmlCoordinateInterpolator, VrmlInterpolator>;
