// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlSFNode.h>
#include <tessel/shapes/VrmlGeometry.h>

#include <memory>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFInt32.h>

namespace tessel {
class GridSurface;
struct GridDrawing;
}  // namespace tessel

/// ElevationGrid: heights over a grid in the plane y = 0. Point (i, j) lies at
/// (xSpacing * i, height[i + j * xDimension], zSpacing * j); lists of values for each point have the same order,
/// and one that is too short holds its last value. A grid whose number of heights is not that of its points is not
/// drawn, which is reported once. A negative dimension counts as 0.
class TESSEL_API VrmlElevationGrid : public tessel::NodeClass<VrmlElevationGrid, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "ElevationGrid";
  static std::span<const tessel::FieldSpec> fields();

  VrmlSFNode color;          ///< exposedField, null: a Color
  VrmlSFNode normal;         ///< exposedField, null: a Normal; null: normals are computed
  VrmlSFNode texCoord;       ///< exposedField, null: a TextureCoordinate for each point; null: 0 to 1
  SoSFBool ccw;              ///< field, TRUE: the upper side is the front
  SoSFBool colorPerVertex;   ///< field, TRUE: a color for each point; FALSE: the first one for the grid
  SoSFFloat creaseAngle;     ///< field, 0: radians; without effect, since computed normals are smooth
  SoMFFloat height;          ///< field, empty: the heights, row by row along x
  SoSFBool normalPerVertex;  ///< field, TRUE: a normal for each point; FALSE: the first one for the grid
  SoSFBool solid;            ///< field, TRUE: the back is not seen
  SoSFInt32 xDimension;      ///< field, 0: number of points along x
  SoSFFloat xSpacing;        ///< field, 0: distance of points along x
  SoSFInt32 zDimension;      ///< field, 0: number of points along z
  SoSFFloat zSpacing;        ///< field, 0: distance of points along z
  SoMFFloat set_height;      ///< eventIn, one 0: new heights

  VrmlElevationGrid();

  int getContainerFlags() const override;
  void notify(SoNotList* list) override;
  void GLRender(SoGLRenderAction* action) override;
  void count(VrmlCountAction* action) override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;
  /// A SoFaceDetail with the number of the quad and of its row, and the four points.
  SoDetail* createTriangleDetail(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                 const SoPrimitiveVertex* v2, const SoPrimitiveVertex* v3,
                                 SoPickedPoint* point) override;

protected:
  ~VrmlElevationGrid() override;

private:
  void sendShapeHintsToState(SoState* state);
  void doVertexPropertyAction(SoAction* action);
  bool prepare(SoGLRenderAction* action);
  void pickQuads(SoRayPickAction* action, const tessel::GridSurface& surface);

  std::unique_ptr<tessel::GridDrawing> drawing;
};
