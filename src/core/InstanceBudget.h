// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

namespace tessel {

/// What instances of prototypes may still take: one for each read, also for what other files later add to its
/// instances.
struct InstanceBudget {
  std::uint64_t maxNodes = 4'000'000;  ///< made by instances, at most
  int maxNesting = 10'000;             ///< instances inside one another
  int maxLevels = 4000;                ///< other nodes above an instance
  std::uint64_t made = 0;              ///< nodes so far
};

}  // namespace tessel
