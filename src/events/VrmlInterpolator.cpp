// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlInterpolator.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlInterpolator::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlInterpolator::key>("key", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlInterpolator::set_fraction>("set_fraction", FieldKind::eventIn, {0}),
  };
  return table;
}

VrmlInterpolator::VrmlInterpolator() { setUpFields(); }

VrmlInterpolator::~VrmlInterpolator() = default;

template class tessel::NodeClass<VrmlInterpolator, VrmlNode>;
