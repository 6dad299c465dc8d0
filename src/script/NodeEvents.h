// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbName.h>
#include <Inventor/SoType.h>

#include <tessel/core/FieldKind.h>

#include "script/Type.h"

class SoField;
class VrmlNode;

namespace tessel {
struct FieldSpec;
}

namespace tessel::script {

/// An end for events that a script names.
struct NodeEvent {
  SoField* field = nullptr;
  FieldKind kind = FieldKind::internal;
  Type type = Type::undefined;  ///< of its values
  /// Whether events may be sent to it, or listened to.
  bool isEventIn() const { return kind == FieldKind::eventIn || kind == FieldKind::exposedField; }
  bool isEventOut() const { return kind == FieldKind::eventOut || kind == FieldKind::exposedField; }
};

/// What a name means on a node: the field of that name, else for `set_x` the field x, for `x_changed` the first one
/// that begins with x. Without a field if there is none.
NodeEvent findNodeEvent(VrmlNode& node, const SbName& name, bool isEventIn);

/// The same for one place in a script, which mostly meets nodes of one class.
class NodeEventCache {
public:
  NodeEvent find(VrmlNode& node, const SbName& name, bool isEventIn);

private:
  SoType nodeType = SoType::badType();
  Type type = Type::undefined;
  const FieldSpec* spec = nullptr;
};

}  // namespace tessel::script
