// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlCullingGroup.h>

#include <Inventor/SbRotation.h>

/// Billboard: a group that turns towards the viewer, about an axis or, with axis 0 0 0, wholly.
///
/// The rotation is worked out in every traversal from the view in the state; the group's own box is not
/// tested against the view volume.
class TESSEL_API VrmlBillboard : public tessel::NodeClass<VrmlBillboard, VrmlCullingGroup> {
public:
  static constexpr const char* fileFormatName = "Billboard";
  static std::span<const tessel::FieldSpec> fields();
  static void initClass();

  SoSFVec3f axisOfRotation;  ///< exposedField, 0 1 0

  VrmlBillboard();

  /// The rotation for the view and model matrix of the action's state. Near the axis, and for an axis close
  /// to +z, the last one again.
  SbRotation calculateRotation(SoAction* action);
  virtual void setRotationAmount(SbRotation rotation);
  virtual SbRotation getRotationAmount() const;

  void doAction(SoAction* action) override;
  void callback(SoCallbackAction* action) override;
  void pick(SoPickAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void GLRenderBelowPath(SoGLRenderAction* action) override;
  void GLRenderInPath(SoGLRenderAction* action) override;
  void GLRenderOffPath(SoGLRenderAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void doPreTraverse(VrmlPreTraverseAction* action) override;

protected:
  ~VrmlBillboard() override;

private:
  SbRotation rotationAmount;
};
