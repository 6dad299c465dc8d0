// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <iterator>

#include <tessel/script/RuntimeErrors.h>

#include "core/Effort.h"
#include "script/FieldErrors.h"
#include "script/VsError.h"
#include "script/VsField.h"

namespace tessel::script {

/// A vector, colour or rotation, as a script's own or over a toolkit field. It is copied where others are shared.
///
/// Traits tell the toolkit's `Single` and its `Field`; `type`, `name` and `notNumeric`, the report of a component that
/// is given something else; the `properties`, one a component; the `methods`; `component(single, i)`,
/// `setComponent(single, i, x)` and `make(numbers)`, from as many numbers as there are components; and whether the toolkit
/// `keepsComponents` as they are.
template <class Traits> class VsVector : public VsField {
public:
  using Single = typename Traits::Single;
  using Field = typename Traits::Field;
  static constexpr Type ofType = Traits::type;
  static constexpr int count = static_cast<int>(std::size(Traits::properties));

  VsVector() = default;
  explicit VsVector(const Single& value) : own(value) {}
  VsVector(Field& field, bool keepsNode) : VsField(&field, keepsNode) {}

  /// Puts a vector into `result`, in the object it holds if nobody else does.
  static void setResult(Value& result, const Single& value) {
    if (result.type() == ofType && result.object()->isUnshared() && !result.object()->liveField()) {
      static_cast<VsVector*>(result.object())->own = value;
    } else {
      result = Value(ofType, new VsVector(value));
    }
  }
  /// The vector of a value of this type.
  static const Single& valueOf(const Value& value) {
    return static_cast<const VsVector*>(value.object())->get();
  }

  const Single& get() const { return liveField() ? static_cast<Field*>(liveField())->getValue() : own; }
  void set(const Single& value) {
    if (SoField* field = liveField())
      send(value, *field);
    else
      own = value;
  }

  /// Where a component is kept, by its number or property; null if it is not there, or not to be reached so.
  float* ownComponent(std::int32_t i) {
    if constexpr (Traits::keepsComponents)
      return i >= 0 && i < count && !liveField() ? &own[i] : nullptr;
    else
      return nullptr;
  }
  float* ownComponent(Property property) {
    return ownComponent(static_cast<std::int32_t>(property) -
                        static_cast<std::int32_t>(Traits::properties[0]));
  }

  /// What of a vector is true for elements of multiples too.
  static bool hasComponent(std::int32_t i) {
    if (i >= 0 && i < count) return true;
    VsError::postRuntimeError("%s %d %s %d", RTE_EXPR_NO_SF_ELEMENT, i, RTE_EXPR_LENGTH, count);
    return false;
  }
  static bool isComponent(const Value& value) {
    if (!value.isScalar()) VsError::postRuntimeError("%s", Traits::notNumeric);
    return value.isScalar();
  }

  Type type() const override { return ofType; }
  void setVecValue(const Value& newValue) override {
    if (newValue.type() == ofType) return set(valueOf(newValue));
    Value vector;
    if (newValue.object()->copyVector(vector, newValue.element())) set(valueOf(vector));
  }
  void sendTo(SoField& to) const override { send(get(), to); }
  bool copyVector(Value& target, std::int32_t /*element*/) const override {
    setResult(target, get());
    return true;
  }

  bool isArray() const override { return true; }
  void getElement(Value& result, std::int32_t /*element*/, std::int32_t i) override {
    if (hasComponent(i)) result.setFloat(Traits::component(get(), i));
  }
  bool setElement(Value& result, std::int32_t /*element*/, std::int32_t i, const Value& newValue) override {
    if (!isComponent(newValue) || !hasComponent(i)) return false;
    const float x = newValue.getFloat();
    setComponent(i, x);
    result.setFloat(x);
    return true;
  }

  void memberEvaluate(Value& result, Property property, std::string_view name) override {
    const int i = componentOf(property);
    if (i == count) return FieldErrors::unknownMemberAccessError(Traits::name, name);
    result.setFloat(Traits::component(get(), i));
  }
  void memberAssign(Value& holder, Property property, std::string_view name, const Value& newValue) override {
    if (!newValue.isScalar()) return FieldErrors::badNumAssignError(name, Traits::name);
    const int i = componentOf(property);
    if (i == count) return FieldErrors::unknownMemberAssignError(Traits::name, name);
    const float x = newValue.getFloat();
    setComponent(i, x);
    holder.setFloat(x);
  }

  bool acceptsCall(Method method, int arguments) override {
    return script::acceptsCall(Traits::methods, Traits::name, method, arguments);
  }
  void methodCall(Value& result, Method method, Arguments arguments) override;

  bool reset() override {
    own = Single(Traits::neutral);
    return true;
  }
  void constructField(Arguments arguments) override { constructFromNumbers(arguments); }

private:
  static void send(const Single& value, SoField& to) {
    Effort::addChange();
    static_cast<Field&>(to).setValue(value);
  }
  // `count` for a property that it has not.
  static int componentOf(Property property) {
    return static_cast<int>(std::ranges::find(Traits::properties, property) - Traits::properties);
  }
  void setComponent(int i, float x) {
    Single value = get();
    Traits::setComponent(value, i, x);
    set(value);
  }
  void constructFromNumbers(Arguments arguments) {
    float numbers[count];
    for (int i = 0; i < count; ++i) {
      const Value& argument = *arguments[static_cast<std::size_t>(i)];
      if (!argument.isScalar()) return FieldErrors::allArgError(Traits::name, "numeric");
      numbers[i] = argument.getFloat();
    }
    set(Traits::make(numbers));
  }
  void badArgument(Method method) const { FieldErrors::badArgError(labelOf(Traits::methods, method)); }

  Single own{Traits::neutral};
};

}  // namespace tessel::script
