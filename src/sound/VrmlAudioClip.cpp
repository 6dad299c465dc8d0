// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/sound/VrmlAudioClip.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlAudioClip::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlAudioClip::url>("url", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlAudioClip::loop>("loop", FieldKind::exposedField, {false}),
      fieldSpec<&VrmlAudioClip::startTime>("startTime", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlAudioClip::stopTime>("stopTime", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlAudioClip::pitch>("pitch", FieldKind::exposedField, {1}),
      fieldSpec<&VrmlAudioClip::duration_changed>("duration_changed", FieldKind::eventOut, {0}),
      fieldSpec<&VrmlAudioClip::isActive>("isActive", FieldKind::eventOut, {false}),
      fieldSpec<&VrmlAudioClip::description>("description", FieldKind::exposedField, {""}),
  };
  return table;
}

VrmlAudioClip::VrmlAudioClip() { setUpFields(); }

VrmlAudioClip::~VrmlAudioClip() = default;

template class tessel::NodeClass<VrmlAudioClip, VrmlNode>;
