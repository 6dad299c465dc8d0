// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlFog.h>

#include <Inventor/system/gl.h>

#include "core/NodeClassImpl.h"

using namespace tessel;

int VrmlFog::enabled = 1;

std::span<const FieldSpec> VrmlFog::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlFog::color>("color", FieldKind::exposedField, {1, 1, 1}),
      fieldSpec<&VrmlFog::fogType>("fogType", FieldKind::exposedField, {"LINEAR"}),
      fieldSpec<&VrmlFog::visibilityRange>("visibilityRange", FieldKind::exposedField, {0}),
  };
  return table;
}

VrmlFog::VrmlFog() { setUpFields(); }

VrmlFog::~VrmlFog() = default;

void VrmlFog::drawIt(SoState*) { glDisable(GL_FOG); }

template class tessel::NodeClass<VrmlFog, VrmlBindingNode>;
