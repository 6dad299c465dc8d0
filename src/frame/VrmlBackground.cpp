// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlBackground.h>

#include <Inventor/system/gl.h>

#include "core/NodeClassImpl.h"

using namespace tessel;

int VrmlBackground::enabled = 1;

std::span<const FieldSpec> VrmlBackground::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlBackground::groundAngle>("groundAngle", FieldKind::exposedField),
      fieldSpec<&VrmlBackground::groundColor>("groundColor", FieldKind::exposedField),
      fieldSpec<&VrmlBackground::backUrl>("backUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::bottomUrl>("bottomUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::frontUrl>("frontUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::leftUrl>("leftUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::rightUrl>("rightUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::topUrl>("topUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::skyAngle>("skyAngle", FieldKind::exposedField),
      fieldSpec<&VrmlBackground::skyColor>("skyColor", FieldKind::exposedField, {0, 0, 0}),
  };
  return table;
}

VrmlBackground::VrmlBackground() { setUpFields(); }

VrmlBackground::~VrmlBackground() = default;

void VrmlBackground::drawIt(SoGLRenderAction*) {
  const SbColor sky = skyColor.getNum() > 0 ? skyColor[0] : SbColor(0, 0, 0);
  glClearColor(sky[0], sky[1], sky[2], 0);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

template class tessel::NodeClass<VrmlBackground, VrmlBindingNode>;
