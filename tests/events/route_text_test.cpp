// SPDX-License-Identifier: BSD-3-Clause
// ROUTE statements, as they are read, refused and written.
#include <tessel/events/VrmlRoute.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <Inventor/SoOutput.h>

#include "events/RouteProbe.h"

using tessel::ReadStatus;
using tessel::test::ProbeWorld;
using tessel::test::RouteProbe;

namespace {

constexpr const char* twoProbes = "DEF A RouteProbe {} DEF B RouteProbe {}\n";

struct Statement {
  const char* text;
  const char* complaint;  // what is said first
  bool bad = true;        // then: "Bad ROUTE specification"

  friend void PrintTo(const Statement& s, std::ostream* out) { *out << s.text; }
};

std::string located(const std::string& complaint) {
  return "Coin read error: " + complaint + "\n\tOccurred at line   3 in test.wrl";
}

class GoodRoute : public ::testing::TestWithParam<Statement> {};
class BadRoute : public ::testing::TestWithParam<Statement> {};

TEST_P(GoodRoute, IsMadeInSilence) {
  ProbeWorld world((std::string(twoProbes) + GetParam().text).c_str());
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
  EXPECT_TRUE(VrmlRoute::routeExists(&world.probe("A").level, &world.probe("B").level));
}

TEST_P(BadRoute, EndsTheReadWithItsLine) {
  const Statement& route = GetParam();
  ProbeWorld world((std::string(twoProbes) + route.text).c_str());
  EXPECT_EQ(world.status, ReadStatus::failed);
  std::vector<std::string> expected;
  if (*route.complaint) expected.push_back(located(route.complaint));
  if (route.bad) expected.push_back(located("Bad ROUTE specification"));
  EXPECT_EQ(world.messages.all(), expected);
}

INSTANTIATE_TEST_SUITE_P(Forms, GoodRoute,
                         ::testing::Values(Statement{"ROUTE A.level TO B.level", ""},
                                           Statement{"ROUTE A.level_changed TO B.set_level", ""},
                                           Statement{"ROUTE A . level_changed TO B\t.\tset_level", ""},
                                           Statement{"Group { ROUTE A.level TO B.level }", ""}));

INSTANTIATE_TEST_SUITE_P(
    Faults, BadRoute,
    ::testing::Values(
        Statement{"ROUTE A.level to B.level", ""}, Statement{"ROUTE A.level TO", ""},
        Statement{"ROUTE A TO B.level", ""},
        Statement{"ROUTE A. TO B.level", "Unknown eventOut \"TO\" in node \"A\""},
        Statement{"ROUTE A.level TO C.level DEF C RouteProbe {}", "Unknown node \"C\""},
        Statement{"ROUTE A.in TO B.level", "\"in\" in node \"A\" is not an eventOut"},
        Statement{"ROUTE A.level TO B.out", "\"out\" in node \"B\" is not an eventIn"},
        Statement{"ROUTE A.size TO B.level", "\"size\" in node \"A\" is not an eventOut"},
        Statement{"ROUTE A.size_changed TO B.level",
                  "\"size_changed\" in node \"A\" is not an exposed field"},
        Statement{"ROUTE A.level TO B.set_in", "\"set_in\" in node \"B\" is not an exposed field"},
        Statement{"ROUTE A.level TO B.set_", "Unknown eventIn \"set_\" in node \"B\""},
        Statement{"ROUTE A._changed TO B.level", "Unknown eventOut \"_changed\" in node \"A\""},
        Statement{"ROUTE A.set_level TO B.level", "Unknown eventOut \"set_level\" in node \"A\""},
        Statement{"ROUTE A.level TO B.level_changed", "Unknown eventIn \"level_changed\" in node \"B\""},
        Statement{"ROUTE A.level TO B.time", "ROUTE types do not match", false},
        Statement{"ROUTE A.level TO B.nodes", "ROUTE types do not match", false}));

TEST(RouteReading, TheSameRouteTwiceIsAWarningWithItsLine) {
  ProbeWorld world(
      "DEF A RouteProbe {} DEF B RouteProbe {}\n"
      "ROUTE A.level TO B.in\n\nROUTE A.level_changed TO B.in");
  EXPECT_EQ(world.status, ReadStatus::world);
  EXPECT_EQ(world.messages.text(),
            "Coin warning in VrmlRoute::add(): ROUTE already exists from A.level to B.in!  Ignoring..."
            "\n\tOccurred at line   5 in test.wrl");
  world.probe("A").level = 2;
  EXPECT_EQ(world.probe("B").in.getValue(), 2);
}

std::string written(SoField& from, SoField& to, int referenceOf = -1) {
  SoOutput out;
  constexpr std::size_t room = 4096;
  out.setBuffer(std::malloc(room), room, std::realloc);
  if (referenceOf >= 0)
    while (out.addReference(from.getContainer()) < referenceOf) {
    }
  VrmlRoute::write(&out, &from, &to);
  void* text = nullptr;
  std::size_t size = 0;
  out.getBuffer(text, size);
  std::string result(static_cast<const char*>(text), size);
  std::free(text);
  return result;
}

TEST(RouteWriting, ExposedFieldsComeInTheirEventForm) {
  ProbeWorld world(twoProbes);
  RouteProbe &a = world.probe("A"), &b = world.probe("B");
  EXPECT_NE(written(a.level, b.level).find("ROUTE A.level_changed TO B.set_level\n"), std::string::npos);
  EXPECT_NE(written(a.out, b.in).find("ROUTE A.out TO B.in\n"), std::string::npos);
}

TEST(RouteWriting, AnEndThatCannotBeNamedMakesTheLineAComment) {
  ProbeWorld world("DEF A RouteProbe {}");
  const tessel::SoRef<RouteProbe> nameless(new RouteProbe);
  EXPECT_NE(written(nameless->out, world.probe("A").in)
                .find("# One end of the following route is not in this scope.\n"
                      "# It may be in an inline or other unreachable node.\n"
                      "# ROUTE ???.out TO A.in\n"),
            std::string::npos);
}

TEST(RouteWriting, SharedAndMissingNamesTakeTheReferenceNumber) {
  ProbeWorld world("DEF A RouteProbe {} DEF B RouteProbe {} DEF B_1 RouteProbe {}");
  const tessel::SoRef<RouteProbe> nameless(new RouteProbe);
  RouteProbe &a = world.probe("A"), &b = world.probe("B");
  EXPECT_NE(written(nameless->out, a.in, 0).find("ROUTE _0.out TO A.in\n"), std::string::npos);
  EXPECT_NE(written(b.out, a.in, 0).find("ROUTE B_0.out TO A.in\n"), std::string::npos);
  EXPECT_NE(written(a.out, b.in, 0).find("ROUTE A.out TO B.in\n"), std::string::npos) << "a name of its own";
}

}  // namespace
