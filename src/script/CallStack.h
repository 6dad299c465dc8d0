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

  /// The runs that have a caller in the script.
  std::size_t depth() const { return callers.size(); }
  bool isFull(const Function& next) const {
    return callers.size() + fromOutside >= depthLimit ||
           (next.isRunning && values + next.window.size() > valueLimit);
  }

  const Caller& innermost() const { return callers.back(); }

  /// A window for a run, with variables undefined: for one that is called from outside the script, and has no caller
  /// in it, or by a run.
  Value* enterFromOutside(Function& function) {
    ++fromOutside;
    return windowOf(function);
  }
  Value* enter(Function& function, const Caller& caller) {
    callers.push_back(caller);
    return windowOf(function);
  }

  /// Ends the innermost run, which worked on that window.
  void leaveForOutside(Function& function, Value* window) {
    --fromOutside;
    giveUp(function, window);
  }
  Caller leave(Function& function, Value* window) {
    const Caller caller = callers.back();
    callers.pop_back();
    giveUp(function, window);
    return caller;
  }

private:
  struct Chunk {
    std::unique_ptr<Value[]> values;
    std::size_t size;
    Value* left = nullptr;  // where it was free when the next one was taken
  };

  Value* windowOf(Function& function) {
    if (function.isRunning) return windowWithin(function);
    function.isRunning = true;
    return function.window.data();
  }
  void giveUp(Function& function, Value* window) {
    if (window == function.window.data())
      keep(function);
    else
      giveUpWithin(function, window);
  }
  Value* windowWithin(const Function& function);
  void giveUpWithin(const Function& function, Value* window);
  void growFor(std::size_t size);
  void shrink();
  void keep(Function& function);

  std::size_t fromOutside = 0;  // runs that were called so
  std::vector<Caller> callers;
  std::vector<Chunk> chunks;
  std::size_t chunk = 0;  // the one in use
  Value* begin = nullptr;
  Value* free = nullptr;
  Value* end = nullptr;
  std::size_t values = 0;  // in use
};

}  // namespace tessel::script
