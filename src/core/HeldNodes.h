// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/misc/SoNotification.h>
#include <Inventor/nodes/SoNode.h>

namespace tessel {

/// Whether a notification that a field has handed to its node tells of a change inside a node that the field holds,
/// and not of another value.
inline bool tellsOfHeldNode(const SoNotList& list) {
  const SoNotRec* record = list.getLastRec();
  const SoField* field = list.getLastField();
  if (!record || record->getType() != SoNotRec::CONTAINER || !record->getPrevious()) return false;
  if (!field || field->getContainer() != record->getBase()) return false;
  if (!field->isOfType(SoSFNode::getClassTypeId()) && !field->isOfType(SoMFNode::getClassTypeId()))
    return false;
  const SoBase* from = record->getPrevious()->getBase();
  if (!from->isOfType(SoNode::getClassTypeId())) return false;  // an engine
  SoField* master = nullptr;
  return !field->getConnectedField(master) || master->getContainer() != from;
}

}  // namespace tessel
