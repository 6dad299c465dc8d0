// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/OnDemand.h>
#include <tessel/events/VrmlInterpolator.h>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoSFFloat.h>

/// ScalarInterpolator: a number.
class TESSEL_API VrmlScalarInterpolator : public tessel::NodeClass<VrmlScalarInterpolator, VrmlInterpolator> {
public:
  static constexpr const char* fileFormatName = "ScalarInterpolator";
  static std::span<const tessel::FieldSpec> fields();

  SoMFFloat keyValue;                         ///< exposedField, one 0: a number a key
  tessel::OnDemand<SoSFFloat> value_changed;  ///< eventOut, 0: the number at the fraction

  VrmlScalarInterpolator();
  void evaluate() override;
  SoField* getOutputField() override { return &value_changed; }

protected:
  ~VrmlScalarInterpolator() override;
};
