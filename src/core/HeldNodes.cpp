// SPDX-License-Identifier: BSD-3-Clause
#include "core/HeldNodes.h"

#include <Inventor/misc/SoNotification.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/VrmlNode.h>

namespace tessel {

bool isFromHeldNode(const SoField& field, const SoNotRec* before) {
  if (!before || !before->getBase()->isOfType(SoNode::getClassTypeId())) return false;  // an engine, at most
  SoField* master = nullptr;
  return !field.getConnectedField(master) || master->getContainer() != before->getBase();
}

bool endsAtField(const SoField& field, const SoNotList& list) {
  const SoFieldContainer* owner = field.getContainer();
  return owner && owner->isOfType(VrmlNode::getClassTypeId()) &&
         !static_cast<const VrmlNode*>(owner)->heedsHeldNodes() && isFromHeldNode(field, list.getLastRec());
}

}  // namespace tessel
