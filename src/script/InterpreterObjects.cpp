// SPDX-License-Identifier: BSD-3-Clause
// The operations of the interpreter on field objects, the Math and the Browser object.
#include <vector>

#include <tessel/script/RuntimeErrors.h>

#include "script/Interpreter.h"
#include "script/VsBrowser.h"
#include "script/VsField.h"
#include "script/VsParseTree.h"
#include "script/VsSFNode.h"

namespace tessel::script {
namespace {

// The arguments of one call, in place where they are few.
class ArgumentList {
public:
  ArgumentList(const Function& function, const Value* window, const Instruction& i) {
    const auto count = static_cast<std::size_t>(i.c);
    const Value** out = few;
    if (count > std::size(few)) {
      many.resize(count);
      out = many.data();
    }
    const std::int32_t* places = function.arguments.data() + i.b;
    for (std::size_t k = 0; k < count; ++k) out[k] = window + places[k];
    arguments = {out, count};
  }
  operator Arguments() const { return arguments; }

private:
  const Value* few[8];
  std::vector<const Value*> many;
  Arguments arguments;
};

// An object that stays while it is worked on: what is done to it may send events that reach this script again.
VsField* objectOf(const Value& value) { return isHeldByField(value.type()) ? value.object() : nullptr; }

}  // namespace

bool Interpreter::onObject(const Instruction& i) {
  at = &i;
  switch (i.op) {
    case Op::getMember: {
      checkVariable(i.a);
      const Value holder = window[i.a];
      VsMemberAccess& access = tree.memberAccess(i.b);
      if (holder.type() == Type::sfNode)
        static_cast<VsSFNode*>(holder.object())->readProperty(window[i.dst], access);
      else if (VsField* object = objectOf(holder))
        object->memberEvaluate(window[i.dst], static_cast<Property>(i.aux), access.name());
      return true;
    }
    case Op::readAgain: {
      const Value& holder = window[i.a];
      if (holder.type() == Type::sfNode && window[i.dst].isScalar())
        static_cast<VsSFNode*>(holder.object())->readNumber(window[i.dst], tree.memberAccess(i.b));
      return true;
    }
    case Op::setMember: {
      checkVariable(i.a);
      const Value holder = window[i.a];
      Value& result = window[i.dst];
      result.clear();
      VsMemberAccess& access = tree.memberAccess(i.b);
      if (holder.type() == Type::sfNode)
        static_cast<VsSFNode*>(holder.object())
            ->writeProperty(result, access, window[i.c], !(i.aux & isUnused));
      else if (VsField* object = objectOf(holder))
        object->memberAssign(result, static_cast<Property>(i.aux), access.name(), window[i.c]);
      return true;
    }
    case Op::setMathMember:
      VsError::postRuntimeError("%s", RTE_FUNC_MATH_ASSIGN);
      window[i.dst].clear();
      return true;
    case Op::acceptsCall: {
      checkVariable(i.a);
      VsField* object = objectOf(window[i.a]);
      return object && object->acceptsCall(static_cast<Method>(i.aux), i.c);
    }
    case Op::callMethod: {
      const Value holder = window[i.a];
      if (VsField* object = objectOf(holder))
        object->methodCall(window[i.dst], static_cast<Method>(i.aux), ArgumentList(*function, window, i));
      return true;
    }
    case Op::callBrowser:
      VsBrowser::evaluateMethod(window[i.dst], static_cast<Method>(i.aux),
                                ArgumentList(*function, window, i));
      return true;
    case Op::allocField:
      allocField(window[i.dst], static_cast<Type>(i.aux));
      return true;
    case Op::constructField:
      if (VsField* object = objectOf(window[i.dst]))
        object->constructField(ArgumentList(*function, window, i));
      return true;
    case Op::appendElement: {
      checkVariable(i.a);
      VsField* object = objectOf(window[i.dst]);
      return object && !window[i.a].isNone() && object->append(window[i.a]);
    }
    default:
      return true;
  }
}

}  // namespace tessel::script
