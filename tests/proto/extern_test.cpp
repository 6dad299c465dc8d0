// SPDX-License-Identifier: BSD-3-Clause
// EXTERNPROTO: instances before and after their definition has come.
#include <tessel/proto/VrmlExternProtoDef.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/fields/SoFields.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/proto/VrmlExternProtoInline.h>
#include <tessel/proto/VrmlProtoDict.h>
#include <tessel/proto/VrmlProtoUse.h>
#include <tessel/shapes/VrmlBox.h>

#include "support/TestWorld.h"

namespace tessel::test {
namespace {

/// A host with a few files, which answers when the test says so.
class ExternTest : public testing::Test {
protected:
  ExternTest() {
    startLibrary();
    VrmlDB::setBaseURL("http://here/world.wrl");
    VrmlInline::setFetchURLCallBack(
        [](const SbString& url, void* self, VrmlInline* node) {
          static_cast<ExternTest*>(self)->asked.push_back({url.getString(), SoRef<VrmlInline>(node)});
        },
        this);
  }
  ~ExternTest() override {
    VrmlInline::setFetchURLCallBack(nullptr, nullptr);
    VrmlDB::setBaseURL(nullptr);
  }

  /// Answers all that is asked for, also what the answers ask for, and gives the number of answers.
  int answerAll() {
    int answers = 0;
    for (; !asked.empty() && answers < 100; ++answers) {
      const Asked next = asked.front();
      asked.erase(asked.begin());
      urls.push_back(next.url);
      const auto file = files.find(next.url.substr(0, next.url.find('#')));
      if (file == files.end()) {
        next.node->fetchFailed();
        continue;
      }
      const int stack = VrmlProtoDict::createStack();
      VrmlDB::setBaseURL(file->first.c_str());
      ReadStatus status;
      const std::string text = "#VRML V2.0 utf8\n" + file->second;
      const SoRef<SoNode> world(VrmlDB::read(text, file->first.c_str(), status));
      EXPECT_NE(status, ReadStatus::failed) << file->first;
      next.node->setProtoDict(VrmlProtoDict::getTopOfStack(stack));
      next.node->setStackId(stack);
      next.node->setChildData(static_cast<VrmlNode*>(world.get()));
    }
    return answers;
  }

  static float widthOf(SoNode* node) {
    SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
    action.apply(node);
    const SbBox3f box = action.getBoundingBox();
    return box.isEmpty() ? 0 : box.getMax()[0] - box.getMin()[0];
  }

