// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "script/Number.h"
#include "script/Type.h"

namespace tessel::script {

class VsField;

/// A script value: a number by itself, or a share in a field object, in 16 bytes.
///
/// Numbers stay out of field objects and toolkit fields. A copy of a Value is another handle on the same object;
/// what an assignment of the language does is `setValue`.
class Value {
public:
  Value() noexcept : number{} {}
  /// Takes a share in the object; `element` is the place in it for the types of elements.
  Value(Type type, VsField* object, std::int32_t element = -1) noexcept;
  Value(const Value& other) noexcept : kind(other.kind), place(other.place), number(other.number) {
    if (isHeldByField(kind)) share();
  }
  Value(Value&& other) noexcept
      : kind(std::exchange(other.kind, Type::none)), place(other.place), number(other.number) {}
  Value& operator=(Value other) noexcept {
    swap(other);
    return *this;
  }
  ~Value() { release(); }

  void swap(Value& other) noexcept {
    std::swap(kind, other.kind);
    std::swap(place, other.place);
    std::swap(number, other.number);
  }

  static Value ofTime(double x) {
    Value value;
    value.setTime(x);
    return value;
  }
  static Value undefined() {
    Value value;
    value.kind = Type::undefined;
    return value;
  }

  Type type() const { return kind; }
  bool isScalar() const { return script::isScalar(kind); }
  bool isNone() const { return kind == Type::none; }
  /// The object; only where isHeldByField(type()).
  VsField* object() const { return number.object; }
  /// The place of an element in its multiple, -1 for all others.
  std::int32_t element() const { return place; }

  /// What a number of type sfTime is: the way past all conversions.
  double time() const { return number.time; }
  /// The same of type sfFloat.
  float real() const { return number.real; }
  /// Gives up an object, if one is held. Then one of the two below may follow: the interpreter does this before it
  /// computes what is stored, so that the result need not outlive a call.
  void makeRoom() { release(); }
  /// Stores a number that is rounded already, where no object is held.
  void storeRounded(double x) {
    kind = Type::sfTime;
    number.time = x;
  }
  void storeBool(bool x) {
    kind = Type::sfBool;
    number.integer = x ? 1 : 0;
  }

  // Of scalars only.
  bool getBool() const;
  std::int32_t getInt() const;
  float getFloat() const {
    switch (kind) {
      case Type::sfFloat:
        return number.real;
      case Type::sfTime:
        return static_cast<float>(number.time);
      default:
        return static_cast<float>(number.integer);
    }
  }
  double getTime() const {
    switch (kind) {
      case Type::sfFloat:
        return number.real;
      case Type::sfTime:
        return number.time;
      default:
        return number.integer;
    }
  }

  // What was held is given up; the value takes the setter's type.
  void setBool(bool x) {
    become(Type::sfBool);
    number.integer = x ? 1 : 0;
  }
  void setInt(std::int32_t x) {
    become(Type::sfInt32);
    number.integer = x;
  }
  void setFloat(float x) {
    become(Type::sfFloat);
    number.real = x;
  }
  void setTime(double x) {
    become(Type::sfTime);
    number.time = number::rounded(x);
  }
  /// The number in the type that a result of these operands has: sfTime, sfFloat, sfInt32 or sfBool.
  void setNumber(double x, Type like) {
    switch (like) {
      case Type::sfBool:
        return setBool(x != 0);
      case Type::sfInt32:
        return setInt(number::truncated(x));
      case Type::sfFloat:
        return setFloat(static_cast<float>(x));
      default:
        return setTime(x);
    }
  }

  /// Gives up what is held.
  void clear(Type without = Type::none) {
    release();
    kind = without;
  }

  /// What `variable = newValue` does to a variable of a function: scalars and vectors are copied, everything else is
  /// shared. Nothing happens without a new value.
  void setValue(const Value& newValue) {
    if (newValue.isScalar()) {
      release();
      kind = newValue.kind;
      number = newValue.number;
    } else {
      setObject(newValue);
    }
  }

private:
  void become(Type type) {
    release();
    kind = type;
  }
  void release() {
    if (isHeldByField(kind)) drop();
  }
  void share() const;
  void drop();
  void setObject(const Value& newValue);

  Type kind = Type::none;
  std::int32_t place = -1;
  union {
    std::int32_t integer;  // sfBool, sfInt32
    float real;
    double time;
    VsField* object;
  } number;
};

static_assert(sizeof(Value) == 16);

}  // namespace tessel::script
