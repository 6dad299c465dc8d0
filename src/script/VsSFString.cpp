// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsSFString.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <utility>

#include <tessel/script/RuntimeErrors.h>

#include "core/Effort.h"
#include "script/FieldErrors.h"
#include "script/StringFormat.h"
#include "script/VsError.h"

namespace tessel::script {
namespace {

constexpr const char* className = "SFString";
constexpr MethodRule methods[] = {
    {Method::charAt, 1, 1, "SFString charAt"},
    {Method::indexOf, 1, 2, "SFString indexOf/lastIndexOf"},
    {Method::lastIndexOf, 1, 2, "SFString indexOf/lastIndexOf"},
    {Method::substring, 2, 2, "SFString substring"},
    {Method::toLowerCase, 0, 0, "SFString toLowerCase/toUpperCase"},
    {Method::toUpperCase, 0, 0, "SFString toLowerCase/toUpperCase"},
};

bool isText(const Value& value) { return value.type() == Type::sfString; }

}  // namespace

// A few objects that nobody holds, with the memory of their texts, for the next ones: most strings live no longer
// than a statement.
static struct {
  VsSFString* objects[32];
  std::size_t count;
} spare;

VsSFString* VsSFString::take() { return spare.count > 0 ? spare.objects[--spare.count] : new VsSFString; }

void VsSFString::dispose() {
  if (liveField() || spare.count == std::size(spare.objects)) {
    delete this;
  } else {
    own.leave(256);
    spare.objects[spare.count++] = this;
  }
}

Value VsSFString::make(SharedText text) {
  VsSFString* object = take();
  object->own = std::move(text);
  return {ofType, object};
}

Value VsSFString::make(std::string_view text) {
  VsSFString* object = take();
  object->own.become(text);
  return {ofType, object};
}

// The object that a result is put into: one that nobody else holds.
VsSFString* VsSFString::reusable(const Value& result) {
  const bool fits = isText(result) && result.object()->isUnshared() && !result.object()->liveField();
  return fits ? static_cast<VsSFString*>(result.object()) : nullptr;
}

void VsSFString::setResult(Value& result, SharedText text) {
  if (VsSFString* object = reusable(result)) {
    object->own = std::move(text);
  } else {
    result = make(std::move(text));
  }
}

void VsSFString::setResult(Value& result, std::string_view text) {
  if (VsSFString* object = reusable(result)) {
    object->own.become(text);
  } else {
    result = make(text);
  }
}

bool VsSFString::mayHave(std::size_t size) {
  if (size <= SharedText::limit) return Room::hasMore(size);
  VsError::postRuntimeError("Attempt to make a string longer than %zu characters", SharedText::limit);
  return false;
}

std::string_view VsSFString::view() const {
  if (!liveField()) return own.view();
  const SbString& text = static_cast<SoSFString*>(liveField())->getValue();
  const auto length = static_cast<std::size_t>(text.getLength());  // which the toolkit counts
  Effort::add(length);
  return {text.getString(), length};
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
  if (whole == number && !std::signbit(number)) return std::to_string(whole);
  char digits[400];
  const bool isFloat = scalar.type() == Type::sfFloat;
  const int length = std::snprintf(digits, sizeof digits, isFloat ? "%.10f" : "%.12f", number);
  std::string_view text(digits, static_cast<std::size_t>(length));
  while (text.ends_with('0')) text.remove_suffix(1);
  if (text.ends_with('.')) text.remove_suffix(1);
  return std::string(text);
}

void VsSFString::postExecute(const Value& current) {
  const std::string_view text = viewOf(current);
  Room& taken = roomFor(room, text.size());
  if (!taken.has(text.size())) return;
  taken.take(text.size());
  Effort::addChange();
  static_cast<SoSFString*>(liveField())->setValue(SbString(std::string(text).c_str()));
}

bool VsSFString::acceptsCall(Method method, int count) {
  return script::acceptsCall(methods, className, method, count);
}

void VsSFString::methodCall(Value& result, Method method, Arguments arguments) {
  switch (method) {
    case Method::charAt: {
      const Value& index = *arguments[0];
      if (!index.isScalar()) return FieldErrors::badArgError(labelOf(methods, method));
      const std::string_view text = view();
      const auto place = static_cast<std::size_t>(index.getInt());  // far beyond the end if it is below 0
      return setResult(result, place < text.size() ? text.substr(place, 1) : "");
    }
    case Method::indexOf:
    case Method::lastIndexOf:
      return find(result, method == Method::lastIndexOf, arguments);
    case Method::substring:
      return substring(result, arguments);
    case Method::toLowerCase:
      return changeCase(result, 'A', 'Z', 'a' - 'A');
    case Method::toUpperCase:
      return changeCase(result, 'a', 'z', 'A' - 'a');
    default:
      return;
  }
}

// Only the first character of what is searched counts; an empty text has the end that all texts have.
void VsSFString::find(Value& result, bool fromEnd, Arguments arguments) const {
  const char* label = labelOf(methods, Method::indexOf);
  if (!isText(*arguments[0]))
    return FieldErrors::badArgError(fromEnd ? label : "SFString indexOf/lastIndexof");
  const bool isWhole = arguments.size() == 1;
  if (!isWhole && !arguments[1]->isScalar()) return FieldErrors::badArgError(label);

  const std::string_view text = view();
  const std::string_view searched = viewOf(*arguments[0]);
  Effort::add(text.size());
  const std::size_t from =
      isWhole ? (fromEnd ? text.size() : 0) : static_cast<std::size_t>(arguments[1]->getInt());
  if (from > text.size()) return result.setInt(-1);
  std::size_t found = fromEnd ? from : text.size();
  if (!searched.empty())
    found = fromEnd ? text.substr(0, from).rfind(searched[0]) : text.find(searched[0], from);
  result.setInt(found == text.npos ? -1 : static_cast<std::int32_t>(found));
}

void VsSFString::substring(Value& result, Arguments arguments) const {
  for (const Value* argument : arguments)
    if (!argument->isScalar()) return FieldErrors::badArgError(labelOf(methods, Method::substring));
  const std::string_view text = view();
  const auto [first, last] = std::minmax({arguments[0]->getInt(), arguments[1]->getInt()});
  if (first < 0 || static_cast<std::size_t>(last) >= text.size()) {
    VsError::postRuntimeError("%s", RTE_FLD_SUBSTRING_INDEX);
    return setResult(result, std::string_view());
  }
  const auto size = static_cast<std::size_t>(last - first);
  if (mayHave(size)) setResult(result, text.substr(static_cast<std::size_t>(first), size));
}

// Letters of English, whatever language the host speaks.
void VsSFString::changeCase(Value& result, char first, char last, int distance) const {
  std::string text(view());
  if (!mayHave(text.size())) return;
  Effort::addEach(text.size());
  for (char& c : text)
    if (c >= first && c <= last) c = static_cast<char>(c + distance);
  setResult(result, text);
}

void VsSFString::memberEvaluate(Value& result, Property property, std::string_view name) {
  if (property != Property::length) return FieldErrors::unknownMemberAccessError(className, name);
  result.setInt(static_cast<std::int32_t>(view().size()));
}

void VsSFString::memberAssign(Value& /*holder*/, Property property, std::string_view name,
                              const Value& /*newValue*/) {
  if (property != Property::length) return FieldErrors::unknownMemberAssignError(className, name);
  VsError::postRuntimeError("%s", RTE_FLD_STRING_LENGTH);
}

bool VsSFString::reset() {
  own.become({});
  return true;
}

// One argument is the text itself; of several, the first is a format for the others.
void VsSFString::constructField(Arguments arguments) {
  if (arguments.empty()) return;
  const Value& first = *arguments[0];
  if (isText(first) && arguments.size() > 1) {
    own = SharedText(formatted(viewOf(first), arguments.subspan(1)));
  } else if (isText(first)) {
    own = static_cast<const VsSFString*>(first.object())->text();
  } else if (first.isScalar() && arguments.size() == 1) {
    own.become(getStringFromScalar(first));
  } else {
    VsError::postRuntimeError("%s", RTE_FLD_SFSTRING_FIRST_ARG);
  }
}

}  // namespace tessel::script
