// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/OnDemand.h>
#include <tessel/events/VrmlInterpolator.h>

#include <Inventor/fields/SoMFVec3f.h>

/// CoordinateInterpolator: a list of points, each blended on its own.
class TESSEL_API VrmlCoordinateInterpolator
    : public tessel::NodeClass<VrmlCoordinateInterpolator, VrmlInterpolator> {
public:
  static constexpr const char* fileFormatName = "CoordinateInterpolator";
  static std::span<const tessel::FieldSpec> fields();

  SoMFVec3f keyValue;                         ///< exposedField, one 0 0 0: equally many points for each key
  tessel::OnDemand<SoMFVec3f> value_changed;  ///< eventOut, one 0 0 0: the points at the fraction

  VrmlCoordinateInterpolator();
  void evaluate() override;
  SoField* getOutputField() override { return &value_changed; }

protected:
  ~VrmlCoordinateInterpolator() override;

private:
  Lists lists;
};
