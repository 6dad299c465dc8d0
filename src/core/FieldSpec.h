// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string_view>
#include <type_traits>

#include <tessel/core/FieldKind.h>

#include "core/ValueType.h"

class SoFieldContainer;

namespace tessel {

/// The default of a field as numbers or a text: `{2, 2, 2}`, `{"WALK"}`, `{}` for the neutral or empty value.
/// A rotation takes axis and angle; a multiple field of vectors takes one vector.
struct FieldDefault {
  double numbers[4] = {};
  int count = 0;
  const char* text = nullptr;

  constexpr FieldDefault() = default;
  constexpr FieldDefault(const char* t) : count(1), text(t) {}
  template <class... N>
  requires(sizeof...(N) >= 1 && sizeof...(N) <= 4 &&
           (std::is_arithmetic_v<N> && ...)) constexpr FieldDefault(N... n)
      : numbers{static_cast<double>(n)...}, count(sizeof...(N)) {}
};

/// One row of a node class's field table: everything that is to be known about a field.
struct FieldSpec {
  std::string_view name;
  FieldKind kind;
  ValueType type;
  SoField* (*in)(SoFieldContainer&);
  FieldDefault initial;
};

template <class M> struct MemberOf;
template <class C, class F> struct MemberOf<F C::*> {
  using Class = C;
  using Field = F;
};

/// A row for a member: `fieldSpec<&VrmlBox::size>("size", FieldKind::field, {2, 2, 2})`.
template <auto member>
constexpr FieldSpec fieldSpec(std::string_view name, FieldKind kind, FieldDefault initial = {}) {
  using M = MemberOf<decltype(member)>;
  return {name, kind, ValueTypeOf<typename M::Field>::value,
          [](SoFieldContainer& c) -> SoField* { return &(static_cast<typename M::Class&>(c).*member); },
          initial};
}

/// Sets a field to the default of its row, without notification if it has no container yet.
void setToDefault(SoField& field, const FieldSpec& spec);

}  // namespace tessel
