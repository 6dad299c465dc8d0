// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <Inventor/SbName.h>

#include "script/NodeEvents.h"
#include "script/Value.h"

namespace tessel::script {

/// One place in a script where a property of a value is named.
class VsMemberAccess {
public:
  explicit VsMemberAccess(const std::string& name) : property(name.c_str()) {}

  std::string_view name() const {
    return {property.getString(), static_cast<std::size_t>(property.getLength())};
  }

  /// What the name means on a node that is read, or written.
  NodeEvent eventOut(VrmlNode& node) { return read.find(node, property, false); }
  NodeEvent eventIn(VrmlNode& node) { return written.find(node, property, true); }

  /// Keeps what was assigned here for the end of the run, in the place of what was before.
  void assign(Value overField, const Value& newValue) {
    target = std::move(overField);
    assigned = newValue;
  }
  /// Sends it.
  void postExecute() {
    if (!target.isNone()) send();
  }
  void forgetAssigned() {
    target.clear();
    assigned.clear();
  }

private:
  void send();

  Value target;  // over a field of a node
  NodeEventCache written, read;
  SbName property;
  Value assigned;
};

}  // namespace tessel::script
