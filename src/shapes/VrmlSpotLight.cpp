// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlSpotLight.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/system/gl.h>

#include <tessel/actions/VrmlPreTraverseAction.h>

#include "core/NodeClassImpl.h"

namespace {

/// The exponent with which GL's cosine falls to about half at the edge of the beam.
float spotExponent(double beamWidth) {
  if (beamWidth >= std::numbers::pi / 2) return 0;
  const double exponent = 0.5 * std::log(0.5) / std::log(std::cos(beamWidth));
  constexpr double least = 0.01, most = 128;  // GL refuses more
  return static_cast<float>(exponent > 0 ? std::min(exponent, most) : least);
}

float degrees(double radians) { return static_cast<float>(radians * (180 / std::numbers::pi)); }

}  // namespace

std::span<const tessel::FieldSpec> VrmlSpotLight::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlSpotLight::location>("location", exposedField, {0, 0, 1}),
      tessel::fieldSpec<&VrmlSpotLight::direction>("direction", exposedField, {0, 0, -1}),
      tessel::fieldSpec<&VrmlSpotLight::beamWidth>("beamWidth", exposedField, {std::numbers::pi / 4}),
      tessel::fieldSpec<&VrmlSpotLight::cutOffAngle>("cutOffAngle", exposedField, {std::numbers::pi / 2}),
      tessel::fieldSpec<&VrmlSpotLight::radius>("radius", exposedField, {100}),
      tessel::fieldSpec<&VrmlSpotLight::attenuation>("attenuation", exposedField, {1, 0, 0}),
  };
  return table;
}

VrmlSpotLight::VrmlSpotLight() : xfMatrix(SbMatrix::identity()) {
  setUpFields();
  kidType = tessel::KidType::spatialLight;
}

VrmlSpotLight::~VrmlSpotLight() = default;

void VrmlSpotLight::setXfMatrix(SbMatrix&) { std::printf("VrmlSpotLight::setXfMatrix called\n"); }

void VrmlSpotLight::doPreTraverse(VrmlPreTraverseAction* action) {
  if (!hasKidType(action->kidTypeMask)) return;
  xfMatrix = SoModelMatrixElement::get(action->getState());
  action->addLight(this);
}

void VrmlSpotLight::sendSource(unsigned light) const {
  SbVec3f place, axis;
  xfMatrix.multVecMatrix(location.getValue(), place);
  xfMatrix.multDirMatrix(direction.getValue(), axis);
  const float cutoff = std::clamp(degrees(cutOffAngle.getValue()), 0.0f, 90.0f);
  sendPlace(light, SbVec4f(place[0], place[1], place[2], 1), spotExponent(beamWidth.getValue()), cutoff);
  glLightfv(light, GL_SPOT_DIRECTION, axis.getValue());
  sendAttenuation(light, attenuation.getValue());
}

template class tessel::NodeClass<VrmlSpotLight, VrmlLight>;
