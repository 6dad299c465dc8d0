// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlWorldInfo.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::fieldSpec;

std::span<const tessel::FieldSpec> VrmlWorldInfo::fields() {
  static constexpr tessel::FieldSpec table[] = {
      fieldSpec<&VrmlWorldInfo::title>("title", FieldKind::field, {""}),
      fieldSpec<&VrmlWorldInfo::info>("info", FieldKind::field, {""}),
  };
  return table;
}

VrmlWorldInfo::VrmlWorldInfo() { setUpFields(); }
VrmlWorldInfo::~VrmlWorldInfo() = default;

template class tessel::NodeClass<VrmlWorldInfo, VrmlNode>;
