// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlDirectionalLight.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlDirectionalLight::fields() {
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlDirectionalLight::direction>("direction", tessel::FieldKind::exposedField,
                                                          {0, 0, -1}),
  };
  return table;
}

VrmlDirectionalLight::VrmlDirectionalLight() { setUpFields(); }

VrmlDirectionalLight::~VrmlDirectionalLight() = default;

int VrmlDirectionalLight::shouldRenderBeforeOtherChildren() const { return 1; }

void VrmlDirectionalLight::sendSource(unsigned light) const {
  const SbVec3f from = -direction.getValue();
  sendPlace(light, SbVec4f(from[0], from[1], from[2], 0));
}

template class tessel::NodeClass<VrmlDirectionalLight, VrmlLight>;
