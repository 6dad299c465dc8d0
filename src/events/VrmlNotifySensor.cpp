// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlNotifySensor.h>

#include <Inventor/SoFullPath.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/misc/SoNotification.h>
#include <Inventor/nodes/SoNode.h>

using tessel::SoRef;

namespace {

bool isChildOf(SoNode* node, SoNode* parent) {
  SoChildList* children = parent->getChildren();
  return children && children->find(node) >= 0;
}

// The nodes that a notification passed on its way up, from the last one down to `trigger` or as far as they
// are children: a node that another one holds in a field can't stand in a path.
SoRef<SoPath> pathOf(const SoNotList& list, SoNode* trigger) {
  SoRef<SoPath> path;
  for (const SoNotRec* record = list.getLastRec(); record; record = record->getPrevious()) {
    if (!record->getBase()->isOfType(SoNode::getClassTypeId())) continue;
    auto* node = static_cast<SoNode*>(record->getBase());
    if (!path) {
      path.reset(new SoPath(node));
    } else {
      SoNode* tail = static_cast<SoFullPath*>(path.get())->getTail();
      if (node != tail && !isChildOf(node, tail)) break;
      if (node != tail) path->append(node);
    }
    if (node == trigger) break;
  }
  return path;
}

}  // namespace

VrmlNotifySensor::VrmlNotifySensor(SoSensorCB* callback, void* data) : SoNodeSensor(callback, data) {
  setPriority(0);
}

VrmlNotifySensor::~VrmlNotifySensor() = default;

void VrmlNotifySensor::schedule() {}
void VrmlNotifySensor::unschedule() {}
SbBool VrmlNotifySensor::isScheduled() const { return FALSE; }

void VrmlNotifySensor::notify(SoNotList* list) {
  triggerPath.reset();
  const SoNotRec* first = list->getFirstRecAtNode();
  if (!func || !first || !first->getBase()) return;
  triggerNode = static_cast<SoNode*>(first->getBase());
  triggerField = list->getLastField();
  if (getTriggerPathFlag()) triggerPath = pathOf(*list, triggerNode);
  setPriority(0);
  func(funcData, this);  // may delete the sensor
}
