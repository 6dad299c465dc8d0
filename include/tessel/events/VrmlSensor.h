// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

/// Base of the nodes that produce events on their own.
class TESSEL_API VrmlSensor : public tessel::NodeClass<VrmlSensor, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Sensor";
  static std::span<const tessel::FieldSpec> fields();

protected:
  VrmlSensor();
  ~VrmlSensor() override;
};
