// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/SyncedChildren.h"

#include <algorithm>

#include <Inventor/misc/SoNotification.h>
#include <Inventor/sensors/SoOneShotSensor.h>

#include <tessel/core/VrmlSFNode.h>
#include <tessel/toolkit/SoRef.h>

#include "shapes/RealNode.h"

namespace tessel {

SyncedChildren::SyncedChildren(SoNode* node, std::initializer_list<Slot> fields)
    : list(node, 2), owner(node), numSlots(static_cast<int>(fields.size())) {
  std::copy(fields.begin(), fields.end(), slots);
}

SyncedChildren::~SyncedChildren() {
  // The list tells its owner that it is emptied, who is half gone by now.
  syncing = true;
  list.truncate(0);
}

bool SyncedChildren::accepts(const Slot& slot) { return takesItsNode(*slot.field, slot.type); }

bool SyncedChildren::fieldsAreSound() const { return std::all_of(slots, slots + numSlots, accepts); }

bool SyncedChildren::concerns(const SoField* field) const {
  return std::any_of(slots, slots + numSlots, [field](const Slot& s) { return s.field == field; });
}

bool SyncedChildren::notify(const SoNotList* notification) {
  if (syncing) return false;
  const SoNotRec* last = notification->getLastRec();
  if (last->getType() != SoNotRec::CONTAINER || !concerns(notification->getLastField())) return true;
  // Behind the owner's record stands the node that the change came from, if it did not begin here: one of
  // the children if it lies below, the other end of a connection if the field gets another value.
  const SoNotRec* from = last->getPrevious();
  if (from && from->getType() == SoNotRec::FIELD)
    for (int i = 0; i < list.getLength(); ++i)
      if (from->getBase() == list[i]) return false;
  stale = true;
  if (owner->isNotifyEnabled()) {
    if (!syncSensor) {
      syncSensor = std::make_unique<SoOneShotSensor>(syncSensorCB, this);
      syncSensor->setPriority(0);
    }
    syncSensor->schedule();
  }
  return true;
}

void SyncedChildren::sync() {
  if (!stale || syncing) return;
  syncing = true;
  SoNode* wanted[maxSlots];
  int numWanted = 0;
  for (int i = 0; i < numSlots; ++i) {
    if (!accepts(slots[i])) slots[i].field->setValue(nullptr);
    if (SoNode* node = slots[i].field->getValue()) wanted[numWanted++] = node;
  }
  SoNode** const end = wanted + numWanted;
  for (int i = list.getLength() - 1; i >= 0; --i)
    if (std::find(wanted, end, list[i]) == end) list.remove(i);
  for (int i = 0; i < numWanted; ++i)
    if (i >= list.getLength() || list[i] != wanted[i]) list.insert(wanted[i], i);
  list.truncate(numWanted);
  stale = syncing = false;
}

// A node that nobody holds but its own field goes when that gives way, though not before all is in line.
void SyncedChildren::syncSensorCB(void* self, SoSensor*) {
  auto* synced = static_cast<SyncedChildren*>(self);
  const SoRef<SoNode> staying(synced->owner->getRefCount() > 0 ? synced->owner : nullptr);
  synced->sync();
}

}  // namespace tessel
