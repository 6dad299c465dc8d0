// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlGroup.h>

#include <Inventor/SbMatrix.h>
#include <Inventor/fields/SoSFRotation.h>

/// Transform: a group in a coordinate system of its own.
///
/// A point goes through -center, the inverse of scaleOrientation, scale, scaleOrientation, rotation, center
/// and translation, in this order. A field is used when it is neither default nor ignored; what is not used
/// costs nothing. scaleOrientation has no effect without scale.
class TESSEL_API VrmlTransform : public tessel::NodeClass<VrmlTransform, VrmlGroup> {
public:
  static constexpr const char* fileFormatName = "Transform";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f translation;          ///< exposedField, 0 0 0
  SoSFRotation rotation;          ///< exposedField, identity
  SoSFVec3f scale;                ///< exposedField, 1 1 1
  SoSFRotation scaleOrientation;  ///< exposedField, identity
  SoSFVec3f center;               ///< exposedField, 0 0 0

  VrmlTransform();

  /// Multiplies the node's matrix into the model matrix of the action's state.
  void doTransform(SoAction* action);
  /// All fields to their defaults, `children` too, then at `from`, with 0 0 -1 turned into the direction of `to`.
  void pointAt(const SbVec3f& from, const SbVec3f& to);
  /// Matrix of the scale stage and its inverse.
  void getScaleSpaceMatrix(SbMatrix& mat, SbMatrix& inv) const;
  /// The same up to and with the rotation.
  void getRotationSpaceMatrix(SbMatrix& mat, SbMatrix& inv) const;
  /// The same with the translation: the whole matrix.
  void getTranslationSpaceMatrix(SbMatrix& mat, SbMatrix& inv) const;
  /// The node's matrix becomes `m` times its matrix.
  void multLeft(const SbMatrix& m);
  /// The node's matrix becomes its matrix times `m`.
  void multRight(const SbMatrix& m);
  /// The same with the matrix of another node.
  void combineLeft(SoNode* node);
  void combineRight(SoNode* node);
  /// Sets the fields so that the node's matrix is `m`, keeping `center`. A matrix that can't be factored is
  /// reported and changes nothing.
  void setMatrix(const SbMatrix& m);
  /// Moves `center` and sets the other fields so that the node's matrix stays.
  void recenter(const SbVec3f& newCenter);

  void callback(SoCallbackAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void GLRenderBelowPath(SoGLRenderAction* action) override;
  void GLRenderInPath(SoGLRenderAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void doPreTraverse(VrmlPreTraverseAction* action) override;

protected:
  ~VrmlTransform() override;

private:
  SbMatrix currentMatrix();
  void setFactored(const SbMatrix& matrix, const SbVec3f& aroundCenter, const char* where,
                   const char* complaint);
};
