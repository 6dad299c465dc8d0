// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "script/Function.h"

namespace tessel::script {

/// The runs of functions that are under way in one script, and the windows of those that run within a run of the
/// same function. Windows never move. What is there is used again.
class CallStack {
public:
  static constexpr std::size_t depthLimit = 2000;
  static constexpr std::size_t valueLimit = std::size_t{1} << 22;  // of windows within runs: 64 MiB

  /// What a run goes back to.
  struct Caller {
    Function* function;
    Value* window;
    const Instruction* next;
    std::int32_t dst;
  };

  std::size_t depth() const { return callers.size(); }
  bool isFull(const Function& next) const {
    return callers.size() >= depthLimit || (next.isRunning && values + next.window.size() > valueLimit);
  }

  const Caller& innermost() const { return callers.back(); }

  /// A window for a run, with variables undefined.
  Value* enter(Function& function, const Caller& caller);
  /// Ends the innermost run, which worked on that window.
  Caller leave(Function& function, Value* window);

private:
  struct Chunk {
    std::unique_ptr<Value[]> values;
    std::size_t size;
    std::size_t used;
  };

  std::vector<Caller> callers;
  std::vector<Chunk> chunks;
  std::size_t chunk = 0;   // the one in use
  std::size_t values = 0;  // in use
};

}  // namespace tessel::script
