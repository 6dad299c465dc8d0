// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/OnDemand.h>
#include <tessel/events/VrmlInterpolator.h>

#include <Inventor/fields/SoMFVec3f.h>

/// NormalInterpolator: a list of unit vectors, each blended on its own.
class TESSEL_API VrmlNormalInterpolator : public tessel::NodeClass<VrmlNormalInterpolator, VrmlInterpolator> {
public:
  static constexpr const char* fileFormatName = "NormalInterpolator";
  static std::span<const tessel::FieldSpec> fields();

  SoMFVec3f keyValue;                         ///< exposedField, one 0 0 -1: equally many normals for each key
  tessel::OnDemand<SoMFVec3f> value_changed;  ///< eventOut, one 0 0 -1: the normals at the fraction

  VrmlNormalInterpolator();
  void evaluate() override;
  SoField* getOutputField() override { return &value_changed; }

protected:
  ~VrmlNormalInterpolator() override;

private:
  Lists lists;
};
