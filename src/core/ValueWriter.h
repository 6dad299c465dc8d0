// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include <Inventor/SbRotation.h>

#include "core/ValueType.h"

class SoNode;

namespace tessel {

/// How values are written where that may differ.
struct ValueStyle {
  /// Everything on one line, for people: control characters in a string as `\n`, `\t`, `\x1b`, numbers that
  /// are none as "nan" and "inf". Otherwise for the reader, which gives the same value back.
  bool oneLine = false;
  /// What stands between two values of a list.
  std::string_view separator = ", ";
  /// Appends what stands for a node, which is never null. Without it, the name of the node's class.
  std::function<void(std::string&, const SoNode&)> node = {};
};

/// Appends the value of a field as VRML text, as a file has it behind the field's name: the shortest digits
/// that read back as the same number, rotations as axis and angle, lists in brackets, no node as NULL.
/// A value that is out of date is fetched first. `type` is the field's, and not `count`.
void writeValue(std::string& out, const SoField& field, ValueType type, const ValueStyle& style = {});

// One value of a kind, as it stands in a list. In the place of what is no finite number the file has the
// largest one of the sign, or 0.
void writeNumber(std::string& out, float value, const ValueStyle& style = {});
void writeNumber(std::string& out, double value, const ValueStyle& style = {});
void writeNumber(std::string& out, std::int32_t value);
void writeRotation(std::string& out, const SbRotation& value, const ValueStyle& style = {});
/// In quotes, with `\"` for a quote and `\\` for a backslash.
void writeString(std::string& out, std::string_view text, const ValueStyle& style = {});

}  // namespace tessel
