// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/sound/VrmlSound.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlSound::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlSound::source>("source", FieldKind::exposedField),
      fieldSpec<&VrmlSound::intensity>("intensity", FieldKind::exposedField, {1}),
      fieldSpec<&VrmlSound::priority>("priority", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlSound::location>("location", FieldKind::exposedField, {0, 0, 0}),
      fieldSpec<&VrmlSound::direction>("direction", FieldKind::exposedField, {0, 0, 1}),
      fieldSpec<&VrmlSound::minFront>("minFront", FieldKind::exposedField, {1}),
      fieldSpec<&VrmlSound::maxFront>("maxFront", FieldKind::exposedField, {10}),
      fieldSpec<&VrmlSound::minBack>("minBack", FieldKind::exposedField, {1}),
      fieldSpec<&VrmlSound::maxBack>("maxBack", FieldKind::exposedField, {10}),
      fieldSpec<&VrmlSound::spatialize>("spatialize", FieldKind::field, {true}),
  };
  return table;
}

VrmlSound::VrmlSound() {
  setUpFields();
  kidType = tessel::KidType::sound;
}

VrmlSound::~VrmlSound() = default;

void VrmlSound::silenceSound() {}

template class tessel::NodeClass<VrmlSound, VrmlNode>;
