// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlSensor.h>

#include <Inventor/misc/SoNotification.h>

#include "core/EventWatch.h"
#include "core/NodeClassImpl.h"

int VrmlSensor::allEnabled = 1;

std::span<const tessel::FieldSpec> VrmlSensor::fields() { return {}; }

VrmlSensor::VrmlSensor() { setUpFields(); }

VrmlSensor::~VrmlSensor() = default;

void VrmlSensor::notify(SoNotList* list) {
  if (!optimizedNotify) {
    NodeClass::notify(list);
    return;
  }
  tessel::EventWatch::tellSent(*this, *list);
  if (isNotifyEnabled() && uniqueId < list->getTimeStamp()) uniqueId = SoNode::getNextNodeId();
}

template class tessel::NodeClass<VrmlSensor, VrmlNode>;
