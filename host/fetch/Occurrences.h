// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoNode.h>
#include <tessel/proto/VrmlInline.h>

namespace tessel::host {

/// How often nodes are met by a traversal of a world that USE multiplies and Inlines put together.
using Occurrences = std::unordered_map<const SoNode*, double>;

/// Enters how often each Inline below `root` is met if `root` is met so many times; gives the nodes met in all.
inline double countOccurrences(SoNode* root, double times, Occurrences& inlines) {
  // Children before parents: a node's count is complete when all its parents have been counted, from the back.
  std::vector<SoNode*> order;
  Occurrences met{{root, 0}};
  std::vector<std::pair<SoNode*, int>> open{{root, 0}};
  while (!open.empty()) {
    const auto [node, next] = open.back();
    const SoChildList* children = node->getChildren();
    if (children && next < children->getLength()) {
      ++open.back().second;
      SoNode* child = (*children)[next];
      if (met.try_emplace(child, 0).second) open.emplace_back(child, 0);
    } else {
      order.push_back(node);
      open.pop_back();
    }
  }
  met[root] = times;
  double all = 0;
  std::ranges::reverse(order);
  for (SoNode* const node : order) {
    const double count = met[node];
    all += count;
    if (node->isOfType(VrmlInline::getClassTypeId())) inlines[node] = count;
    const SoChildList* children = node->getChildren();
    for (int i = 0; children && i < children->getLength(); ++i) met[(*children)[i]] += count;
  }
  return all;
}

}  // namespace tessel::host
