// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>

#include "script/Instruction.h"
#include "script/Value.h"
#include "script/VsError.h"

namespace tessel::script {

class VsParseTree;
struct Function;

/// Runs functions of a script. Calls between them take no stack of the machine.
class Interpreter : private Locator {
public:
  explicit Interpreter(VsParseTree& tree) : tree(tree) {}

  /// False if the script was stopped.
  bool run(Function& called, std::span<const Value> arguments, Value* result);

private:
  Location location() const override;

  bool loop();
  bool enter(Function& called);
  void giveBack(const Value& value);
  void leave();
  bool takeSteps(const Instruction& instruction, int count);

  // The ways of an operation that is not done in the loop. They know the instruction by
  // `at`, for its line.
  void slowArith(const Instruction& instruction);
  void concatenate(Value& result, const Value& left, const Value& right);
  void slowCompare(const Instruction& instruction);
  bool truth(const Instruction& instruction, const Value& value, bool& isNumber);
  void slowUnary(const Instruction& instruction);
  void slowIncrement(const Instruction& instruction);
  bool incrementOther(const Instruction& instruction);
  void assign(const Instruction& instruction);
  bool decides(const Instruction& instruction);
  void andOr(const Instruction& instruction);
  bool passArgument(const Instruction& instruction);
  bool isIndex(const Instruction& instruction);
  void getElement(const Instruction& instruction);
  void setElement(const Instruction& instruction);
  bool hasValue(const Instruction& instruction);
  const Value& argument(const Instruction& instruction, int k) const;
  void callMath(const Instruction& instruction);
  void parseNumber(const Instruction& instruction);
  bool onObject(const Instruction& instruction);
  void checkVariable(std::int32_t place);

  VsParseTree& tree;
  Function* function = nullptr;
  Value* window = nullptr;
  const Instruction* at = nullptr;
  Value* outcome = nullptr;  // of the outermost run
  std::size_t bottom = 0;    // depth of the stack below it
};

}  // namespace tessel::script
