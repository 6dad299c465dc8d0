// SPDX-License-Identifier: BSD-3-Clause
// Values that stand over the fields and eventOuts of a Script.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tessel/script/VrmlScript.h>

#include <string>
#include <vector>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFColor.h>
#include <Inventor/fields/SoSFImage.h>
#include <Inventor/fields/SoSFRotation.h>
#include <Inventor/fields/SoSFString.h>
#include <Inventor/fields/SoSFVec2f.h>
#include <Inventor/fields/SoSFVec3f.h>

#include "script/ScriptRun.h"
#include "support/TestWorld.h"

using namespace tessel;
using namespace tessel::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Writes down the value of the field that it is connected from, at each event.
template <class Field> class Listener : public Field {
public:
  void listenTo(SoField& source) {
    this->connectFrom(&source);
    from = &source;
  }
  void notify(SoNotList* list) override {
    Field::notify(list);
    if (!from) return;
    SbString value;
    from->get(value);
    heard.emplace_back(value.getString());
  }
  std::vector<std::string> heard;

private:
  SoField* from = nullptr;
};

// A Script with one eventOut `out`, and what it sends in a run.
template <class Field> class Sender {
public:
  Sender(const std::string& type, const std::string& program, const std::string& others = {})
      : world("DEF S Script { eventIn SFBool go eventOut " + type + " out " + others +
              " url \"vrmlscript: function go() { " + program + " }\" }") {
    Listener<Field> listener;
    listener.listenTo(out());
    field<SoSFBool>("go").setValue(TRUE);
    sent = listener.heard;
  }
  template <class Other> Other& field(const char* name) const {
    return *static_cast<Other*>(world.template get<VrmlScript>("S")->getField(name));
  }
  Field& out() const { return field<Field>("out"); }

  std::vector<std::string> sent;
  ScriptReports reports;

private:
  TestWorld world;
};

TEST(ScriptValues, VectorsSendEachComponentAtOnce) {
  const Sender<SoSFVec3f> one("SFVec3f", "out[0] = 1; out.y = 2; v = out; v.z = 9; out = v; out.x += 3;");
  EXPECT_THAT(one.sent, ElementsAre("1 0 0", "1 2 0", "1 2 9", "4 2 9"));
  const Sender<SoSFColor> color("SFColor", "out = new SFColor(1, 0.5, 0); out.setHSV(0, 0, 0.5);");
  EXPECT_THAT(color.sent, ElementsAre("1 0.5 0", "0.5 0.5 0.5"));
  const Sender<SoSFRotation> turn(
      "SFRotation",
      "out = new SFRotation(0, 0, 1, 1); out.multiply(new SFRotation(1, 0, 0, 0)); out.angle = 0.5;");
  EXPECT_THAT(turn.sent, ElementsAre("0 0 1  1", "0 0 1  1", "0 0 1  0.5"));
  const Sender<SoSFVec2f> two("SFVec2f", "a = out.add(new SFVec2f(1, 2)); out = a = a.multiply(2);");
  EXPECT_THAT(two.sent, ElementsAre("2 4"));
}

TEST(ScriptValues, StringsGoOutWhenTheRunIsOver) {
  const Sender<SoSFString> sender("SFString",
                                  "out = 'one'; kept = out; out = out + ' two'; copy = new SFString(kept);",
                                  "field SFString kept 'x' field SFString copy ''");
  EXPECT_THAT(sender.sent, testing::SizeIs(1));
  EXPECT_EQ(sender.field<SoSFString>("out").getValue(), "one two");
  EXPECT_EQ(sender.field<SoSFString>("kept").getValue(), "one");
  EXPECT_EQ(sender.field<SoSFString>("copy").getValue(), "one");
}

