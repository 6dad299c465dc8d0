// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlNormalInterpolator.h>

#include "core/NodeClassImpl.h"

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

VrmlNormalInterpolator::VrmlNormalInterpolator() { setUpFields(); }

VrmlNormalInterpolator::~VrmlNormalInterpolator() = default;

template class tessel::NodeClass<VrmlNormalInterpolator, VrmlInterpolator>;
