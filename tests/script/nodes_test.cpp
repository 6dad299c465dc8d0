// SPDX-License-Identifier: BSD-3-Clause
// Scripts that reach into other nodes, and the Browser object.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFInt32.h>
#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoMFVec3f.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFInt32.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/fields/SoSFString.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/core/VrmlWorldInfo.h>
#include <tessel/script/VrmlScript.h>
#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/shapes/VrmlText.h>

#include "script/ScriptRun.h"
#include "support/TestWorld.h"

using namespace tessel;
using namespace tessel::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A world with a Script S: its declarations, and the body of its function for the event `go`, a number. What it puts
// into `log` is the log.
class NodeWorld : public TestWorld {
public:
  NodeWorld(const std::string& nodes, const std::string& declarations, const std::string& body)
      : TestWorld(nodes + " DEF S Script { eventIn SFInt32 go field SFString log \"\" " + declarations +
                  " url \"vrmlscript: function go(v) { " + body + " }\" }") {
    if (!root()) ADD_FAILURE() << messages.text();
  }

  void go(int value = 1) const { field<SoSFInt32>("S", "go").setValue(value); }
  std::string log() const { return field<SoSFString>("S", "log").getValue().getString(); }
  template <class Field> Field& field(const char* node, const char* name) const {
    return *static_cast<Field*>(get<VrmlNode>(node)->getField(name));
  }
  ScriptReports reports;
};

// A Script that notes the events it gets, in their order.
const char* const witness = R"(DEF W Script {
  eventIn SFFloat a eventIn SFVec3f b eventIn MFFloat c eventIn SFString d eventOut SFString seen field SFString all ""
  url "vrmlscript: function a(v) { all = all + 'a' + v + ' '; } function b(v) { all = all + 'b' + v[0] + ' '; }
       function c(v) { all = all + 'c' + v.length + ' '; } function d(v) { all = all + 'd' + v + ' '; }
       function eventsProcessed() { seen = all; }" })";

TEST(ScriptNodes, PropertiesAreTheEventsOfANode) {
  const NodeWorld world(
      "DEF T Transform { translation 1 2 3 } DEF M Material { } DEF G Group { children Shape { } }",
      "field SFNode t USE T field SFNode m USE M field SFNode g USE G",
      "s = t.translation; t.translation = new SFVec3f(4, 5, 6);"
      " t.set_scale = new SFVec3f(2, 2, 2); m.transparency = 0.5; m.set_diffuseColor = new SFColor(1, 0, 0);"
      " t.rotation = new SFRotation(0, 0, 1, 2); t.translation[1] = 7; t.translation_changed.z = 8;"
      " log = s.x + ' ' + t.translation.x + ' ' + m.transparency + ' ' + t.trans_changed[1] + ' ' +"
      " g.children.length + ' ' + g.children_changed.length + ' ' + (m.shininess = 1);");
  world.go();
  EXPECT_THAT(world.reports.messages(), IsEmpty());
  EXPECT_EQ(world.log(), "1 4 0.5 7 1 1 1");
  const auto* transform = world.get<VrmlTransform>("T");
  EXPECT_EQ(transform->translation.getValue(), SbVec3f(4, 7, 8));
  EXPECT_EQ(transform->scale.getValue(), SbVec3f(2, 2, 2));
  EXPECT_EQ(world.get<VrmlMaterial>("M")->diffuseColor.getValue(), SbColor(1, 0, 0));
}

// What changes the field before the operation is done changes the operand, whatever became of the variable.
TEST(ScriptNodes, ANumberOfANodeIsThatOfItsField) {
  const NodeWorld world(
      "DEF M Material { transparency 1 } DEF N Material { shininess 2 }",
      "field SFNode m USE M field SFNode n USE N field MFFloat list [ 5, 6, 7 ] field SFFloat x 1",
      "k = m; a = m.transparency + (m.transparency = 4);"
      " b = k.transparency + (k = n, m.transparency = 8);"
      " c = m.transparency < (m.transparency = 9) ? 'less' : 'not';"
      " v = new SFVec2f(m.transparency, m.transparency++); list[m.transparency = 1] = m.transparency;"
      " i = 0; e = (i = 2, list)[i];"
      " f = (i ? m.transparency : 0) + (i = 0, m.transparency = 3) + (i ? 0 : x) * (x = 5);"
      " log = a + ' ' + b + ' ' + c + ' ' + v.x + ' ' + list[1] + ' ' + e + ' ' + f;");
  world.go();
  EXPECT_EQ(world.log(), "8 16 not 10 1 5 31");
  EXPECT_THAT(world.reports.messages(), IsEmpty());
}

