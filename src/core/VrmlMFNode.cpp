// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlMFNode.h>

#include <tessel/toolkit/Scoped.h>

#include "core/DeepCopy.h"
#include "core/HeldNodes.h"

void VrmlMFNode::copyFrom(const SoField& source) {
  const int count = static_cast<const SoMFNode&>(source).getNum();
  if (getNum() > count) {
    const tessel::NotifyOff silence(static_cast<SoField&>(*this));
    setNum(count);
  }
  SoMFNode::copyFrom(source);
}

void VrmlMFNode::notify(SoNotList* list) {
  if (!tessel::endsAtField(*this, *list)) SoMFNode::notify(list);
}

void VrmlMFNode::fixCopy(SbBool copyConnections) { tessel::DeepCopy::fixNodes(*this, copyConnections); }
