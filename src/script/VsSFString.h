// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>

#include <Inventor/fields/SoSFString.h>

#include "script/SharedText.h"
#include "script/VsField.h"

namespace tessel::script {

/// A string, as a script's own text or over a toolkit field.
class VsSFString : public VsField {
public:
  using Field = SoSFString;
  static constexpr Type ofType = Type::sfString;

  VsSFString() = default;
  VsSFString(SoSFString& field, bool keepsNode) : VsField(&field, keepsNode) {}

  static Value make(SharedText text);
  static Value make(std::string_view text);
  /// Puts a text into `result`, in the object it holds if nobody else does.
  static void setResult(Value& result, SharedText text);
  static void setResult(Value& result, std::string_view text);
  /// The text of a value of this type.
  static std::string_view viewOf(const Value& value) {
    return static_cast<const VsSFString*>(value.object())->view();
  }
  /// A number as a script shows it, which is how strings and numbers are put together.
  static std::string getStringFromScalar(const Value& scalar);
  /// Whether one more string may have that many characters; reports it if not.
  static bool mayHave(std::size_t size);

  Type type() const override { return Type::sfString; }
  std::string_view view() const;
  SharedText text() const { return liveField() ? SharedText(view()) : own; }

  bool acceptsCall(Method method, int count) override;
  void methodCall(Value& result, Method method, Arguments arguments) override;
  void memberEvaluate(Value& result, Property property, std::string_view name) override;
  void memberAssign(Value& holder, Property property, std::string_view name, const Value& newValue) override;
  bool reset() override;
  void constructField(Arguments arguments) override;

private:
  void postExecute(const Value& current) override;
  static VsSFString* take();
  void dispose() override;
  static VsSFString* reusable(const Value& result);
  void find(Value& result, bool fromEnd, Arguments arguments) const;
  void substring(Value& result, Arguments arguments) const;
  void changeCase(Value& result, char first, char last, int distance) const;

  SharedText own;
  Room room;  // for what a script has put into the field
};

}  // namespace tessel::script
