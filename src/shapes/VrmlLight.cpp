// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlLight.h>

#include <Inventor/SbColor4f.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLLightIdElement.h>
#include <Inventor/system/gl.h>

#include "actions/DrawScopeElement.h"
#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlLight::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlLight::on>("on", exposedField, {1}),
      tessel::fieldSpec<&VrmlLight::intensity>("intensity", exposedField, {1}),
      tessel::fieldSpec<&VrmlLight::color>("color", exposedField, {1, 1, 1}),
      tessel::fieldSpec<&VrmlLight::ambientIntensity>("ambientIntensity", exposedField, {0}),
  };
  return table;
}

void VrmlLight::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoGLRenderAction, SoGLLightIdElement);
}

VrmlLight::VrmlLight() { setUpFields(); }

VrmlLight::~VrmlLight() = default;

void VrmlLight::GLRender(SoGLRenderAction* action) {
  if (!on.getValue() || !renderEnabled) return;
  SoState* state = action->getState();
  const int number = SoGLLightIdElement::increment(state);
  if (number < 0) return;
  tessel::DrawScopeElement::begin(state, this);
  const GLenum light = GL_LIGHT0 + static_cast<GLenum>(number);
  const SbVec3f full = color.getValue() * intensity.getValue();
  const SbVec3f ambient = full * ambientIntensity.getValue();
  const SbVec4f direct4(full[0], full[1], full[2], 1);
  const SbVec4f ambient4(ambient[0], ambient[1], ambient[2], 1);
  glLightfv(light, GL_DIFFUSE, direct4.getValue());
  glLightfv(light, GL_SPECULAR, direct4.getValue());
  glLightfv(light, GL_AMBIENT, ambient4.getValue());
  sendSource(light);
}

void VrmlLight::GLRenderOffPath(SoGLRenderAction* action) { GLRender(action); }

void VrmlLight::sendPlace(unsigned light, const SbVec4f& place, float spotExponent, float spotCutoff) {
  glLightfv(light, GL_POSITION, place.getValue());
  glLightf(light, GL_SPOT_EXPONENT, spotExponent);
  glLightf(light, GL_SPOT_CUTOFF, spotCutoff);
}

void VrmlLight::sendAttenuation(unsigned light, const SbVec3f& attenuation) {
  glLightf(light, GL_CONSTANT_ATTENUATION, attenuation[0]);
  glLightf(light, GL_LINEAR_ATTENUATION, attenuation[1]);
  glLightf(light, GL_QUADRATIC_ATTENUATION, attenuation[2]);
}

template class tessel::NodeClass<VrmlLight, VrmlNode>;
