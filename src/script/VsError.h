// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <tessel/script/ScriptReport.h>

namespace tessel::script {

/// Where a script is: asked only when there is something to report.
struct Location {
  std::string_view script;
  std::string_view file;
  int line = 0;
};

/// Tells where the running script is. They nest as runs do; the innermost one is asked.
class Locator {
public:
  Locator(const Locator&) = delete;
  Locator& operator=(const Locator&) = delete;
  virtual Location location() const = 0;

protected:
  Locator();
  ~Locator();

private:
  const Locator* outer;
};

/// The one way out for complaints about scripts.
namespace VsError {

/// Where the innermost running script is.
Location whereItRuns();

[[gnu::format(printf, 1, 2)]] void postRuntimeError(const char* format, ...);
/// A complaint about what runs, as a line of its own.
void postRunningLine(std::string_view message);
void postStopped(std::string_view message);
void postParseError(std::string_view message, const Location& where);
/// A Script that has no program, or none that can be run. The text is a line of its own.
void postUnusable(std::string_view message, const Location& where);
void postLongToken(int limit, const Location& where);

}  // namespace VsError

/// Steps that a Script may take for its events at one time; 0 for no limit.
std::int64_t scriptStepLimit();

}  // namespace tessel::script
