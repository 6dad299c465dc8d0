// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlSensor.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlSensor::fields() { return {}; }

VrmlSensor::VrmlSensor() { setUpFields(); }

VrmlSensor::~VrmlSensor() = default;

template class tessel::NodeClass<VrmlSensor, VrmlNode>;
