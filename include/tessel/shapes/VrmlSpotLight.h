// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlLight.h>

#include <Inventor/SbMatrix.h>
#include <Inventor/fields/SoSFVec3f.h>

/// Light from a point in a cone, on the whole world.
class TESSEL_API VrmlSpotLight : public tessel::NodeClass<VrmlSpotLight, VrmlLight> {
public:
  static constexpr const char* fileFormatName = "SpotLight";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f location;     ///< exposedField: metres, 0 0 1
  SoSFVec3f direction;    ///< exposedField: axis of the cone, 0 0 -1
  SoSFFloat beamWidth;    ///< exposedField: half the angle of even light, radians, pi / 4
  SoSFFloat cutOffAngle;  ///< exposedField: half the angle of the cone, radians, pi / 2
  SoSFFloat radius;       ///< exposedField: metres, without effect, 100
  SoSFVec3f attenuation;  ///< exposedField: constant, linear and quadratic term of the distance, 1 0 0

  VrmlSpotLight();

  /// Does nothing but to say on standard output that it was called: the traversal before rendering takes
  /// the matrix.
  void setXfMatrix(SbMatrix& matrix);

  void doPreTraverse(VrmlPreTraverseAction* action) override;

protected:
  ~VrmlSpotLight() override;

  void sendSource(unsigned light) const override;

private:
  SbMatrix xfMatrix;  // from the light's space to the world, as the last traversal before rendering met it
};
