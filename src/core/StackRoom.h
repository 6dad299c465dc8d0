// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

namespace tessel {

/// The lower half of the calling thread's stack, which grows downwards. All addresses until somebody has looked.
struct LowerStack {
  std::uintptr_t begin = 0;
  std::uintptr_t size = UINTPTR_MAX;

  bool holds(std::uintptr_t address) const { return address - begin < size; }
  /// Finds it out; of no size where that can't be done.
  void look();
};

[[gnu::tls_model("initial-exec")]] inline thread_local constinit LowerStack lowerStack;

/// Whether more than half of the calling thread's stack is in use: then no further call may go as deep as the input
/// asks for. False on a stack of a host's own making, of which nothing is known.
inline bool stackIsShort() {
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  if (!lowerStack.holds(here)) [[likely]]
    return false;
  if (lowerStack.size == UINTPTR_MAX) lowerStack.look();
  return lowerStack.holds(here);
}

}  // namespace tessel
