// SPDX-License-Identifier: BSD-3-Clause
// Events into Scripts, through their functions, and out of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tessel/core/FieldKind.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/core/VrmlSwitch.h>
#include <tessel/script/VrmlScript.h>

#include <string>
#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoMFVec3f.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFInt32.h>
#include <Inventor/fields/SoSFString.h>
#include <Inventor/fields/SoSFTime.h>
#include <Inventor/sensors/SoSensorManager.h>

#include "script/ScriptRun.h"
#include "support/TestWorld.h"

using namespace tessel;
using namespace tessel::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A world with scripts, and what they complain of.
class ScriptWorld : public TestWorld {
public:
  using TestWorld::TestWorld;

  template <class Field> Field& field(const char* node, const char* name) const {
    SoField* found = get<VrmlScript>(node)->getField(name);
    return *static_cast<Field*>(found);
  }
  ScriptReports reports;
};

TEST(ScriptEvents, ReachTheFunctionOfTheirNameWithValueAndTime) {
  const ScriptWorld world(R"(DEF S Script {
    eventIn SFFloat speed eventOut SFFloat doubled eventOut SFTime at eventOut SFInt32 calls
    url [ "http://nowhere/x.js" "vrmlscript: function speed(v, t) { doubled = v * 2; at = t; calls = calls + 1; }" ]
  })");
  world.field<SoSFFloat>("S", "speed").setValue(1.25F);
  EXPECT_EQ(world.field<SoSFFloat>("S", "doubled").getValue(), 2.5F);
  EXPECT_EQ(world.field<SoSFTime>("S", "at").getValue(), VrmlDB::getFrameTime());
  world.field<SoSFFloat>("S", "speed").setValue(1.25F);
  EXPECT_EQ(world.field<SoSFInt32>("S", "calls").getValue(), 2);
  EXPECT_THAT(world.reports.messages(), IsEmpty());
}

TEST(ScriptEvents, InitializeRunsBeforeTheFirstEventAndEventsProcessedAfterEach) {
  const ScriptWorld world(R"(DEF S Script {
    eventIn SFBool a eventIn SFBool silent eventOut SFString log field SFString kept ""
    url "vrmlscript:
      function initialize() { kept = kept + 'i'; }
      function a() { kept = kept + 'a'; }
      function eventsProcessed() { kept = kept + 'p'; log = kept; }"
  })");
  EXPECT_EQ(world.field<SoSFString>("S", "kept").getValue(), "");
  world.field<SoSFBool>("S", "a").setValue(TRUE);
  EXPECT_EQ(world.field<SoSFString>("S", "log").getValue(), "iap");
  world.field<SoSFBool>("S", "silent").setValue(TRUE);
  EXPECT_EQ(world.field<SoSFString>("S", "log").getValue(), "iapp");
}

TEST(ScriptEvents, AnEventBackIntoItsOwnFunctionIsDropped) {
  const ScriptWorld world(R"(Group { children [ DEF S Script {
    eventIn SFInt32 into eventOut SFInt32 out field SFInt32 calls 0
    url "vrmlscript: function into(v) { calls = calls + 1; out = v + 1; }" } ]
    ROUTE S.out TO S.into })");
  world.field<SoSFInt32>("S", "into").setValue(1);
  EXPECT_EQ(world.field<SoSFInt32>("S", "calls").getValue(), 1);
  EXPECT_EQ(world.field<SoSFInt32>("S", "out").getValue(), 2);
}

