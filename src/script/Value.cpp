// SPDX-License-Identifier: BSD-3-Clause
#include "script/Value.h"

#include "script/VsField.h"

namespace tessel::script {

Value::Value(Type type, VsField* object, std::int32_t element) noexcept
    : kind(type), place(element), number{.object = object} {
  share();
}

void Value::share() const { number.object->ref(); }

void Value::drop() {
  kind = Type::none;
  place = -1;
  number.object->unref();
}

bool Value::getBool() const {
  switch (kind) {
    case Type::sfFloat:
      return number.real != 0;
    case Type::sfTime:
      return number.time != 0;
    default:
      return number.integer != 0;
  }
}

std::int32_t Value::getInt() const {
  switch (kind) {
    case Type::sfFloat:
      return number::truncated(number.real);
    case Type::sfTime:
      return number::truncated(number.time);
    default:
      return number.integer;
  }
}

void Value::setObject(const Value& newValue) {
  if (!isHeldByField(newValue.kind)) return;
  if (isVector(newValue.kind)) {
    newValue.object()->copyVector(*this, newValue.element());
  } else {
    *this = newValue;
  }
}

}  // namespace tessel::script
