// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlScalarInterpolator.h>

#include "core/NodeClassImpl.h"

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

VrmlScalarInterpolator::VrmlScalarInterpolator() { setUpFields(); }

VrmlScalarInterpolator::~VrmlScalarInterpolator() = default;

template class tessel::NodeClass<VrmlScalarInterpolator, VrmlInterpolator>;
