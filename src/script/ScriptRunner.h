// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <Inventor/SbName.h>
#include <Inventor/SbTime.h>
#include <Inventor/sensors/SoOneShotSensor.h>

#include "core/CacheLine.h"
#include "script/VsParseTree.h"

class VrmlScript;

namespace tessel::script {

/// What makes a Script node think: events that wait for their functions, and the program, which is parsed when the
/// first one comes.
class alignas(cacheLine) ScriptRunner {
public:
  explicit ScriptRunner(VrmlScript& node);
  ~ScriptRunner();
  ScriptRunner(const ScriptRunner&) = delete;
  ScriptRunner& operator=(const ScriptRunner&) = delete;

  /// An event came, for the declaration of that number: it waits for the end of the notification. False if the function
  /// of that eventIn is running, so that the event is lost: this ends loops.
  bool take(int declaration);
  /// A field was changed from outside: the program is to start anew.
  void fieldChanged();
  /// Handles what waits.
  void execute();
  /// Whether a function of the program is under way.
  bool isExecuting() const { return executing > 0; }
  /// Calls the program's last function.
  void shutDown();
  /// The node's program, ready to run; null, after reports, without a good one.
  std::unique_ptr<VsParseTree> parseProgram();

private:
  // An eventIn: the function of its name, the value that it is called with, and whether it runs.
  struct alignas(cacheLine) EventIn {
    EventIn(const SbName& name, SoField* field, int declaration)
        : field(field), declaration(declaration), name(name) {}
    SoField* field;
    int declaration;  // its number
    int waiting = 0;
    Function* function = nullptr;
    Value value;
    SbName name;
    Type type = Type::undefined;
    bool isBusy = false;
  };
  static_assert(sizeof(EventIn) == cacheLine);
  // An event that waits. Its value is looked up when it is handled.
  struct EventInMemo {
    std::size_t eventIn;
    SbTime time;
    bool isFromScript;
  };
  // Counts the runs of scripts, one within another: what happens meanwhile is caused by a script.
  class Running;

  static void executeSensorCB(void* self, SoSensor* sensor);
  void parseBehavior();
  bool addGlobals(VsParseTree& program);
  bool findFunctions(VsParseTree& program);
  void complainOfType(const char* kind, const SoField& field, const char* name) const;
  void complain(const std::string& message) const;
  void addEventInMemo(std::size_t eventIn, const SbTime& time);
  bool isLate() const;
  bool handle(EventIn& eventIn, const SbTime& time);

  // Every event needs nearly all of this.
  std::vector<EventIn> eventIns;
  std::vector<EventInMemo> pending;  // those before `next` were handled
  std::size_t next = 0;
  std::unique_ptr<VsParseTree> tree;
  VrmlScript& node;
  Function* eventsProcessed = nullptr;
  int executing = 0;        // runs within one another
  bool isUnusable = false;  // at the last try
  bool hadToWait = false;   // there was no run since some event came
  SoOneShotSensor executeSensor;
  static inline int executingScripts = 0;
};

}  // namespace tessel::script
