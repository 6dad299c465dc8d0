// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlNormalInterpolator.h>

#include "core/NodeClassImpl.h"
#include "events/KeyFrames.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlNormalInterpolator::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlNormalInterpolator::keyValue>("keyValue", FieldKind::exposedField, {0, 0, -1}),
      fieldSpec<&VrmlNormalInterpolator::value_changed>("value_changed", FieldKind::eventOut, {0, 0, -1}),
  };
  return table;
}

VrmlNormalInterpolator::VrmlNormalInterpolator() {
  setUpFields();
  connectOutput();
}

VrmlNormalInterpolator::~VrmlNormalInterpolator() = default;

void VrmlNormalInterpolator::evaluate() {
  evaluateLists(keyValue, value_changed, SbVec3f(0, 0, -1), lists,
                [](float w, const SbVec3f* a, const SbVec3f* b, SbVec3f* result, int length) {
                  const float u = 1 - w;
                  for (int i = 0; i < length; ++i) {
                    result[i] = a[i] * w + b[i] * u;
                    if (result[i].normalize() == 0) result[i] = a[i];
                  }
                });
}

template class tessel::NodeClass<VrmlNormalInterpolator, VrmlInterpolator>;