TEST(ScriptEvents, EveryAssignmentOfANumberIsAnEvent) {
  const ScriptWorld world(R"(Group { children [
    DEF A Script { eventIn SFInt32 go eventOut SFInt32 n eventOut SFInt32 m
      url "vrmlscript: function go(v) { n = 1; m = 2; n = 3; }" }
    DEF B Script { eventIn SFInt32 n eventIn SFInt32 m field SFString seen "" eventOut SFString log
      url "vrmlscript: function n(v) { seen = seen + ' n' + v; } function m(v) { seen = seen + ' m' + v; }
           function eventsProcessed() { log = seen; }" } ]
    ROUTE A.n TO B.n ROUTE A.m TO B.m })");
  world.field<SoSFInt32>("A", "go").setValue(1);
  EXPECT_THAT(world.reports.messages(), IsEmpty());
  // The receiver runs when the sender is done, once an event, with the last value of each.
  EXPECT_EQ(world.field<SoSFString>("B", "log").getValue(), " n3 m2 n3");
}

TEST(ScriptEvents, AFieldChangedFromOutsideStartsTheProgramAnew) {
  const ScriptWorld world(R"(DEF S Script {
    eventIn SFBool go eventOut SFInt32 starts field SFInt32 count 0 field SFFloat speed 1
    url "vrmlscript: function initialize() { count = count + 1; } function go() { starts = count; }" })");
  world.field<SoSFBool>("S", "go").setValue(TRUE);
  world.field<SoSFBool>("S", "go").setValue(TRUE);
  EXPECT_EQ(world.field<SoSFInt32>("S", "starts").getValue(), 1);
  world.field<SoSFFloat>("S", "speed").setValue(2);
  world.field<SoSFBool>("S", "go").setValue(TRUE);
  EXPECT_EQ(world.field<SoSFInt32>("S", "starts").getValue(), 2);
}

TEST(ScriptEvents, ADeclaredFieldKeepsItsType) {
  const ScriptWorld world(R"(DEF S Script {
    eventIn SFBool go field SFFloat x 1 field SFBool b FALSE field SFInt32 i 0 field SFString s "s"
    url "vrmlscript: function go() { i = 2.9; b = 7; x = 'a'; s = 1; x = 0.1; y = x; }" })");
  world.field<SoSFBool>("S", "go").setValue(TRUE);
  EXPECT_EQ(world.field<SoSFInt32>("S", "i").getValue(), 2);
  EXPECT_TRUE(world.field<SoSFBool>("S", "b").getValue());
  EXPECT_EQ(world.field<SoSFFloat>("S", "x").getValue(), 0.1F);
  EXPECT_EQ(world.field<SoSFString>("S", "s").getValue(), "s");
  const char* text = "Tried to change the type of a Script node eventIn, eventOut, or field";
  EXPECT_THAT(world.reports.messages(), ElementsAre(text, text));
}

TEST(ScriptEvents, ShutdownRunsWhenTheNodeGoes) {
  const ScriptReports reports;
  {
    const TestWorld world(R"(DEF S Script { eventIn SFBool go
      url "vrmlscript: function go() { } function shutdown() { x = gone; }" })");
    static_cast<SoSFBool*>(world.get<VrmlScript>("S")->getField("go"))->setValue(TRUE);
    EXPECT_THAT(reports.messages(), IsEmpty());
  }
  EXPECT_THAT(reports.messages(), ElementsAre("Attempt to access an uninitialized variable"));
}

// It goes with the toolkit's next look at what waits, whole, and can still send itself events, but not without end.
TEST(ScriptEvents, ShutdownRunsOnceInAScriptThatHoldsItself) {
  const ScriptReports reports;
  setScriptStepLimit(1000);
  {
    const TestWorld world(R"(Group { children DEF S Script {
      eventIn SFInt32 go eventIn SFBool late field SFNode me USE S field SFNode kept NULL
      url "vrmlscript: function initialize() { starting; } function go(v) { if (v > 1) me.nosuch; }
           function late() { }
           function shutdown() { me.go = 2; while (1) me.late = 1; }" } })");
    static_cast<SoSFInt32*>(world.get<VrmlScript>("S")->getField("go"))->setValue(1);
  }
  SoDB::getSensorManager()->processDelayQueue(TRUE);
  setScriptStepLimit(0);
  EXPECT_THAT(reports.messages(), ElementsAre("Attempt to access an uninitialized variable",
                                              "SFNode does not have a property named nosuch",
                                              "Script was stopped: it takes too many steps"));
}

