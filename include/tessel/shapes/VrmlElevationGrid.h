// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlSFNode.h>
#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFInt32.h>

/// ElevationGrid: heights over a grid in the plane y = 0. Point (i, j) lies at
/// (xSpacing * i, height[i + j * xDimension], zSpacing * j); lists of values for each point have the same order.
class TESSEL_API VrmlElevationGrid : public tessel::NodeClass<VrmlElevationGrid, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "ElevationGrid";
  static std::span<const tessel::FieldSpec> fields();

  VrmlSFNode color;          ///< exposedField, null: a Color for each point or square
  VrmlSFNode normal;         ///< exposedField, null: a Normal for each point or square; null: computed
  VrmlSFNode texCoord;       ///< exposedField, null: a TextureCoordinate for each point; null: 0 to 1
  SoSFBool ccw;              ///< field, TRUE: the upper side is the front
  SoSFBool colorPerVertex;   ///< field, TRUE: a colour for each point; FALSE: for each square
  SoSFFloat creaseAngle;     ///< field, 0: faces that meet at a smaller angle, in radians, are smooth
  SoMFFloat height;          ///< field, empty: the heights, row by row along x
  SoSFBool normalPerVertex;  ///< field, TRUE: a normal for each point; FALSE: for each square
  SoSFBool solid;            ///< field, TRUE: the back is not seen
  SoSFInt32 xDimension;      ///< field, 0: number of points along x
  SoSFFloat xSpacing;        ///< field, 0: distance of points along x
  SoSFInt32 zDimension;      ///< field, 0: number of points along z
  SoSFFloat zSpacing;        ///< field, 0: distance of points along z
  SoMFFloat set_height;      ///< eventIn, one 0: new heights

  VrmlElevationGrid();

  int getContainerFlags() const override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;

protected:
  ~VrmlElevationGrid() override;
};
