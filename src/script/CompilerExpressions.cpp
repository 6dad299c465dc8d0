// SPDX-License-Identifier: BSD-3-Clause
// The compiler, continued: expressions.
#include "script/Compiler.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessel::script {
namespace {

// Nothing happens when its object and index are evaluated.
bool isSimpleTarget(const Expr& expr) {
  return expr.owner != Owner::ownMATH && expr.a->isSimple() && (!expr.b || expr.b->isSimple());
}

bool mayGiveNone(Expr& expr) {
  const Expr& result = expr.last();
  if (result.isSimple()) return false;
  if (result.kind != ExprKind::assign) return true;
  return !result.a->isSimple() || mayGiveNone(*result.b);
}

// What an operator between two values is done by.
Op opOf(Sign sign) {
  struct Row {
    Sign sign;
    Op op;
  };
  static constexpr Row rows[] = {
      {Sign::plus, Op::add},
      {Sign::minus, Op::subtract},
      {Sign::times, Op::multiply},
      {Sign::divide, Op::divide},
      {Sign::remainder, Op::remainder},
      {Sign::bitAnd, Op::bitAnd},
      {Sign::bitOr, Op::bitOr},
      {Sign::bitXor, Op::bitXor},
      {Sign::shiftLeft, Op::shiftLeft},
      {Sign::shiftRight, Op::shiftRight},
      {Sign::shiftRightSigned, Op::shiftRightSigned},
      {Sign::equal, Op::equal},
      {Sign::notEqual, Op::notEqual},
      {Sign::less, Op::less},
      {Sign::lessEqual, Op::lessEqual},
      {Sign::greater, Op::greater},
      {Sign::greaterEqual, Op::greaterEqual},
  };
  return std::ranges::find(rows, sign, &Row::sign)->op;
}

}  // namespace

// Evaluates an expression whose result nobody asks for, except whether there is one.
void Compiler::discard(Expr& expr, Jumps* ifNone) {
  Expr* e = &expr;
  for (; e->kind == ExprKind::comma; e = e->b) discard(*e->a);
  switch (e->kind) {
    case ExprKind::local:
      emit(Op::checkVariable, e->line, -1, e->index);
      return;
    case ExprKind::assign:
      assign(*e, ifNone && mayGiveNone(*e));
      break;
    default:
      evaluate(*e);
  }
  if (ifNone) this->ifNone(*e, *ifNone);
}

void Compiler::ifNone(Expr& expr, Jumps& jumps) {
  if (!mayGiveNone(expr)) return;
  const int result = resultOf(expr.last());
  const bool jumpsItself = isLast(Op::incrementVariable) && out.code.back().dst == result;
  jumps.push_back(jumpsItself ? here() - 1 : emit(Op::jumpIfNone, expr.line, -1, result));
}

int Compiler::operand(Expr& expr) {
  evaluate(expr);
  return read(expr);
}

// The place of what was evaluated. What the script's own variables hold is fetched only now.
int Compiler::read(Expr& expr) {
  Expr& e = expr.last();
  switch (e.kind) {
    case ExprKind::number:
    case ExprKind::string:
      return out.numVariables + e.index;
    case ExprKind::local:
      return e.index;
    case ExprKind::global:
      emit(Op::loadGlobal, e.line, resultOf(e), e.index);
      return e.result;
    case ExprKind::member:
      if (e.node >= 0) emit(Op::readAgain, e.line, e.result, e.node, e.index);
      return resultOf(e);
    case ExprKind::condExpr:
      return e.isReadAgain ? chooseAgain(e) : resultOf(e);
    default:
      return resultOf(e);
  }
}

// For a value that is used when the next expression has been evaluated too. What ?: chooses is what it is by then.
void Compiler::evaluateBefore(Expr& expr, const Expr& next) {
  expr.last().isReadAgain = next.mayAssign;
  evaluate(expr);
}

// A number that is read from a node is its field: what is evaluated between may change it.
void Compiler::stayLive(Expr& expr, const Expr& next) {
  if (next.mayAssign) stayLive(expr);
}

void Compiler::stayLive(Expr& expr) {
  Expr& e = expr.last();
  if (e.kind != ExprKind::member || e.owner == Owner::ownMATH) return;
  const Expr& object = e.a->last();
  e.node = newPlace();
  emit(Op::keep, e.line, e.node, object.kind == ExprKind::local ? object.index : object.result);
}