// The last event of a Script comes to one that is going itself, since it held that Script.
TEST(ScriptEvents, AScriptThatGoesHearsNothingOfWhatGoesWithIt) {
  const ScriptReports reports;
  {
    const TestWorld world(R"(DEF A Script {
        field SFNode held DEF B Script { eventIn SFFloat go eventOut SFFloat last
          url "vrmlscript: function go() { } function shutdown() { last = 3; ending; }" }
        eventIn SFFloat heard eventOut SFFloat z
        url "vrmlscript: function initialize() { z = 1; } function heard() { hearing; }" }
      ROUTE B.last TO A.heard)");
    world.get<VrmlScript>("A")->execute();
    static_cast<SoSFFloat*>(world.get<VrmlScript>("B")->getField("go"))->setValue(1);
  }
  EXPECT_THAT(reports.messages(), ElementsAre("Attempt to access an uninitialized variable"));
}

TEST(ScriptEvents, AScriptThatNoLongerHoldsItselfGoesOn) {
  const ScriptWorld world(R"(Group { children [ DEF S Script {
    eventIn SFInt32 go field SFNode me USE S field SFNode other NULL field SFInt32 calls 0
    url "vrmlscript: function go() { calls = calls + 1; me = other; } function shutdown() { gone; }" } ] })");
  for (int i = 0; i < 3; ++i) {
    world.field<SoSFInt32>("S", "go").setValue(i);
    SoDB::getSensorManager()->processDelayQueue(TRUE);
  }
  EXPECT_EQ(world.field<SoSFInt32>("S", "calls").getValue(), 3);
  EXPECT_THAT(world.reports.messages(), IsEmpty());
}

TEST(ScriptEvents, AHostMayRunAScriptThatNoEventReaches) {
  const ScriptWorld world(R"(DEF S Script { field SFString log ""
    url "vrmlscript: function initialize() { log = 'i'; } function eventsProcessed() { log = log + 'p'; }" })");
  world.get<VrmlScript>("S")->execute();
  EXPECT_EQ(world.field<SoSFString>("S", "log").getValue(), "ip");
}

TEST(ScriptEvents, AHostMayDeclareAndTakeBack) {
  const ScriptWorld world(R"(DEF W Switch { }
    DEF S Script { eventIn SFInt32 go eventIn SFInt32 tick field SFInt32 runs 0
      url "vrmlscript: function more(v) { runs += v; } function go(v) { runs += 10; } function tick() { runs += 100; }" }
    ROUTE W.whichChoice TO S.tick)");
  auto* script = world.get<VrmlScript>("S");
  const auto runs = [&] { return world.field<SoSFInt32>("S", "runs").getValue(); };
  auto& choice = world.get<VrmlSwitch>("W")->whichChoice;
  world.field<SoSFInt32>("S", "go").setValue(1);
  choice.setValue(1);
  EXPECT_EQ(runs(), 110);

  EXPECT_FALSE(script->addField(FieldKind::eventIn, SoSFInt32::getClassTypeId(), "go"));
  EXPECT_FALSE(script->addField(FieldKind::eventIn, SoType::badType(), "more"));
  auto* more =
      static_cast<SoSFInt32*>(script->addField(FieldKind::eventIn, SoSFInt32::getClassTypeId(), "more"));
  ASSERT_TRUE(more);
  more->setValue(3);
  EXPECT_EQ(runs(), 113);

  EXPECT_TRUE(script->removeField("tick"));
  EXPECT_FALSE(script->removeField("tick"));
  EXPECT_FALSE(script->removeField("url"));
  EXPECT_FALSE(script->getField("tick"));
  choice.setValue(2);
  world.field<SoSFInt32>("S", "go").setValue(1);
  EXPECT_EQ(runs(), 123);
  EXPECT_THAT(world.reports.messages(), IsEmpty());
}

