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
  Value* enter(Function& function, const Caller& caller) {
    callers.push_back(caller);
    if (!function.isRunning) {
      function.isRunning = true;
      return function.window.data();
    }
    const std::size_t size = function.window.size();
    if (static_cast<std::size_t>(end - free) < size) growFor(size);
    Value* window = free;
    free += size;
    values += size;
    for (int i = 0; i < function.numVariables; ++i) window[i].clear(Type::undefined);
    Value* constant = window + function.numVariables;
    for (const Value& one : function.constants) (constant++)->setValue(one);
    return window;
  }

  /// Ends the innermost run, which worked on that window.
  Caller leave(Function& function, Value* window) {
    const Caller caller = callers.back();
    callers.pop_back();
    if (window == function.window.data()) {
      keep(function);
    } else {
      const std::size_t size = function.window.size();
      for (std::size_t i = 0; i < size; ++i) window[i].clear();
      free = window;
      values -= size;
      if (free == begin && chunk > 0) shrink();
    }
    return caller;
  }

private:
  struct Chunk {
    std::unique_ptr<Value[]> values;
    std::size_t size;
    Value* left = nullptr;  // where it was free when the next one was taken
  };

  void growFor(std::size_t size);
  void shrink();
  void keep(Function& function);

  std::vector<Caller> callers;
  std::vector<Chunk> chunks;
  std::size_t chunk = 0;  // the one in use
  Value* begin = nullptr;
  Value* free = nullptr;
  Value* end = nullptr;
  std::size_t values = 0;  // in use
};

}  // namespace tessel::script
