// SPDX-License-Identifier: BSD-3-Clause
// What a Script declares in its body.
#include <gtest/gtest.h>

#include <tessel/core/FieldKind.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/script/VrmlScript.h>

#include <string>
#include <utility>
#include <vector>

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/fields/SoSFRotation.h>
#include <Inventor/lists/SoFieldList.h>

#include "support/TestWorld.h"

using namespace tessel;
using namespace tessel::test;

namespace {

std::vector<std::string> fieldNames(const VrmlScript& script) {
  SoFieldList fields;
  script.getFields(fields);
  std::vector<std::string> names;
  for (int i = 0; i < fields.getLength(); ++i) {
    SbName name;
    EXPECT_TRUE(script.getFieldName(fields[i], name));
    names.emplace_back(name.getString());
  }
  return names;
}

TEST(ScriptUrl, LinesOfItsStringsAreKept) {
  const TestWorld world(
      "Group { children [\n  DEF A Script { url [ # a remark\n\n   \"first\n  of two lines\"\n\"second\" ]"
      " field MFString other [ \"x\"\n \"y\" ] }\n DEF B Script { url \"one\" } ] }");
  const auto* a = world.get<VrmlScript>("A");
  const auto* b = world.get<VrmlScript>("B");
  ASSERT_TRUE(a && b) << world.messages.text();
  const int first = a->getUrlLine(0);
  EXPECT_EQ(a->getUrlLine(1), first + 2);
  EXPECT_EQ(a->getUrlLine(2), 0);
  EXPECT_EQ(a->getUrlLine(-1), 0);
  EXPECT_EQ(b->getUrlLine(0), first + 4);
  EXPECT_EQ(a->getDef()->line + 2, first);
  EXPECT_EQ(a->getUrlFile(), a->getDef()->file);

  const SoRef<SoNode> copy(VrmlNode::deepCopy(a, FALSE));
  EXPECT_EQ(static_cast<VrmlScript*>(copy.get())->getUrlLine(1), first + 2);
}

TEST(ScriptDeclarations, EachScriptHasItsOwn) {
  const TestWorld world(R"(Group { children [
    DEF A Script { eventIn SFBool go field SFFloat speed 2.5 directOutput TRUE eventOut SFVec3f place url "vrmlscript:" }
    DEF B Script { field MFString words [ "a" "b" ] }
  ] })");
  const auto* a = world.get<VrmlScript>("A");
  const auto* b = world.get<VrmlScript>("B");
  ASSERT_TRUE(a && b) << world.messages.text();
  EXPECT_EQ(fieldNames(*a),
            (std::vector<std::string>{"url", "mustEvaluate", "directOutput", "go", "speed", "place"}));
  EXPECT_EQ(fieldNames(*b), (std::vector<std::string>{"url", "mustEvaluate", "directOutput", "words"}));

  const std::pair<const char*, FieldKind> kinds[] = {{"url", FieldKind::exposedField},
                                                     {"directOutput", FieldKind::field},
                                                     {"go", FieldKind::eventIn},
                                                     {"speed", FieldKind::field},
                                                     {"place", FieldKind::eventOut}};
  for (const auto& [name, kind] : kinds)
    EXPECT_EQ(a->getFieldType(a->getField(name)), static_cast<int>(kind)) << name;
  EXPECT_EQ(static_cast<SoSFFloat*>(a->getField("speed"))->getValue(), 2.5f);
  EXPECT_TRUE(a->directOutput.getValue());
  EXPECT_EQ(a->getField("go")->getContainer(), a);
  EXPECT_EQ(a->getField("words"), nullptr);
  EXPECT_EQ(static_cast<SoMFString*>(b->getField("words"))->getNum(), 2);
}

TEST(ScriptDeclarations, StartWithTheNeutralValueOfTheirType) {
  const TestWorld world(
      "DEF S Script { eventOut SFRotation turn eventIn MFNode nodes eventOut SFNode node }");
  const auto* script = world.get<VrmlScript>("S");
  ASSERT_TRUE(script) << world.messages.text();
  EXPECT_EQ(static_cast<SoSFRotation*>(script->getField("turn"))->getValue(), SbRotation::identity());
  EXPECT_EQ(static_cast<SoMFNode*>(script->getField("nodes"))->getNum(), 0);
  EXPECT_EQ(static_cast<SoSFNode*>(script->getField("node"))->getValue(), nullptr);
}

