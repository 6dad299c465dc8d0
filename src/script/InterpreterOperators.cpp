// SPDX-License-Identifier: BSD-3-Clause
// The operations of the interpreter on what is not two plain numbers.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>

#include <tessel/script/RuntimeErrors.h>

#include "core/Effort.h"
#include "script/Arithmetic.h"
#include "script/Interpreter.h"
#include "script/JsMath.h"
#include "script/VsField.h"
#include "script/VsParseTree.h"
#include "script/VsSFString.h"

namespace tessel::script {
namespace {

void report(const char* text) { VsError::postRuntimeError("%s", text); }

bool isText(const Value& value) { return value.type() == Type::sfString; }
bool isNumberOrText(const Value& value) { return value.isScalar() || isText(value); }

template <int... I> bool comparisonOf(Op op, double a, double b, std::integer_sequence<int, I...>) {
  using Operation = bool(double, double);
  constexpr int first = static_cast<int>(Op::equal);
  static constexpr Operation* table[] = {&comparison<static_cast<Op>(first + I)>...};
  return table[static_cast<int>(op) - first](a, b);
}

// An instruction without its second effect: assigning, or jumping.
Op plain(Op op) {
  const int i = static_cast<int>(op);
  const int arithCount = static_cast<int>(Op::addAssign);
  if (op >= Op::addAssign && op <= Op::shiftRightSignedAssign) return static_cast<Op>(i - arithCount);
  if (op >= Op::equalUnless && op <= Op::greaterEqualUnless) return static_cast<Op>(i - 6);
  return op;
}

}  // namespace

void Interpreter::checkVariable(std::int32_t place) {
  if (place < function->numVariables && window[place].type() == Type::undefined) report(RTE_EXPR_UNINIT_VAR);
}

void Interpreter::slowArith(const Instruction& i) {
  at = &i;
  const Value& a = window[i.a];
  const Value& b = window[i.b];
  Value& result = window[i.dst];
  const Op op = plain(i.op);
  if (!i.aux) checkVariable(i.a);
  checkVariable(i.b);
  if (!a.isNone() && !b.isNone()) {
    if (!isNumberOrText(a) || !isNumberOrText(b)) {
      report(RTE_EXPR_ARITH_TYPE);
    } else if (op != Op::add) {
      report(RTE_EXPR_BAD_ARITH_OP);
    } else {
      concatenate(result, a, b);
    }
  }
  if (op != i.op) window[i.c].setValue(result);
}

void Interpreter::concatenate(Value& result, const Value& left, const Value& right) {
  const SharedText start = isText(left) ? static_cast<const VsSFString*>(left.object())->text()
                                        : SharedText(VsSFString::getStringFromScalar(left));
  const std::string number = isText(right) ? std::string() : VsSFString::getStringFromScalar(right);
  const std::string_view more = isText(right) ? VsSFString::viewOf(right) : std::string_view(number);
  if (VsSFString::mayHave(start.size() + more.size())) VsSFString::setResult(result, start.plus(more));
}

void Interpreter::slowCompare(const Instruction& i) {
  at = &i;
  const Value& a = window[i.a];
  const Value& b = window[i.b];
  Value& result = window[i.dst];
  const Op op = plain(i.op);
  if (!i.aux) checkVariable(i.a);
  if (a.isNone()) return;
  checkVariable(i.b);
  constexpr auto all = std::make_integer_sequence<int, 6>();
  if (b.isNone()) {
    result.clear();
  } else if (a.isScalar() && b.isScalar()) {
    result.setBool(comparisonOf(op, a.getTime(), b.getTime(), all));
  } else if (isNumberOrText(a) && isNumberOrText(b)) {
    const auto number = [](const Value& value) {
      return isText(value) ? std::string() : std::to_string(value.getInt());
    };
    const auto text = [](const Value& value, const std::string& number) {
      return isText(value) ? VsSFString::viewOf(value) : std::string_view(number);
    };
    Effort::add(isText(a) ? VsSFString::viewOf(a).size() : 0);
    const std::string left = number(a);
    const std::string right = number(b);
    result.setBool(comparisonOf(op, text(a, left).compare(text(b, right)), 0, all));
  } else {
    report(RTE_EXPR_LOGIC_TYPE);
    result.clear();
  }
}

// The truth of a condition. What is no number is not true.
bool Interpreter::truth(const Instruction& i, const Value& value, bool& isNumber) {
  at = &i;
  checkVariable(i.a);
  isNumber = value.isScalar();
  return isNumber && value.getBool();
}

void Interpreter::slowUnary(const Instruction& i) {
  at = &i;
  const Value& value = window[i.a];
  Value& result = window[i.dst];
  checkVariable(i.a);
  if (value.isNone()) return;
  if (!value.isScalar())
    return report(i.op == Op::logicalNot ? RTE_EXPR_UNARY_LOGIC_TYPE : RTE_EXPR_UNARY_ARITH_TYPE);
  switch (i.op) {
    case Op::negate:
      return result.setNumber(-value.getTime(), value.type());
    case Op::complement:
      return result.setNumber(~number::truncated(value.getTime()), value.type());
    default:
      return result.setBool(!value.getBool());
  }
}

void Interpreter::slowIncrement(const Instruction& i) {
  at = &i;
  Value& variable = window[i.a];
  checkVariable(i.a);
  if (!variable.isScalar()) return report(RTE_EXPR_INCDEC_TYPE);
  const double before = variable.getTime();
  const Type type = variable.type();
  variable.setNumber(before + i.aux, type);
  window[i.dst].setNumber(i.c ? before + i.aux : before, type);
}

bool Interpreter::incrementOther(const Instruction& i) {
  at = &i;
  const Value& value = window[i.a];
  if (value.isNone()) return false;
  if (!value.isScalar()) {
    report(RTE_EXPR_INCDEC_TYPE);
    return false;
  }
  window[i.dst].setNumber(value.getTime() + i.aux, value.type());
  return true;
}

// To a variable of the function, or of the script.
void Interpreter::assign(const Instruction& i) {
  at = &i;
  const Value& value = window[i.a];
  checkVariable(i.a);
  if (value.isNone()) {
    if (i.b >= 0) window[i.b].clear();
    return;
  }
  if (i.op == Op::storeGlobal) {
    GlobalVar& global = tree.global(i.dst);
    global.setValue(value);
    if (i.b < 0) return;
    Value now;
    global.read(now);
    window[i.b].setValue(now);
  } else {
    window[i.dst].setValue(value);
    if (i.b < 0) return;
    if (window[i.b].isNone()) window[i.b] = Value::undefined();
    window[i.b].setValue(window[i.dst]);
  }
}

// The left side of && and ||: true if the right side is not needed.
bool Interpreter::decides(const Instruction& i) {
  at = &i;
  const Value& left = window[i.a];
  checkVariable(i.a);
  if (left.isNone()) return true;
  if (!left.isScalar()) {
    report(RTE_EXPR_LOGIC_TYPE);
    window[i.dst].clear();
    return true;
  }
  const bool isTrue = left.getBool();
  if (isTrue == (i.op == Op::andLeft)) return false;
  window[i.dst].setBool(isTrue);
  return true;
}

void Interpreter::andOr(const Instruction& i) {
  at = &i;
  const Value& left = window[i.a];
  const Value& right = window[i.b];
  Value& result = window[i.dst];
  checkVariable(i.b);
  if (right.isNone()) return result.clear();
  if (!left.isScalar() || !right.isScalar()) {
    report(RTE_EXPR_LOGIC_TYPE);
    return result.clear();
  }
  const bool a = left.getBool();
  const bool b = right.getBool();
  result.setBool(i.op == Op::andRight ? a && b : a || b);
}

// Into a new variable. Without a value there is no call.
bool Interpreter::passArgument(const Instruction& i) {
  at = &i;
  checkVariable(i.a);
  window[i.dst].clear(Type::undefined);
  window[i.dst].setValue(window[i.a]);
  return !window[i.a].isNone();
}

bool Interpreter::isIndex(const Instruction& i) {
  at = &i;
  checkVariable(i.a);
  if (window[i.a].isNone()) return false;
  if (!window[i.a].isScalar()) report(RTE_EXPR_SCALAR_INDEX);
  return window[i.a].isScalar();
}

void Interpreter::getElement(const Instruction& i) {
  at = &i;
  if (i.aux) checkVariable(i.c);
  const Value& index = window[i.b];
  checkVariable(i.b);
  if (index.isNone()) return;
  if (!index.isScalar()) return report(RTE_EXPR_SCALAR_INDEX);
  const Value& array = window[i.a];
  checkVariable(i.a);
  if (array.isNone()) return;
  if (!isHeldByField(array.type()) || !array.object()->isArray()) return report(RTE_EXPR_DEREF_NOT_ARRAY);
  array.object()->getElement(window[i.dst], array.element(), index.getInt());
}

void Interpreter::setElement(const Instruction& i) {
  at = &i;
  Value& result = window[i.dst];
  const Value& value = window[i.c];
  const Value& index = window[i.b];
  const Value& array = window[i.a];
  if (!(i.aux & isChecked)) checkVariable(i.c);
  if (value.isNone()) return;
  checkVariable(i.b);
  if (index.isNone()) return result.clear();
  if (!index.isScalar()) {
    report(RTE_EXPR_SCALAR_INDEX);
    return result.clear();
  }
  checkVariable(i.a);
  if (array.isNone()) return result.clear();
  if (!isHeldByField(array.type()) || !array.object()->isArray()) {
    report(RTE_EXPR_DEREF_NOT_ARRAY);
    return result.clear();
  }
  const Value holder = array;  // writing may send an event, and that may reach this script again
  if (!holder.object()->setElement(result, holder.element(), index.getInt(), value)) result.clear();
}

// What a property is to be set to.
bool Interpreter::hasValue(const Instruction& i) {
  at = &i;
  if (!(i.aux & isChecked)) checkVariable(i.c);
  return !window[i.c].isNone();
}

const Value& Interpreter::argument(const Instruction& i, int k) const {
  return window[function->arguments[static_cast<std::size_t>(i.b) + static_cast<std::size_t>(k)]];
}

void Interpreter::callMath(const Instruction& i) {
  at = &i;
  double args[2] = {};
  for (int k = 0; k < i.c; ++k) {
    const Value& value = argument(i, k);
    if (!value.isScalar()) return report(RTE_EXPR_ARITH_TYPE);
    args[k] = value.getTime();
  }
  window[i.dst].setTime(JsMath::evaluateMethod(static_cast<Method>(i.aux), args));
}

void Interpreter::parseNumber(const Instruction& i) {
  at = &i;
  const bool isInt = i.op == Op::parseInt;
  if (!isText(argument(i, 0))) return report(isInt ? RTE_EXPR_PARSEINT_FIRST : RTE_EXPR_PARSEFLOAT_ARG);
  const std::string text(VsSFString::viewOf(argument(i, 0)));
  Effort::addEach(text.size());
  if (!isInt) return window[i.dst].setFloat(static_cast<float>(std::atof(text.c_str())));
  int radix = 0;
  if (i.c > 1) {
    if (!argument(i, 1).isScalar()) return report(RTE_EXPR_PARSEINT_SECOND);
    radix = argument(i, 1).getInt();
    if (radix < 0) return report(RTE_EXPR_PARSEINT_RADIX);
  }
  const long value = std::strtol(text.c_str(), nullptr, radix);
  window[i.dst].setInt(number::truncated(static_cast<double>(value)));
}

}  // namespace tessel::script
