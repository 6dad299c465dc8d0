// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlNavigationInfo.h>

#include "core/NodeClassImpl.h"

using namespace tessel;

std::span<const FieldSpec> VrmlNavigationInfo::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlNavigationInfo::avatarSize>("avatarSize", FieldKind::exposedField),
      fieldSpec<&VrmlNavigationInfo::headlight>("headlight", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlNavigationInfo::speed>("speed", FieldKind::exposedField, {1}),
      fieldSpec<&VrmlNavigationInfo::type>("type", FieldKind::exposedField, {"WALK"}),
      fieldSpec<&VrmlNavigationInfo::visibilityLimit>("visibilityLimit", FieldKind::exposedField, {0}),
  };
  return table;
}

VrmlNavigationInfo::VrmlNavigationInfo() {
  setUpFields();
  static constexpr float defaultAvatar[] = {0.25F, 1.6F, 0.75F};
  avatarSize.setValues(0, 3, defaultAvatar);
  avatarSize.setDefault(TRUE);
}

VrmlNavigationInfo::~VrmlNavigationInfo() = default;

template class tessel::NodeClass<VrmlNavigationInfo, VrmlBindingNode>;
