// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/OnDemand.h>
#include <tessel/events/VrmlInterpolator.h>

#include <Inventor/fields/SoMFVec3f.h>
#include <Inventor/fields/SoSFVec3f.h>

/// PositionInterpolator: a point.
class TESSEL_API VrmlPositionInterpolator
    : public tessel::NodeClass<VrmlPositionInterpolator, VrmlInterpolator> {
public:
  static constexpr const char* fileFormatName = "PositionInterpolator";
  static std::span<const tessel::FieldSpec> fields();

  SoMFVec3f keyValue;                         ///< exposedField, one 0 0 0: a point a key
  tessel::OnDemand<SoSFVec3f> value_changed;  ///< eventOut, 0 0 0: the point at the fraction

  VrmlPositionInterpolator();
  void evaluate() override;
  SoField* getOutputField() override { return &value_changed; }

protected:
  ~VrmlPositionInterpolator() override;
};
