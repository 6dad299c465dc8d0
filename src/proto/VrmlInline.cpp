// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlInline.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlInline::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlInline::url>("url", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlInline::bboxCenter>("bboxCenter", FieldKind::field, {0, 0, 0}),
      fieldSpec<&VrmlInline::bboxSize>("bboxSize", FieldKind::field, {0, 0, 0}),
  };
  return table;
}

VrmlInline::VrmlInline() { setUpFields(); }

VrmlInline::~VrmlInline() = default;

template class tessel::NodeClass<VrmlInline, VrmlNode>;
