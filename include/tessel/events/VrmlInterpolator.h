// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoSFFloat.h>

/// Base of the nodes that turn a fraction into a value by a list of keys. Each kind adds `keyValue` and
/// `value_changed` of its own type.
class TESSEL_API VrmlInterpolator : public tessel::NodeClass<VrmlInterpolator, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Interpolator";
  static std::span<const tessel::FieldSpec> fields();

  SoMFFloat key;           ///< exposedField, one 0: ascending fractions, one for each key value
  SoSFFloat set_fraction;  ///< eventIn, 0: where to evaluate

  int isSpatial() const override { return 0; }

protected:
  VrmlInterpolator();
  ~VrmlInterpolator() override;
};
