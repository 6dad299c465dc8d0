// SPDX-License-Identifier: BSD-3-Clause
// The scripts in scripts/*.vs. Each file holds cases; a case begins with the value that its function `test` gives,
// `//= SFTime 3` (or `unparsed`, `none`), then a line `//! message` for each report in their order, with `\n` for the end of
// a line in it, then the script.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "script/ScriptRun.h"
#include "support/Paths.h"

using namespace tessel::test;

namespace {

struct Case {
  std::string place;
  std::string value;
  std::vector<std::string> reports;
  std::string script;
};

std::vector<Case> casesOf(const std::filesystem::path& path) {
  std::vector<Case> cases;
  std::ifstream in(path);
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.starts_with("//= ")) {
      cases.push_back({path.filename().string() + ":" + std::to_string(number), line.substr(4), {}, {}});
    } else if (line.starts_with("//! ")) {
      std::string report = line.substr(4);
      if (const auto end = report.find("\\n"); end != std::string::npos) report.replace(end, 2, "\n");
      cases.back().reports.push_back(std::move(report));
    } else if (!cases.empty()) {
      cases.back().script += line + '\n';
    }
  }
  return cases;
}

// A report may be told by its beginning.
std::vector<std::string> cutLike(std::vector<std::string> heard, const std::vector<std::string>& expected) {
  for (std::size_t i = 0; i < heard.size() && i < expected.size(); ++i)
    if (heard[i].starts_with(expected[i])) heard[i] = expected[i];
  return heard;
}

class ScriptFile : public testing::TestWithParam<std::string> {};

TEST_P(ScriptFile, GivesWhatItSays) {
  const std::vector<Case> cases = casesOf(testFile("script/scripts/" + GetParam() + ".vs"));
  ASSERT_FALSE(cases.empty());
  for (const Case& one : cases) {
    SCOPED_TRACE(one.place + "\n" + one.script);
    const ScriptReports reports;
    EXPECT_EQ(resultOf(one.script), one.value);
    std::vector<std::string> heard = reports.messages();
    for (std::string& message : heard)
      if (message.starts_with("Script node: ")) message.erase(0, 13);
    EXPECT_EQ(cutLike(heard, one.reports), one.reports);
  }
}

std::vector<std::string> files() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(testFile("script/scripts")))
    names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

INSTANTIATE_TEST_SUITE_P(All, ScriptFile, testing::ValuesIn(files()),
                         [](const auto& one) { return one.param; });

}  // namespace
