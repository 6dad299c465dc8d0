// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlMFNode.h>

#include <tessel/toolkit/Scoped.h>

#include "core/DeepCopy.h"
#include "core/HeldNodes.h"

// The toolkit's own way leaks what is beyond the end of a shorter list, and takes what stood behind the end of this one
// before it was cut for nodes that it still holds.
void VrmlMFNode::copyFrom(const SoField& source) {
  const auto& from = static_cast<const SoMFNode&>(source);
  const int count = from.getNum();
  if (getNum() > count) {
    const tessel::NotifyOff silence(static_cast<SoField&>(*this));
    setNum(count);
  }
  if (count > 0)
    setValues(0, count, const_cast<const SoNode**>(from.getValues(0)));
  else
    SoMFNode::copyFrom(source);
}

void VrmlMFNode::notify(SoNotList* list) {
  if (!tessel::endsAtField(*this, *list)) SoMFNode::notify(list);
}

void VrmlMFNode::fixCopy(SbBool copyConnections) { tessel::DeepCopy::fixNodes(*this, copyConnections); }
