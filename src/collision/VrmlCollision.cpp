// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/collision/VrmlCollision.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlCollision::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlCollision::collide>("collide", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlCollision::proxy>("proxy", FieldKind::field),
      fieldSpec<&VrmlCollision::collideTime>("collideTime", FieldKind::eventOut, {0}),
  };
  return table;
}

VrmlCollision::VrmlCollision() { setUpFields(); }

VrmlCollision::~VrmlCollision() = default;

template class tessel::NodeClass<VrmlCollision, VrmlCullingGroup>;
