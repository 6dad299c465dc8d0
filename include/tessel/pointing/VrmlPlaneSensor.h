// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/pointing/VrmlGeometricSensor.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFVec2f.h>
#include <Inventor/fields/SoSFVec3f.h>

/// PlaneSensor: a drag moves a point in the plane z = 0 of the sensor's coordinates.
class TESSEL_API VrmlPlaneSensor : public tessel::NodeClass<VrmlPlaneSensor, VrmlGeometricSensor> {
public:
  static constexpr const char* fileFormatName = "PlaneSensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec2f minPosition;          ///< exposedField, 0 0: least x and y
  SoSFVec2f maxPosition;          ///< exposedField, -1 -1: greatest x and y; below the least: not clamped
  SoSFVec3f offset;               ///< exposedField, 0 0 0: where a drag begins
  SoSFBool autoOffset;            ///< exposedField, TRUE: the end of a drag is where the next one begins
  SoSFVec3f trackPoint_changed;   ///< eventOut, 0 0 0: the pointer in the plane, not clamped
  SoSFVec3f translation_changed;  ///< eventOut, 0 0 0: the drag plus the offset, clamped

  VrmlPlaneSensor();

protected:
  ~VrmlPlaneSensor() override;
};