// `set_url` is the program of the one Script and an event of the other.
TEST(ScriptEvents, NamesMeanSomethingElseOnEachScript) {
  const ScriptWorld world(R"(DEF S Script { eventIn SFInt32 go field MFString text "b"
    field SFNode plain Script { } field SFNode own DEF Q Script { eventIn MFString set_url eventOut SFInt32 calls
      url "vrmlscript: function set_url(v) { calls = calls + 1; }" }
    url "vrmlscript: function go() {
      for (i = 0; i < 2; i++) { n = i ? own : plain; n.set_url = text; } }" })");
  world.field<SoSFInt32>("S", "go").setValue(1);
  EXPECT_EQ(world.field<SoSFInt32>("Q", "calls").getValue(), 1);
  EXPECT_THAT(world.reports.messages(), IsEmpty());
}

// What nobody else holds goes as soon as it gives itself up.
TEST(ScriptEvents, ANodeMayBeGivenItself) {
  const ScriptWorld world(R"(DEF S Script { eventIn SFInt32 go
    url "vrmlscript: function go() { k = new SFNode('Shape { }'); k.geometry = k; }" })");
  world.field<SoSFInt32>("S", "go").setValue(1);
  EXPECT_THAT(world.reports.messages(), IsEmpty());
}

TEST(ScriptEvents, NothingRunsWhileScriptsAreDisabled) {
  const ScriptWorld world(R"(DEF S Script { eventIn SFInt32 go eventOut SFInt32 sum
    url "vrmlscript: function go(v) { sum = sum + v; }" })");
  VrmlScript::allEnabled = 0;
  world.field<SoSFInt32>("S", "go").setValue(3);
  world.field<SoSFInt32>("S", "go").setValue(4);
  EXPECT_EQ(world.field<SoSFInt32>("S", "sum").getValue(), 0);
  VrmlScript::allEnabled = 1;
  world.get<VrmlScript>("S")->execute();
  EXPECT_EQ(world.field<SoSFInt32>("S", "sum").getValue(), 8);  // both calls see the last value
}

TEST(ScriptReporting, SaysWhereInTheFile) {
  const ScriptWorld world(
      "Group { children [\n DEF S Script { eventIn SFBool go\n url \"vrmlscript:\n"
      "function go() {\n  a = b;\n}\" } ] }");
  world.field<SoSFBool>("S", "go").setValue(TRUE);
  ASSERT_EQ(world.reports.heard.size(), 1U);
  const ScriptReports::Heard& heard = world.reports.heard[0];
  EXPECT_EQ(heard.kind, ScriptReportKind::runtime);
  EXPECT_EQ(heard.text, "VrmlScript Runtime Error:\n    Attempt to access an uninitialized variable\n");
  EXPECT_EQ(heard.script, "S");
  EXPECT_EQ(heard.file, "test.wrl");
  EXPECT_EQ(heard.line, 6);
}

TEST(ScriptReporting, AProgramThatCannotBeParsedIsReportedAtEachEvent) {
  const ScriptWorld world("DEF S Script { eventIn SFBool go url \"vrmlscript: function go() {\nx = ; }\" }");
  for (int i = 0; i < 2; ++i) world.field<SoSFBool>("S", "go").setValue(TRUE);
  ASSERT_EQ(world.reports.heard.size(), 2U);
  EXPECT_EQ(world.reports.heard[1].text,
            "VrmlScript Parse Error:\n    Script node: syntax error: line \"x = ; }\"\n\n");
  EXPECT_EQ(world.reports.heard[1].line, 3);
}

TEST(ScriptReporting, NoProgramAndUnknownTypesAreReported) {
  const ScriptWorld world(R"(Group { children [
    DEF S Script { eventIn SFBool go url "javascript: function go() {}" }
    DEF T Script { eventIn SFBool go eventOut MFTime when url "vrmlscript: function go() {}" } ] })");
  world.field<SoSFBool>("S", "go").setValue(TRUE);
  world.field<SoSFBool>("T", "go").setValue(TRUE);
  EXPECT_THAT(
      world.reports.messages(),
      ElementsAre("Script node S: No supported script format specified",
                  "Script node T: EventOuts of type MFTime are not currently supported (field when)"));
}

