// SPDX-License-Identifier: BSD-3-Clause
// The expressions of the script parser.
#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include <tessel/toolkit/Scoped.h>

#include "script/Parser.h"
#include "script/VsParseTree.h"
#include "script/VsSFString.h"

namespace tessel::script {
namespace {

enum Level : int {
  lowest,
  choice,
  disjunction,
  conjunction,
  orBits,
  xorBits,
  andBits,
  equality,
  order,
  shift,
  sum,
  product,
  tight
};

// A binary operator: how tightly it binds, and what it is part of in an assignment such as `+=`.
struct Binary {
  Sign sign;
  Level level;
  ExprKind kind;
  Sign assignment;
};

constexpr Binary binaries[] = {
    {Sign::logicalOr, disjunction, ExprKind::logic, Sign::end},
    {Sign::logicalAnd, conjunction, ExprKind::logic, Sign::end},
    {Sign::bitOr, orBits, ExprKind::arith, Sign::assignOr},
    {Sign::bitXor, xorBits, ExprKind::arith, Sign::assignXor},
    {Sign::bitAnd, andBits, ExprKind::arith, Sign::assignAnd},
    {Sign::equal, equality, ExprKind::logic, Sign::end},
    {Sign::notEqual, equality, ExprKind::logic, Sign::end},
    {Sign::less, order, ExprKind::logic, Sign::end},
    {Sign::lessEqual, order, ExprKind::logic, Sign::end},
    {Sign::greaterEqual, order, ExprKind::logic, Sign::end},
    {Sign::greater, order, ExprKind::logic, Sign::end},
    {Sign::shiftRight, shift, ExprKind::arith, Sign::assignShiftRight},
    {Sign::shiftLeft, shift, ExprKind::arith, Sign::assignShiftLeft},
    {Sign::shiftRightSigned, shift, ExprKind::arith, Sign::assignShiftRightSigned},
    {Sign::plus, sum, ExprKind::arith, Sign::assignPlus},
    {Sign::minus, sum, ExprKind::arith, Sign::assignMinus},
    {Sign::times, product, ExprKind::arith, Sign::assignTimes},
    {Sign::divide, product, ExprKind::arith, Sign::assignDivide},
    {Sign::remainder, product, ExprKind::arith, Sign::assignRemainder},
};

// The operators by their signs, and by the signs of their assignments; 0 for none, else one more than the place.
constexpr auto placesOf = [](Sign Binary::*member) {
  std::array<std::uint8_t, static_cast<std::size_t>(Sign::wrong) + 1> places{};
  for (std::size_t i = 0; i < std::size(binaries); ++i)
    if (binaries[i].*member != Sign::end)
      places[static_cast<std::size_t>(binaries[i].*member)] = static_cast<std::uint8_t>(i + 1);
  return places;
};

const Binary* binaryOf(Sign sign) {
  static constexpr auto places = placesOf(&Binary::sign);
  const std::size_t place = places[static_cast<std::size_t>(sign)];
  return place > 0 ? &binaries[place - 1] : nullptr;
}

const Binary* binaryAssignedBy(Sign sign) {
  static constexpr auto places = placesOf(&Binary::assignment);
  const std::size_t place = places[static_cast<std::size_t>(sign)];
  return place > 0 ? &binaries[place - 1] : nullptr;
}

}  // namespace

Expr* Parser::make(ExprKind kind, int line, Expr* a, Expr* b, Expr* c) {
  Expr& expr = nodes.expressions.add();
  expr.kind = kind;
  expr.line = line;
  expr.a = a;
  expr.b = b;
  expr.c = c;
  // A chain such as a + b + c leans to the left and is worked off in a loop.
  expr.mayAssign = kind == ExprKind::assign || kind == ExprKind::incDec || kind == ExprKind::call ||
                   kind == ExprKind::method;
  for (const Expr* below : {a, b, c}) expr.mayAssign = expr.mayAssign || (below && below->mayAssign);
  const bool isChain = kind == ExprKind::arith && a->kind == ExprKind::arith;
  for (const Expr* below : {isChain ? nullptr : a, b, c})
    if (below) expr.height = std::max(expr.height, below->height + 1);
  if (isChain) expr.height = std::max(expr.height, a->height);
  return &expr;
}

// A chain such as a.b.c is as deep as it is long, though it is read in a loop.
bool Parser::fits(const Expr* expr) { return expr->height <= depthLimit || tooDeep(); }

// a, b, c: the last one is the result. The tree leans to the right, however long it is.
Expr* Parser::expressions() {
  Expr* first = expression(lowest);
  Expr** last = &first;
  int height = first ? first->height : 0;
  while (*last && accept(Sign::comma)) {
    Expr* left = *last;
    Expr* right = expression(lowest);
    if (!right) return nullptr;
    *last = make(ExprKind::comma, left->line, left, right);
    last = &(*last)->b;
    height = std::max(height, right->height + 1);
    isTarget = false;
  }
  if (first) first->height = height;
  return first;
}

Expr* Parser::optionalExpressions(Sign end, bool& ok) {
  ok = true;
  if (at(end)) return nullptr;
  Expr* expr = expressions();
  ok = expr != nullptr;
  return expr;
}

// Operators of this level and tighter ones. Those of one level group to the left, `?:` too.
Expr* Parser::expression(int level) {
  const ScopedValue deeper(depth, depth + 1);
  if (depth > depthLimit) {
    tooDeep();
    return nullptr;
  }
  Expr* left = unary();
  while (left) {
    const int line = peek().line;
    if (at(Sign::question) && level <= choice) {
      take();
      Expr* first = expression(choice);
      if (!first || !expect(Sign::colon)) return nullptr;
      Expr* second = expression(choice + 1);
      if (!second) return nullptr;
      left = make(ExprKind::condExpr, line, left, first, second);
    } else {
      const Binary* binary = binaryOf(ahead.sign);
      if (!binary || binary->level < level) return left;
      take();
      Expr* right = expression(binary->level + 1);
      if (!right) return nullptr;
      left = make(binary->kind, line, left, right);
      left->sign = binary->sign;
    }
    isTarget = false;
    if (!fits(left)) return nullptr;
  }
  return left;
}

Expr* Parser::unary() {
  const int line = peek().line;
  switch (const Sign sign = ahead.sign) {
    case Sign::minus:
    case Sign::complement:
    case Sign::logicalNot: {
      take();
      Expr* operand = nested();
      if (!operand) return nullptr;
      Expr* expr = make(ExprKind::unary, line, operand);
      expr->sign = sign;
      isTarget = false;
      return expr;
    }
    case Sign::increment:
    case Sign::decrement: {
      take();
      Expr* operand = nested();
      return operand ? incDec(operand, sign, true, line) : nullptr;
    }
    default:
      return postfix();
  }
}

// The operand of a prefix operator.
Expr* Parser::nested() { return expression(tight); }

Expr* Parser::incDec(Expr* operand, Sign sign, bool isPrefix, int line) {
  isTarget = false;
  if (!operand->isVariable()) {
    syntaxError();
    return nullptr;
  }
  Expr* expr = make(ExprKind::incDec, line, operand);
  expr->sign = sign;
  expr->isPrefix = isPrefix;
  return expr;
}

// Whatever stands before it, `name = value` is an assignment: `a + b = c` is `a + (b = c)`.
Expr* Parser::postfix() {
  Expr* expr = primary();
  while (expr) {
    const int line = peek().line;
    if (accept(Sign::dot)) {
      expr = memberOrMethod(expr, Owner::ownOBJECT, line);
    } else if (accept(Sign::openBracket)) {
      Expr* index = expressions();
      if (!index || !expect(Sign::closeBracket)) return nullptr;
      expr = make(ExprKind::arrayVar, line, expr, index);
      isTarget = true;
    } else if (at(Sign::increment) || at(Sign::decrement)) {
      expr = incDec(expr, take().sign, false, line);
    } else {
      return isTarget && (at(Sign::assign) || binaryAssignedBy(ahead.sign)) ? assignment(expr) : expr;
    }
    if (expr && !fits(expr)) return nullptr;
  }
  return nullptr;
}

Expr* Parser::assignment(Expr* target) {
  const Token sign = take();
  Expr* value = expression(choice);
  if (!value) return nullptr;
  isTarget = false;
  if (const Binary* binary = binaryAssignedBy(sign.sign)) {
    value = make(ExprKind::arith, sign.line, target, value);
    value->sign = binary->sign;
  }
  return make(ExprKind::assign, sign.line, target, value);
}

Expr* Parser::primary() {
  const Token token = peek();
  switch (token.sign) {
    case Sign::number:
    case Sign::string: {
      take();
      isTarget = false;
      Expr* expr = make(token.sign == Sign::number ? ExprKind::number : ExprKind::string, token.line);
      expr->index = token.sign == Sign::number ? constant(token.number) : constant(token.text);
      return expr;
    }
    case Sign::openParenthesis: {
      take();
      Expr* expr = expressions();
      if (!expr || !expect(Sign::closeParenthesis)) return nullptr;
      isTarget = false;
      return expr;
    }
    case Sign::identifier: {
      take();
      return at(Sign::openParenthesis) ? functionCall(token) : identifier(token);
    }
    case Sign::mathWord:
    case Sign::browserWord:
      take();
      if (!expect(Sign::dot)) return nullptr;
      return memberOrMethod(nullptr, token.sign == Sign::mathWord ? Owner::ownMATH : Owner::ownBROWSER,
                            token.line);
    case Sign::newWord:
      return constructorCall();
    case Sign::parseIntWord:
      return parseCall(parseIntFunction);
    case Sign::parseFloatWord:
      return parseCall(parseFloatFunction);
    default:
      syntaxError();
      return nullptr;
  }
}

// A variable of the function, else one of the script, else a new one of the function.
Expr* Parser::identifier(const Token& token) {
  const std::string name(token.text);
  isTarget = true;
  Expr* expr = make(ExprKind::local, token.line);
  expr->index = current->variableNamed(name);
  if (expr->index >= 0) return expr;
  expr->index = tree.globalNamed(name);
  if (expr->index >= 0) {
    expr->kind = ExprKind::global;
  } else {
    expr->index = current->addVariable(name);
  }
  return expr;
}

// The list of `expr`. It may begin with a comma.
bool Parser::arguments(Expr& expr) {
  if (!expect(Sign::openParenthesis)) return false;
  if (accept(Sign::closeParenthesis)) return true;
  accept(Sign::comma);
  do {
    Expr* argument = expression(lowest);
    if (!argument) return false;
    expr.list.push_back(argument);
    expr.height = std::max(expr.height, argument->height + 1);
    expr.mayAssign = expr.mayAssign || argument->mayAssign;
  } while (accept(Sign::comma));
  return expect(Sign::closeParenthesis);
}

int Parser::constant(double number) {
  const auto [known, isNew] = numbers.try_emplace(number, static_cast<int>(current->constants.size()));
  if (isNew) current->constants.push_back(Value::ofTime(number));
  return known->second;
}

int Parser::constant(std::string_view text) {
  current->constants.push_back(VsSFString::make(text));
  return static_cast<int>(current->constants.size()) - 1;
}

Expr* Parser::functionCall(const Token& name) {
  Expr* expr = make(ExprKind::call, name.line);
  if (!arguments(*expr)) return nullptr;
  isTarget = false;
  expr->function = tree.findFunction(name.text);
  if (!expr->function)
    complain("Function '%s' must be defined before it can be used", std::string(name.text).c_str());
  return expr;
}

Expr* Parser::constructorCall() {
  const int line = take().line;
  if (!at(Sign::identifier)) {
    syntaxError();
    return nullptr;
  }
  const std::string name(take().text);
  Expr* expr = make(ExprKind::construct, line);
  if (!arguments(*expr)) return nullptr;
  isTarget = false;
  expr->constructor = findConstructor(name);
  if (!expr->constructor) {
    complain("Invalid constructor function %s called", name.c_str());
  } else if (!expr->constructor->takes(static_cast<int>(expr->list.size()))) {
    complain("Constructor function %s called with incorrect number of arguments", name.c_str());
  }
  return expr;
}

Expr* Parser::parseCall(const Constructor& constructor) {
  Expr* expr = make(ExprKind::construct, take().line);
  expr->constructor = &constructor;
  if (!arguments(*expr)) return nullptr;
  isTarget = false;
  if (!constructor.takes(static_cast<int>(expr->list.size())))
    complain("%s function called with incorrect number of arguments", std::string(constructor.name).c_str());
  return expr;
}

// What stands behind the dot. The texts for Math and Browser differ from those for values.
Expr* Parser::memberOrMethod(Expr* object, Owner owner, int line) {
  if (!at(Sign::identifier)) {
    syntaxError();
    return nullptr;
  }
  const std::string_view text = take().text;
  const std::string name(text);
  const char* const ownerName = owner == Owner::ownMATH ? "Math" : "Browser";
  if (!at(Sign::openParenthesis)) {
    Expr* expr = make(ExprKind::member, line, object);
    expr->owner = owner;
    expr->property = findProperty(owner, text);
    if (owner == Owner::ownOBJECT) expr->index = tree.addMemberAccess(name);
    if (owner == Owner::ownBROWSER) {
      complain("Browser object has no property %s", name.c_str());
    } else if (owner == Owner::ownMATH && expr->property == Property::other) {
      complain("Unknown Math object property %s accessed", name.c_str());
    }
    isTarget = true;
    return expr;
  }
  Expr* expr = make(ExprKind::method, line, object);
  expr->owner = owner;
  if (!arguments(*expr)) return nullptr;
  isTarget = false;
  expr->method = findMethod(owner, text, static_cast<int>(expr->list.size()));
  if (expr->method == Method::wrongCount) {
    complain("%s object method %s called with wrong number of parameters", ownerName, name.c_str());
  } else if (expr->method == Method::unknown && owner == Owner::ownOBJECT) {
    complain("Unknown method %s invoked", name.c_str());
  } else if (expr->method == Method::unknown) {
    complain("Unknown %s object method %s invoked", ownerName, name.c_str());
  }
  return expr;
}

}  // namespace tessel::script
