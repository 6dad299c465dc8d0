// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/nodes/SoNode.h>

#include <tessel/core/VrmlSFNode.h>
#include <tessel/toolkit/Scoped.h>

class VrmlNode;

namespace tessel {

/// The copying of nodes with all that hangs from their fields. What is shared among them stays shared among the
/// copies. The copies are known by their originals for as long as the object lives; such objects may be nested.
class [[nodiscard]] DeepCopy {
public:
  explicit DeepCopy(bool withConnections)
      : connections(withConnections), nodesAreFixed(VrmlSFNode::setFixCopy(1)), copying(running, true) {
    SoFieldContainer::initCopyDict();
  }
  ~DeepCopy() {
    SoFieldContainer::copyDone();
    VrmlSFNode::setFixCopy(nodesAreFixed);
  }
  DeepCopy(const DeepCopy&) = delete;
  DeepCopy& operator=(const DeepCopy&) = delete;

  static bool isRunning() { return running; }

  /// Makes the copies of a node and of what hangs from it, still empty. All are to be added before the first is asked
  /// for.
  void add(const SoNode& node) { node.addToCopyDict(); }
  /// The copy of a node, with its contents; null if it was not copied. It dies with the object unless it is referenced.
  SoNode* of(const SoNode* node) {
    if (!SoFieldContainer::checkCopy(node)) return nullptr;
    return static_cast<SoNode*>(SoFieldContainer::findCopy(node, connections ? TRUE : FALSE));
  }

private:
  inline static bool running = false;

  bool connections;
  int nodesAreFixed;
  ScopedValue<bool> copying;
};

}  // namespace tessel