TEST(ScriptLimits, AScriptWithoutEndIsStoppedAndWorksAgain) {
  const ScriptWorld world(R"(DEF S Script { eventIn SFInt32 go eventOut SFInt32 out
    url "vrmlscript: function go(v) { while (v) { } out = 1; } function eventsProcessed() { out = out + 1; }" })");
  setScriptStepLimit(1000);
  world.field<SoSFInt32>("S", "go").setValue(1);
  EXPECT_EQ(world.field<SoSFInt32>("S", "out").getValue(), 0);
  ASSERT_EQ(world.reports.heard.size(), 1U);
  EXPECT_EQ(world.reports.heard[0].kind, ScriptReportKind::stopped);
  world.field<SoSFInt32>("S", "go").setValue(0);
  EXPECT_EQ(world.field<SoSFInt32>("S", "out").getValue(), 2);
  setScriptStepLimit(0);
}

// However long the code is that a pass runs through, and however many fields it names.
TEST(ScriptLimits, LongCodeIsStopped) {
  std::string fields, code;
  for (int i = 0; i < 3000; ++i) {
    const std::string name = "f" + std::to_string(i);
    fields += " field SFFloat " + name + " 0";
    code += name + " = " + name + " + 1;\n";
  }
  const ScriptWorld world("DEF S Script { eventIn SFInt32 go" + fields +
                          "\nurl \"vrmlscript: function go() { while (1) {" + code + "} }\" }");
  setScriptStepLimit(100000);
  world.field<SoSFInt32>("S", "go").setValue(1);
  setScriptStepLimit(0);
  EXPECT_LT(world.field<SoSFFloat>("S", "f2999").getValue(), 10);
  ASSERT_EQ(world.reports.heard.size(), 1U);
  EXPECT_EQ(world.reports.heard[0].kind, ScriptReportKind::stopped);
}

// Events that cause one another are in one run of the script, or in one after the other.
TEST(ScriptLimits, EventsWithoutEndAreStopped) {
  const std::string pair = "eventIn SFInt32 j eventIn SFInt32 k eventIn SFInt32 go field SFNode me USE S ";
  for (const char* program :
       {"function go(v) { me.j = v; } function j(v) { me.k = v + 1; } function k(v) { me.j = v + 1; }",
        "function go(v) { } function j(v) { } function eventsProcessed() { me.j = 1; me.k = 1; }"}) {
    const ScriptWorld world("DEF S Script { " + pair + "url \"vrmlscript: " + program + "\" }");
    setScriptStepLimit(1000);
    world.field<SoSFInt32>("S", "go").setValue(1);
    ASSERT_EQ(world.reports.heard.size(), 1U) << program;
    EXPECT_EQ(world.reports.heard[0].kind, ScriptReportKind::stopped);
    setScriptStepLimit(0);
  }
}

TEST(ScriptLimits, ScriptsThatKeepEachOtherBusyAreStopped) {
  const ScriptWorld world(R"(Group { children [
    DEF S Script { eventIn SFInt32 go eventIn SFInt32 ball field SFNode other DEF T Script {
        eventIn SFInt32 ball field SFNode other USE S url "vrmlscript: function ball(v) { other.ball = v + 1; }" }
      url "vrmlscript: function go(v) { other.ball = v; } function ball(v) { other.ball = v + 1; }" } ] })");
  setScriptStepLimit(1000);
  for (int i = 1; i <= 2; ++i) {
    world.field<SoSFInt32>("S", "go").setValue(i);
    ASSERT_EQ(world.reports.heard.size(), static_cast<std::size_t>(i));
    EXPECT_EQ(world.reports.heard.back().kind, ScriptReportKind::stopped);
  }
  setScriptStepLimit(0);
}

