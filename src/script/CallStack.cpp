// SPDX-License-Identifier: BSD-3-Clause
#include "script/CallStack.h"

#include <algorithm>

#include "script/VsField.h"

namespace tessel::script {

static constexpr std::size_t chunkSize = 4096;

Value* CallStack::enter(Function& function, const Caller& caller) {
  callers.push_back(caller);
  if (!function.isRunning) {
    function.isRunning = true;
    return function.window.data();
  }

  const std::size_t size = function.window.size();
  while (chunk < chunks.size() && chunks[chunk].size - chunks[chunk].used < size) ++chunk;
  if (chunk == chunks.size()) {
    const std::size_t room = std::max(size, chunkSize);
    chunks.push_back({std::make_unique<Value[]>(room), room, 0});
  }
  Value* window = chunks[chunk].values.get() + chunks[chunk].used;
  chunks[chunk].used += size;
  values += size;
  for (int i = 0; i < function.numVariables; ++i) window[i].clear(Type::undefined);
  std::copy(function.constants.begin(), function.constants.end(), window + function.numVariables);
  return window;
}

// A value that keeps nodes is not kept itself: a script may stand below those nodes.
CallStack::Caller CallStack::leave(Function& function, Value* window) {
  const Caller caller = callers.back();
  callers.pop_back();
  const std::size_t size = function.window.size();
  if (window == function.window.data()) {
    for (int i = 0; i < function.numVariables; ++i) window[i].clear(Type::undefined);
    if (function.mayHoldNodes) {
      for (std::size_t i = static_cast<std::size_t>(function.numVariables); i < size; ++i)
        if (isHeldByField(window[i].type()) && window[i].object()->keepsNodes()) window[i].clear();
    }
    function.isRunning = false;
  } else {
    for (std::size_t i = 0; i < size; ++i) window[i].clear();
    chunks[chunk].used -= size;
    values -= size;
    while (chunk > 0 && chunks[chunk].used == 0) --chunk;
  }
  return caller;
}

}  // namespace tessel::script
