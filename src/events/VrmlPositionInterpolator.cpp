// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlPositionInterpolator.h>

#include "core/NodeClassImpl.h"

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

VrmlPositionInterpolator::VrmlPositionInterpolator() { setUpFields(); }

VrmlPositionInterpolator::~VrmlPositionInterpolator() = default;

template class tessel::NodeClass<VrmlPositionInterpolator, VrmlInterpolator>;
