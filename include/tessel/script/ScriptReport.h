// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <cstdint>
#include <string_view>

namespace tessel {

enum class ScriptReportKind : std::uint8_t {
  parse,     ///< a script could not be parsed
  unusable,  ///< a Script has no program, or fields that programs can't hold
  runtime,   ///< something in a script could not be done; the script went on
  stopped,   ///< a script was ended before its time
  longToken  ///< a word of a script is longer than the scanner bears; the parse fails
};

/// What a script gives rise to complain of, and where.
struct ScriptReport {
  ScriptReportKind kind;
  std::string_view message;  ///< the complaint alone, without a line end
  std::string_view text;     ///< all that goes to standard error, with its line ends
  std::string_view script;   ///< the DEF name of the Script; empty if it has none
  std::string_view file;     ///< that the script was read from; empty if it is not known
  int line;                  ///< of the file, or of the script's text if the file is not known; from 1
};

using ScriptReportHandler = void(const ScriptReport& report, void* data);

/// Puts a host's handler in the place of the default one; null for that again. The default one hands `text` to
/// `postPlain`, and ends the process with status 1 after a long token. The handler must not run or delete Scripts.
TESSEL_API void setScriptReportHandler(ScriptReportHandler* handler, void* data);

/// A limit for the steps that a Script may take for an event, with all events that it and other Scripts cause by it at
/// that frame time; 0, the default, for none. Steps are passes of loops and calls of functions, longer ones more, KiB
/// that are written or searched, and the reports, changes of fields and nodes that hear of these. What a Script still
/// had to do for the event when it was stopped is not done.
TESSEL_API void setScriptStepLimit(std::int64_t steps);

}  // namespace tessel
