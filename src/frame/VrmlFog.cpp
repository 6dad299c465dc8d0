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

// A range of 0 means none, whatever the type.
VrmlFog::Kind VrmlFog::getKind() const {
  if (!(visibilityRange.getValue() > 0)) return Kind::none;
  if (fogType.getValue() == "LINEAR") return Kind::linear;
  return fogType.getValue() == "EXPONENTIAL" ? Kind::exponential : Kind::none;
}

// At the end of the range exp(-4) is left of a colour.
float VrmlFog::computeDensity() const { return 4 / visibilityRange.getValue(); }

void VrmlFog::drawIt(SoState*) {
  const Kind kind = getKind();
  if (kind == Kind::none) {
    glDisable(GL_FOG);
    return;
  }
  glEnable(GL_FOG);
  const SbColor& c = color.getValue();
  const GLfloat rgba[4] = {c[0], c[1], c[2], 1};
  glFogfv(GL_FOG_COLOR, rgba);
  if (kind == Kind::linear) {
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, 0);
    glFogf(GL_FOG_END, visibilityRange.getValue());
  } else {
    glFogi(GL_FOG_MODE, GL_EXP);
    glFogf(GL_FOG_DENSITY, computeDensity());
  }
}

void VrmlFog::notify(SoNotList* list) {
  if (isNotifyEnabled()) {
    const SoField* field = list->getLastField();
    if (field == &set_bind) {
      NodeClass::notify(list);
      return;
    }
    isBound.evaluate();
    if (field != &fogType && field != &visibilityRange && !isBound.getValue() && optimizedNotify) return;
  }
  VrmlNode::notify(list);  // NOLINT(bugprone-parent-virtual-call): no bind event
}

template class tessel::NodeClass<VrmlFog, VrmlBindingNode>;
