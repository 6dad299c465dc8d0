// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>

namespace tessel {
struct RoundCut;
}

/// A cylinder around the y axis, its middle at the origin.
class TESSEL_API VrmlCylinder : public tessel::NodeClass<VrmlCylinder, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Cylinder";
  static std::span<const tessel::FieldSpec> fields();

  SoSFFloat radius;  ///< field: 1
  SoSFFloat height;  ///< field: the extent along y; 2
  SoSFBool side;     ///< field: whether it has its side; TRUE
  SoSFBool top;      ///< field: whether it has its upper disc; TRUE
  SoSFBool bottom;   ///< field: whether it has its lower disc; TRUE

  VrmlCylinder();

  /// `radius` and half of `height`; 1 for an ignored field.
  void getSize(float& r, float& halfHeight) const;

  void GLRender(SoGLRenderAction* action) override;
  /// Hits lie on the exact cylinder, two at most. Their SoCylinderDetail has part 1 for the side, 2 for the
  /// top, 4 for the bottom.
  void rayPick(SoRayPickAction* action) override;
  void count(VrmlCountAction* action) override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;

protected:
  ~VrmlCylinder() override;

private:
  tessel::RoundCut computeRing(SoAction* action);
  template <class Sink> void describe(Sink&& sink, SoAction* action);
};
