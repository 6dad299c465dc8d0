// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/misc/SoBase.h>

#include <tessel/core/VrmlNode.h>

namespace tessel {

/// Whether the objects of a class of the toolkit's are nodes of ours. Remembered, since every event asks.
bool isVrmlNodeClass(SoType type);

/// An object of the toolkit's as a node of ours; null for any other, and for none.
inline VrmlNode* asVrmlNode(SoBase* base) {
  return base && isVrmlNodeClass(base->getTypeId()) ? static_cast<VrmlNode*>(base) : nullptr;
}
inline const VrmlNode* asVrmlNode(const SoBase* base) {
  return base && isVrmlNodeClass(base->getTypeId()) ? static_cast<const VrmlNode*>(base) : nullptr;
}

}  // namespace tessel
