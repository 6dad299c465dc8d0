// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsError.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <tessel/toolkit/PlainReport.h>

#include "core/Effort.h"

namespace tessel {
namespace {

void byDefault(const ScriptReport& report, void*) {
  postPlain(report.text);
  if (report.kind == ScriptReportKind::longToken) std::exit(1);
}

struct Sink {
  ScriptReportHandler* handler = byDefault;
  void* data = nullptr;
} sink;

std::int64_t stepLimit = 0;
const script::Locator* innermost = nullptr;

// A report takes as long as many passes of a loop.
void post(ScriptReportKind kind, std::string_view message, const std::string& text,
          const script::Location& where) {
  Effort::add(1 << 15);
  sink.handler({kind, message, text, where.script, where.file, where.line}, sink.data);
}

void postRunning(ScriptReportKind kind, std::string_view message) {
  post(kind, message, "VrmlScript Runtime Error:\n    " + std::string(message) + "\n",
       script::VsError::whereItRuns());
}

}  // namespace

void setScriptReportHandler(ScriptReportHandler* handler, void* data) {
  sink = {handler ? handler : byDefault, data};
}

void setScriptStepLimit(std::int64_t steps) { stepLimit = steps; }

namespace script {

Locator::Locator() : outer(innermost) { innermost = this; }
Locator::~Locator() { innermost = outer; }

std::int64_t scriptStepLimit() { return stepLimit; }

Location VsError::whereItRuns() { return innermost ? innermost->location() : Location(); }

void VsError::postRuntimeError(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  char text[4096];
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  postRunning(ScriptReportKind::runtime, text);
}

void VsError::postRunningLine(std::string_view message) {
  post(ScriptReportKind::runtime, message, std::string(message) + "\n", whereItRuns());
}

void VsError::postStopped(std::string_view message) { postRunning(ScriptReportKind::stopped, message); }

// The message ends its own line; it is followed by an empty one.
void VsError::postParseError(std::string_view message, const Location& where) {
  post(ScriptReportKind::parse, message, "VrmlScript Parse Error:\n    " + std::string(message) + "\n\n",
       where);
}

void VsError::postUnusable(std::string_view message, const Location& where) {
  post(ScriptReportKind::unusable, message, std::string(message) + "\n", where);
}

void VsError::postLongToken(int limit, const Location& where) {
  const std::string message = "Input string too long, limit " + std::to_string(limit);
  post(ScriptReportKind::longToken, message, message + "\n", where);
}

}  // namespace script
}  // namespace tessel
