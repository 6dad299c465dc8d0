// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/pointing/VrmlGeometricSensor.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFRotation.h>
#include <Inventor/fields/SoSFVec3f.h>

/// SphereSensor: a drag turns about the origin of the sensor's coordinates.
class TESSEL_API VrmlSphereSensor : public tessel::NodeClass<VrmlSphereSensor, VrmlGeometricSensor> {
public:
  static constexpr const char* fileFormatName = "SphereSensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFRotation offset;            ///< exposedField, identity: where a drag begins
  SoSFBool autoOffset;            ///< exposedField, TRUE: the end of a drag is where the next one begins
  SoSFVec3f trackPoint_changed;   ///< eventOut, 0 0 0: the pointer on the sphere
  SoSFRotation rotation_changed;  ///< eventOut, identity: the drag after the offset

  VrmlSphereSensor();

protected:
  ~VrmlSphereSensor() override;
};