// A variable without a value is reported before the next operand is evaluated, if that may report too.
bool Compiler::checkBefore(Expr& expr, const Expr& next) {
  const Expr& variable = expr.last();
  if (variable.kind != ExprKind::local || next.isSimple()) return false;
  emit(Op::checkVariable, variable.line, -1, variable.index);
  return true;
}

void Compiler::evaluate(Expr& expr) {
  Expr* e = &expr;
  for (; e->kind == ExprKind::comma; e = e->b) discard(*e->a);
  switch (e->kind) {
    case ExprKind::assign:
      return assign(*e, true);
    case ExprKind::arrayVar:
      return arrayVar(*e);
    case ExprKind::arith:
      return arith(*e, -1);
    case ExprKind::incDec:
      return incDec(*e);
    case ExprKind::condExpr:
      return condExpr(*e);
    case ExprKind::unary: {
      const Op op = e->sign == Sign::minus        ? Op::negate
                    : e->sign == Sign::complement ? Op::complement
                                                  : Op::logicalNot;
      const int value = operand(*e->a);
      emit(op, e->line, resultOf(*e), value);
      return;
    }
    case ExprKind::logic:
      return logic(*e);
    case ExprKind::member: {
      if (e->owner == Owner::ownMATH) {
        emit(Op::mathProperty, e->line, resultOf(*e), -1, -1, -1, static_cast<int>(e->property));
      } else {
        const int object = operand(*e->a);
        emit(Op::getMember, e->line, resultOf(*e), object, e->index, -1, static_cast<int>(e->property));
      }
      return;
    }
    case ExprKind::method:
      return method(*e);
    case ExprKind::call:
      return call(*e);
    case ExprKind::construct:
      return construct(*e);
    default:
      return;  // variables and constants are there already
  }
}

// A chain a + b + c is worked off from its left end. With a variable, the result is assigned to it too.
void Compiler::arith(Expr& expr, int variable) {
  std::vector<Expr*> chain{&expr};
  while (chain.back()->a->kind == ExprKind::arith) chain.push_back(chain.back()->a);
  evaluateBefore(*chain.back()->a, *chain.back()->b);
  for (; !chain.empty(); chain.pop_back()) {
    Expr& e = *chain.back();
    const bool wasChecked = checkBefore(*e.a, *e.b);
    stayLive(*e.a, *e.b);
    evaluate(*e.b);
    const int left = read(*e.a);
    const int right = read(*e.b);
    const bool assigns = &e == &expr && variable >= 0;
    const Op op = opOf(e.sign);
    emit(assigns ? assigningTwin(op) : op, e.line, resultOf(e), left, right, assigns ? variable : -1,
         wasChecked);
  }
}

void Compiler::logic(Expr& expr) {
  Jumps decided;
  const bool isAnd = expr.sign == Sign::logicalAnd;
  if (isAnd || expr.sign == Sign::logicalOr) {
    evaluateBefore(*expr.a, *expr.b);
    const int left = read(*expr.a);
    decided.push_back(emit(isAnd ? Op::andLeft : Op::orLeft, expr.line, resultOf(expr), left));
    stayLive(*expr.a, *expr.b);
    evaluate(*expr.b);
    const int again = read(*expr.a);
    const int right = read(*expr.b);
    emit(isAnd ? Op::andRight : Op::orRight, expr.line, expr.result, again, right);
  } else {
    evaluateBefore(*expr.a, *expr.b);
    const bool wasChecked = checkBefore(*expr.a, *expr.b);
    if (!expr.b->isSimple()) ifNone(*expr.a, decided);
    stayLive(*expr.a, *expr.b);
    evaluate(*expr.b);
    const int left = read(*expr.a);
    const int right = read(*expr.b);
    emit(opOf(expr.sign), expr.line, resultOf(expr), left, right, -1, wasChecked);
  }
  land(decided);
}

void Compiler::condExpr(Expr& expr) {
  Jumps isFalse;
  Jumps isNoNumber;
  Jumps done;
  const int test = unless(*expr.a, isFalse, isNoNumber);
  if (expr.isReadAgain) {
    expr.node = newPlace();
    emit(Op::keep, expr.line, expr.node, test);
  }
  choose(expr, *expr.b);
  done.push_back(emit(Op::jump, expr.line));
  land(isFalse, Field::b);
  land(isNoNumber, Field::c);
  if (expr.isReadAgain) emit(Op::setNone, expr.line, expr.node);
  choose(expr, *expr.c);
  land(done);
}

