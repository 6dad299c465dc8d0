// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>

namespace tessel {
struct RoundCut;
}

/// A cone around the y axis, its tip up, its middle at the origin.
class TESSEL_API VrmlCone : public tessel::NodeClass<VrmlCone, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Cone";
  static std::span<const tessel::FieldSpec> fields();

  SoSFFloat bottomRadius;  ///< field: radius of the base; 1
  SoSFFloat height;        ///< field: from the base to the tip; 2
  SoSFBool side;           ///< field: whether it has its side; TRUE
  SoSFBool bottom;         ///< field: whether it has its base; TRUE

  VrmlCone();

  /// The radius of the base and half of `height`; 1 for an ignored field.
  void getSize(float& radius, float& halfHeight) const;

  void GLRender(SoGLRenderAction* action) override;
  /// Hits lie on the exact cone. Their SoConeDetail has part 1 for the side, 2 for the base.
  void rayPick(SoRayPickAction* action) override;
  void count(VrmlCountAction* action) override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;

protected:
  ~VrmlCone() override;

private:
  tessel::RoundCut computeBase(SoAction* action);
  template <class Sink> void describe(Sink&& sink, SoAction* action);
};
