// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/pointing/VrmlAnchor.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlAnchor::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlAnchor::url>("url", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlAnchor::description>("description", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlAnchor::parameter>("parameter", FieldKind::exposedField, {""}),
  };
  return table;
}

VrmlAnchor::VrmlAnchor() { setUpFields(); }

VrmlAnchor::~VrmlAnchor() = default;

int VrmlAnchor::isRequestingFetch(SbString&, SbString&) { return 0; }

int VrmlAnchor::isRequestingHighlight(SbString&) { return 0; }

template class tessel::NodeClass<VrmlAnchor, VrmlGroup>;