TEST(ScriptNodes, WhatCannotBeReachedIsReported) {
  const NodeWorld world(
      "DEF T Transform { } DEF I WorldInfo { } DEF M Material { } DEF O Script { eventIn SFBool into "
      "eventOut SFInt32 out }",
      "field SFNode t USE T field SFNode i USE I field SFNode m USE M field SFNode o USE O field SFNode none "
      "NULL",
      "t.nosuch; t.nosuch = 1; i.title; i.title = 'x'; o.into; o.out = 1; none.x; none.x = 1; t.x_changed;"
      " m.transparency = 'a'; t.translation = 1; m.diffuseColor = t.scale; t.rotation = t.scale; "
      "t.addChildren = t;"
      " o.url = 'x'; none = 5; t.translation = none; m.dot(1);");
  world.go();
  EXPECT_THAT(
      world.reports.messages(),
      ElementsAre(
          "SFNode does not have a property named nosuch", "SFNode does not have a property named nosuch",
          "Cannot access property of SFNode - title is not an eventOut",
          "Cannot assign to property of SFNode - title is not an eventIn",
          "Cannot access property of SFNode - into is not an eventOut",
          "Cannot assign to property of SFNode - out is not an eventIn",
          "SFNode does not have a property named x", "SFNode does not have a property named x",
          "SFNode does not have a property named x_changed",
          "Attempt to assign a non-numeric value to the transparency eventIn of a SFNode field",
          "Attempt to assign value to the translation eventIn of a SFNode field that is not a SFVec3f",
          "Attempt to assign value to the diffuseColor eventIn of a SFNode field that is not a SFColor",
          "Attempt to assign value to the rotation eventIn of a SFNode field that is not a SFRotation",
          "Attempt to assign a value of the incorrect type to the addChildren eventIn of a SFNode field",
          "Attempt to assign a value of the incorrect type to the url eventIn of a SFNode field",
          "Tried to change the type of a Script node eventIn, eventOut, or field",
          "Attempt to assign value to the translation eventIn of a SFNode field that is not a SFVec3f"));
}

TEST(ScriptNodes, NumbersAndVectorsGoAtOnceAndEverythingElseAtTheEnd) {
  const NodeWorld world(
      std::string(witness), "field SFNode w USE W eventOut SFFloat mine",
      "w.d = 'x'; w.c = new MFFloat(1, 2); w.a = 1; w.b = new SFVec3f(5, 0, 0); w.d = 'y'; w.a = 2;");
  world.go();
  EXPECT_THAT(world.reports.messages(), IsEmpty());
  // Each event finds the last value of its field. What waits goes out in the order of the places that assign it.
  EXPECT_EQ(world.field<SoSFString>("W", "seen").getValue(), "a2 b5 a2 dy c2 dy ");
}

TEST(ScriptNodes, APlaceThatAssignsTwiceSendsTheLastValue) {
  const NodeWorld world(
      "DEF A Text { string \"a\" } DEF B Text { string \"b\" }",
      "field MFNode texts [ USE A, USE B ] field SFNode a USE A",
      "m = new MFString('x');"
      " for (i = 0; i < 2; i++) { texts[i].string = m; log = log + a.string[0]; } m[0] = 'y';");
  world.go();
  EXPECT_EQ(world.log(), "aa");
  EXPECT_EQ(world.get<VrmlText>("A")->string[0], "a");
  EXPECT_EQ(world.get<VrmlText>("B")->string[0], "y");
}

