// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlBindingNode.h>

#include "core/NodeClassImpl.h"
#include "toolkit/FieldNotification.h"

using namespace tessel;

std::span<const FieldSpec> VrmlBindingNode::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlBindingNode::set_bind>("set_bind", FieldKind::eventIn),
      fieldSpec<&VrmlBindingNode::isBound>("isBound", FieldKind::eventOut),
  };
  return table;
}

VrmlBindingNode::VrmlBindingNode() { setUpFields(); }

VrmlBindingNode::~VrmlBindingNode() = default;

void VrmlBindingNode::doBind() { isBound.setValue(TRUE); }

void VrmlBindingNode::doUnbind() { isBound.setValue(FALSE); }

void VrmlBindingNode::notify(SoNotList* list) {
  const bool bindEvent = isNotifyEnabled() && list->getLastField() == &set_bind;
  // A scene manager above hears of the event in here, and has bound or unbound the node when this returns.
  VrmlNode::notify(tessel::FieldNotification(this, list).list());
  if (bindEvent) isBound.setValue(set_bind.getValue());
}

template class tessel::NodeClass<VrmlBindingNode, VrmlNode>;
