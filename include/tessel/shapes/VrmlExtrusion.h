// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/fields/SoMFRotation.h>
#include <Inventor/fields/SoMFVec2f.h>
#include <Inventor/fields/SoMFVec3f.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>

/// Extrusion: a cross-section, an outline in the plane y = 0, swept along a spine.
class TESSEL_API VrmlExtrusion : public tessel::NodeClass<VrmlExtrusion, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Extrusion";
  static std::span<const tessel::FieldSpec> fields();

  SoMFVec2f crossSection;        ///< field: the outline; a square of side 2
  SoMFRotation orientation;      ///< field, two identities: turns the outline, for each point of the spine
  SoMFVec2f scale;               ///< field, two 1 1: scales the outline, for each point of the spine
  SoMFVec3f spine;               ///< field: the way; 0 0 0 to 0 1 0
  SoSFBool beginCap;             ///< field, TRUE: closed at the first point of the spine
  SoSFBool endCap;               ///< field, TRUE: closed at the last
  SoSFBool ccw;                  ///< field, TRUE: the outline is counter-clockwise seen from positive y
  SoSFBool solid;                ///< field, TRUE: the inside is not seen
  SoSFBool convex;               ///< field, TRUE: the outline is convex
  SoSFFloat creaseAngle;         ///< field, 0: faces that meet at a smaller angle, in radians, are smooth
  SoMFVec2f set_crossSection;    ///< eventIn: a new `crossSection`
  SoMFRotation set_orientation;  ///< eventIn: a new `orientation`
  SoMFVec2f set_scale;           ///< eventIn: a new `scale`
  SoMFVec3f set_spine;           ///< eventIn: a new `spine`

  VrmlExtrusion();

  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;

protected:
  ~VrmlExtrusion() override;
};
