// SPDX-License-Identifier: BSD-3-Clause
#include "script/Compiler.h"

#include <algorithm>
#include <limits>

#include <tessel/toolkit/Scoped.h>

namespace tessel::script {
namespace {

// What a run of so many instructions counts as.
int stepsOf(int instructions) {
  constexpr int inStep = 16;
  return std::min(1 + instructions / inStep, int{std::numeric_limits<std::int16_t>::max()});
}

// Objects that its result may be among are not the script's own.
bool givesObjects(Op op) {
  switch (op) {
    case Op::copy:
    case Op::copyResult:
    case Op::loadGlobal:
    case Op::call:
    case Op::getElement:
    case Op::setElement:
    case Op::getMember:
    case Op::setMember:
    case Op::callBrowser:
    case Op::constructField:
    case Op::appendElement:
      return true;
    default:
      return false;
  }
}

}  // namespace

Compiler::Compiler(Function& function)
    : out(function), places(function.numVariables + static_cast<int>(function.constants.size())) {}

void Compiler::compile(const std::vector<Stmt*>& list) {
  for (const Stmt* stmt : list) {
    topLevel.clear();
    statement(*stmt);
    land(topLevel);
  }
  emit(Op::end, out.lines.empty() ? 0 : out.lines.back());
  out.steps = stepsOf(here());
  out.window.assign(static_cast<std::size_t>(places), Value());
  std::fill_n(out.window.begin(), out.numVariables, Value::undefined());
  std::copy(out.constants.begin(), out.constants.end(), out.window.begin() + out.numVariables);
}

int Compiler::emit(Op op, int line, int dst, int a, int b, int c, int aux) {
  out.mayHoldNodes = out.mayHoldNodes || givesObjects(op);
  out.code.push_back({op, static_cast<std::int16_t>(aux), dst, a, b, c});
  out.lines.push_back(line);
  return here() - 1;
}

void Compiler::land(const Jumps& jumps, Field field) {
  if (!jumps.empty()) landing = here();
  for (const int jump : jumps) {
    Instruction& instruction = out.code[static_cast<std::size_t>(jump)];
    (field == Field::b ? instruction.b : instruction.c) = here();
  }
}

int Compiler::resultOf(Expr& expr) {
  if (expr.result < 0) expr.result = newPlace();
  return expr.result;
}

void Compiler::statements(const std::vector<Stmt*>& list) {
  for (const Stmt* stmt : list) statement(*stmt);
}

void Compiler::statement(const Stmt& stmt) {
  switch (stmt.kind) {
    case StmtKind::expression:
      return discard(*stmt.expr);
    case StmtKind::result:
      if (stmt.expr) {
        const int value = operand(*stmt.expr);
        emit(Op::giveBack, stmt.line, -1, value);
      } else {
        emit(Op::end, stmt.line);
      }
      return;
    case StmtKind::choice:
      return choice(stmt);
    case StmtKind::loop:
      return loop(stmt);
    case StmtKind::leave:
    case StmtKind::proceed: {
      const bool leaves = stmt.kind == StmtKind::leave;
      Jumps& jumps = !innermost ? topLevel : leaves ? innermost->leave : innermost->proceed;
      jumps.push_back(emit(Op::jump, stmt.line));
      return;
    }
    case StmtKind::invalid:
      return;
  }
}

// Without a number for a condition neither branch runs.
void Compiler::choice(const Stmt& stmt) {
  Jumps isFalse;
  Jumps isNoNumber;
  Jumps done;
  unless(*stmt.expr, isFalse, isNoNumber);
  statements(stmt.body);
  if (stmt.hasOther) {
    done.push_back(emit(Op::jump, stmt.line));
    land(isFalse, Field::b);
    statements(stmt.other);
  } else {
    land(isFalse, Field::b);
  }
  land(isNoNumber, Field::c);
  land(done);
}

void Compiler::loop(const Stmt& stmt) {
  Jumps done;
  Jumps isFalse;
  Jumps isNoNumber;
  if (stmt.init) discard(*stmt.init, &done);
  const int top = landing = here();
  if (stmt.expr) unless(*stmt.expr, isFalse, isNoNumber);
  Loop inner;
  {
    const ScopedValue within(innermost, &inner);
    statements(stmt.body);
  }
  land(inner.proceed);
  if (stmt.step) discard(*stmt.step, &done);
  emit(Op::jumpBack, stmt.line, -1, -1, top, -1, stepsOf(here() - top));
  land(isFalse, Field::b);
  land(isNoNumber, Field::c);
  land(inner.leave);
  land(done);
}

// Tests a condition, and tells the place of its value. A comparison that is made for it makes the jump too, where it can.
int Compiler::unless(Expr& condition, Jumps& isFalse, Jumps& isNoNumber) {
  const int value = operand(condition);
  if (condition.last().kind == ExprKind::logic) {
    Instruction& comparison = out.code.back();
    if (comparison.op >= Op::equal && comparison.op <= Op::greaterEqual)
      comparison.op = jumpingTwin(comparison.op);
  }
  isFalse.push_back(emit(Op::jumpUnless, condition.line, -1, value));
  isNoNumber.push_back(isFalse.back());
  return value;
}

}  // namespace tessel::script