TEST(ScriptDeclarations, NodesInFieldsMayBeTheScriptOrAboveIt) {
  const TestWorld world(
      "DEF TOP Group { children DEF S Script { field SFNode self USE S field MFNode all [ USE TOP NULL ] } "
      "}");
  const auto* script = world.get<VrmlScript>("S");
  ASSERT_TRUE(script) << world.messages.text();
  EXPECT_EQ(static_cast<SoSFNode*>(script->getField("self"))->getValue(), script);
  EXPECT_EQ(static_cast<SoMFNode*>(script->getField("all"))->getNum(), 2);
}

TEST(ScriptDeclarations, AreCopiedWithTheirValues) {
  const TestWorld world("DEF S Script { eventIn SFTime tick field SFFloat speed 4 }");
  const auto* script = world.get<VrmlScript>("S");
  ASSERT_TRUE(script) << world.messages.text();
  const SoRef<SoNode> copy(VrmlNode::deepCopy(script, 1));
  const auto& copied = static_cast<const VrmlScript&>(*copy);
  EXPECT_EQ(fieldNames(copied), fieldNames(*script));
  auto* speed = static_cast<SoSFFloat*>(copied.getField("speed"));
  EXPECT_EQ(speed->getValue(), 4);
  EXPECT_NE(speed, script->getField("speed"));
  EXPECT_EQ(copied.getFieldType(copied.getField("tick")), static_cast<int>(FieldKind::eventIn));
}

TEST(ScriptDeclarations, OfOneNameTheFirstCounts) {
  const TestWorld world("DEF S Script { field SFFloat x 1\neventOut SFVec3f x field MFNode url [ ] }");
  const auto* script = world.get<VrmlScript>("S");
  ASSERT_TRUE(script) << world.messages.text();
  EXPECT_EQ(fieldNames(*script), (std::vector<std::string>{"url", "mustEvaluate", "directOutput", "x"}));
  EXPECT_EQ(static_cast<SoSFFloat*>(script->getField("x"))->getValue(), 1);
  EXPECT_EQ(script->getFieldType(script->getField("x")), static_cast<int>(FieldKind::field));
  EXPECT_EQ(world.messages.count("\"x\" is declared twice"), 1) << world.messages.text();
  EXPECT_EQ(world.messages.count("\"url\" is declared twice"), 1) << world.messages.text();
  EXPECT_EQ(world.messages.count("line   3"), 2) << world.messages.text();
}

struct BadBody {
  const char* body;
  const char* message;
};

class BadDeclaration : public testing::TestWithParam<BadBody> {};

TEST_P(BadDeclaration, IsReportedWithItsLine) {
  const std::string text = "Script {\n" + std::string(GetParam().body) + "\n}";
  const TestWorld world(std::string_view{text});
  EXPECT_EQ(world.status, ReadStatus::failed);
  EXPECT_EQ(world.messages.all().size(), 1u) << world.messages.text();
  EXPECT_EQ(world.messages.count(GetParam().message), 1) << world.messages.text();
  EXPECT_EQ(world.messages.count("line   3"), 1) << world.messages.text();
}

INSTANTIATE_TEST_SUITE_P(
    Script, BadDeclaration,
    testing::Values(BadBody{"eventIn SFBol on", "Unknown event or field type: \"SFBol\""},
                    BadBody{"eventIn SFMatrix on", "Unknown event or field type: \"SFMatrix\""},
                    BadBody{"eventOut }", "Expected event or field type for eventOut"},
                    BadBody{"field SFBool [", "Expected name for field"},
                    BadBody{"field SFFloat x \"1\"", "Couldn't read value for field \"x\""},
                    BadBody{"eventIn SFBool on TRUE", "Unknown field \"TRUE\""},
                    BadBody{"exposedField SFBool on TRUE", "Unknown field \"exposedField\""},
                    BadBody{"eventIn SFBool on IS start", "IS statement outside PROTO definition"},
                    BadBody{"field SFBool on IS 1", "Missing event or field name for IS"}));

}  // namespace
