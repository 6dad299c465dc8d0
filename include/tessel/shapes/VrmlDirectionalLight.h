// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlLight.h>

#include <Inventor/fields/SoSFVec3f.h>

/// Parallel light on everything in its group.
class TESSEL_API VrmlDirectionalLight : public tessel::NodeClass<VrmlDirectionalLight, VrmlLight> {
public:
  static constexpr const char* fileFormatName = "DirectionalLight";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f direction;  ///< exposedField: where the light goes, in the space of the group, 0 0 -1

  VrmlDirectionalLight();

  int shouldRenderBeforeOtherChildren() const override;

protected:
  ~VrmlDirectionalLight() override;

  void sendSource(unsigned light) const override;
};
