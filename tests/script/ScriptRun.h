// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <tessel/script/ScriptReport.h>

#include "script/VsParseTree.h"

namespace tessel::test {

/// Listens to the complaints about scripts while it lives.
class ScriptReports {
public:
  ScriptReports();
  ~ScriptReports();

  struct Heard {
    ScriptReportKind kind;
    std::string message, text, script, file;
    int line;
  };
  std::vector<Heard> heard;
  std::vector<std::string> messages() const;

private:
  static void hearCB(const ScriptReport& report, void* self);
};

/// A value as tests write it: its type, a blank, and the value ("SFTime 3.5", "none").
std::string written(const script::Value& value);

/// The value that function `test` of a script gives; "unparsed" for a script that can't be parsed.
std::string resultOf(std::string_view script);

}  // namespace tessel::test
