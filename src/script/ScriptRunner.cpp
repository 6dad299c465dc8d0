// SPDX-License-Identifier: BSD-3-Clause
#include "script/ScriptRunner.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include <tessel/core/FieldKind.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/script/VrmlScript.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

#include "core/ValueType.h"
#include "script/Declarations.h"
#include "script/VsField.h"

namespace tessel::script {

static constexpr std::string_view prefix = "vrmlscript:";
static constexpr std::size_t maxWaiting = 10000;

ScriptRunner::ScriptRunner(VrmlScript& node) : node(node), executeSensor(executeSensorCB, this) {
  executeSensor.setPriority(0);
  int number = 0;
  for (const auto& one : *node.declared) {
    if (one.kind == FieldKind::eventIn) eventIns.emplace_back(one.name, one.field.get(), number);
    ++number;
  }
}

ScriptRunner::~ScriptRunner() = default;

class ScriptRunner::Running {
public:
  explicit Running(ScriptRunner& runner) : runner(runner) { count(1); }
  ~Running() { count(-1); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

private:
  void count(int change) {
    runner.executing += change;
    executingScripts += change;
  }
  ScriptRunner& runner;
};

void ScriptRunner::executeSensorCB(void* self, SoSensor*) { static_cast<ScriptRunner*>(self)->execute(); }

bool ScriptRunner::take(int declaration) {
  const auto found = std::ranges::lower_bound(eventIns, declaration, std::less<>(), &EventIn::declaration);
  if (found == eventIns.end() || found->declaration != declaration) return true;  // declared since
  if (found->isBusy) return false;
  // A program that can't be parsed may never handle anything, nor one that is switched off.
  const bool keepsAll = !isUnusable && pending.size() - next < maxWaiting;
  if (keepsAll || found->waiting == 0)
    addEventInMemo(static_cast<std::size_t>(found - eventIns.begin()), VrmlDB::getFrameTime());
  executeSensor.schedule();
  return true;
}

// In the order of their times, those of one time in the order in which they came. The first one keeps its place.
void ScriptRunner::addEventInMemo(std::size_t eventIn, const SbTime& time) {
  if (next > pending.size() / 2) {
    pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(next));
    next = 0;
  }
  std::size_t place = pending.size();
  while (place > next + 1 && time < pending[place - 1].time) --place;
  pending.insert(pending.begin() + static_cast<std::ptrdiff_t>(place), {eventIn, time, executingScripts > 0});
  ++eventIns[eventIn].waiting;
}

void ScriptRunner::fieldChanged() {
  if (!tree || executing > 0) return;
  for (EventIn& one : eventIns) {
    one.function = nullptr;
    one.value.clear();
  }
  eventsProcessed = nullptr;
  tree.reset();
}

void ScriptRunner::execute() {
  if (!VrmlScript::allEnabled) {
    hadToWait = true;
    return;
  }
  const SoRef<VrmlScript> staying(&node);
  const Running running(*this);
  if (!tree) parseBehavior();
  isUnusable = !tree;
  if (isUnusable) {
    hadToWait = true;
    return;
  }

  tree->preExecute(isLate());
  hadToWait = false;
  bool goesOn = true;
  while (next < pending.size()) {
    const EventInMemo memo = pending[next];
    if (++next == pending.size()) {
      pending.clear();
      next = 0;
    }
    EventIn& eventIn = eventIns[memo.eventIn];
    --eventIn.waiting;
    if (!memo.isFromScript) {
      tree->allowSteps();
      goesOn = true;
    }
    if (goesOn) goesOn = handle(eventIn, memo.time);
  }
  if (goesOn && eventsProcessed) tree->call(*eventsProcessed, {});
  tree->postExecute();
}

// The first event was caused by a script at another time and has not waited for this one: the toolkit cuts what goes
// round without end, until its next notification.
bool ScriptRunner::isLate() const {
  return !hadToWait && next < pending.size() && pending[next].isFromScript &&
         pending[next].time != VrmlDB::getFrameTime();
}

// The function gets the value and the time, if it asks for them.
bool ScriptRunner::handle(EventIn& eventIn, const SbTime& time) {
  if (!eventIn.function) return true;
  const ScopedValue busy(eventIn.isBusy, true);
  Value arguments[2];
  if (eventIn.function->numArgs == 0) {
    eventIn.field->evaluate();
  } else if (isScalar(eventIn.type)) {
    readScalar(*eventIn.field, eventIn.type, arguments[0]);
  } else {
    arguments[0] = eventIn.value;
  }
  arguments[1].setTime(time.getValue());
  return tree->call(*eventIn.function, arguments);
}

// The text is that of the first url which is a program, whatever the others are.
std::unique_ptr<VsParseTree> ScriptRunner::parseProgram() {
  const auto texts = std::span(node.url.getValues(0), static_cast<std::size_t>(node.url.getNum()));
  const auto text = std::find_if(texts.begin(), texts.end(), [](const SbString& url) {
    return std::string_view(url.getString()).starts_with(prefix);
  });
  if (text == texts.end()) {
    complain("No supported script format specified");
    return nullptr;
  }
  auto program = std::make_unique<VsParseTree>();
  program->setSource(node.getUrlFile().getString(), node.getUrlLine(static_cast<int>(text - texts.begin())));
  const std::string source = text->getString();
  const bool good =
      addGlobals(*program) &&
      program->parse(std::string_view(source).substr(prefix.size()), node.getDefName().getString()) &&
      findFunctions(*program);
  return good ? std::move(program) : nullptr;
}

void ScriptRunner::parseBehavior() {
  tree = parseProgram();
  if (!tree) return;
  if (Function* initialize = tree->findFunction("initialize")) {
    tree->preExecute();
    tree->call(*initialize, {});
    tree->postExecute();
  }
  eventsProcessed = tree->findFunction("eventsProcessed");
}

// Fields first, then eventOuts.
bool ScriptRunner::addGlobals(VsParseTree& program) {
  for (const auto& [kind, access, plural] :
       {std::tuple(FieldKind::field, AccessType::FIELD, "Fields"),
        std::tuple(FieldKind::eventOut, AccessType::EVENTOUT, "EventOuts")})
    for (const auto& one : *node.declared)
      if (one.kind == kind && !program.addGlobalVar(one.name.getString(), *one.field, access)) {
        complainOfType(plural, *one.field, one.name.getString());
        return false;
      }
  return true;
}

bool ScriptRunner::findFunctions(VsParseTree& program) {
  for (EventIn& one : eventIns) {
    one.function = program.findFunction(one.name.getString());
    if (!one.function) continue;
    one.type = typeOf(*one.field);
    if (one.type == Type::undefined) {
      complainOfType("EventIns", *one.field, one.name.getString());
      return false;
    }
    if (!isScalar(one.type)) one.value = fieldObjectOver(*one.field, false);
  }
  return true;
}

void ScriptRunner::complainOfType(const char* kind, const SoField& field, const char* name) const {
  complain(std::string(kind) + " of type " + nameOf(valueTypeOf(field)) +
           " are not currently supported (field " + name + ")");
}

void ScriptRunner::complain(const std::string& message) const {
  const std::string name = node.getDefName().getString();
  const std::string whose = name.empty() ? "Unnamed Script node" : "Script node " + name;
  const int line = node.getUrlLine(0);
  VsError::postUnusable(whose + ": " + message, {name, node.getUrlFile().getString(), line});
}

void ScriptRunner::shutDown() {
  if (!tree) return;
  const Running running(*this);
  tree->allowSteps();
  if (Function* last = tree->findFunction("shutdown")) tree->call(*last, {});
  tree->forgetAssigned();
}

}  // namespace tessel::script
