// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsParseTree.h"

#include <limits>
#include <utility>

#include <tessel/core/VrmlDB.h>

#include "core/Effort.h"
#include "script/CLocale.h"
#include "script/Interpreter.h"
#include "script/Parser.h"

namespace tessel::script {

void VsParseTree::setSource(std::string sourceFile, int line) {
  file = std::move(sourceFile);
  firstLine = line;
}

bool VsParseTree::addGlobalVar(const char* name, SoField& field, AccessType access) {
  GlobalVar variable(field, access);
  if (variable.type() == Type::undefined) return false;
  globalPlaces.try_emplace(name, static_cast<int>(globals.size()));
  globals.push_back(std::move(variable));
  return true;
}

bool VsParseTree::parse(std::string_view text, std::string_view name) {
  nodeName = name;
  return Parser(text, *this).parse();
}

Function* VsParseTree::findFunction(std::string_view name) {
  const auto found = functionPlaces.find(std::string(name));
  return found == functionPlaces.end() ? nullptr : &function(found->second);
}

bool VsParseTree::call(Function& called, std::span<const Value> arguments, Value* result) {
  const CLocale pointsInNumbers;
  return Interpreter(*this).run(called, arguments, result);
}

void VsParseTree::preExecute(bool isLate) {
  if (stepsAllowed != scriptStepLimit() || stepsTime != VrmlDB::getFrameTime()) allowSteps();
  if (isLate && stepsAllowed > 0) stepsLeft = 1;
}

void VsParseTree::allowSteps() {
  Effort::settle();
  stepsAllowed = scriptStepLimit();
  stepsTime = VrmlDB::getFrameTime();
  stepsLeft = stepsAllowed > 0 ? stepsAllowed : std::numeric_limits<std::int64_t>::max();
}

void VsParseTree::postExecute() {
  for (GlobalVar& variable : globals) variable.postExecute();
  for (VsMemberAccess& access : memberAccesses) access.postExecute();
}

void VsParseTree::forgetAssigned() {
  for (GlobalVar& variable : globals) variable.forgetAssigned();
  for (VsMemberAccess& access : memberAccesses) access.forgetAssigned();
}

Function& VsParseTree::beginFunction(std::string name) {
  const int index = static_cast<int>(functions.size());
  functionPlaces.try_emplace(name, index);
  return functions.emplace_back(std::move(name), index);
}

int VsParseTree::globalNamed(const std::string& name) const {
  const auto found = globalPlaces.find(name);
  return found == globalPlaces.end() ? -1 : found->second;
}

int VsParseTree::addMemberAccess(const std::string& name) {
  memberAccesses.emplace_back(name);
  return static_cast<int>(memberAccesses.size()) - 1;
}

Location VsParseTree::locationOf(int lineEnds) const {
  return {nodeName, file, firstLine > 0 ? firstLine + lineEnds : lineEnds + 1};
}

void VsParseTree::yyerror(std::string_view message, std::string_view line, int lineEnds) {
  ++errorCount;
  std::string text = "Script node: ";
  text.append(message).append(": line \"").append(line).append("\"");
  VsError::postParseError(text, locationOf(lineEnds));
}

void VsParseTree::postLongToken(int lineEnds) {
  ++errorCount;
  VsError::postLongToken(Scanner::tokenLimit, locationOf(lineEnds));
}

}  // namespace tessel::script
