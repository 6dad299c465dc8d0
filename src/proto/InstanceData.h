// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <Inventor/fields/SoFieldData.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/proto/VrmlExternProtoDef.h>
#include <tessel/proto/VrmlProtoDef.h>
#include <tessel/toolkit/SoRef.h>

#include "proto/ProtoInterface.h"

namespace tessel {

/// What an instance of a prototype consists of.
struct InstanceData {
  SoRef<VrmlProtoDef> protoDef;
  SoRef<VrmlExternProtoDef> externDef;
  InstanceFields fields;                       // of protoDef, or else of externDef
  mutable std::unique_ptr<SoFieldData> table;  // of the fields, for the toolkit, made when it asks
  std::vector<SoRef<SoNode>> otherNodes;
  std::vector<SoRef<VrmlNode>>
      mappedNodes;                      // copies of those in the definition's map; null for what is no copy
  std::vector<std::uint8_t> connected;  // for each field the ways that are or are to be connected; or empty
  std::uint64_t requestNumber = 0;      // among those who wait for the definition; 0 if not waiting
  int levelInBody = 0;                  // how deep it stands in the body of a definition
  bool isInDefinition = false;          // it stands in the body of a definition and has no body of its own
  bool isMade = false;
};

}  // namespace tessel
