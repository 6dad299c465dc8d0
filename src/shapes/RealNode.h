// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlNode.h>
#include <tessel/core/VrmlSFNode.h>

#include <Inventor/nodes/SoNode.h>

#include "core/AsVrmlNode.h"

namespace tessel {

/// The node of class T that a field holds, through prototype instances; null if it holds none.
template <class T> T* realNode(const VrmlSFNode& field) {
  SoNode* node = field.getRealValue();
  return node && node->isOfType(T::getClassTypeId()) ? static_cast<T*>(node) : nullptr;
}

/// Whether a field holds what it is for: a node of that type, a prototype of one, or none.
inline bool takesItsNode(const VrmlSFNode& field, const SoType& type) {
  SoNode* node = field.getValue();
  if (!node || node->isOfType(type)) return true;
  VrmlNode* ours = tessel::asVrmlNode(node);
  return ours && ours->isProtoOfType(type, 0);
}

/// Lets the property of class T that a field holds act. An event may have put any other node there, even one that
/// stands above.
template <class T> void actIfReal(SoAction* action, const VrmlSFNode& field) {
  if (T* node = realNode<T>(field)) node->doAction(action);
}

}  // namespace tessel
