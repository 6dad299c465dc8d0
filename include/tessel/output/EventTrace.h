// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tessel {

class NodeNames;

/// Tells which events the nodes of a world send, in the order of sending.
///
/// An event is told by the name of its node, the plain name of its field (an eventOut or an exposedField), and its
/// value as VRML text on one line: the shortest numbers that read back, rotations as axis and angle, lists in
/// brackets, nodes by their names. It listens to all that happens in the process from its construction on, so
/// one that is made before a world is read also tells what the world sends while it is read. What is told is as
/// if nobody listened: no order, value or life of a node changes. Only an interpolator computes its value when it
/// sends, instead of when somebody reads it first.
class TESSEL_API EventTrace {
public:
  using Sink = std::function<void(std::string_view node, std::string_view field, std::string_view value)>;

  /// `names` must outlive the trace.
  EventTrace(NodeNames& names, Sink sink);
  ~EventTrace();
  EventTrace(const EventTrace&) = delete;
  EventTrace& operator=(const EventTrace&) = delete;

  /// Adds to what is told: NODE for all its events, NODE.FIELD for one field, which may be an eventIn too, or "all".
  void select(std::string_view what);
  /// Hands the events since the last call to the sink, but those of nodes that don't stand in the world. To be
  /// called when a frame is done and what has come in it has its place in the world, and so its names.
  void flush();
  /// What was selected and has not been in the world, at this call or at one before.
  std::vector<std::string> unknownSelections();

private:
  struct State;
  std::unique_ptr<State> state;
};

}  // namespace tessel
