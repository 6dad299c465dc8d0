// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlPointLight.h>

#include <cstdio>

#include <Inventor/elements/SoModelMatrixElement.h>

#include <tessel/actions/VrmlPreTraverseAction.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlPointLight::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlPointLight::location>("location", exposedField, {0, 0, 1}),
      tessel::fieldSpec<&VrmlPointLight::radius>("radius", exposedField, {100}),
      tessel::fieldSpec<&VrmlPointLight::attenuation>("attenuation", exposedField, {1, 0, 0}),
  };
  return table;
}

VrmlPointLight::VrmlPointLight() : xfMatrix(SbMatrix::identity()) {
  setUpFields();
  kidType = tessel::KidType::spatialLight;
}

VrmlPointLight::~VrmlPointLight() = default;

void VrmlPointLight::setXfMatrix(SbMatrix&) { std::printf("VrmlPointLight::setXfMatrix called\n"); }

void VrmlPointLight::doPreTraverse(VrmlPreTraverseAction* action) {
  if (!hasKidType(action->kidTypeMask)) return;
  xfMatrix = SoModelMatrixElement::get(action->getState());
  action->addLight(this);
}

void VrmlPointLight::sendSource(unsigned light) const {
  SbVec3f place;
  xfMatrix.multVecMatrix(location.getValue(), place);
  sendPlace(light, SbVec4f(place[0], place[1], place[2], 1));
  sendAttenuation(light, attenuation.getValue());
}

template class tessel::NodeClass<VrmlPointLight, VrmlLight>;
