// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/CacheLine.h"
#include "script/Instruction.h"
#include "script/Value.h"

namespace tessel::script {

/// One function of a script, compiled.
///
/// A run works on a window of values: parameters, locals, constants, then one place for the result of each
/// expression. An expression that fails has the result of its last success, so the window outlives the run; only a
/// run within a run of the same function has one of its own.
struct alignas(cacheLine) Function {
  Function(std::string name, int index) : name(std::move(name)), index(index) {}

  /// The place of a parameter or local; -1 for none of that name.
  int variableNamed(const std::string& name) const {
    const auto found = places.find(name);
    return found == places.end() ? -1 : found->second;
  }
  int addVariable(const std::string& variable) {
    places[variable] = numVariables;
    return numVariables++;
  }

  // First what every run needs.
  std::vector<Instruction> code;
  std::vector<Value> window;  ///< of the outermost run
  int numArgs = 0;
  int numVariables = 0;  ///< parameters and locals
  int steps = 1;         ///< that a run counts as
  bool isRunning = false;
  bool mayHoldNodes = false;            ///< places other than variables may
  std::vector<std::int32_t> arguments;  ///< the places that methods take their arguments from
  std::vector<Value> constants;
  std::vector<int> lines;  ///< of each instruction; line ends before it in the text
  std::string name;
  int index;  ///< in its tree
  std::unordered_map<std::string, int> places;
};

}  // namespace tessel::script
