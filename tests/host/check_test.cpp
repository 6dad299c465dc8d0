// SPDX-License-Identifier: BSD-3-Clause
// `tessel check` and what all commands share, seen from the shell.
#include <gmock/gmock.h>

#include "host/Program.h"
#include "support/Paths.h"

namespace tessel::host {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

struct Case {
  const char* name;
  std::string content;
  int status;
  const char* message;  // part of what stands on standard error, empty for silence
};

std::ostream& operator<<(std::ostream& out, const Case& c) { return out << c.name; }

class CheckOf : public ::testing::TestWithParam<Case> {};

TEST_P(CheckOf, EndsAsDefined) {
  makeFile("w.wrl", GetParam().content);
  const Outcome run = runTessel({"check", "w.wrl"});
  EXPECT_EQ(run.status, GetParam().status) << run.err;
  if (*GetParam().message)
    EXPECT_THAT(run.err, HasSubstr(GetParam().message));
  else
    EXPECT_THAT(run.err, IsEmpty());
  EXPECT_EQ(run.out, GetParam().status == 0 ? "1 world: 1 good, 0 bad\n" : "1 world: 0 good, 1 bad\n");
}

const Case cases[] = {
    {"GoodWorld", world("Shape { geometry Box { size 1 2 3 } }\n"), 0, ""},
    {"WorldWithoutNodes", world("\n# nothing\n"), 0, ""},
    {"EmptyFile", "", 0, ""},
    {"UnknownField", world("Shape {\n  geometry Box {\n    sise 1 2 3\n  }\n}\n"), 1, "w.wrl:4: error: "},
    {"UnknownNode", world("\n\nGroop { }\n"), 1, "w.wrl:4: error: "},
    {"TornList", world("ScalarInterpolator {\n key [ 1 2 3"), 1, "w.wrl:3: error: "},
    {"OldVersion", "#VRML V1.0 ascii\nSeparator { Cube { } }\n", 1, "w.wrl:1: error: "},
    {"NoHeader", "Shape { geometry Box { } }\n", 1, "w.wrl:1: error: "},
    {"Junk",
     std::string("\x7f"
                 "ELF\0\1\2\xff\xfe junk \0",
                 18),
     1, "error: "},
    {"CarriageReturns", "#VRML V2.0 utf8\r\nShape {\r\n  geometry Bax { }\r\n}\r\n", 1, "w.wrl:3: error: "},
    {"ByteOrderMark", "\xef\xbb\xbf" + world("Shape { geometry Box { } }"), 0, ""},
    {"Latin1", world("WorldInfo { title \"caf\xe9\" }\n"), 0, ""},
    {"Duplicate",
     world("DEF T Transform { }\nDEF U Transform { }\nROUTE T.translation TO U.translation\n"
           "ROUTE T.translation TO U.translation\n"),
     0, "w.wrl:5: warning: "},
};

INSTANTIATE_TEST_SUITE_P(File, CheckOf, ::testing::ValuesIn(cases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(Check, TellsMissingFilesFromBadWorlds) {
  makeFile("good.wrl", world("Group { }"));
  makeFile("bad.wrl", world("Groop { }"));
  EXPECT_EQ(runTessel({"check", "missing.wrl"}).status, 3);
  EXPECT_EQ(runTessel({"check", "."}).status, 3);
  const Outcome run = runTessel({"check", "bad.wrl", "missing.wrl", "good.wrl"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err, HasSubstr("missing.wrl: error: No such file or directory\n"));
  EXPECT_THAT(run.err, HasSubstr("bad.wrl:2: error: "));
  EXPECT_EQ(run.out, "3 worlds: 1 good, 2 bad\n");
}

TEST(Check, ReadsStandardInputAndCompressedWorlds) {
  const Outcome run = runTessel({"check", "-"}, world("\nGroop { }"));
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("<stdin>:3: error: "));

  makeFile("w.wrl", world("\nGroop { }"));
  const std::string zip = "gzip -n " + (test::scratchDir() / "w.wrl").string();
  ASSERT_EQ(std::system(zip.c_str()), 0);
  EXPECT_THAT(runTessel({"check", "w.wrl.gz"}).err, HasSubstr("w.wrl.gz:3: error: "));
}

TEST(Check, StrictRefusesWhatPassesWithAWarning) {
  makeFile("w.wrl", "#VRML   V2.0   utf8\nGroup { }\n");
  const Outcome lax = runTessel({"check", "w.wrl"});
  EXPECT_EQ(lax.status, 0);
  EXPECT_THAT(lax.err, HasSubstr("w.wrl:1: warning: "));
  EXPECT_EQ(runTessel({"check", "--strict", "w.wrl"}).status, 1);
}

TEST(Check, ParsesScriptsWithoutRunningThem) {
  makeFile("bad.wrl",
           world("PROTO P [ ] {\n DEF S Script {\n  eventIn SFBool go\n  url [ \"http://x/y.vs\",\n"
                 "   \"vrmlscript:\nfunction go() { x = ; }\" ]\n } }\n"));
  const Outcome bad = runTessel({"check", "bad.wrl"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_THAT(bad.err, HasSubstr("bad.wrl:7: error: Script node: "));
  EXPECT_EQ(runTessel({"check", "--no-scripts", "bad.wrl"}).status, 0);

  makeFile("good.wrl",
           world("Script { eventIn SFBool go url \"vrmlscript: function initialize() { x = y; }\" }\n"
                 "PROTO P [ exposedField MFString program [ ] ] { Script { url IS program } }"));
  EXPECT_THAT(runTessel({"check", "good.wrl"}).err, IsEmpty());
  makeFile("java.wrl", world("DEF J Script { eventIn SFBool go url \"javascript: function go() { }\" }"));
  const Outcome java = runTessel({"check", "java.wrl"});
  EXPECT_EQ(java.status, 0);
  EXPECT_EQ(java.err, "java.wrl:2: script: Script node J: No supported script format specified\n");
}

TEST(Check, QuietSaysErrorsOnly) {
  makeFile("bad.wrl", world("Groop { }"));
  makeFile("warned.wrl", "#VRML   V2.0   utf8\nGroup { }\n");
  const Outcome run = runTessel({"check", "--quiet", "bad.wrl", "warned.wrl"});
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, HasSubstr("error"));
  EXPECT_THAT(run.err, Not(HasSubstr("warned")));
}

TEST(Check, ReportsAsJson) {
  makeFile("good.wrl", world("Group { }"));
  makeFile("bad.wrl", world("\nGroop { }"));
  const Outcome run = runTessel({"check", "--json", "bad.wrl", "good.wrl"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_THAT(run.out, HasSubstr("\"severity\": \"error\""));
  EXPECT_THAT(run.out, HasSubstr("\"line\": 3"));
  EXPECT_THAT(run.out, HasSubstr("\"bad\": 1"));
  makeFile("report.json", run.out);
  const std::string check =
      "python3 -m json.tool " + (test::scratchDir() / "report.json").string() + " >/dev/null";
  EXPECT_EQ(std::system(check.c_str()), 0) << run.out;
}

TEST(Usage, MistakesEndWithTwo) {
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {}, {"check"}, {"chek", "w.wrl"}, {"check", "--frob", "w.wrl"}, {"check", "-q", "-v", "w.wrl"}}) {
    const Outcome run = runTessel(arguments);
    EXPECT_EQ(run.status, 2) << ::testing::PrintToString(arguments);
    EXPECT_THAT(run.err, Not(IsEmpty())) << ::testing::PrintToString(arguments);
  }
}

TEST(Usage, HelpAndVersionAreAnswers) {
  const Outcome version = runTessel({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_THAT(version.out, MatchesRegex("tessel [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  const Outcome help = runTessel({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, HasSubstr("check"));
  EXPECT_THAT(runTessel({"check", "--help"}).out, HasSubstr("--strict"));
}

}  // namespace
}  // namespace tessel::host
