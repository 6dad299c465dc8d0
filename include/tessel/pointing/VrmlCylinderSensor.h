// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/pointing/VrmlGeometricSensor.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFRotation.h>
#include <Inventor/fields/SoSFVec3f.h>

/// CylinderSensor: a drag turns about the y axis of the sensor's coordinates, on a cylinder or, seen along
/// the axis, on a disk. Angles are in radians.
class TESSEL_API VrmlCylinderSensor : public tessel::NodeClass<VrmlCylinderSensor, VrmlGeometricSensor> {
public:
  static constexpr const char* fileFormatName = "CylinderSensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFFloat minAngle;             ///< exposedField, 0: least angle
  SoSFFloat maxAngle;             ///< exposedField, -1: greatest angle; below the least: not clamped
  SoSFFloat diskAngle;            ///< exposedField, 0.262: nearer than this to the axis the ray turns a disk
  SoSFFloat offset;               ///< exposedField, 0: the angle where a drag begins
  SoSFBool autoOffset;            ///< exposedField, TRUE: the end of a drag is where the next one begins
  SoSFVec3f trackPoint_changed;   ///< eventOut, 0 0 0: the pointer on cylinder or disk
  SoSFRotation rotation_changed;  ///< eventOut, identity: the drag plus the offset, clamped

  VrmlCylinderSensor();

protected:
  ~VrmlCylinderSensor() override;
};
