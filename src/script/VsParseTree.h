// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <Inventor/SbTime.h>

#include "core/CacheLine.h"
#include "script/CallStack.h"
#include "script/Function.h"
#include "script/GlobalVar.h"
#include "script/VsError.h"
#include "script/VsMemberAccess.h"

namespace tessel::script {

/// One parsed script: its functions, the variables that stand for the Script's fields and eventOuts, and the
/// windows that its functions run in.
class alignas(cacheLine) VsParseTree {
public:
  VsParseTree() = default;
  VsParseTree(const VsParseTree&) = delete;
  VsParseTree& operator=(const VsParseTree&) = delete;

  /// Where the text of the script came from, for reports. The line is that of its first character, from 1; 0 if
  /// there is no file.
  void setSource(std::string file, int line);

  /// Makes a field or eventOut of the Script known, before the parse. False for a type that scripts don't have.
  bool addGlobalVar(const char* name, SoField& field, AccessType access);

  /// Parses once. False, after reports, if anything is wrong with the script; then it must not be run.
  bool parse(std::string_view text, std::string_view nodeName);

  /// The first function of a name, null if there is none.
  Function* findFunction(std::string_view name);

  /// Calls a function. Arguments beyond its parameters are ignored, missing ones are undefined.
  /// @return false if the script was stopped; it must then do nothing more before the next `preExecute`
  bool call(Function& function, std::span<const Value> arguments, Value* result = nullptr);

  /// Gives the script all the steps that it may take, as for an event that no script caused. `preExecute` does that
  /// once for each frame time, for those that scripts cause one another.
  void allowSteps();

  /// Before and after the calls for the events of one time. What was assigned to strings, nodes, images and multiple
  /// values goes out in `postExecute`. What `isLate` has gone round among scripts since another time: it is
  /// stopped if there is a limit.
  void preExecute(bool isLate = false);
  void postExecute();
  /// Instead of `postExecute`: nothing goes out.
  void forgetAssigned();

  // For the parser and the interpreter.
  Function& beginFunction(std::string name);
  int globalNamed(const std::string& name) const;
  int addMemberAccess(const std::string& name);
  void yyerror(std::string_view message, std::string_view line, int lineEnds);
  void postLongToken(int lineEnds);
  int errors() const { return errorCount; }
  Function& function(int index) { return functions[static_cast<std::size_t>(index)]; }
  GlobalVar& global(int index) { return globals[static_cast<std::size_t>(index)]; }
  VsMemberAccess& memberAccess(int index) { return memberAccesses[static_cast<std::size_t>(index)]; }
  Location locationOf(int lineEnds) const;

  std::int64_t stepsLeft = 0;  ///< until the script is stopped

private:
  // First what every event needs.
  std::int64_t stepsAllowed = -1;  // the limit at `stepsTime`, -1 before the first
  SbTime stepsTime;
  std::vector<GlobalVar> globals;
  std::vector<VsMemberAccess> memberAccesses;

public:
  CallStack stack;

private:
  std::deque<Function> functions;
  std::unordered_map<std::string, int> functionPlaces;  // of the first one of each name
  std::unordered_map<std::string, int> globalPlaces;
  std::string nodeName;
  std::string file;
  int firstLine = 0;
  int errorCount = 0;
};

}  // namespace tessel::script
