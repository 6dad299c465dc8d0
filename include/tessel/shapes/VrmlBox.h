// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/fields/SoSFVec3f.h>

/// A box around the origin with its edges along the axes.
///
/// Its texture stands upright on each of the six faces. The library also draws and picks bounding boxes
/// with a shared instance.
class TESSEL_API VrmlBox : public tessel::NodeClass<VrmlBox, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Box";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f size;  ///< field: the extents along x, y and z; 2 2 2

  VrmlBox();

  /// Half of `size`; 1 in each direction if the field is ignored.
  SbVec3f getSize() const;

  /// Draws any box in the material of the state, without texture.
  void GLRenderBoundingBox(SoGLRenderAction* action, const SbBox3f& box);
  /// Picks any box. A flat one is given a little thickness; the hits have no detail.
  void rayPickBoundingBox(SoRayPickAction* action, const SbBox3f& box);

  void GLRender(SoGLRenderAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void count(VrmlCountAction* action) override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;
  /// A SoCubeDetail whose part is the number of the face: front, back, left, right, top, bottom.
  SoDetail* createTriangleDetail(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                 const SoPrimitiveVertex* v2, const SoPrimitiveVertex* v3,
                                 SoPickedPoint* point) override;

protected:
  ~VrmlBox() override;

private:
  int computeNumDivisions(SoAction* action);
  static bool isMaterialPerFace(SoAction* action);
  template <class Sink> void describe(Sink&& sink, SoAction* action);

  bool pickingBoundingBox = false;  // a bounding box's hits have no detail
};
