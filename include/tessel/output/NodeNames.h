// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <memory>
#include <string>
#include <string_view>

class SoNode;
class VrmlNode;

namespace tessel {

/// Names for all nodes of a world, for people and scripts outside of it.
///
/// A node is called by its DEF name as the file has it, a second one of that name `NAME#2`, and one without a name
/// by its type and its number among those without a name of this type, `Box#1`, in the order of the file. Inside an
/// instance of a prototype and inside an inlined file names and numbers begin anew, behind the name of the
/// instance or Inline: `HOUSE/DOOR`, `Inline#1/Box#3`. A name stays with its node; what comes to a running
/// world is numbered behind what was there. No node is kept alive.
class TESSEL_API NodeNames {
public:
  NodeNames();
  ~NodeNames();
  NodeNames(const NodeNames&) = delete;
  NodeNames& operator=(const NodeNames&) = delete;

  /// Forgets all names and takes a world, or none. The world is referenced.
  void setWorld(SoNode* world);
  /// Names the nodes that have come to the world. To be called when somebody wants to know; the rest does it by
  /// itself where a name is missing.
  void update();
  /// The name of a node. One that does not stand in the world is called by its DEF name or its type alone.
  std::string nameOf(const VrmlNode& node);
  /// The name of a node that stood in the world when it was last looked through, else empty.
  std::string_view knownName(const VrmlNode& node) const;
  /// The node of that name, null if there is none.
  VrmlNode* find(std::string_view name);

private:
  friend bool sendEvent(NodeNames&, std::string_view, std::string_view, const char*, int);
  struct State;
  std::unique_ptr<State> state;
};

/// Sends an event to a node as a route would: `target` is NODE.FIELD, with a name of `names` and an eventIn or
/// an exposed field by its plain or its `set_` name, `value` is VRML text, in which `USE NAME` stands for the node
/// of that name. False after a read error for `line` of `fileName`; then nothing has been sent.
TESSEL_API bool sendEvent(NodeNames& names, std::string_view target, std::string_view value,
                          const char* fileName, int line);

}  // namespace tessel
