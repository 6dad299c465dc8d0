// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsSFString.h"

#include <cstdio>
#include <utility>

namespace tessel::script {

Value VsSFString::make(std::string_view text) { return {Type::sfString, new VsSFString(SharedText(text))}; }

void VsSFString::setResult(Value& result, SharedText text) {
  if (result.type() == Type::sfString && result.object()->isUnshared() && !result.object()->liveField()) {
    static_cast<VsSFString*>(result.object())->own = std::move(text);
  } else {
    result = Value(Type::sfString, new VsSFString(std::move(text)));
  }
}

std::string_view VsSFString::view() const {
  return liveField() ? static_cast<SoSFString*>(liveField())->getValue().getString() : own.view();
}

// Most numbers are whole. Both kinds of fractions lose the zeros at their end, and the point if nothing is left behind it.
std::string VsSFString::getStringFromScalar(const Value& scalar) {
  switch (scalar.type()) {
    case Type::sfBool:
      return scalar.getBool() ? "true" : "false";
    case Type::sfInt32:
      return std::to_string(scalar.getInt());
    default:
      break;
  }
  const double number = scalar.getTime();
  const std::int32_t whole = number::truncated(number);
  if (whole == number) return std::to_string(whole);
  char digits[400];
  const bool isFloat = scalar.type() == Type::sfFloat;
  const int length = std::snprintf(digits, sizeof digits, isFloat ? "%.10f" : "%.12f", number);
  std::string_view text(digits, static_cast<std::size_t>(length));
  while (text.ends_with('0')) text.remove_suffix(1);
  if (text.ends_with('.')) text.remove_suffix(1);
  return std::string(text);
}

void VsSFString::postExecute(const Value& current) {
  static_cast<SoSFString*>(liveField())->setValue(SbString(std::string(viewOf(current)).c_str()));
}

}  // namespace tessel::script