void Compiler::choose(Expr& expr, Expr& branch) {
  Expr& chosen = branch.last();
  chosen.isReadAgain = expr.isReadAgain;
  evaluate(branch);
  const int value = chosen.kind == ExprKind::condExpr ? resultOf(chosen) : read(branch);
  emit(Op::copy, expr.line, resultOf(expr), value);
  if (expr.isReadAgain) stayLive(branch);
}

// The branch that was chosen, as it is now.
int Compiler::chooseAgain(Expr& expr) {
  const Jumps isSecond{emit(Op::jumpIfNone, expr.line, -1, expr.node)};
  const int first = read(*expr.b);
  emit(Op::keep, expr.line, expr.result, first);
  const Jumps done{emit(Op::jump, expr.line)};
  land(isSecond);
  const int second = read(*expr.c);
  emit(Op::keep, expr.line, expr.result, second);
  land(done);
  return expr.result;
}

void Compiler::incDec(Expr& expr) {
  const int step = expr.sign == Sign::increment ? 1 : -1;
  Expr& target = expr.a->last();
  const int result = resultOf(expr);
  if (expr.a->kind == ExprKind::local) {
    emit(Op::incrementVariable, expr.line, result, target.index, -1, expr.isPrefix, step);
    return;
  }
  Jumps failed;
  const int before = operand(*expr.a);
  failed.push_back(emit(Op::increment, expr.line, result, before, -1, -1, step));
  const int kept = expr.isPrefix ? -1 : newPlace();
  if (!expr.isPrefix) emit(Op::keep, expr.line, kept, before);
  assignTo(target, result, isChecked, failed);
  if (!expr.isPrefix) emit(Op::copy, expr.line, result, kept);
  land(failed);
}

void Compiler::assign(Expr& expr, bool wantsResult) {
  Expr& target = *expr.a;
  Expr& value = *expr.b;
  if (target.kind == ExprKind::local && value.kind == ExprKind::arith && !wantsResult)
    return arith(value, target.index);

  evaluateBefore(value, target);
  if (target.kind == ExprKind::local || target.kind == ExprKind::global) {
    const int from = read(value);
    emit(target.kind == ExprKind::local ? Op::assign : Op::storeGlobal, expr.line, target.index, from,
         wantsResult ? resultOf(expr) : -1);
    return;
  }

  Jumps failed;
  Jumps done;
  bool wasChecked = false;
  if (!isSimpleTarget(target)) wasChecked = checkBefore(value, target);
  if (wantsResult || !isSimpleTarget(target)) ifNone(value, failed);
  stayLive(value, target);
  assignTo(target, -1, (wasChecked ? isChecked : 0) | (wantsResult ? 0 : isUnused), failed, &value);
  if (wantsResult) {
    emit(Op::copyResult, expr.line, resultOf(expr), resultOf(target));
    done.push_back(emit(Op::jump, expr.line));
  }
  land(failed);
  if (wantsResult) emit(Op::setNone, expr.line, expr.result);
  land(done);
}

// Gives what lies at a place, or else what `value` reads as, to an element, a property or a variable.
void Compiler::assignTo(Expr& target, int place, int flags, Jumps& failed, Expr* value) {
  const auto from = [&] { return value ? read(*value) : place; };
  switch (target.kind) {
    case ExprKind::local:
      emit(Op::assign, target.line, target.index, from());
      return;
    case ExprKind::global:
      emit(Op::storeGlobal, target.line, target.index, from());
      return;
    case ExprKind::arrayVar: {
      const int index = indexAndArray(target, failed);
      const int array = read(*target.a);
      emit(Op::setElement, target.line, resultOf(target), array, index, from(), flags & isChecked);
      return;
    }
    default:
      if (target.owner == Owner::ownMATH) {
        emit(Op::setMathMember, target.line, resultOf(target));
        return;
      }
      const int object = operand(*target.a);
      emit(Op::setMember, target.line, resultOf(target), object, target.index, from(),
           static_cast<int>(target.property) | flags);
  }
}

// The index first, which is what it was then; it must be a number for the array to be evaluated.
int Compiler::indexAndArray(Expr& expr, Jumps& failed) {
  evaluate(*expr.b);
  if (expr.a->isSimple()) return read(*expr.b);
  int index = read(*expr.b);
  failed.push_back(emit(Op::checkIndex, expr.line, -1, index));
  if (expr.b->last().kind == ExprKind::local && expr.a->mayAssign) {
    const int variable = std::exchange(index, newPlace());
    emit(Op::keep, expr.line, index, variable);
  }
  evaluate(*expr.a);
  return index;
}