TEST(ScriptNodes, ListsAreReadAndWrittenInPlace) {
  const NodeWorld world(
      "DEF G Group { children [ DEF X Shape { }, DEF Y Group { } ] } DEF T Text { string [ \"a\" \"b\" ] }"
      " DEF K Script { eventIn MFVec3f points eventOut MFFloat numbers }",
      "field SFNode g USE G field SFNode t USE T field MFFloat f [ 1 2 3 ] eventOut MFVec3f p",
      "t.string[1] = 'c'; t.string[3] = 'e'; c = g.children; log = c.length + ' ' + t.string.length;"
      " c[0] = c[1]; c[2] = g.children[0]; c.length = 2; f[1] = 7; f.length = 2; p[1] = new SFVec3f(1, 2, "
      "3); p[1][0] = 4;");
  world.go();
  EXPECT_THAT(world.reports.messages(), IsEmpty());
  EXPECT_EQ(world.log(), "2 4");
  const auto& text = world.get<VrmlText>("T")->string;
  ASSERT_EQ(text.getNum(), 4);
  EXPECT_EQ(text[1], "c");
  EXPECT_EQ(text[2], "");
  const auto* group = world.get<VrmlGroup>("G");
  ASSERT_EQ(group->getNumChildren(), 2);
  EXPECT_EQ(group->getChild(0), world.get<VrmlNode>("Y"));
  const auto& numbers = world.field<SoMFFloat>("S", "f");
  ASSERT_EQ(numbers.getNum(), 2);
  EXPECT_EQ(numbers[1], 7);
  const auto& points = world.field<SoMFVec3f>("S", "p");
  ASSERT_EQ(points.getNum(), 2);
  EXPECT_EQ(points[0], SbVec3f(0, 0, 0));
  EXPECT_EQ(points[1], SbVec3f(4, 2, 3));
}

// Elements go at once, the whole at the end and in one event.
TEST(ScriptNodes, AListOfTheScriptIsSentByElementOrWhole) {
  const TestWorld world(R"(Group { children [
    DEF S Script { eventIn SFInt32 go eventOut MFFloat out url "vrmlscript: function go(v) {
      if (v == 1) { out[0] = 1; out[1] = 2; }
      if (v == 2) { out = new MFFloat(1, 2, 3); a = out; out = new MFFloat(5); a[0] = 9; }
      if (v == 3) out = new MFFloat();
      if (v == 4) { a = new MFFloat(1); out = a; a[5] = 2; } }" }
    DEF W Script { eventIn MFFloat c eventOut SFString seen field SFString all "" url "vrmlscript:
      function c(v) { all = all + v.length + ' '; } function eventsProcessed() { seen = all; }" } ]
    ROUTE S.out TO W.c })");
  auto* go = static_cast<SoSFInt32*>(world.get<VrmlScript>("S")->getField("go"));
  const auto* seen = static_cast<SoSFString*>(world.get<VrmlScript>("W")->getField("seen"));
  for (int i = 1; i <= 4; ++i) go->setValue(i);
  EXPECT_STREQ(seen->getValue().getString(), "2 2 1 0 6 ");
}

TEST(ScriptNodes, NodesAreMadeOfTexts) {
  const NodeWorld world(
      "DEF G Group { }", "field SFNode g USE G eventOut SFNode made eventOut MFNode several",
      "a = new SFNode('Transform { translation 1 2 3 }'); b = new SFNode('#VRML V2.0 utf8\nShape { }');"
      " log = '' + a.translation[2]; made = a; several = new MFNode(a, b, new SFNode('Box {'), new "
      "SFNode(''));"
      " g.addChildren = Browser.createVrmlFromString('Shape { } Shape { }'); c = new SFNode(5);"
      " log = log + ' ' + Browser.createVrmlFromString('').length;");
  world.go();
  EXPECT_THAT(world.reports.messages(), ElementsAre("Argument to SFNode constructor must be a string"));
  EXPECT_EQ(world.log(), "3 1");
  EXPECT_TRUE(world.field<SoSFNode>("S", "made").getValue());
  const auto& several = world.field<SoMFNode>("S", "several");
  ASSERT_EQ(several.getNum(), 4);
  EXPECT_EQ(several[0], world.field<SoSFNode>("S", "made").getValue());
  EXPECT_TRUE(several[1]);
  EXPECT_FALSE(several[2]);
  EXPECT_FALSE(several[3]);
  EXPECT_EQ(world.get<VrmlGroup>("G")->getNumChildren(), 1);
}

// In the text itself, and in the scripts that it makes.
TEST(ScriptNodes, MistakesInATextAreWhereTheScriptHasIt) {
  const NodeWorld world("", R"(field SFNode made NULL field SFString q "\"")",
                        "\n new SFNode('Shape { nosuch 1 }');\n"
                        "Browser.createVrmlFromString('#VRML V2.0 utf8\n\nBox { size a }');\n"
                        "made = n = new SFNode('DEF N Script { eventIn SFBool go\n"
                        " url ' + q + 'vrmlscript: function go() { x = y; }' + q + '}'); n.go = 1;");
  world.go();
  EXPECT_EQ(world.messages.count("Occurred at line   3 in test.wrl"), 1) << world.messages.text();
  EXPECT_EQ(world.messages.count("Occurred at line   6 in test.wrl"), 1) << world.messages.text();
  ASSERT_EQ(world.reports.heard.size(), 1U);
  EXPECT_EQ(world.reports.heard[0].script, "N");
  EXPECT_EQ(world.reports.heard[0].file, "test.wrl");
  EXPECT_EQ(world.reports.heard[0].line, 8);
}

