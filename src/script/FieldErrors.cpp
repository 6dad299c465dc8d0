// SPDX-License-Identifier: BSD-3-Clause
#include "script/FieldErrors.h"

#include <algorithm>
#include <initializer_list>
#include <string>

#include <tessel/script/RuntimeErrors.h>

#include "script/VsError.h"

namespace tessel::script {
namespace {

void post(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) {
    if (!text.empty()) text += ' ';
    text += part;
  }
  VsError::postRuntimeError("%s", text.c_str());
}

}  // namespace

void FieldErrors::wrongNumOfArgsError(const char* label) { post({label, RTE_FLD_WRONG_NUM}); }
void FieldErrors::badArgError(const char* label) { post({label, RTE_FLD_BAD_TYPE}); }
void FieldErrors::unknownMethodError(const char* className) {
  post({RTE_FLD_ACCESS_UNKNOWN, className, RTE_FLD_OBJECT_METHOD});
}
void FieldErrors::unknownMemberAccessError(const char* className, std::string_view name) {
  post({RTE_FLD_ACCESS_UNKNOWN, className, RTE_FLD_OBJECT_PROP, name});
}
void FieldErrors::unknownMemberAssignError(const char* className, std::string_view name) {
  post({RTE_FLD_ASSIGN_UNKNOWN, className, RTE_FLD_OBJECT_PROP, name});
}
void FieldErrors::badNumAssignError(std::string_view name, const char* className) {
  post({RTE_FLD_NUMERIC_ASSIGN, name, RTE_FLD_PROP_OF, className, RTE_FLD_FIELD});
}
void FieldErrors::allArgError(const char* className, const char* kind) {
  post({RTE_FLD_ALL_ARGS, className, RTE_FLD_MUST_BE, kind});
}

bool acceptsCall(std::span<const MethodRule> rules, const char* className, Method method, int count) {
  const auto rule = std::ranges::find(rules, method, &MethodRule::method);
  if (rule == rules.end()) {
    FieldErrors::unknownMethodError(className);
    return false;
  }
  if (count >= rule->least && count <= rule->most) return true;
  FieldErrors::wrongNumOfArgsError(rule->label);
  return false;
}

const char* labelOf(std::span<const MethodRule> rules, Method method) {
  return std::ranges::find(rules, method, &MethodRule::method)->label;
}

}  // namespace tessel::script