void Compiler::arrayVar(Expr& expr) {
  Jumps failed;
  const int index = indexAndArray(expr, failed);
  const int array = read(*expr.a);
  int before = index;
  // A variable that is looked at just before costs nothing here.
  const bool looksBefore = isLast(Op::checkVariable) && out.lines.back() == expr.line && landing != here();
  if (looksBefore) {
    before = out.code.back().a;
    out.code.pop_back();
    out.lines.pop_back();
  }
  emit(Op::getElement, expr.line, resultOf(expr), array, index, before, looksBefore);
  land(failed);
}

// Evaluates the arguments in order, then lists their places. One without a value ends it.
int Compiler::argumentList(Expr& expr, Jumps& failed) {
  // Those before the last one that assigns stay live.
  auto assigning = expr.list.rbegin();
  while (assigning != expr.list.rend() && !(*assigning)->mayAssign) ++assigning;
  auto numLive = std::distance(assigning, expr.list.rend()) - 1;
  for (Expr* argument : expr.list) {
    const bool isLive = numLive-- > 0;
    argument->last().isReadAgain = isLive;
    evaluate(*argument);
    checkVariable(*argument);
    ifNone(*argument, failed);
    if (isLive) stayLive(*argument);
  }
  std::vector<std::int32_t> list;
  for (Expr* argument : expr.list) list.push_back(read(*argument));
  const int first = static_cast<int>(out.arguments.size());
  out.arguments.insert(out.arguments.end(), list.begin(), list.end());
  return first;
}

void Compiler::checkVariable(Expr& expr) {
  const Expr& variable = expr.last();
  if (variable.kind == ExprKind::local) emit(Op::checkVariable, variable.line, -1, variable.index);
}

// A value looks at the number of arguments before they are evaluated. They may assign something else to a variable that
// holds it, which is asked again.
void Compiler::method(Expr& expr) {
  Jumps failed;
  const int count = static_cast<int>(expr.list.size());
  const int aux = static_cast<int>(expr.method);
  const int result = resultOf(expr);
  if (expr.owner == Owner::ownOBJECT) {
    const int object = operand(*expr.a);
    failed.push_back(emit(Op::acceptsCall, expr.line, -1, object, -1, count, aux));
    const int arguments = argumentList(expr, failed);
    const int again = read(*expr.a);
    const bool isChecked = std::ranges::none_of(expr.list, &Expr::mayAssign);
    if (!isChecked) failed.push_back(emit(Op::acceptsCall, expr.line, -1, again, -1, count, aux));
    emit(Op::callMethod, expr.line, result, again, arguments, count, aux);
  } else {
    const int arguments = argumentList(expr, failed);
    emit(expr.owner == Owner::ownMATH ? Op::callMath : Op::callBrowser, expr.line, result, -1, arguments,
         count, aux);
  }
  land(failed);
}

// Each argument is handed over before the next one is evaluated. One without a value ends the call.
void Compiler::call(Expr& expr) {
  Jumps failed;
  const int result = resultOf(expr);
  const int count = std::min(static_cast<int>(expr.list.size()), expr.function->numArgs);
  const int first = places;
  places += count;
  for (int i = 0; i < count; ++i) {
    const int value = operand(*expr.list[static_cast<std::size_t>(i)]);
    failed.push_back(emit(Op::passArgument, expr.line, first + i, value));
  }
  emit(Op::call, expr.line, result, expr.function->index, first, count);
  land(failed);
  emit(Op::setNone, expr.line, result);
}

// Multiples take their arguments one by one, everything else all at once.
void Compiler::construct(Expr& expr) {
  Jumps failed;
  const int result = resultOf(expr);
  const int count = static_cast<int>(expr.list.size());
  const Type type = expr.constructor->type;
  if (type == Type::undefined) {
    const int arguments = argumentList(expr, failed);
    emit(expr.constructor == &parseIntFunction ? Op::parseInt : Op::parseFloat, expr.line, result, -1,
         arguments, count);
  } else {
    emit(Op::allocField, expr.line, result, -1, -1, -1, static_cast<int>(type));
    if (isMultiple(type)) {
      for (Expr* argument : expr.list) {
        const int value = operand(*argument);
        failed.push_back(emit(Op::appendElement, expr.line, result, value));
      }
    } else {
      const int arguments = argumentList(expr, failed);
      emit(Op::constructField, expr.line, result, -1, arguments, count);
    }
  }
  land(failed);
}

}  // namespace tessel::script
