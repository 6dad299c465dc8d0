// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

/// Base of the nodes that produce events on their own.
class TESSEL_API VrmlSensor : public tessel::NodeClass<VrmlSensor, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Sensor";
  static std::span<const tessel::FieldSpec> fields();

  /// A host's switch, 1 at first: with 0 no TimeSensor begins a run. Those that run go on to their end.
  static int allEnabled;

  /// With VrmlNode::optimizedNotify a change of the sensor is not told to the nodes above.
  void notify(SoNotList* list) override;

protected:
  VrmlSensor();
  ~VrmlSensor() override;
};
