// SPDX-License-Identifier: BSD-3-Clause
#include "core/EventWatch.h"

#include <algorithm>

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/misc/SoNotification.h>

#include <tessel/core/VrmlNode.h>

#include "core/HeldNodes.h"
#include "core/PrototypeScope.h"

namespace tessel {

namespace {

bool holdsNodes(const SoField& field) {
  return field.isOfType(SoSFNode::getClassTypeId()) || field.isOfType(SoMFNode::getClassTypeId());
}

// The toolkit tells a node first and the destinations of the field then, so that events are told in the order in
// which they are sent.
SoField* eventOf(const VrmlNode& node, const SoNotList& list) {
  const SoNotRec* record = list.getLastRec();
  SoField* field = list.getLastField();
  if (!record || record->getType() != SoNotRec::CONTAINER || record->getBase() != &node) return nullptr;
  if (!field || field->getContainer() != &node) return nullptr;
  // What a node does to itself while it is made or read is no event, nor what is done to the nodes of an instance.
  if (node.getRefCount() == 0 || !node.isNotifyEnabled() || PrototypeScope::openInstance) return nullptr;
  return holdsNodes(*field) && isFromHeldNode(*field, record->getPrevious()) ? nullptr : field;
}

}  // namespace

std::vector<EventWatch*>& EventWatch::watches() {
  static std::vector<EventWatch*> list;
  return list;
}

EventWatch::EventWatch() {
  watches().push_back(this);
  ++count;
}

EventWatch::~EventWatch() {
  std::erase(watches(), this);
  --count;
}

void EventWatch::tellAll(VrmlNode& node, const SoNotList& list) {
  SoField* field = eventOf(node, list);
  if (!field) return;
  for (EventWatch* watch : watches()) watch->sent(node, *field);
}

void EventWatch::tellGone(const VrmlNode& node) {
  // Who came later may ask those who came before about the node.
  std::for_each(watches().rbegin(), watches().rend(), [&node](EventWatch* watch) { watch->gone(node); });
}

}  // namespace tessel