  struct Asked {
    std::string url;
    SoRef<VrmlInline> node;
  };
  std::vector<Asked> asked;
  std::vector<std::string> urls;
  std::map<std::string, std::string> files = {
      {"http://here/lib.wrl", R"(
        EXTERNPROTO Elsewhere [ ] "other.wrl"
        PROTO First [ exposedField SFVec3f scale 2 2 2  field SFFloat more 7 ] {
          Transform { scale IS scale children Shape { geometry Box { size 1 1 1 } } } }
        PROTO Ball [ field SFFloat r 3 ] { Shape { geometry Sphere { radius IS r } } })"},
  };
};

TEST_F(ExternTest, OneAnswerCompletesAllInstances) {
  const TestWorld world(R"(
    EXTERNPROTO Scaled [ exposedField SFVec3f scale ] [ "lib.wrl" ]
    DEF FROM Transform { }
    DEF A Scaled { } DEF B Scaled { scale 5 5 5 } DEF C Scaled { }
    DEF TO Transform { }
    ROUTE FROM.scale TO C.set_scale
    ROUTE C.scale_changed TO TO.scale)");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  EXPECT_EQ(asked.size(), 1u);
  auto* a = world.get<VrmlProtoUse>("A");
  EXPECT_TRUE(a->isProtoOfType(VrmlBox::getClassTypeId(), 0));
  EXPECT_FALSE(a->isProtoOfType(VrmlBox::getClassTypeId(), 1));
  EXPECT_EQ(a->getActualNode(), nullptr);

  EXPECT_EQ(answerAll(), 1);
  EXPECT_EQ(urls, (std::vector<std::string>{"http://here/lib.wrl"}));
  EXPECT_EQ(widthOf(a), 2) << "the default of the real definition";
  EXPECT_EQ(widthOf(world.get<VrmlProtoUse>("B")), 5);
  auto* c = world.get<VrmlProtoUse>("C");
  world.get<VrmlTransform>("FROM")->scale.setValue(9, 9, 9);
  EXPECT_EQ(widthOf(c), 9);
  EXPECT_EQ(world.get<VrmlTransform>("TO")->scale.getValue(), SbVec3f(9, 9, 9));
  EXPECT_EQ(static_cast<SoSFFloat*>(c->getField("more"))->getValue(), 7);

  const SoRef<VrmlProtoUse> late(new VrmlProtoUse(a->getExternDef()));
  EXPECT_EQ(widthOf(late.get()), 2) << "at once, now that the definition is known";
  EXPECT_TRUE(asked.empty());
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

TEST_F(ExternTest, ALightThatComesLateIsDrawnAheadOfItsSiblings) {
  files["http://here/lamp.wrl"] = "PROTO Lamp [ ] { DirectionalLight { } }";
  const TestWorld world(
      "EXTERNPROTO Lamp [ ] \"lamp.wrl\" PROTO Bracket [ ] { Lamp { } } "
      "DEF G Group { children [ Shape { } Lamp { } Shape { } Bracket { } ] }");
  const auto* group = world.get<VrmlGroup>("G");
  EXPECT_EQ(group->getRenderOrder(), (std::vector<int>{0, 1, 2, 3}));
  answerAll();
  EXPECT_EQ(group->getRenderOrder(), (std::vector<int>{1, 3, 0, 2}));
}

// What was sent to an instance counts even if nobody has read it before the definition came; a mere route does not.
TEST_F(ExternTest, WhatWasSentBeforeTheAnswerIsThereAfterIt) {
  const TestWorld world(R"(
    EXTERNPROTO Two [ exposedField SFVec3f scale  exposedField SFVec3f shift  eventIn SFVec3f turn  eventOut SFVec3f told ]
      "two.wrl"
    DEF FROM Transform { }
    DEF I Two { } DEF QUIET Two { }
    DEF TO Transform { }
    ROUTE FROM.scale TO I.scale
    ROUTE FROM.translation TO I.shift
    ROUTE FROM.center TO I.turn
    ROUTE FROM.scale TO QUIET.shift
    ROUTE I.told TO TO.translation)");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  files["http://here/two.wrl"] = R"(
    PROTO Two [ exposedField SFVec3f scale 2 2 2  exposedField SFVec3f shift 1 0 0  eventIn SFVec3f turn  eventOut SFVec3f told ] {
      DEF T Transform { scale IS scale translation IS shift center IS turn scale_changed IS told
        children Shape { geometry Box { size 1 1 1 } } } })";
  auto* from = world.get<VrmlTransform>("FROM");
  from->scale.setValue(3, 3, 3);
  from->center.setValue(5, 5, 5);
  answerAll();
  const auto body = [&](const char* name) {
    return static_cast<VrmlTransform*>(world.get<VrmlProtoUse>(name)->getActualNode());
  };
  EXPECT_EQ(body("I")->scale.getValue(), SbVec3f(3, 3, 3)) << "sent and not read";
  EXPECT_EQ(body("I")->translation.getValue(), SbVec3f(1, 0, 0)) << "routed, but nothing was sent";
  EXPECT_EQ(body("I")->center.getValue(), SbVec3f(5, 5, 5)) << "an eventIn";
  EXPECT_EQ(body("QUIET")->translation.getValue(), SbVec3f(3, 3, 3));
  from->translation.setValue(4, 4, 4);
  EXPECT_EQ(body("I")->translation.getValue(), SbVec3f(4, 4, 4));
  body("I")->scale.setValue(6, 6, 6);
  EXPECT_EQ(world.get<VrmlTransform>("TO")->translation.getValue(), SbVec3f(6, 6, 6));
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

TEST_F(ExternTest, ACopyOfAnInstanceThatWaitsIsCompletedWithItsOwnRoutes) {
  const TestWorld world(R"(
    EXTERNPROTO Scaled [ exposedField SFVec3f scale ] "lib.wrl"
    DEF BOTH Group { children [ DEF FROM Transform { } DEF I Scaled { } DEF TO Transform { } ] }
    ROUTE FROM.scale TO I.scale
    ROUTE I.scale TO TO.scale)");
  auto* instance = world.get<VrmlProtoUse>("I");
  auto* to = world.get<VrmlTransform>("TO");
  const SoRef<VrmlGroup> copy(
      static_cast<VrmlGroup*>(VrmlNode::deepCopy(world.get<VrmlGroup>("BOTH"), TRUE)));
  EXPECT_EQ(answerAll(), 1);
  EXPECT_EQ(widthOf(copy->getChild(1)), 2);
  static_cast<VrmlTransform*>(copy->getChild(0))->scale.setValue(4, 4, 4);
  EXPECT_EQ(widthOf(copy->getChild(1)), 4);
  EXPECT_EQ(static_cast<VrmlTransform*>(copy->getChild(2))->scale.getValue(), SbVec3f(4, 4, 4));
  EXPECT_EQ(widthOf(instance), 2);
  EXPECT_EQ(to->scale.getValue(), SbVec3f(1, 1, 1));
}

TEST_F(ExternTest, AThousandInstancesCauseOneRequest) {
  std::string text =
      "EXTERNPROTO Ball [ field SFFloat r ] [ \"gone.wrl\" \"lib.wrl#Ball\" ]\nGroup { children [\n";
  for (int i = 1; i <= 1000; ++i)
    text += "DEF B" + std::to_string(i) + " Ball { r " + std::to_string(i) + " }\n";
  const TestWorld world(text + "] }");
  EXPECT_EQ(answerAll(), 2) << "one for each alternative";
  for (const int i : {1, 500, 1000})
    EXPECT_EQ(widthOf(world.get<VrmlProtoUse>(("B" + std::to_string(i)).c_str())),
              2.0F * static_cast<float>(i));
}

// The file may declare its fields in another order than those who use it.
TEST_F(ExternTest, AnInstanceInABodyKeepsItsMappingsWhateverTheOrderOfTheRealFields) {
  files["http://here/order.wrl"] = R"(
    PROTO Order [ exposedField SFVec3f shift 1 0 0  exposedField SFVec3f scale 2 2 2  field MFString note [ ] ] {
      Transform { scale IS scale translation IS shift children Shape { geometry Box { size 1 1 1 } } } })";
  const TestWorld world(R"(
    EXTERNPROTO Order [ exposedField SFVec3f scale  exposedField SFVec3f shift ] "order.wrl"
    PROTO Around [ exposedField SFVec3f size 3 3 3  exposedField SFVec3f place 4 4 4 ] {
      Group { children Order { scale IS size shift IS place } } }
    DEF FROM Transform { } DEF TO Transform { }
    DEF EARLY Around { }  DEF LATER Around { }
    ROUTE FROM.scale TO EARLY.size
    ROUTE EARLY.place TO TO.translation)");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  answerAll();
  const auto body = [&](const char* name) {
    auto* outer = static_cast<VrmlGroup*>(world.get<VrmlProtoUse>(name)->getActualNode());
    return static_cast<VrmlTransform*>(static_cast<VrmlProtoUse*>(outer->getChild(0))->getActualNode());
  };
  for (const char* name : {"EARLY", "LATER"}) {
    EXPECT_EQ(body(name)->scale.getValue(), SbVec3f(3, 3, 3)) << name;
    EXPECT_EQ(body(name)->translation.getValue(), SbVec3f(4, 4, 4)) << name;
  }
  world.get<VrmlTransform>("FROM")->scale.setValue(5, 5, 5);
  EXPECT_EQ(body("EARLY")->scale.getValue(), SbVec3f(5, 5, 5));
  EXPECT_EQ(body("EARLY")->translation.getValue(), SbVec3f(4, 4, 4));
  static_cast<SoSFVec3f*>(world.get<VrmlProtoUse>("LATER")->getField("place"))->setValue(6, 6, 6);
  EXPECT_EQ(body("LATER")->translation.getValue(), SbVec3f(6, 6, 6));
  EXPECT_EQ(body("LATER")->scale.getValue(), SbVec3f(3, 3, 3));
  body("EARLY")->translation.setValue(7, 7, 7);
  EXPECT_EQ(world.get<VrmlTransform>("TO")->translation.getValue(), SbVec3f(7, 7, 7));
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

TEST_F(ExternTest, TriesAlternativesAndLooksForTheNameBehindTheNumberSign) {
  const TestWorld world(R"(
    EXTERNPROTO B [ field SFFloat r ] [ "gone.wrl" "lib.wrl#Cube" "lib.wrl#Ball" ]
    DEF I B { r 4 })");
  EXPECT_EQ(answerAll(), 3);
  EXPECT_EQ(widthOf(world.get<VrmlProtoUse>("I")), 8);
  EXPECT_EQ(world.messages.count("Can't find EXTERNPROTO in url \"lib.wrl#Cube\""), 1)
      << world.messages.text();
}

TEST_F(ExternTest, InstancesThatGetNothingStayEmpty) {
  const TestWorld world(R"(
    EXTERNPROTO B [ eventIn SFFloat r ] "gone.wrl"
    DEF T TimeSensor { } DEF I B { } DEF BOX Shape { geometry Box { } }
    ROUTE T.fraction_changed TO I.r)");
  EXPECT_EQ(answerAll(), 1);
  EXPECT_EQ(widthOf(world.get<VrmlProtoUse>("I")), 0);
}

TEST_F(ExternTest, AnInterfaceThatIsNoSubsetIsToldOf) {
  const TestWorld world(R"(
    EXTERNPROTO First [ field SFVec3f scale ] "lib.wrl"
    EXTERNPROTO Ball [ eventIn SFBool on  eventIn SFFloat r ] "lib.wrl#Ball"
    PROTO Around [ eventIn SFBool on  eventIn SFFloat r ] { Ball { on IS on r IS r } }
    DEF I First { scale 5 5 5 }  DEF A Around { })");
  answerAll();
  static_cast<SoSFFloat*>(world.get<VrmlProtoUse>("A")->getField("r"))->setValue(9);
  EXPECT_EQ(widthOf(world.get<VrmlProtoUse>("A")), 6) << "what is of no field goes nowhere";
  EXPECT_EQ(
      world.messages.count("Fields of EXTERNPROTO \"First\" are not a subset of fields of PROTO \"First\""),
      1)
      << world.messages.text();
  EXPECT_EQ(widthOf(world.get<VrmlProtoUse>("I")), 2) << "the real body with its own value";
}

TEST_F(ExternTest, InsideABodyTheFileIsAskedForWithTheFirstInstance) {
  const TestWorld definition(R"(
    EXTERNPROTO Ball [ field SFFloat r ] "lib.wrl#Ball"
    PROTO P [ field SFFloat radius 1 ] { Group { children Ball { r IS radius } } })");
  EXPECT_TRUE(asked.empty());
  const TestWorld world(R"(
    EXTERNPROTO Ball [ field SFFloat r ] "lib.wrl#Ball"
    PROTO P [ field SFFloat radius 1 ] { Group { children Ball { r IS radius } } }
    DEF I P { radius 6 })");
  EXPECT_EQ(answerAll(), 1);
  EXPECT_EQ(widthOf(world.get<VrmlProtoUse>("I")), 12);
}

TEST_F(ExternTest, ADefinitionFromElsewhereIsFollowed) {
  files["http://here/list.wrl"] = "EXTERNPROTO Ball [ field SFFloat r ] \"lib.wrl#Ball\"";
  files["http://here/loop.wrl"] = "EXTERNPROTO Loop [ ] \"loop.wrl#Loop\"";
  const TestWorld world(R"(
    EXTERNPROTO Ball [ field SFFloat r ] "list.wrl#Ball"
    EXTERNPROTO Loop [ ] "loop.wrl#Loop"
    DEF I Ball { r 2 }  DEF L Loop { })");
  answerAll();
  EXPECT_EQ(widthOf(world.get<VrmlProtoUse>("I")), 4);
  EXPECT_EQ(widthOf(world.get<VrmlProtoUse>("L")), 0);
}

TEST_F(ExternTest, APrototypeThatUsesItselfThroughAFileStops) {
  files["http://here/self.wrl"] = R"(EXTERNPROTO Self [ ] "self.wrl#Again"
    PROTO Again [ ] { Group { children Self { } } })";
  const TestWorld world("EXTERNPROTO Self [ ] \"self.wrl#Again\"\nDEF I Self { }");
  EXPECT_EQ(answerAll(), 100) << "who brings the files counts them";
  asked.clear();

  // The same where the host reads a file only once.
  const int stack = VrmlProtoDict::createStack();
  ReadStatus status;
  const std::string text = "#VRML V2.0 utf8\n" + files["http://here/self.wrl"];
  EXPECT_EQ(VrmlDB::read(text, "self.wrl", status), nullptr);
  VrmlProtoDict* names = VrmlProtoDict::getTopOfStack(stack);
  const SoRef<VrmlExternProtoDef> self(static_cast<VrmlExternProtoDef*>(names->findInThis("Self")));
  const SoRef<VrmlProtoDef> again(names->findInThis("Again"));
  {
    const SoRef<VrmlProtoUse> instance(new VrmlProtoUse(again.get()));
    ASSERT_EQ(asked.size(), 1u);
    self->setDefinition(again.get());
    ASSERT_NE(instance->getActualNode(), nullptr);
    EXPECT_EQ(static_cast<VrmlProtoUse*>(static_cast<VrmlGroup*>(instance->getActualNode())->getChild(0))
                  ->getActualNode(),
              nullptr);
  }
  EXPECT_EQ(world.messages.count("\"Self\" stay empty\n\tOccurred at line   2 in self.wrl"), 1)
      << world.messages.text();
  VrmlProtoDict::deleteStack(stack);
  asked.clear();
  EXPECT_EQ(again->getRefCount(), 1) << "nobody holds it any more";
  EXPECT_EQ(self->getRefCount(), 3) << "ours, and those of the body that has an instance of it";
}

TEST_F(ExternTest, DefinitionsOfTwoFilesThatUseEachOtherAreLetGoOf) {
  const auto readNames = [](const char* text) {
    const int stack = VrmlProtoDict::createStack();
    ReadStatus status;
    EXPECT_EQ(VrmlDB::read("#VRML V2.0 utf8\n" + std::string(text), "names.wrl", status), nullptr);
    EXPECT_NE(status, ReadStatus::failed);
    return stack;
  };
  const auto external = [](int stack, const char* name) {
    return static_cast<VrmlExternProtoDef*>(VrmlProtoDict::getTopOfStack(stack)->findInThis(name));
  };
  const Messages messages;
  const int a = readNames(R"(EXTERNPROTO Y [ ] "b.wrl#Y"
    PROTO Apple [ field SFNode inside Y { } ] { Group { } }
    PROTO Core [ ] { Shape { geometry Box { } } })");
  const int b = readNames(R"(EXTERNPROTO Apple [ ] "a.wrl#Apple"
    EXTERNPROTO Core [ ] "a.wrl#Core"
    PROTO Y [ ] { Group { children [ Core { } Apple { } ] } })");
  const SoRef<VrmlProtoDef> y(VrmlProtoDict::getTopOfStack(b)->findInThis("Y"));
  external(a, "Y")->setDefinition(y.get());
  external(b, "Core")->setDefinition(VrmlProtoDict::getTopOfStack(a)->findInThis("Core"));
  EXPECT_TRUE(messages.empty()) << messages.text();
  external(b, "Apple")->setDefinition(VrmlProtoDict::getTopOfStack(a)->findInThis("Apple"));
  EXPECT_EQ(messages.count("\"Apple\" stay empty"), 1) << messages.text();
  {
    const SoRef<VrmlProtoUse> instance(new VrmlProtoUse(y.get()));
    EXPECT_EQ(widthOf(instance.get()), 2) << "the rest of it is there";
  }
  VrmlProtoDict::deleteStack(a);
  VrmlProtoDict::deleteStack(b);
  asked.clear();
  EXPECT_EQ(y->getRefCount(), 1);
}

TEST_F(ExternTest, AnInstanceMayGoWhileItWaits) {
  SoRef<VrmlExternProtoDef> definition;
  {
    const TestWorld world("EXTERNPROTO B [ ] \"lib.wrl\"\nGroup { children [ DEF I B { } B { } ] }");
    definition.reset(world.get<VrmlProtoUse>("I")->getExternDef());
  }
  EXPECT_EQ(definition->getRefCount(), 1) << "those who wait keep nobody alive";
  EXPECT_EQ(answerAll(), 1);
  EXPECT_NE(definition->getRealDefinition(), nullptr);
}

}  // namespace
}  // namespace tessel::test
