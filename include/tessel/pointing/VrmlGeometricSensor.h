// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/VrmlSensor.h>

#include <Inventor/fields/SoSFBool.h>

/// Base of the sensors under the mouse. They watch the geometry that shares their parent group.
class TESSEL_API VrmlGeometricSensor : public tessel::NodeClass<VrmlGeometricSensor, VrmlSensor> {
public:
  static constexpr const char* fileFormatName = "GeometricSensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFBool enabled;   ///< exposedField, TRUE: FALSE ends a drag and starts none
  SoSFBool isActive;  ///< eventOut, FALSE: button 1 went down over the geometry and is not up yet

  int isSpatial() const override { return 0; }
  bool isGeometricSensor() const override { return true; }
  bool isSensorEnabled() const override { return enabled.getValue() != 0; }

protected:
  VrmlGeometricSensor();
  ~VrmlGeometricSensor() override;
};