TEST(ScriptNodes, AnInstanceHasThePropertiesOfItsInterface) {
  const NodeWorld world(
      "PROTO P [ eventOut SFVec3f sizes exposedField SFVec3f place 1 2 3 eventIn SFFloat see"
      " exposedField SFVec3f size 7 8 9 ]"
      " { Transform { translation IS place children Shape { appearance Appearance {"
      "   material Material { set_transparency IS see } } } } } DEF I P { }",
      "field SFNode i USE I",
      "log = i.place[1] + ' '; i.set_place = new SFVec3f(4, 5, 6); i.see = 0.5;"
      " log = log + i.place_changed.y + i.size_changed.y; i.translation; i.children;");
  world.go();
  EXPECT_THAT(world.reports.messages(), ElementsAre("SFNode does not have a property named translation",
                                                    "SFNode does not have a property named children"));
  EXPECT_EQ(world.log(), "2 50");  // the first one that begins so
}

TEST(ScriptNodes, AChangeInsideAChildThatAnInstanceWasGivenIsNoEvent) {
  const NodeWorld world(
      "PROTO P [ exposedField MFNode kids [ ] ] { Transform { children IS kids } } DEF B P { } DEF T "
      "Transform { }"
      " DEF W Script { eventIn MFNode kids eventOut SFInt32 count url \"vrmlscript: function kids() { "
      "count++; }\" }"
      " ROUTE B.kids TO W.kids",
      "field SFNode b USE B field SFNode t USE T",
      "if (v == 1) b.kids = new MFNode(t); else t.translation = new SFVec3f(v, 0, 0);");
  for (int i = 1; i <= 3; ++i) world.go(i);
  EXPECT_EQ(world.field<SoSFInt32>("W", "count").getValue(), 1);
}

TEST(ScriptNodes, AScriptMayDropItselfAndWhatItStandsOver) {
  const NodeWorld world(
      "DEF G Group { children DEF H Group { children [ DEF T Transform { }, DEF D Script { eventIn SFInt32 go"
      " field SFNode g NULL field SFNode t USE T eventOut SFVec3f v"
      " url \"vrmlscript: function go() { p = t.translation; c = g.children; c.length = 0; p.x = 5; v = p; "
      "t.rotation[3]; }\" } ] } }",
      "field SFNode g USE G field SFNode d USE D",
      "d.go = 1; g.children.length = 0; d = new SFNode('Group { }');");
  static_cast<SoSFNode&>(world.field<SoSFNode>("D", "g")).setValue(world.get<VrmlNode>("H"));
  world.go();
  EXPECT_EQ(world.get<VrmlGroup>("G")->getNumChildren(), 0);
  EXPECT_THAT(world.reports.messages(), IsEmpty());
}

TEST(ScriptNodes, WhatShutdownAssignsGoesNowhere) {
  const ScriptReports reports;
  {
    const TestWorld world(R"(DEF S Script { eventIn SFNode go field MFString m [] field SFNode self NULL
      url "vrmlscript: function go(v) { self = v; }
           function shutdown() { self.url = new MFString('x'); self = self; m = self.url; }" })");
    auto* script = world.get<VrmlScript>("S");
    static_cast<SoSFNode*>(script->getField("go"))->setValue(script);
    static_cast<SoSFNode*>(script->getField("go"))->setValue(nullptr);
  }
  EXPECT_THAT(reports.messages(), testing::AllOf(testing::Not(IsEmpty()),
                                                 testing::Each(testing::StartsWith("SFNode does not have"))));
}

