// SPDX-License-Identifier: BSD-3-Clause
// Any bytes to a world, and the world through every traversal that needs no GL.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <tessel/toolkit/SoRef.h>

#include "Traversals.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool started = (tessel::fuzz::start(), true);
  (void)started;

  // A small text may show a large world by USE; a run is to end in milliseconds all the same.
  tessel::ReadStatus status;
  const tessel::ReadOptions options{.maxExpanded = 20'000};
  const tessel::SoRef<SoNode> root(
      VrmlDB::read({reinterpret_cast<const char*>(data), size}, "fuzzed.wrl", status, options));
  if ((status == tessel::ReadStatus::world) != static_cast<bool>(root)) __builtin_trap();
  if (root) tessel::fuzz::traverse(root.get());
  return 0;
}
