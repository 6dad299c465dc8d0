// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlVertexShape.h>

namespace tessel {
class UnlitBuffers;
}

/// Points, drawn without light or texture, in the colors of `color` or else in that of the state.
///
/// A complexity below 0.5 leaves points out of the picture, though a ray still finds them. Points do not
/// collide.
class TESSEL_API VrmlPointSet : public tessel::NodeClass<VrmlPointSet, VrmlVertexShape> {
public:
  static constexpr const char* fileFormatName = "PointSet";
  static std::span<const tessel::FieldSpec> fields();

  VrmlPointSet();

  void notify(SoNotList* list) override;
  void GLRender(SoGLRenderAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;
  /// A SoPointDetail with the number of the point.
  SoDetail* createPointDetail(SoRayPickAction* action, const SoPrimitiveVertex* v,
                              SoPickedPoint* point) override;

protected:
  ~VrmlPointSet() override;

private:
  std::unique_ptr<tessel::UnlitBuffers> buffers;
};
