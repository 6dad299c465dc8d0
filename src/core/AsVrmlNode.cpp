// SPDX-License-Identifier: BSD-3-Clause
#include "core/AsVrmlNode.h"

#include "core/ByClass.h"

namespace tessel {

static bool isOurs(SoType type) { return type.isDerivedFrom(VrmlNode::getClassTypeId()); }

bool isVrmlNodeClass(SoType type) { return byClass<isOurs>(type); }

}  // namespace tessel
