// SPDX-License-Identifier: BSD-3-Clause
// The loop of the interpreter: what is done on plain numbers, and where everything else goes.
#include "script/Interpreter.h"

#include "core/Effort.h"
#include "script/Arithmetic.h"
#include "script/JsMath.h"
#include "script/VsMFields.h"
#include "script/VsParseTree.h"
#include "script/VsSFColor.h"
#include "script/VsSFVec.h"

namespace tessel::script {

Location Interpreter::location() const {
  if (!function) return tree.locationOf(0);
  const auto i = static_cast<std::size_t>(at - function->code.data());
  return tree.locationOf(i < function->lines.size() ? function->lines[i] : 0);
}

bool Interpreter::run(Function& called, std::span<const Value> arguments, Value* result) {
  outcome = result;
  bottom = tree.stack.depth();
  if (tree.stepsLeft <= 0) return false;
  if (!enter(called)) return true;
  const std::size_t count = std::min(arguments.size(), static_cast<std::size_t>(called.numArgs));
  for (std::size_t i = 0; i < count; ++i) window[i].setValue(arguments[i]);
  const bool isWhole = takeSteps(called.code.front(), called.steps) && loop();
  while (tree.stack.depth() > bottom) leave();
  tree.stack.leaveForOutside(*function, window);
  return isWhole;
}

// Begins a run. What it returns to is where the interpreter stands.
bool Interpreter::enter(Function& called) {
  if (tree.stack.isFull(called)) {
    VsError::postRuntimeError("Functions are called more than %zu deep", CallStack::depthLimit);
    return false;
  }
  window = function ? tree.stack.enter(called, {function, window, at + 2, at->dst})
                    : tree.stack.enterFromOutside(called);
  function = &called;
  return true;
}

// A value that is given back is assigned where the call stands. A run without one leaves there what it finds.
void Interpreter::giveBack(const Value& value) {
  if (tree.stack.depth() > bottom) {
    const CallStack::Caller& caller = tree.stack.innermost();
    caller.window[caller.dst].setValue(value);
  } else if (outcome) {
    outcome->setValue(value);
  }
}

void Interpreter::leave() {
  const CallStack::Caller caller = tree.stack.leave(*function, window);
  function = caller.function;
  window = caller.window;
  at = caller.next;
}

bool Interpreter::takeSteps(const Instruction& instruction, int count) {
  const std::int64_t before = tree.stepsLeft;
  if (Effort::isOwed()) [[unlikely]]
    tree.stepsLeft -= Effort::settle();
  if ((tree.stepsLeft -= count) > 0) return true;
  at = &instruction;
  if (before > 0) VsError::postStopped("Script was stopped: it takes too many steps");
  return false;
}

// Two plain numbers for an operation.
static inline bool arePlain(const Value& a, const Value& b) {
  return a.type() == Type::sfTime && b.type() == Type::sfTime;
}

// Where a component of a vector or colour of the script's own is, by its number or property; null for all else.
template <class Which> static inline float* componentOf(const Value& vector, Which which) {
  switch (vector.type()) {
    case Type::sfVec2f:
      return static_cast<VsSFVec2f*>(vector.object())->ownComponent(which);
    case Type::sfVec3f:
      return static_cast<VsSFVec3f*>(vector.object())->ownComponent(which);
    case Type::sfColor:
      return static_cast<VsSFColor*>(vector.object())->ownComponent(which);
    default:
      return nullptr;
  }
}

// The same for an element of floats too. To be written, it may be a new one behind the last.
template <bool isWritten = false> static inline float* elementOf(const Value& array, std::int32_t i) {
  if (array.type() != Type::mfFloat) return componentOf(array, i);
  auto* floats = static_cast<VsMFFloat*>(array.object());
  return isWritten ? floats->ownElementOrNext(i) : floats->ownElement(i);
}

// Sets a component, if it is there and the value is a number.
static inline bool assignComponent(float* component, const Value& value, Value& result) {
  if (!component || !value.isScalar()) return false;
  *component = value.getFloat();
  result.setFloat(*component);
  return true;
}

// Numbers of all types. False if one is none.
template <Op op, bool assigns> [[gnu::noinline]] static bool arithMixed(Value* base, const Instruction& i) {
  const Value& a = base[i.a];
  const Value& b = base[i.b];
  if (!a.isScalar() || !b.isScalar()) return false;
  const double x = arithmetic<op>(a.getTime(), b.getTime());
  base[i.dst].setNumber(x, resultType(a.type(), b.type()));
  if constexpr (assigns) base[i.c].setValue(base[i.dst]);
  return true;
}

bool Interpreter::loop() {
  const Instruction* code = function->code.data();
  const Instruction* pc = code;
  Value* base = window;

  const auto arith = [&]<Op op, bool assigns>() __attribute__((always_inline)) {
    const Instruction& i = *pc;
    const Value& a = base[i.a];
    const Value& b = base[i.b];
    Value& to = base[i.dst];
    // The operands are read once there is room, so that nothing need outlive a call.
    const auto give = [&](auto left, auto right) __attribute__((always_inline)) {
      to.makeRoom();
      if constexpr (assigns) base[i.c].makeRoom();
      const double result = number::rounded(arithmetic<op>(left(a), right(b)));
      to.storeRounded(result);
      if constexpr (assigns) base[i.c].storeRounded(result);
    };
    constexpr auto time = [](const Value& value) { return value.time(); };
    constexpr auto real = [](const Value& value) -> double { return value.real(); };
    if (arePlain(a, b)) [[likely]] {
      give(time, time);
    } else if (op <= Op::divide && a.type() == Type::sfTime && b.type() == Type::sfFloat) {
      give(time, real);
    } else if (op <= Op::divide && a.type() == Type::sfFloat && b.type() == Type::sfTime) {
      give(real, time);
    } else if (!arithMixed<op, assigns>(base, i)) {
      slowArith(i);
    }
    ++pc;
  };
  // The result of a comparison is never an object.
  const auto compare = [&]<Op op>() __attribute__((always_inline)) {
    const Instruction& i = *pc;
    const Value& a = base[i.a];
    const Value& b = base[i.b];
    if (arePlain(a, b)) [[likely]] {
      base[i.dst].storeBool(comparison<op>(a.time(), b.time()));
    } else {
      slowCompare(i);
    }
    ++pc;
  };
  // The next instruction is the jump that waits for the result.
  const auto compareUnless = [&]<Op op>() __attribute__((always_inline)) {
    const Instruction& i = *pc;
    const Value& a = base[i.a];
    const Value& b = base[i.b];
    if (arePlain(a, b)) [[likely]] {
      const bool result = comparison<op>(a.time(), b.time());
      base[i.dst].storeBool(result);
      pc = result ? pc + 2 : code + pc[1].b;
    } else {
      slowCompare(i);
      ++pc;
    }
  };

  // Most loops test there whether a number is below another. False if the script is stopped.
  const auto goBack = [&]() __attribute__((always_inline)) {
    if (!takeSteps(*pc, pc->aux)) return false;
    pc = code + pc->b;
    if (pc->op == Op::lessUnless) compareUnless.template operator()<Op::less>();
    return true;
  };

  for (;;) {
    const Instruction& i = *pc;
    switch (i.op) {
#define TESSEL_ARITH(name)                        \
  case Op::name:                                  \
    arith.template operator()<Op::name, false>(); \
    break;                                        \
  case Op::name##Assign:                          \
    arith.template operator()<Op::name, true>();  \
    break
      TESSEL_ARITH(add);
      TESSEL_ARITH(subtract);
      TESSEL_ARITH(multiply);
      TESSEL_ARITH(divide);
      TESSEL_ARITH(remainder);
      TESSEL_ARITH(bitAnd);
      TESSEL_ARITH(bitOr);
      TESSEL_ARITH(bitXor);
      TESSEL_ARITH(shiftLeft);
      TESSEL_ARITH(shiftRight);
      TESSEL_ARITH(shiftRightSigned);
#undef TESSEL_ARITH
#define TESSEL_COMPARE(name)                       \
  case Op::name:                                   \
    compare.template operator()<Op::name>();       \
    break;                                         \
  case Op::name##Unless:                           \
    compareUnless.template operator()<Op::name>(); \
    break
      TESSEL_COMPARE(equal);
      TESSEL_COMPARE(notEqual);
      TESSEL_COMPARE(less);
      TESSEL_COMPARE(lessEqual);
      TESSEL_COMPARE(greater);
      TESSEL_COMPARE(greaterEqual);
#undef TESSEL_COMPARE
      case Op::negate:
      case Op::complement:
      case Op::logicalNot:
        slowUnary(i);
        ++pc;
        break;
      case Op::andLeft:
      case Op::orLeft:
        pc = decides(i) ? code + i.b : pc + 1;
        break;
      case Op::andRight:
      case Op::orRight:
        andOr(i);
        ++pc;
        break;
      case Op::incrementVariable: {
        Value& variable = base[i.a];
        if (variable.type() == Type::sfTime) [[likely]] {
          base[i.dst].makeRoom();
          const double before = variable.time();
          const double after = number::rounded(before + i.aux);
          variable.storeRounded(after);
          base[i.dst].storeRounded(i.c ? after : before);
        } else {
          slowIncrement(i);
          if (i.b >= 0 && base[i.dst].isNone()) {
            pc = code + i.b;
            break;
          }
        }
        ++pc;
        if (pc->op == Op::jumpBack && !goBack()) return false;
        break;
      }
      case Op::increment:
        pc = incrementOther(i) ? pc + 1 : code + i.b;
        break;
      case Op::keep:
        base[i.dst] = base[i.a];
        ++pc;
        break;
      case Op::assign:
        if (base[i.a].isScalar() && i.b < 0) [[likely]] {
          base[i.dst].setValue(base[i.a]);
        } else {
          assign(i);
        }
        ++pc;
        break;
      case Op::copy:
        at = pc;
        checkVariable(i.a);
        base[i.dst] = base[i.a];
        ++pc;
        break;
      case Op::copyResult:
        if (base[i.a].isNone()) {
          base[i.dst].clear();
        } else {
          base[i.dst].setValue(base[i.a]);
        }
        ++pc;
        break;
      case Op::setNone:
        base[i.dst].clear();
        ++pc;
        break;
      case Op::checkVariable:
        if (base[i.a].type() == Type::undefined) {
          at = pc;
          checkVariable(i.a);
        }
        ++pc;
        break;
      case Op::checkIndex:
        pc = isIndex(i) ? pc + 1 : code + i.b;
        break;
      case Op::loadGlobal:
        tree.global(i.a).read(base[i.dst]);
        ++pc;
        break;
      case Op::storeGlobal:
        at = pc;
        assign(i);
        ++pc;
        break;
      case Op::jump:
        pc = code + i.b;
        break;
      case Op::jumpBack:
        if (!goBack()) return false;
        break;
      case Op::jumpUnless: {
        const Value& value = base[i.a];
        bool isNumber = true;
        if (value.type() == Type::sfBool ? value.getBool() : truth(i, value, isNumber)) {
          ++pc;
        } else {
          pc = code + (isNumber ? i.b : i.c);
        }
        break;
      }
      case Op::jumpIfNone:
        pc = base[i.a].isNone() ? code + i.b : pc + 1;
        break;
      case Op::passArgument:
        if (base[i.a].isScalar()) [[likely]] {
          base[i.dst].setValue(base[i.a]);
          ++pc;
        } else {
          pc = passArgument(i) ? pc + 1 : code + i.b;
        }
        break;
      case Op::call: {
        at = pc;
        Function& called = tree.function(i.a);
        if (!takeSteps(i, called.steps)) return false;
        Value* passed = base + i.b;
        const int count = i.c;
        if (!enter(called)) {
          ++pc;
          break;
        }
        base = window;
        for (int k = 0; k < count; ++k) base[k].swap(passed[k]);
        code = called.code.data();
        pc = code;
        break;
      }
      case Op::giveBack:
        if (!base[i.a].isScalar()) [[unlikely]] {
          at = pc;
          checkVariable(i.a);
        }
        giveBack(base[i.a]);
        [[fallthrough]];
      case Op::end:
        if (tree.stack.depth() == bottom) return true;
        leave();
        base = window;
        code = function->code.data();
        pc = at;
        break;
      case Op::getElement: {
        const Value& index = base[i.b];
        const float* component = index.type() == Type::sfTime && base[i.c].type() != Type::undefined
                                     ? elementOf(base[i.a], static_cast<std::int32_t>(index.time()))
                                     : nullptr;
        if (component) {
          base[i.dst].setFloat(*component);
        } else {
          getElement(i);
        }
        ++pc;
        break;
      }
      case Op::setElement: {
        const Value& index = base[i.b];
        float* component = index.type() == Type::sfTime && base[i.c].isScalar()
                               ? elementOf<true>(base[i.a], static_cast<std::int32_t>(index.time()))
                               : nullptr;
        if (!assignComponent(component, base[i.c], base[i.dst])) setElement(i);
        ++pc;
        break;
      }
      case Op::getMember:
        if (const float* component = componentOf(base[i.a], static_cast<Property>(i.aux))) {
          base[i.dst].setFloat(*component);
        } else {
          onObject(i);
        }
        ++pc;
        break;
      case Op::setMember: {
        float* component = componentOf(base[i.a], static_cast<Property>(i.aux));
        if (!assignComponent(component, base[i.c], base[i.dst]) && hasValue(i)) onObject(i);
        ++pc;
        break;
      }
      case Op::callMath:
        callMath(i);
        ++pc;
        break;
      case Op::mathProperty:
        base[i.dst].setTime(JsMath::evaluateProperty(static_cast<Property>(i.aux)));
        ++pc;
        break;
      case Op::parseInt:
      case Op::parseFloat:
        parseNumber(i);
        ++pc;
        break;
      case Op::acceptsCall:
      case Op::appendElement:
        pc = onObject(i) ? pc + 1 : code + i.b;
        break;
      case Op::readAgain:
      case Op::setMathMember:
      case Op::callMethod:
      case Op::callBrowser:
      case Op::allocField:
      case Op::constructField:
        onObject(i);
        ++pc;
        break;
      default:
        __builtin_unreachable();  // spares each instruction a comparison
    }
  }
}

}  // namespace tessel::script
