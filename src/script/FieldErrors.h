// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <span>
#include <string_view>

#include "script/Names.h"

namespace tessel::script {

/// The reports that field objects share. A label is the name of the type, a blank and the method's.
namespace FieldErrors {

void wrongNumOfArgsError(const char* label);
void badArgError(const char* label);
void unknownMethodError(const char* className);
void unknownMemberAccessError(const char* className, std::string_view name);
void unknownMemberAssignError(const char* className, std::string_view name);
void badNumAssignError(std::string_view name, const char* className);
void allArgError(const char* className, const char* kind);

}  // namespace FieldErrors

/// A method that a type has, and how many arguments it takes.
struct MethodRule {
  Method method;
  int least, most;
  const char* label;
};

/// What `VsField::acceptsCall` says of a type with these methods.
bool acceptsCall(std::span<const MethodRule> rules, const char* className, Method method, int count);
/// The label of one of the methods.
const char* labelOf(std::span<const MethodRule> rules, Method method);

}  // namespace tessel::script
