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
  explicit VsSFString(SharedText text) : own(std::move(text)) {}
  VsSFString(SoSFString& field, bool keepsNode) : VsField(&field, keepsNode) {}

  static Value make(std::string_view text);
  /// Puts a text into `result`, in the object it holds if nobody else does.
  static void setResult(Value& result, SharedText text);
  /// The text of a value of this type.
  static std::string_view viewOf(const Value& value) {
    return static_cast<const VsSFString*>(value.object())->view();
  }
  /// A number as a script shows it, which is how strings and numbers are put together.
  static std::string getStringFromScalar(const Value& scalar);

  Type type() const override { return Type::sfString; }
  std::string_view view() const;
  SharedText text() const { return liveField() ? SharedText(view()) : own; }

  void postExecute(const Value& current) override;

private:
  SharedText own;
};

}  // namespace tessel::script
