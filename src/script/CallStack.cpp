// SPDX-License-Identifier: BSD-3-Clause
#include "script/CallStack.h"

#include <algorithm>

#include "script/VsField.h"

namespace tessel::script {

static constexpr std::size_t chunkSize = 4096;

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
