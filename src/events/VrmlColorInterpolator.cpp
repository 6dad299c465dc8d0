// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlColorInterpolator.h>

#include "core/NodeClassImpl.h"

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

VrmlColorInterpolator::VrmlColorInterpolator() { setUpFields(); }

VrmlColorInterpolator::~VrmlColorInterpolator() = default;

template class tessel::NodeClass<VrmlColorInterpolator, VrmlInterpolator>;
