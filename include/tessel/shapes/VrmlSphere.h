// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/fields/SoSFFloat.h>

/// A sphere around the origin.
class TESSEL_API VrmlSphere : public tessel::NodeClass<VrmlSphere, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Sphere";
  static std::span<const tessel::FieldSpec> fields();

  SoSFFloat radius;  ///< field: 1

  VrmlSphere();

  /// `radius`; 1 if the field is ignored.
  float getSize() const;

  void GLRender(SoGLRenderAction* action) override;
  /// Hits lie on the exact sphere and have no detail.
  void rayPick(SoRayPickAction* action) override;
  /// Collides as the exact sphere, without triangles.
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;

protected:
  ~VrmlSphere() override;

private:
  int computeDepth(SoAction* action);
};
