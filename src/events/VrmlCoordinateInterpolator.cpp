// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlCoordinateInterpolator.h>

#include "core/NodeClassImpl.h"

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

VrmlCoordinateInterpolator::VrmlCoordinateInterpolator() { setUpFields(); }

VrmlCoordinateInterpolator::~VrmlCoordinateInterpolator() = default;

template class tessel::NodeClass<VrmlCoordinateInterpolator, VrmlInterpolator>;
