// SPDX-License-Identifier: BSD-3-Clause
#include "core/UrlNodes.h"

#include <vector>

namespace tessel {

namespace {

std::vector<UrlNodeClass>& classes() {
  static std::vector<UrlNodeClass> all;
  return all;
}

}  // namespace

void registerUrlNodes(const UrlNodeClass& nodes) { classes().push_back(nodes); }

std::span<const UrlNodeClass> urlNodeClasses() { return classes(); }

}  // namespace tessel
