// SPDX-License-Identifier: BSD-3-Clause
#include "core/ChildRuns.h"

#include <algorithm>
#include <utility>

#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/VrmlCullingGroup.h>

namespace tessel {

namespace {

constexpr std::size_t runLength = 64;

}  // namespace

std::span<const std::unique_ptr<ChildRuns::Run>> ChildRuns::update(const SoChildList& list,
                                                                   std::span<const int> order) {
  if (!std::exchange(stale, false) && order.data() == seen.data() && order.size() == seen.size()) return runs;
  seen = order;
  runs.resize((order.size() + runLength - 1) / runLength);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (!runs[i]) runs[i] = std::make_unique<Run>(VrmlCullingGroup::getNumRenderCaches());
    Run& run = *runs[i];
    run.children = order.subspan(i * runLength, std::min(runLength, order.size() - i * runLength));
    bool same = run.ids.size() == run.children.size();
    run.ids.resize(run.children.size());
    for (std::size_t k = 0; k < run.children.size(); ++k) {
      // The toolkit gives a node a new number with each change in it or below.
      const SbUniqueId id = list[run.children[k]]->getNodeId();
      same = same && run.ids[k] == id;
      run.ids[k] = id;
    }
    if (same) continue;
    run.box.drop();
    run.drawing.invalidate();
  }
  return runs;
}

}  // namespace tessel
