// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <vector>

#include <tessel/proto/VrmlProtoDef.h>
#include <tessel/toolkit/Scoped.h>

/// The reading of a definition: it remembers whose instances it meets.
class VrmlProtoDef::Reading {
public:
  explicit Reading(VrmlProtoDef& d) : definition(d), innermost(innermostReading, this) {}
  ~Reading() {
    std::ranges::sort(used);
    used.erase(std::unique(used.begin(), used.end()), used.end());
    for (VrmlProtoDef* one : used) definition.uses.emplace_back(one);
  }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

  void met(VrmlProtoDef& one) {
    if (used.empty() || used.back() != &one) used.push_back(&one);
  }

private:
  VrmlProtoDef& definition;
  std::vector<VrmlProtoDef*> used;  // the names in reach keep them alive meanwhile
  tessel::ScopedValue<Reading*> innermost;
};
