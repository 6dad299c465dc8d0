// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

class SoField;
class SoNotList;
class VrmlNode;

namespace tessel {

/// Hears of the events of all nodes from its construction to its end, each in the moment in which it is sent
/// and before those that it causes. It must change nothing, and keep no node alive.
class EventWatch {
public:
  EventWatch(const EventWatch&) = delete;
  EventWatch& operator=(const EventWatch&) = delete;

  /// A field of a node has got a value, which it need not have taken from its source yet.
  virtual void sent(VrmlNode& node, SoField& field) = 0;
  /// A node dies: its address means nothing from now on.
  virtual void gone(const VrmlNode& node) = 0;

  /// Whether there is anybody to tell.
  static bool any() { return count > 0; }
  /// To be called first in `notify` of a node whose class does not pass every notification on to VrmlNode's.
  static void tellSent(VrmlNode& node, const SoNotList& list) {
    if (any()) tellAll(node, list);
  }
  static void tellGone(const VrmlNode& node);

protected:
  EventWatch();
  ~EventWatch();

private:
  inline static int count = 0;
  static std::vector<EventWatch*>& watches();
  static void tellAll(VrmlNode& node, const SoNotList& list);
};

}  // namespace tessel
