// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include "script/Function.h"
#include "script/SyntaxTree.h"

namespace tessel::script {

/// Makes instructions of the statements of a function. Every expression gets a place of its own for its result.
///
/// An operand that is a variable is no copy but the variable itself, read when its operation is done, also where
/// it was named before something that changes it: `a + (a = 5)` is 10. That a variable has no value is reported
/// where it is named.
class Compiler {
public:
  explicit Compiler(Function& function);

  void compile(const std::vector<Stmt*>& statements);

private:
  // Indices of instructions that are to lead to one place.
  using Jumps = std::vector<int>;
  struct Loop {
    Jumps leave, proceed;
  };
  enum class Field : char { b, c };

  int emit(Op op, int line, int dst = -1, int a = -1, int b = -1, int c = -1, int aux = 0);
  int here() const { return static_cast<int>(out.code.size()); }
  void land(const Jumps& jumps, Field field = Field::b);
  int newPlace() { return places++; }
  int resultOf(Expr& expr);

  void statements(const std::vector<Stmt*>& list);
  void statement(const Stmt& stmt);
  void choice(const Stmt& stmt);
  void loop(const Stmt& stmt);
  int unless(Expr& condition, Jumps& isFalse, Jumps& isNoNumber);
  void discard(Expr& expr, Jumps* ifNone = nullptr);

  // Code for the expression. What it gives: `read` makes that a place.
  void evaluate(Expr& expr);
  int read(Expr& expr);
  int operand(Expr& expr);
  void evaluateBefore(Expr& expr, const Expr& next);
  void stayLive(Expr& expr, const Expr& next);
  void stayLive(Expr& expr);
  int chooseAgain(Expr& expr);
  bool checkBefore(Expr& expr, const Expr& next);
  bool isLast(Op op) const { return !out.code.empty() && out.code.back().op == op; }
  void checkVariable(Expr& expr);
  void ifNone(Expr& expr, Jumps& jumps);

  void arith(Expr& expr, int variable);
  void logic(Expr& expr);
  void condExpr(Expr& expr);
  void choose(Expr& expr, Expr& branch);
  void incDec(Expr& expr);
  void assign(Expr& expr, bool wantsResult);
  void assignTo(Expr& target, int place, int flags, Jumps& failed, Expr* value = nullptr);
  int indexAndArray(Expr& expr, Jumps& failed);
  void arrayVar(Expr& expr);
  void method(Expr& expr);
  void call(Expr& expr);
  void construct(Expr& expr);
  int argumentList(Expr& expr, Jumps& failed);

  Function& out;
  int places;
  int landing = -1;  // the last place that jumps lead to
  Loop* innermost = nullptr;
  Jumps topLevel;  // of break and continue outside a loop
};

}  // namespace tessel::script
