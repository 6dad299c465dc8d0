// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/lists/SoFieldList.h>

#include <tessel/core/VrmlNode.h>

#include "core/AsVrmlNode.h"

namespace tessel {

/// Appends the fields of a node or engine, for who only looks at what they hold and are connected with.
inline void listFields(const SoFieldContainer& container, SoFieldList& fields) {
  if (const VrmlNode* node = asVrmlNode(&container))
    node->listFields(fields);
  else
    container.getFields(fields);
}

}  // namespace tessel
