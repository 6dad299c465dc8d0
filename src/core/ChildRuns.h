// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <span>
#include <vector>

#include <Inventor/SbBasic.h>

#include "actions/RenderCache.h"
#include "core/BoxCache.h"

class SoChildList;

namespace tessel {

/// The many children of one group in runs of neighbours, each with a box and a display list of its own: a child
/// that moves costs its run, not the group.
class ChildRuns {
public:
  struct Run {
    explicit Run(int numRenderCaches) : drawing(numRenderCaches) {}

    std::span<const int> children;  ///< indices in the group's child list
    RenderCache drawing;
    BoxCache box;
    int numCenters = 0;           ///< how many of the children gave the box a center
    std::vector<SbUniqueId> ids;  ///< what the children were when the run was last looked at
  };

  /// How many children make a group keep runs.
  static constexpr int many = 256;

  /// The runs of the children with the indices in `order`, which must outlive them. Boxes and lists of runs in
  /// which a child has changed are dropped.
  std::span<const std::unique_ptr<Run>> update(const SoChildList& list, std::span<const int> order);
  /// Something in the group has changed.
  void setStale() { stale = true; }

private:
  std::vector<std::unique_ptr<Run>> runs;
  std::span<const int> seen;  // the order of the last update
  bool stale = true;
};

}  // namespace tessel
