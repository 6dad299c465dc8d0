// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/SbVec3f.h>
#include <Inventor/actions/SoAction.h>
#include <Inventor/actions/SoSubAction.h>

class SbXfBox3f;
class SoPrimitiveVertex;

/// Moves the avatar against the triangles of the world.
///
/// Collision is not active yet: the test is off, boxes are out of reach and triangles are ignored.
class TESSEL_API VrmlCollideAction : public SoAction {
  typedef SoAction inherited;
  SO_ACTION_HEADER(VrmlCollideAction);

public:
  VrmlCollideAction();
  ~VrmlCollideAction() override;
  static void initClass();

  SbVec3f proximityLineStart{0, 0,
                             0};      ///< where the present part of the avatar's move begins, in world space
  SbVec3f proximityLineEnd{0, 0, 0};  ///< where it ends

  /// Whether geometry is to hand in its triangles.
  bool isCollisionTestOn() const { return false; }
  /// Whether the avatar's move reaches a box of the current object space.
  bool collideXfBox(const SbXfBox3f& box);
  /// Brings the avatar's volume into the current object space; before the triangles of each geometry.
  void updateCollisionVolume();
  /// One triangle in object space.
  void collideTriangle(const SbVec3f& a, const SbVec3f& b, const SbVec3f& c);
  /// A sphere of that radius at the origin of object space.
  void collideSphere(float radius);

protected:
  void beginTraversal(SoNode* node) override;
};
