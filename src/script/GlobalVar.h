// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include "script/Value.h"

class SoField;

namespace tessel::script {

enum class AccessType : std::uint8_t { EVENTIN, EVENTOUT, FIELD, LOCAL };

/// A variable that stands for a field or eventOut of the Script. It keeps its type. Scalars and vectors go out when
/// they are assigned; everything else when the run is over.
class GlobalVar {
public:
  /// The field must outlive the variable. The type is `undefined` for a field that scripts can't hold.
  GlobalVar(SoField& field, AccessType access);

  Type type() const { return kind; }

  /// The value now: a number, or a handle on what is held.
  void read(Value& result) const;
  /// Assigns; a value of another type is refused with a report.
  void setValue(const Value& newValue);

  void postExecute();
  /// Is over its field again, which stays as it is.
  void forgetAssigned() { held = saved; }

private:
  SoField* field;
  Type kind;
  AccessType access;
  Value held;  // over the field, or what was assigned in its place until the run is over; nothing for scalars
  Value saved;  // over the field
};

/// The type of script values that a toolkit field holds; `undefined` if there is none.
Type typeOf(const SoField& field);

/// The number in a toolkit field of a scalar type, and the other way, converted.
void readScalar(const SoField& field, Type type, Value& result);
void writeScalar(SoField& field, Type type, const Value& scalar);

}  // namespace tessel::script
