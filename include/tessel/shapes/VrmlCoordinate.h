// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoMFVec3f.h>

/// The points of a geometry, in its object space.
class TESSEL_API VrmlCoordinate : public tessel::NodeClass<VrmlCoordinate, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Coordinate";
  static std::span<const tessel::FieldSpec> fields();

  SoMFVec3f point;  ///< exposedField: the points; one at the origin

  static void initClass();

  VrmlCoordinate();

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void pick(SoPickAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;

protected:
  ~VrmlCoordinate() override;
};
