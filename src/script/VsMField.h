// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include <tessel/script/RuntimeErrors.h>
#include <tessel/toolkit/Scoped.h>

#include "script/FieldErrors.h"
#include "script/Room.h"
#include "script/VsError.h"
#include "script/VsField.h"

namespace tessel::script {

/// Several values of a kind, as a script's own or over a toolkit field, read and written there in place.
///
/// Traits tell the `Field`; `Stored`, what one value is here, and `neutral()`, the value in a gap; `type`, `name`, how
/// many there may be at `most`; `kind`, what the constructor takes, and `badElement`, the report of an element that is
/// given something else. `fits(value, isElement)` and `from(value)` take a script value; `give(result, stored)` makes
/// one, or, for vectors, `elementType` is the type of an element, and `Single` the class of a single one. `count`,
/// `at`, `values`, `set`, `truncate` work on the toolkit field, the last two in one event each.
template <class Traits> class VsMField : public VsField {
public:
  using Field = typename Traits::Field;
  using Stored = typename Traits::Stored;
  static constexpr Type ofType = Traits::type;
  static constexpr bool isOfVectors = requires { Traits::elementType; };

  VsMField() = default;
  VsMField(Field& field, bool keepsNode) : VsField(&field, keepsNode) {}

  static int countOf(const Value& value) { return static_cast<const VsMField*>(value.object())->count(); }

  int count() const { return liveField() ? Traits::count(live()) : static_cast<int>(own.size()); }
  decltype(auto) at(int i) const {
    if constexpr (std::is_reference_v<decltype(Traits::at(live(), i))>) {
      return liveField() ? Traits::at(live(), i) : own[static_cast<std::size_t>(i)];
    } else {
      return liveField() ? Traits::at(live(), i) : Stored(own[static_cast<std::size_t>(i)]);
    }
  }

  /// The element of a value of the script's own, if it is there.
  Stored* ownElement(std::int32_t i) {
    const auto place = static_cast<std::size_t>(i);  // far beyond the end if it is below 0
    return !liveField() && place < own.size() ? &own[place] : nullptr;
  }
  /// The same, or a new one behind the last if there is room.
  Stored* ownElementOrNext(std::int32_t i) {
    const auto place = static_cast<std::size_t>(i);
    if (!liveField() && place == own.size() && place < own.capacity() && i < Traits::most)
      own.push_back(Traits::neutral());
    return ownElement(i);
  }

  Type type() const override { return ofType; }
  bool keepsNodes() const override { return ofType == Type::mfNode || VsField::keepsNodes(); }

  bool reset() override {
    if (own.capacity() * sizeof(Stored) > keptRoom) return false;
    own.clear();
    return true;
  }
  bool append(const Value& newValue) override;
  bool copyVector(Value& target, std::int32_t element) const override;

  bool isArray() const override { return true; }
  void getElement(Value& result, std::int32_t element, std::int32_t i) override;
  bool setElement(Value& result, std::int32_t element, std::int32_t i, const Value& newValue) override;

  void memberEvaluate(Value& result, Property property, std::string_view name) override;
  void memberAssign(Value& holder, Property property, std::string_view name, const Value& newValue) override;

private:
  void postExecute(const Value& current) override;
  // More than this is not kept for the next value that is made in the same place.
  static constexpr std::size_t keptRoom = 1 << 20;

  Field& live() const { return *static_cast<Field*>(liveField()); }
  bool has(std::int32_t i) const;
  bool write(int first, std::span<const Stored> values);
  void cut(int n);
  bool put(std::int32_t i, const Stored& value);
  bool setCount(std::int32_t n);
  bool resizeOwn(std::size_t n);
  void give(Value& result, std::int32_t i);

  std::vector<Stored> own;
  Room room;
};

}  // namespace tessel::script