// The toolkit cuts a long row of events. It goes on with the next notification, at whatever frame time.
TEST(ScriptLimits, EventsThatGoRoundThroughFramesAreStopped) {
  const ScriptWorld world(R"(Group { children [
      DEF S Script { eventIn SFInt32 ball eventOut SFInt32 out url "vrmlscript: function ball(v) { out = v + 1; }" }
      DEF T Script { eventIn SFInt32 ball eventOut SFInt32 out url "vrmlscript: function ball(v) { out = v + 1; }" } ]
    ROUTE S.out TO T.ball ROUTE T.out TO S.ball })");
  setScriptStepLimit(1000000);
  world.field<SoSFInt32>("S", "ball").setValue(1);
  for (int frame = 0; frame < 3; ++frame) {
    VrmlDB::setClock(VrmlDB::getFrameTime() + SbTime(1.0));
    VrmlDB::setFrameTime();
  }
  setScriptStepLimit(0);
  ASSERT_EQ(world.reports.heard.size(), 1U);
  EXPECT_EQ(world.reports.heard[0].kind, ScriptReportKind::stopped);
}

// What takes long or much counts as many steps, or is not done.
TEST(ScriptLimits, LongWorkIsStoppedAndMemoryIsBounded) {
  const std::string text = "s = 'x'; for (k = 0; k < 23; k++) s = s + s;";
  setScriptStepLimit(100000);
  for (const char* body :
       {"while (1) { q = s + 'a'; r = s + 'b'; }", "while (1) n = s.indexOf('y');",
        "while (1) { m = new MFVec3f(); m.length = 16000000; }",
        "while (1) g = new SFImage(4000, 4000, 4, new MFInt32());", "while (1) new SFNode('# ' + s);",
        "while (1) n = parseInt(s);", "while (1) x = parseFloat(s);", "while (1) u = s.toUpperCase();",
        "while (1) f = new SFString('%s', s);", "s = s + '%d'; while (1) f = new SFString(s, 1);"}) {
    const ScriptReports reports;
    EXPECT_EQ(resultOf("function test() { " + text + body + " }"), "stopped") << body;
  }
  setScriptStepLimit(0);
  const ScriptWorld world(
      R"(DEF S Script { eventIn SFInt32 go field MFString m [ ] field MFString n [ ] url "vrmlscript:
    function go() { )" +
      text + R"( for (i = 0; i < 20; i++) { m[i] = s; n[i] = s; } m.length = 1; n[0] = 'a'; n[1] = s; }" })");
  world.field<SoSFInt32>("S", "go").setValue(1);
  EXPECT_EQ(world.field<SoMFString>("S", "m").getNum(), 1);
  EXPECT_LT(world.field<SoMFString>("S", "n").getNum(), 20);
  EXPECT_EQ(world.field<SoMFString>("S", "n")[1].getLength(), 1 << 23);
  ASSERT_FALSE(world.reports.heard.empty());
  EXPECT_EQ(world.reports.heard[0].message,
            "Attempt to take more than 268435456 bytes for values of scripts");
}

// A pass of each of these loops takes the toolkit long.
TEST(ScriptLimits, LongWorkOnFieldsIsStopped) {
  std::string fields;
  for (int i = 0; i < 500; ++i) fields += " field SFBool f" + std::to_string(i) + " TRUE";
  const ScriptWorld world("DEF S Script { eventIn SFInt32 go field SFInt32 passes 0" + fields + R"(
    eventOut SFInt32 zzz field SFString text "" field MFString texts [ ] field SFNode self USE S
    field SFNode shape Shape { } field SFNode group Group { }
    url "vrmlscript:
      function initialize() {
        text = 'x';
        for (i = 0; i < 22; i++) text = text + text;
        texts[0] = text;
        nodes = new MFNode();
        nodes[9999] = shape;
        group.children = nodes;
      }
      function go(v) {
        passes = 0;
        few = text.substring(0, 300);
        while (v == 0) { passes++; x = text.length; }
        while (v == 1) { passes++; texts[1] = few; }
        while (v == 2) { passes++; group.children[5] = shape; }
        while (v == 3) { passes++; x = self.zz_changed; }
      }" })");
  world.field<SoSFInt32>("S", "go").setValue(4);
  setScriptStepLimit(100000);
  for (int i = 0; i < 4; ++i) {
    world.field<SoSFInt32>("S", "go").setValue(i);
    EXPECT_LT(world.field<SoSFInt32>("S", "passes").getValue(), 5000) << i;
  }
  setScriptStepLimit(0);
  ASSERT_EQ(world.reports.heard.size(), 4U);
  EXPECT_EQ(world.reports.heard.back().kind, ScriptReportKind::stopped);
}

