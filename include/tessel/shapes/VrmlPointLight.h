// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlLight.h>

#include <Inventor/SbMatrix.h>
#include <Inventor/fields/SoSFVec3f.h>

/// Light from a point on the whole world.
class TESSEL_API VrmlPointLight : public tessel::NodeClass<VrmlPointLight, VrmlLight> {
public:
  static constexpr const char* fileFormatName = "PointLight";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f location;     ///< exposedField: metres, 0 0 1
  SoSFFloat radius;       ///< exposedField: metres, without effect, 100
  SoSFVec3f attenuation;  ///< exposedField: constant, linear and quadratic term of the distance, 1 0 0

  VrmlPointLight();

  /// Does nothing but to say on standard output that it was called: the traversal before rendering takes
  /// the matrix.
  void setXfMatrix(SbMatrix& matrix);

  void doPreTraverse(VrmlPreTraverseAction* action) override;

protected:
  ~VrmlPointLight() override;

  void sendSource(unsigned light) const override;

private:
  SbMatrix xfMatrix;  // from the light's space to the world, as the last traversal before rendering met it
};
