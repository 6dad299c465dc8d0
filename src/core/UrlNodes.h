// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <span>

#include <Inventor/SoType.h>

class SoNode;

namespace tessel {

/// A class of nodes that get their data from a URL. The floors above enter theirs at start-up.
struct UrlNodeClass {
  SoType type;
  bool bringsNodes;  ///< the data are nodes, which stand where the node stands
  /// Whether a node's data have come; with `request` it asks for them if it has not yet.
  bool (*isFetched)(SoNode& node, bool request);
};

void registerUrlNodes(const UrlNodeClass& nodes);
std::span<const UrlNodeClass> urlNodeClasses();

}  // namespace tessel
