// SPDX-License-Identifier: BSD-3-Clause
#include "script/CallStack.h"

#include <algorithm>

#include "script/VsField.h"

namespace tessel::script {

static constexpr std::size_t chunkSize = 4096;

// For a run within a run of the same function.
Value* CallStack::windowWithin(const Function& function) {
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

void CallStack::giveUpWithin(const Function& function, Value* window) {
  const std::size_t size = function.window.size();
  for (std::size_t i = 0; i < size; ++i) window[i].clear();
  free = window;
  values -= size;
  if (free == begin && chunk > 0) shrink();
}

// Goes on to a chunk with that much room; those that are there are tried first.
void CallStack::growFor(std::size_t size) {
  if (begin) chunks[chunk++].left = free;
  if (chunk == chunks.size() || chunks[chunk].size < size) {
    chunks.resize(chunk);
    const std::size_t room = std::max(size, chunkSize);
    chunks.push_back({std::make_unique<Value[]>(room), room});
  }
  begin = free = chunks[chunk].values.get();
  end = begin + chunks[chunk].size;
}

void CallStack::shrink() {
  --chunk;
  begin = chunks[chunk].values.get();
  free = chunks[chunk].left;
  end = begin + chunks[chunk].size;
}

// The window of an outermost run keeps its results. A value that keeps nodes is not kept itself: a script may stand
// below those nodes.
void CallStack::keep(Function& function) {
  std::vector<Value>& window = function.window;
  const auto results = window.begin() + function.numVariables;
  std::for_each(window.begin(), results, [](Value& value) { value.clear(Type::undefined); });
  if (function.mayHoldNodes)
    std::for_each(results, window.end(), [](Value& value) {
      if (isHeldByField(value.type()) && value.object()->keepsNodes()) value.clear();
    });
  function.isRunning = false;
}

}  // namespace tessel::script
