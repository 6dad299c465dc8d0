// SPDX-License-Identifier: BSD-3-Clause
#include "host/Diagnostics.h"

#include <sstream>

#include <gmock/gmock.h>

#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <Inventor/errors/SoDebugError.h>

#include "host/JsonWriter.h"

namespace tessel::host {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Diagnosing : public ::testing::Test {
protected:
  static void SetUpTestSuite() { SoDB::init(); }
  /// What a block prints on standard error.
  template <class Act> static std::string printed(Act act) {
    ::testing::internal::CaptureStderr();
    act();
    return ::testing::internal::GetCapturedStderr();
  }
};

TEST(MessageForm, ReadErrorsTellTheirPlace) {
  const Message message = parseReadError(
      "Coin read error: Unknown field \"sise\" in Box\n\tOccurred at line   7 in rooms/hall.wrl", "hall");
  EXPECT_EQ(formatted(message), "rooms/hall.wrl:7: error: Unknown field \"sise\" in Box");
}

TEST(MessageForm, PlacesMayBeMissingOrLieInTheText) {
  const auto form = [](const char* posted) { return formatted(parseReadError(posted, "w.wrl")); };
  EXPECT_EQ(form("Coin read error: odd"), "w.wrl: error: odd");
  EXPECT_EQ(form("Coin read error: odd\n\tOccurred at line  12"), "w.wrl:12: error: odd");
  EXPECT_EQ(form("Coin read error: a\nb\n\tOccurred at line 3 in my world.wrl\n"),
            "my world.wrl:3: error: a b");
  // A string in the world that looks like a place isn't one.
  EXPECT_EQ(form("Coin read error: \"Occurred at line 9 in x\"\n\tOccurred at line 2 in y"),
            "y:2: error: \"Occurred at line 9 in x\"");
  EXPECT_EQ(form(""), "w.wrl: error: ");
}

TEST(MessageForm, LiveComplaintsNameTheirSource) {
  const auto parse = [](const char* posted) {
    return parseLiveComplaint(posted, Severity::warning, "w.wrl");
  };
  const Message plain = parse("Coin warning in VrmlShape::GLRender(): too few normals");
  EXPECT_EQ(formatted(plain), "w.wrl: warning: too few normals");
  EXPECT_EQ(plain.source, "VrmlShape::GLRender");
  EXPECT_EQ(
      formatted(parse("Coin warning in VrmlRoute::add(): already there\n\tOccurred at line 4 in v.wrl")),
      "v.wrl:4: warning: already there");
}

TEST(MessageForm, TerminalsAreSafeFromWorlds) {
  EXPECT_EQ(parseReadError("Coin read error: \x1b[2Jgone\a", "w").text, "\\x1b[2Jgone\\x07");
}

TEST_F(Diagnosing, EqualMessagesComeOnceWithTheirCount) {
  Diagnostics diagnostics(Diagnostics::Output::normal);
  diagnostics.beginWorld("w.wrl");
  EXPECT_EQ(printed([] {
              for (int i = 0; i < 5; ++i) SoDebugError::post("VrmlShape", "no normals");
              SoDebugError::postWarning("VrmlShape", "no colours");
            }),
            "w.wrl: warning: no normals\nw.wrl: warning: no colours\n");
  EXPECT_EQ(printed([&] { diagnostics.endWorld(); }), "w.wrl: warning: no normals (5 times)\n");
  EXPECT_FALSE(diagnostics.hasErrors());
}

TEST_F(Diagnosing, ReadErrorsOfTheToolkitArriveWithTheirLine) {
  Diagnostics diagnostics(Diagnostics::Output::normal);
  diagnostics.beginWorld("w.iv");
  EXPECT_THAT(printed([] {
                SoInput in;
                const char world[] = "#Inventor V2.1 ascii\nCube {\n  wydth 3\n}\n";
                in.setBuffer(world, sizeof world - 1);
                SoDB::readAll(&in);
              }),
              HasSubstr(":3: error: "));
  EXPECT_TRUE(diagnostics.hasErrors());
  diagnostics.beginWorld("next.iv");
  EXPECT_FALSE(diagnostics.hasErrors());
}

TEST_F(Diagnosing, HostileWorldsCannotFloodTheTerminal) {
  Diagnostics diagnostics(Diagnostics::Output::normal);
  diagnostics.beginWorld("w.wrl");
  const std::string text = printed([&] {
    for (int i = 0; i < 5000; ++i) SoDebugError::postWarning("VrmlShape", "bad index %d", i);
    diagnostics.report(Severity::error, "the end");
    diagnostics.endWorld();
  });
  EXPECT_THAT(text, HasSubstr("bad index 999\n"));
  EXPECT_THAT(text, Not(HasSubstr("bad index 1000\n")));
  EXPECT_THAT(text, HasSubstr("w.wrl: error: the end\n")) << "warnings hide the error";
  EXPECT_THAT(text, HasSubstr("4000 further messages not shown"));
}

TEST_F(Diagnosing, QuietKeepsErrorsAndNoiseIsNeverShown) {
  Diagnostics diagnostics(Diagnostics::Output::quiet);
  diagnostics.beginWorld("w.wrl");
  EXPECT_EQ(printed([&] {
              SoDebugError::postWarning("VrmlShape", "small matter");
              SoDebugError::postWarning("glxglue_isdirect", "Couldn't get current GLX context.");
              diagnostics.report(Severity::error, "great matter");
            }),
            "w.wrl: error: great matter\n");
  EXPECT_EQ(diagnostics.messages().size(), 2u);
}

TEST_F(Diagnosing, JsonSurvivesAnyBytes) {
  Diagnostics diagnostics(Diagnostics::Output::collectOnly);
  diagnostics.beginWorld("a\"b\\c\xff.wrl");
  EXPECT_EQ(printed([&] { diagnostics.report(Severity::error, "caf\xc3\xa9 caf\xe9"); }), "");
  std::ostringstream out;
  JsonWriter json(out);
  diagnostics.write(json);
  EXPECT_EQ(out.str(),
            "[\n  {\n    \"severity\": \"error\",\n    \"file\": \"a\\\"b\\\\c\xef\xbf\xbd.wrl\",\n"
            "    \"text\": \"caf\xc3\xa9 caf\xef\xbf\xbd\",\n    \"count\": 1\n  }\n]\n");
}

}  // namespace
}  // namespace tessel::host