// Each of them makes the next one of its own text, which quotes itself.
TEST(ScriptNodes, AScriptThatMakesItselfComesToAnEnd) {
  const ScriptReports reports;
  const TestWorld world(R"(DEF N Script { eventIn SFInt32 go field SFNode self USE N field SFNode next NULL
    field SFString q "\"" field SFString b "\\"
    url "vrmlscript: function go(v) {
      next = n = new SFNode('DEF N Script { eventIn SFInt32 go field SFNode self USE N field SFNode next NULL field SFString q '
        + q + b + q + q + ' field SFString b ' + q + b + b + q + ' url ' + q + self.url[0] + q + '}');
      n.go = v + 1; }" })");
  VrmlDB::setFrameTime();
  resultOf("function test() { for (i = 0; i < 4900; i++) new SFNode('Group { }'); }");  // to have less to do
  static_cast<SoSFInt32*>(world.get<VrmlScript>("N")->getField("go"))->setValue(1);
  int count = 0;
  for (SoNode* node = world.root(); node; ++count)
    node = static_cast<SoSFNode*>(static_cast<VrmlScript*>(node)->getField("next"))->getValue();
  EXPECT_GT(count, 1);
  EXPECT_LE(count, 101);
  EXPECT_THAT(reports.messages(), ElementsAre("Scripts make nodes of more than 5000 texts at one time",
                                              "SFNode does not have a property named go"));
  VrmlDB::setFrameTime();
}

TEST(ScriptBrowser, RoutesComeAndGo) {
  const NodeWorld world("DEF A Transform { } DEF B Transform { }",
                        "field SFNode a USE A field SFNode b USE B",
                        "if (v == 1) Browser.addRoute(a, 'translation_changed', b, 'set_translation');"
                        " if (v == 2) Browser.deleteRoute(a, 'translation', b, 'translation');"
                        " if (v == 3) Browser.deleteRoute(a, 'scale', b, 'scale');"
                        " a.translation = new SFVec3f(v, 0, 0); log = log + b.translation[0];");
  for (int i = 1; i <= 3; ++i) world.go(i);
  EXPECT_THAT(world.reports.messages(), IsEmpty());
  EXPECT_EQ(world.log(), "111");
}

TEST(ScriptBrowser, WrongArgumentsAreReported) {
  const NodeWorld world(
      "DEF A Transform { } DEF O Script { eventIn SFInt32 into eventOut SFInt32 out }",
      "field SFNode a USE A field SFNode o USE O field SFNode none NULL",
      "s = 'scale'; Browser.addRoute(1, s, a, s); Browser.addRoute(a, 1, a, s); Browser.addRoute(a, s, s, s);"
      " Browser.deleteRoute(a, s, a, a); Browser.createVrmlFromString(a);"
      " Browser.addRoute(a, 'nosuch', a, s); Browser.addRoute(a, s, a, 'set_nosuch'); Browser.addRoute(none, "
      "s, a, s);"
      " Browser.deleteRoute(o, 'into', a, s); Browser.addRoute(o, 'out', o, 'out'); Browser.addRoute(a, s, "
      "o, 'into');"
      " Browser.addRoute(a, s, a, 'set_'); Browser.addRoute(a, '_changed', a, s);");
  world.go();
  EXPECT_THAT(world.reports.messages(),
              ElementsAre("First argument to Browser.addRoute method must be a SFNode",
                          "Second argument to Browser.addRoute method must be a SFString",
                          "Third argument to Browser.addRoute method must be a SFNode",
                          "Fourth argument to Browser.deleteRoute method must be a SFString",
                          "First argument to Browser.createVrmlFromString method must be a SFString",
                          "In Browser.addRoute - no eventOut named nosuch exists",
                          "In Browser.addRoute - no eventIn named set_nosuch exists",
                          "In Browser.addRoute - no eventOut named scale exists",
                          "In Browser.deleteRoute - into is not an eventOut",
                          "In Browser.addRoute - out is not an eventIn",
                          "In Browser.addRoute - eventIn and eventOut types don't match",
                          "In Browser.addRoute - no eventIn named set_ exists",
                          "In Browser.addRoute - no eventOut named _changed exists"));
}

TEST(ScriptBrowser, ANameMayHaveAnyLength) {
  const NodeWorld world("", "field SFNode s USE S",
                        "x = 'abcdefgh'; for (i = 0; i < 20; i++) x = x + x; Browser.addRoute(s, x, s, x);");
  world.go();
  EXPECT_THAT(world.reports.messages(),
              ElementsAre(testing::StartsWith("In Browser.addRoute - no eventOut named abcdefghabcdefgh")));
}

TEST(ScriptBrowser, RoutesAddedInACycleEnd) {
  const NodeWorld world(
      "DEF A Transform { } DEF B Transform { }", "field SFNode a USE A field SFNode b USE B",
      "s = 'scale'; if (v == 1) { Browser.addRoute(a, s, b, s); Browser.addRoute(b, s, a, s); }"
      " a.scale = new SFVec3f(v, 1, 1); log = log + b.scale.x + a.scale.x;");
  world.go(1);
  world.go(2);
  EXPECT_EQ(world.log(), "1122");
}

}  // namespace
