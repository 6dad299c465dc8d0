// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/pointing/VrmlGeometricSensor.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFTime.h>
#include <Inventor/fields/SoSFVec2f.h>
#include <Inventor/fields/SoSFVec3f.h>

/// TouchSensor: tells when the pointer is over the geometry, where, and when it is clicked. Points and
/// normals are in the sensor's own coordinates.
class TESSEL_API VrmlTouchSensor : public tessel::NodeClass<VrmlTouchSensor, VrmlGeometricSensor> {
public:
  static constexpr const char* fileFormatName = "TouchSensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFBool isOver;                ///< eventOut, FALSE: the pointer is over the geometry
  SoSFVec3f hitPoint_changed;     ///< eventOut, 0 0 0: the point under the pointer
  SoSFVec3f hitNormal_changed;    ///< eventOut, 0 0 1: the normal there
  SoSFVec2f hitTexCoord_changed;  ///< eventOut, 0 0: the texture coordinate there
  SoSFTime touchTime;             ///< eventOut, 0: frame time of a release over the geometry

  VrmlTouchSensor();

protected:
  ~VrmlTouchSensor() override;
};
