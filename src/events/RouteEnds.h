// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include <Inventor/SbName.h>

#include <tessel/core/FieldKind.h>

class SoBase;
class SoField;
class VrmlNode;

namespace tessel {

/// The node that a field is on, null if its container is no VRML node.
VrmlNode* vrmlNodeOf(const SoField* field);
/// The kind of a field of a VRML node.
FieldKind kindOf(const SoField* field);
/// The name of a field, empty if it has none. A look at a name leaves instances of prototypes as they are.
SbName fieldName(const SoField& field);
/// The name that somebody gave a node: as its DEF has it, else as the toolkit has it; may be empty.
std::string givenName(const SoBase& base);

class WorldReader;
/// The field of a node that a route may begin or end at, under the name that it has there: an exposed field may
/// be named `x_changed` or `set_x`. Null after a report, which calls the node `nodeName`.
SoField* findEnd(WorldReader& reader, VrmlNode& node, const std::string& nodeName,
                 const std::string& fieldName, bool isEventIn);

}  // namespace tessel