// So does what a change of one field sets off elsewhere.
TEST(ScriptLimits, LongWorkOfOthersIsStopped) {
  std::string nodes = "DEF FROM Transform { } DEF TO Transform { } ROUTE FROM.scale TO TO.scale";
  for (int i = 0; i < 200; ++i) {
    const std::string name = "T" + std::to_string(i);
    nodes += " DEF " + name + " Transform { } ROUTE FROM.scale TO " + name + ".scale";
  }
  nodes += " DEF C CoordinateInterpolator { key [ 0 1 ] keyValue [";
  for (int i = 0; i < 20000; ++i) nodes += " 0 1 2";
  const ScriptWorld world(nodes + R"(] } DEF S Script { eventIn SFInt32 go field SFInt32 passes 0
    field SFNode from USE FROM field SFNode to USE TO field SFNode c USE C
    url "vrmlscript: function go(v) {
      passes = 0;
      k = 'translation'; s = 'scale'; one = new SFVec3f(1, 1, 1); list = c.value_changed;
      while (v == 0) { passes++; from.scale = one; }
      while (v == 1) { passes++; c.set_fraction = 0.5; list.length; }
      while (v == 2) { passes++; Browser.addRoute(from, k, to, s); Browser.deleteRoute(from, k, to, s); } }" })");
  setScriptStepLimit(100000);
  for (int i = 0; i < 3; ++i) {
    world.field<SoSFInt32>("S", "go").setValue(i);
    EXPECT_LT(world.field<SoSFInt32>("S", "passes").getValue(), 2000) << i;
  }
  setScriptStepLimit(0);
  EXPECT_THAT(world.reports.heard, testing::SizeIs(3));
}

TEST(ScriptLimits, ListsInFieldsTakeSoMuchMemoryTogetherAndNoMore) {
  const ScriptWorld world(R"(DEF S Script { eventIn SFInt32 go field MFVec3f a [ ] field MFVec3f b [ ]
    field MFString c [ ] field MFString d [ ]
    url "vrmlscript: function go() { v = new SFVec3f(1, 2, 3); a[16000000] = v; b[16000000] = v; a.length = 1; b[9] = v;
      c[1000000] = 'x'; d[1000000] = 'x'; c.length = 0; d[1] = 'x'; }" })");
  world.field<SoSFInt32>("S", "go").setValue(1);
  EXPECT_EQ(world.field<SoMFVec3f>("S", "a").getNum(), 1);
  EXPECT_EQ(world.field<SoMFVec3f>("S", "b").getNum(), 10);
  EXPECT_EQ(world.field<SoMFString>("S", "d").getNum(), 2);
  const char* text = "Attempt to take more than 268435456 bytes for values of scripts";
  EXPECT_THAT(world.reports.messages(), ElementsAre(text, text));
}

