// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/OnDemand.h>
#include <tessel/events/VrmlInterpolator.h>

#include <Inventor/fields/SoMFRotation.h>
#include <Inventor/fields/SoSFRotation.h>

/// OrientationInterpolator: a rotation, along the shorter arc.
class TESSEL_API VrmlOrientationInterpolator
    : public tessel::NodeClass<VrmlOrientationInterpolator, VrmlInterpolator> {
public:
  static constexpr const char* fileFormatName = "OrientationInterpolator";
  static std::span<const tessel::FieldSpec> fields();

  SoMFRotation keyValue;                         ///< exposedField, one identity: a rotation a key
  tessel::OnDemand<SoSFRotation> value_changed;  ///< eventOut, identity: the rotation at the fraction

  VrmlOrientationInterpolator();
  void evaluate() override;
  SoField* getOutputField() override { return &value_changed; }

protected:
  ~VrmlOrientationInterpolator() override;
};
