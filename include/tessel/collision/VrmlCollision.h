// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlCullingGroup.h>
#include <tessel/core/VrmlSFNode.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFTime.h>

/// Collision: a group that switches collision of its children on and off, or lets a simpler stand-in
/// collide in their place.
class TESSEL_API VrmlCollision : public tessel::NodeClass<VrmlCollision, VrmlCullingGroup> {
public:
  static constexpr const char* fileFormatName = "Collision";
  static std::span<const tessel::FieldSpec> fields();

  SoSFBool collide;      ///< exposedField, TRUE: whether the children or the stand-in collide
  VrmlSFNode proxy;      ///< field, null: a node that collides in place of the children; never drawn
  SoSFTime collideTime;  ///< eventOut, 0: when the avatar hit the geometry

  VrmlCollision();

protected:
  ~VrmlCollision() override;
};