TEST(ScriptLimits, PicturesInFieldsToo) {
  const ScriptWorld world(R"(DEF S Script { eventIn SFInt32 go field SFImage a 0 0 0 field SFImage b 0 0 0
    field SFImage c 0 0 0 field SFImage d 0 0 0 field SFImage e 0 0 0 field SFInt32 size 0
    url "vrmlscript: function go() { p = new SFImage(4096, 4000, 4, new MFInt32()); a = p; b = p;
      c.x = 4096; c.y = 4000; c.comp = 4; d.x = 4096; d.y = 4000; d.comp = 4; e = p; size = d.comp; }" })");
  world.field<SoSFInt32>("S", "go").setValue(1);
  EXPECT_EQ(world.field<SoSFInt32>("S", "size").getValue(), 4);
  const char* text = "Attempt to take more than 268435456 bytes for values of scripts";
  EXPECT_THAT(world.reports.messages(), ElementsAre(text, text));
}

// A node keeps what a script has put into its field; when it goes, that is given back.
TEST(ScriptLimits, FieldsOfOtherNodesToo) {
  const ScriptWorld world(R"(DEF S Script { eventIn SFInt32 go field SFInt32 full 0 field MFNode c [ ]
    url "vrmlscript: function fill(node, v) {
        if (v == 1) { p = node.point; p[8000000] = new SFVec3f(1, 1, 1); return p.length > 1; }
        if (v == 2) { p = node.image; p.x = 4096; p.y = 4096; p.comp = 4; return p.comp == 4; }
        if (v == 3) { p = node.children; p[500000] = node; return p.length > 1; }
        s = 'abcdefgh'; for (i = 0; i < 20; i++) s = s + s;
        p = node.string; for (i = 0; i < 8; i++) p[i] = s; return p.length == 8;
      }
      function go(v) {
        kind = v == 1 ? 'Coordinate { }' : (v == 2 ? 'PixelTexture { }' : (v == 3 ? 'Group { }' : 'Text { }'));
        full = 0; c.length = 0;
        for (k = 0; k < 8; k++) { c[k] = new SFNode(kind); if (fill(c[k], v)) full++; }
      }" })");
  const int fitting[] = {2, 3, 2, 3};
  for (int kind = 1; kind <= 4; ++kind) {
    world.field<SoSFInt32>("S", "go").setValue(kind);
    EXPECT_EQ(world.field<SoSFInt32>("S", "full").getValue(), fitting[kind - 1]) << kind;
  }
}

// Each of these must end in a report, whatever it takes.
TEST(ScriptLimits, HostileTextsEndInAReport) {
  const auto many = [](const char* what, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) text += what;
    return text;
  };
  const int deep = 100000;
  for (const std::string& body :
       {"return " + many("(", deep) + "1" + many(")", deep) + ";", "return " + many("-", deep) + "1;",
        many("if (1) ", deep) + "return 1;", "return 1" + many(".x", deep) + ";", many("a = ", deep) + "1;",
        "return " + many("a[", deep) + "1" + many("]", deep) + ";", many("if (1) { x = 1; ", deep),
        std::string("x = ") + std::string(3000, 'a') + ";", "x = " + std::string(3000, '1') + ";"}) {
    const ScriptReports reports;
    EXPECT_EQ(resultOf("function test() { " + body + " }"), "unparsed") << body.substr(0, 40);
    EXPECT_GE(reports.heard.size(), 1U);
  }
  for (const char* wrong : {"x = 1 + 2 y; ", "x.fly(); "}) {
    const ScriptReports reports;
    EXPECT_EQ(resultOf("function test() { x; " + many(wrong, deep) + "}"), "unparsed");
    EXPECT_EQ(reports.heard.size(), 1000U);
    EXPECT_LT(reports.heard.back().message.size(), 5000U);
  }
  const ScriptReports reports;
  EXPECT_EQ(resultOf("function test() { return 0" + many(" + 1", deep) + "; }"), "SFTime 100000");
  EXPECT_EQ(resultOf("function test() { return (0" + many(", 1", deep) + "); }"), "SFTime 1");
  EXPECT_EQ(resultOf("function test() { return '" + std::string(5000, 'x') + "' == 1; }"), "SFBool false");
  EXPECT_EQ(resultOf("function test() { s = 'x'; for (i = 0; i < 40; i++) s = s + s; return s == 1; }"),
            "SFBool false");
}

}  // namespace
