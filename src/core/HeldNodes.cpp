// SPDX-License-Identifier: BSD-3-Clause
#include "core/HeldNodes.h"

#include <Inventor/misc/SoNotification.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/VrmlNode.h>

#include "core/AsVrmlNode.h"

namespace tessel {

bool isFromHeldNode(const SoField& field, const SoNotRec* before) {
  const SoBase* source = before ? before->getBase() : nullptr;
  // Nearly all are ours, which is found out sooner.
  const bool isNode = source && (asVrmlNode(source) || source->isOfType(SoNode::getClassTypeId()));
  if (!isNode) return false;  // an engine, at most
  SoField* master = nullptr;
  return !field.getConnectedField(master) || master->getContainer() != source;
}

bool endsAtField(const SoField& field, const SoNotList& list) {
  const VrmlNode* owner = asVrmlNode(field.getContainer());
  return owner && !owner->heedsHeldNodes() && isFromHeldNode(field, list.getLastRec());
}

}  // namespace tessel