TEST(ScriptValues, WhatIsReadFromAFieldItselfIsNoEventOfIt) {
  const std::string self = "field SFNode self USE S";
  const Sender<SoSFString> string("SFString", "out = self.out;", self);
  EXPECT_THAT(string.sent, IsEmpty());
  const Sender<SoSFImage> picture("SFImage", "out = self.out;", self);
  EXPECT_THAT(picture.sent, IsEmpty());
}

TEST(ScriptValues, AnEmptyListIsAnEventToo) {
  const Sender<SoMFFloat> numbers("MFFloat", "out = new MFFloat();");
  EXPECT_THAT(numbers.sent, ElementsAre("[  ]"));
  const Sender<SoMFNode> nodes("MFNode", "out = new MFNode();");
  EXPECT_THAT(nodes.sent, testing::SizeIs(1));
}

TEST(ScriptValues, AnotherTypeOfVectorIsRefused) {
  const Sender<SoSFVec3f> sender(
      "SFVec3f", "out = new SFColor(1, 2, 3); out = new SFVec2f(1, 2); out = 1; out.cross(out);");
  EXPECT_THAT(sender.sent, IsEmpty());
  const char* text = "Tried to change the type of a Script node eventIn, eventOut, or field";
  EXPECT_THAT(sender.reports.messages(), ElementsAre(text, text, text));
}

TEST(ScriptValues, PictureSizesChangeWithinBoundsAndBytes) {
  const Sender<SoSFImage> sender(
      "SFImage",
      "out.x = 2; out.y = 2; out.comp = 3; out.comp = 5; out.x = -1; out.y = 32768;"
      "out.x = 32767; out.y = 32767; out.comp = 'a'; out.array = 1; out.array; out.z; out.z = 1;",
      "field SFImage kept 1 2 2 0x1234 0x5678");
  SbVec2s size;
  int components = 0;
  ASSERT_TRUE(sender.out().getValue(size, components));
  EXPECT_EQ(size, SbVec2s(32767, 2));
  EXPECT_EQ(components, 3);
  EXPECT_THAT(
      sender.reports.messages(),
      ElementsAre("An image of 2 x 2 pixels with 5 components is out of bounds",
                  "An image of -1 x 2 pixels with 3 components is out of bounds",
                  "An image of 2 x 32768 pixels with 3 components is out of bounds",
                  "An image of 32767 x 32767 pixels with 3 components is out of bounds",
                  "Attempt to assign a non-numeric value to the comp property of a SFImage field",
                  "Attempt to assign a value to the array property of a SFImage field that is not a MFInt32",
                  "Attempt to access unknown SFImage object property z",
                  "Attempt to assign a value to unknown SFImage object property z"));
}

TEST(ScriptValues, FormatsThatWouldWriteToMemoryOnlyWarn) {
  const ScriptReports reports;
  EXPECT_EQ(resultOf("function test() { return new SFString('<%n%p%n>', 1, 's'); }"), "SFString <>");
  const std::string warning = "Warning: %p and %n are currently ignored in SFString constructore\n";
  EXPECT_EQ(reports.heard.at(0).text + reports.heard.at(1).text, warning + warning);
}

// Each expression keeps its result. What they take together is given back with the script.
TEST(ScriptValues, TakeSoMuchMemoryTogetherAndNoMore) {
  const std::string start = "function test() { s = 'xxxxxxxx'; for (i = 0; i < 20; i++) s = s + s;";
  std::string many;
  for (int i = 0; i < 34; ++i) many += "s.toUpperCase();";
  const ScriptReports reports;
  EXPECT_EQ(resultOf(start + many + "return s.length; }"), "SFInt32 8388608");
  ASSERT_FALSE(reports.heard.empty());
  EXPECT_EQ(reports.heard[0].message, "Attempt to take more than 268435456 bytes for values of scripts");

  const ScriptReports none;
  EXPECT_EQ(resultOf(start + "return s.toUpperCase().charAt(8388607); }"), "SFString X");
  EXPECT_TRUE(none.heard.empty());
}

}  // namespace
