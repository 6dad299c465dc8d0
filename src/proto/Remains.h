// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <utility>
#include <vector>

#include <Inventor/nodes/SoNode.h>

#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

namespace tessel {

/// What instances and definitions let go of. Nodes inside one another go one after the other, whatever their number.
class Remains {
public:
  static void add(SoNode* node) {
    if (node) list().emplace_back(node);
  }
  static void release() {
    if (releasing) return;
    const ScopedValue<bool> here(releasing, true);
    while (!list().empty()) {
      const SoRef<SoNode> last = std::move(list().back());
      list().pop_back();
    }
  }

private:
  static std::vector<SoRef<SoNode>>& list() {
    static auto* const nodes = new std::vector<SoRef<SoNode>>;
    return *nodes;
  }
  inline static bool releasing = false;
};

}  // namespace tessel
