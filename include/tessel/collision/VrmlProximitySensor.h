// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/VrmlSensor.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFRotation.h>
#include <Inventor/fields/SoSFTime.h>
#include <Inventor/fields/SoSFVec3f.h>

/// ProximitySensor: tells when the avatar enters and leaves a box, and where it is meanwhile, in the
/// sensor's own coordinates.
class TESSEL_API VrmlProximitySensor : public tessel::NodeClass<VrmlProximitySensor, VrmlSensor> {
public:
  static constexpr const char* fileFormatName = "ProximitySensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f center;                  ///< exposedField, 0 0 0: centre of the box
  SoSFVec3f size;                    ///< exposedField, 0 0 0: size of the box; nothing is inside an empty one
  SoSFBool enabled;                  ///< exposedField, TRUE
  SoSFBool isActive;                 ///< eventOut, FALSE: the avatar is inside
  SoSFVec3f position_changed;        ///< eventOut, 0 0 0: place of the avatar
  SoSFRotation orientation_changed;  ///< eventOut, half a turn about z: orientation of the avatar
  SoSFTime enterTime;                ///< eventOut, 0: when the avatar came in, to a part of a frame
  SoSFTime exitTime;                 ///< eventOut, 0: when it left

  VrmlProximitySensor();

protected:
  ~VrmlProximitySensor() override;
};
