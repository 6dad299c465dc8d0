// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/OnDemand.h>
#include <tessel/events/VrmlInterpolator.h>

#include <Inventor/fields/SoMFColor.h>
#include <Inventor/fields/SoSFColor.h>

/// ColorInterpolator: a colour, blended in RGB.
class TESSEL_API VrmlColorInterpolator : public tessel::NodeClass<VrmlColorInterpolator, VrmlInterpolator> {
public:
  static constexpr const char* fileFormatName = "ColorInterpolator";
  static std::span<const tessel::FieldSpec> fields();

  SoMFColor keyValue;                         ///< exposedField, one 0 0 0: a colour a key
  tessel::OnDemand<SoSFColor> value_changed;  ///< eventOut, 0 0 0: the colour at the fraction

  VrmlColorInterpolator();
  void evaluate() override;
  SoField* getOutputField() override { return &value_changed; }

protected:
  ~VrmlColorInterpolator() override;
};
