// SPDX-License-Identifier: BSD-3-Clause
// Instances of prototypes: values, events and nodes through the interface, nesting, copies, limits.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <string>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoOutput.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/engines/SoComposeVec3f.h>
#include <Inventor/fields/SoFields.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/sensors/SoNodeSensor.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/proto/VrmlProtoDef.h>
#include <tessel/proto/VrmlProtoUse.h>
#include <tessel/script/VrmlScript.h>
#include <tessel/shapes/VrmlAppearance.h>
#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/shapes/VrmlShape.h>

#include "support/TestWorld.h"

using namespace tessel;
using namespace tessel::test;

namespace {

SbVec3f sizeOf(SoNode* node) {
  SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
  action.apply(node);
  const SbBox3f box = action.getBoundingBox();
  return box.isEmpty() ? SbVec3f(0, 0, 0) : box.getMax() - box.getMin();
}

VrmlProtoUse* use(const TestWorld& world, const char* name) { return world.get<VrmlProtoUse>(name); }

template <class Field> Field* fieldOf(SoNode* node, const char* name) {
  return static_cast<Field*>(node->getField(name));
}

SbVec3f vecOf(SoNode* node, const char* name) { return fieldOf<SoSFVec3f>(node, name)->getValue(); }

// A box that can be given another size in every way.
constexpr const char* boxes = R"(
PROTO Geo [ field SFVec3f size 1 1 1 ] { Box { size IS size } }
PROTO Sized [ exposedField SFVec3f scale 1 1 1  field SFNode geometry Geo { }  eventOut SFVec3f told ] {
  DEF T Transform { scale IS scale  translation_changed IS told  children Shape { geometry IS geometry } }
  DEF SPARE Transform { }
  ROUTE T.scale TO T.translation
}
)";

TEST(ProtoUse, TakesValuesAndNodesFromTheFileOrTheDefinition) {
  const TestWorld world(std::string(boxes) + R"(
    DEF PLAIN Sized { }
    DEF GIVEN Sized { scale 2 3 4 }
    DEF NESTED Sized { geometry Geo { size 5 6 7 } }
    DEF OTHER Sized { geometry Sphere { radius 2 } })");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  EXPECT_EQ(sizeOf(use(world, "PLAIN")), SbVec3f(1, 1, 1));
  EXPECT_EQ(sizeOf(use(world, "GIVEN")), SbVec3f(2, 3, 4));
  EXPECT_EQ(sizeOf(use(world, "NESTED")), SbVec3f(5, 6, 7));
  EXPECT_EQ(sizeOf(use(world, "OTHER")), SbVec3f(4, 4, 4));
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

TEST(ProtoUse, PassesEventsInAndOut) {
  const TestWorld world(std::string(boxes) + R"(
    DEF FROM Transform { }
    DEF INSTANCE Sized { }
    DEF TO Transform { }
    ROUTE FROM.scale TO INSTANCE.set_scale
    ROUTE INSTANCE.scale_changed TO TO.scale
    ROUTE INSTANCE.told TO TO.translation)");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  auto* from = world.get<VrmlTransform>("FROM");
  auto* to = world.get<VrmlTransform>("TO");
  from->scale.setValue(1, 2, 3);
  EXPECT_EQ(sizeOf(use(world, "INSTANCE")), SbVec3f(1, 2, 3));
  EXPECT_EQ(to->scale.getValue(), SbVec3f(1, 2, 3));
  EXPECT_EQ(to->translation.getValue(), SbVec3f(1, 2, 3)) << "through a ROUTE inside the body";
}

TEST(ProtoUse, TellsWhatTheBodyChangedBeforeAnybodyAsked) {
  const TestWorld world(R"(
    PROTO P [ exposedField SFVec3f a 1 2 3 ] { Transform { translation IS a } }
    DEF I P { })");
  VrmlProtoUse* instance = use(world, "I");
  static_cast<VrmlTransform*>(instance->getActualNode())->translation.setValue(7, 8, 9);
  EXPECT_EQ(vecOf(instance, "a"), SbVec3f(7, 8, 9));
  fieldOf<SoSFVec3f>(instance, "a")->setValue(4, 5, 6);
  EXPECT_EQ(static_cast<VrmlTransform*>(instance->getActualNode())->translation.getValue(), SbVec3f(4, 5, 6));
  static_cast<VrmlTransform*>(instance->getActualNode())->translation.setValue(0, 1, 0);
  EXPECT_EQ(vecOf(instance, "a"), SbVec3f(0, 1, 0));
}

// A humanoid is joints within joints. If each told twice of what happens below it, this would never end.
TEST(ProtoUse, AChangeBelowManyInstancesIsToldOnceByEach) {
  constexpr int depth = 40;
  std::string text = "PROTO Joint [ exposedField MFNode children [ ] ] { Group { children IS children } } ";
  for (int i = 0; i < depth; ++i) text += "DEF J" + std::to_string(i) + " Joint { children ";
  text += "DEF T Transform { }" + std::string(depth, '}');
  const TestWorld world(text);
  for (int i = 0; i < depth; ++i)
    EXPECT_TRUE(use(world, ("J" + std::to_string(i)).c_str())->getField("children"));
  int heard = 0;
  SoNodeSensor sensor([](void* count, SoSensor*) { ++*static_cast<int*>(count); }, &heard);
  sensor.setPriority(0);
  sensor.attach(world.root());
  world.get<VrmlTransform>("T")->translation.setValue(1, 2, 3);
  EXPECT_EQ(heard, 1);
  world.get<VrmlTransform>("T")->addChild(new VrmlGroup);
  EXPECT_EQ(heard, 2);
}

TEST(ProtoUse, LinksInsideAreNoRoutes) {
  const TestWorld world(std::string(boxes) + R"(
    DEF FROM Transform { }
    DEF INSTANCE Sized { }
    ROUTE FROM.scale TO INSTANCE.scale)");
  VrmlProtoUse* instance = use(world, "INSTANCE");
  SoFieldList in, out;
  EXPECT_EQ(VrmlRoute::getIncoming(instance->getField("scale"), in), 1);
  EXPECT_EQ(in[0], &world.get<VrmlTransform>("FROM")->scale);
  EXPECT_EQ(VrmlRoute::getOutgoing(instance->getField("scale"), out), 0);
  EXPECT_GT(VrmlRoute::getAllOutgoing(instance->getField("scale"), out), 0);
}

TEST(ProtoUse, AnEventInKeepsTheValueOfTheBodyUntilItComes) {
  const TestWorld world("PROTO P [ eventIn SFVec3f s ] { Transform { scale IS s } } DEF I P { }");
  auto* body = static_cast<VrmlTransform*>(use(world, "I")->getActualNode());
  EXPECT_EQ(body->scale.getValue(), SbVec3f(1, 1, 1));
  fieldOf<SoSFVec3f>(use(world, "I"), "s")->setValue(2, 2, 2);
  EXPECT_EQ(body->scale.getValue(), SbVec3f(2, 2, 2));
}

TEST(ProtoUse, WorksInThePlaceOfAnyNode) {
  const TestWorld world(R"(
    PROTO Mat [ exposedField SFColor c 1 0 0 ] { Material { diffuseColor IS c } }
    PROTO App [ exposedField SFColor c 0 1 0 ] { Appearance { material Mat { c IS c } } }
    PROTO Points [ field MFVec3f p [ 0 0 0, 1 0 0, 0 1 0 ] ] { Coordinate { point IS p } }
    PROTO Faces [ field SFNode points Points { } ] { IndexedFaceSet { coord IS points coordIndex [ 0 1 2 -1 ] } }
    PROTO Whole [ exposedField MFNode children [ ] ] { Group { children IS children } }
    DEF G Whole { children [ DEF S Shape { appearance App { c 0 0 1 } geometry Faces { } } NULL ] })");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  EXPECT_EQ(sizeOf(use(world, "G")), SbVec3f(1, 1, 0));
  auto* shape = world.get<VrmlShape>("S");
  auto* appearance = static_cast<VrmlAppearance*>(shape->appearance.getRealValue());
  ASSERT_TRUE(appearance && appearance->isOfType(VrmlAppearance::getClassTypeId()));
  auto* material = static_cast<VrmlMaterial*>(appearance->material.getRealValue());
  ASSERT_TRUE(material && material->isOfType(VrmlMaterial::getClassTypeId()));
  EXPECT_EQ(material->diffuseColor.getValue(), SbColor(0, 0, 1));
  EXPECT_EQ(fieldOf<SoMFNode>(use(world, "G"), "children")->getNum(), 2);
}

TEST(ProtoUse, AnInstanceOfAnotherKindIsNoGeometry) {
  const TestWorld world("PROTO P [ ] { Group { } } DEF I P { }");
  EXPECT_TRUE(use(world, "I")->isProtoOfType(VrmlGroup::getClassTypeId(), 1));
  EXPECT_FALSE(use(world, "I")->isProtoOfType(VrmlShape::getClassTypeId(), 0));
}

TEST(ProtoUse, ScriptsOfABodyHaveTheirOwnInterface) {
  const TestWorld world(R"(
    PROTO P [ eventIn SFBool go  eventOut SFVec3f done  field SFNode target NULL  field MFFloat list [ 1 2 ] ] {
      Group { }
      DEF S Script { eventIn SFBool x IS go  eventOut SFVec3f y IS done  field SFNode n IS target  field MFFloat l IS list }
    }
    DEF T Transform { children DEF I P { target USE T  list [ 5 6 7 ] } }
    ROUTE I.done TO T.translation)");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  VrmlProtoUse* instance = use(world, "I");
  ASSERT_EQ(instance->getOtherNodes().size(), 1u);
  auto* script = static_cast<VrmlScript*>(instance->getOtherNodes().front().get());
  EXPECT_EQ(fieldOf<SoSFNode>(script, "n")->getValue(), world.root());
  EXPECT_EQ(fieldOf<SoMFFloat>(script, "l")->getNum(), 3);
  fieldOf<SoSFVec3f>(script, "y")->setValue(1, 2, 3);
  EXPECT_EQ(world.get<VrmlTransform>("T")->translation.getValue(), SbVec3f(1, 2, 3));
  fieldOf<SoSFBool>(instance, "go")->setValue(TRUE);
  EXPECT_TRUE(fieldOf<SoSFBool>(script, "x")->getValue());
}

TEST(ProtoUse, EachInstanceHasABodyOfItsOwn) {
  const TestWorld world(std::string(boxes) + R"(
    PROTO Pair [ exposedField SFVec3f s 1 1 1 ] {
      Group { children [ DEF A Sized { scale IS s } Transform { translation 0 0 9 children USE A } ] }
    }
    DEF ONE Pair { } DEF TWO Pair { s 2 2 2 } USE TWO)");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  fieldOf<SoSFVec3f>(use(world, "ONE"), "s")->setValue(3, 3, 3);
  EXPECT_EQ(sizeOf(use(world, "ONE"))[0], 3);
  EXPECT_EQ(sizeOf(use(world, "TWO"))[0], 2);
  EXPECT_GT(sizeOf(use(world, "ONE"))[2], 9) << "USE in a body";
}

TEST(ProtoUse, NodesGivenToAnInstanceInABodyHaveIsClausesToo) {
  const TestWorld world(R"(
    PROTO Holder [ field MFNode c [ ] ] { Group { children IS c } }
    PROTO Outer [ field SFVec3f s 1 1 1 ] { Holder { c Shape { geometry Box { size IS s } } } }
    DEF A Outer { s 2 3 4 } DEF B Outer { })");
  EXPECT_EQ(sizeOf(use(world, "A")), SbVec3f(2, 3, 4));
  EXPECT_EQ(sizeOf(use(world, "B")), SbVec3f(1, 1, 1));
}

TEST(ProtoUse, ACopyStandsForItself) {
  const TestWorld world(std::string(boxes) + R"(
    DEF BOTH Group { children [ DEF FROM Transform { } DEF I Sized { scale 2 2 2 } ] }
    ROUTE FROM.scale TO I.scale)");
  auto* originalFrom = world.get<VrmlTransform>("FROM");
  VrmlProtoUse* original = use(world, "I");
  const SoRef<VrmlGroup> copy(
      static_cast<VrmlGroup*>(VrmlNode::deepCopy(world.get<VrmlGroup>("BOTH"), TRUE)));
  auto* from = static_cast<VrmlTransform*>(copy->getChild(0));
  auto* instance = static_cast<VrmlProtoUse*>(copy->getChild(1));
  EXPECT_EQ(sizeOf(instance), SbVec3f(2, 2, 2));
  from->scale.setValue(5, 5, 5);
  EXPECT_EQ(sizeOf(instance), SbVec3f(5, 5, 5));
  EXPECT_EQ(sizeOf(original), SbVec3f(2, 2, 2));
  originalFrom->scale.setValue(3, 3, 3);
  EXPECT_EQ(sizeOf(instance), SbVec3f(5, 5, 5));
}

TEST(ProtoUse, MakingAnInstanceSendsNothingToItsScripts) {
  const TestWorld world(R"(
    PROTO Counting [ ] {
      DEF S Script { eventIn SFVec3f moved eventIn SFBool on eventOut SFInt32 count
        url "vrmlscript: function moved(v) { count = count + 1; } function on(b) { count = count + 1; }" }
      DEF T Transform { translation 1 2 3 }
      DEF CLOCK TimeSensor { enabled FALSE }
      ROUTE T.translation TO S.moved
      ROUTE CLOCK.enabled TO S.on
    }
    DEF I Counting { })");
  auto* script = static_cast<VrmlScript*>(use(world, "I")->getActualNode());
  auto* transform = static_cast<VrmlTransform*>(use(world, "I")->getOtherNodes().front().get());
  const auto* count = static_cast<SoSFInt32*>(script->getField("count"));
  EXPECT_EQ(count->getValue(), 0);
  transform->translation.setValue(3, 2, 1);
  EXPECT_EQ(count->getValue(), 1);
}

// A host may feed a field from an engine of the toolkit's, which is copied with the node, and put nodes of its own in.
TEST(ProtoUse, ACopyGoesTogetherWithEnginesAndNodesOfTheToolkit) {
  const TestWorld world(std::string(boxes) + R"(
    DEF BOTH Group { children [ DEF FROM Transform { } DEF I Sized { scale 2 2 2 } DEF S Script { field SFNode held NULL } ] }
    ROUTE FROM.scale TO I.scale)");
  auto* compose = new SoComposeVec3f;
  compose->x.setValue(7);
  world.get<VrmlTransform>("FROM")->scale.connectFrom(&compose->vector);
  auto* cube = new SoCube;
  static_cast<SoSFNode*>(world.get<VrmlScript>("S")->getField("held"))->setValue(cube);
  const SoRef<VrmlGroup> copy(
      static_cast<VrmlGroup*>(VrmlNode::deepCopy(world.get<VrmlGroup>("BOTH"), TRUE)));
  compose->x.setValue(8);
  auto* from = static_cast<VrmlTransform*>(copy->getChild(0));
  EXPECT_EQ(from->scale.getValue()[0], 8) << "an engine that knows none of the nodes feeds both";
  SoNode* copiedCube = static_cast<SoSFNode*>(copy->getChild(2)->getField("held"))->getValue();
  EXPECT_NE(copiedCube, cube);
  ASSERT_NE(copiedCube, nullptr);
  EXPECT_TRUE(copiedCube->isOfType(SoCube::getClassTypeId()));
}

TEST(ProtoUse, InnerNamesHideOuterOnesAndTheClassesOfThatName) {
  const TestWorld world(R"(
    PROTO Box [ ] { Sphere { radius 3 } }
    PROTO Outer [ ] { PROTO Box [ ] { Sphere { radius 4 } } Shape { geometry Box { } } }
    DEF IN Outer { } DEF OUT Shape { geometry Box { } })");
  EXPECT_EQ(sizeOf(use(world, "IN"))[0], 8);
  EXPECT_EQ(sizeOf(world.get<VrmlShape>("OUT"))[0], 6);
}

TEST(ProtoDef, WritesAnInterfaceThatReadsBack) {
  const std::string interface = R"(
      field        SFFloat size 0.1
      exposedField MFString words ["a \"b\"", "c"]
      eventIn      SFBool on 
      eventOut     SFTime at 
     ]
)";
  const TestWorld world(("PROTO Lamp [" + interface + " { Group { } } DEF I Lamp { }").c_str());
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  SoOutput out;
  constexpr std::size_t room = 4096;
  out.setBuffer(std::malloc(room), room, std::realloc);
  use(world, "I")->getProtoDef()->writeNameAndInterface(&out, "PROTO", 1);
  void* text = nullptr;
  std::size_t size = 0;
  out.getBuffer(text, size);
  const std::string written(static_cast<const char*>(text), size);
  std::free(text);
  const auto squeezed = [](const std::string& from) {
    std::string result;
    for (const char c : from)
      if (!std::isspace(static_cast<unsigned char>(c))) result += c;
    return result;
  };
  EXPECT_NE(written.find("exposedField MFString words "), std::string::npos) << written;
  EXPECT_NE(squeezed(written).find(squeezed("PROTO Lamp [" + interface)), std::string::npos) << written;
}

// For a host that edits definitions.
TEST(ProtoDef, TurnsMappingsIntoRoutesAndBack) {
  const TestWorld world(R"(
    PROTO P [ field SFVec3f f 1 1 1  exposedField SFVec3f e 2 2 2  eventIn SFVec3f i  eventOut SFVec3f o ] {
      Transform { center IS f  scale IS e  translation IS i  translation IS o }
    }
    DEF I P { })");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  VrmlProtoDef* definition = use(world, "I")->getProtoDef();
  auto* body = static_cast<VrmlTransform*>(definition->getBody()->getChild(0));
  const auto links = [&] {
    std::string text;
    SoField* inner[] = {&body->center, &body->scale, &body->translation};
    for (int k = 0; k < definition->getNumInterfaceFields(); ++k)
      for (int n = 0; n < 3; ++n) {
        SoField* own = definition->getInterfaceField(k);
        if (VrmlRoute::routeExists(own, inner[n])) text += std::to_string(k) + '>' + std::to_string(n) + ' ';
        if (VrmlRoute::routeExists(inner[n], own)) text += std::to_string(k) + '<' + std::to_string(n) + ' ';
      }
    return text;
  };
  ASSERT_EQ(definition->getNumIsMappings(), 4);
  EXPECT_EQ(links(), "");
  definition->moveIsMappingsToRoutes();
  EXPECT_EQ(links(), "0>0 1>1 1<1 2>2 3<2 ");
  definition->moveRoutesToIsMappings();
  EXPECT_EQ(links(), "");
  EXPECT_EQ(definition->getNumIsMappings(), 4);
  const SoRef<VrmlProtoUse> again(new VrmlProtoUse(definition));
  auto* made = static_cast<VrmlTransform*>(again->getActualNode());
  EXPECT_EQ(made->center.getValue(), SbVec3f(1, 1, 1));
  EXPECT_EQ(made->scale.getValue(), SbVec3f(2, 2, 2));
  fieldOf<SoSFVec3f>(again.get(), "i")->setValue(4, 4, 4);
  EXPECT_EQ(vecOf(again.get(), "o"), SbVec3f(4, 4, 4));
}

TEST(ProtoUse, WithoutBodyOrWithTwoMappingsOfOneField) {
  const TestWorld world(R"(
    PROTO Empty [ field SFFloat x 1 ] { }
    PROTO Tied [ exposedField SFVec3f a 1 1 1  exposedField SFVec3f b 2 2 2 ] {
      Transform { translation IS a  scale IS a  center IS a  center IS b }
    }
    DEF E Empty { x 2 } DEF T Tied { a 3 3 3 })");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  EXPECT_EQ(use(world, "E")->getActualNode(), nullptr);
  VrmlProtoUse* tied = use(world, "T");
  auto* body = static_cast<VrmlTransform*>(tied->getActualNode());
  EXPECT_EQ(body->scale.getValue(), SbVec3f(3, 3, 3));
  fieldOf<SoSFVec3f>(tied, "b")->setValue(4, 4, 4);
  EXPECT_EQ(body->center.getValue(), SbVec3f(4, 4, 4));
  EXPECT_EQ(vecOf(tied, "a"), SbVec3f(4, 4, 4)) << "round a cycle of IS";
}

std::string chain(int length, const char* use) {
  std::string text =
      "PROTO P0 [ exposedField SFVec3f s 1 1 1 ] { Transform { scale IS s children Shape { geometry Box { } "
      "} } }\n";
  for (int i = 1; i < length; ++i)
    text += "PROTO P" + std::to_string(i) + " [ exposedField SFVec3f s 1 1 1 ] { P" + std::to_string(i - 1) +
            " { s IS s } }\n";
  return text + "DEF I P" + std::to_string(length - 1) + use;
}

TEST(ProtoLimits, AChainOfInstancesPassesValuesAndEvents) {
  const TestWorld world(chain(1000, " { s 3 3 3 }"));
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  EXPECT_EQ(sizeOf(use(world, "I")), SbVec3f(6, 6, 6));
}

TEST(ProtoLimits, InstancesTooDeepStayEmptyAndAreFreedAgain) {
  const std::string text = chain(10'001, " { }");
  const TestWorld world(text);
  EXPECT_EQ(world.status, ReadStatus::world);
  EXPECT_EQ(world.messages.count("nested more than 10000 levels deep"), 1) << world.messages.text();
  EXPECT_EQ(world.messages.count("line 10003"), 1) << world.messages.text();
  EXPECT_EQ(use(world, "I")->getActualNode(), nullptr);
}

TEST(ProtoLimits, AnExpansionWithoutBoundsStops) {
  std::string text = "PROTO P0 [ ] { Group { } }\n";
  for (int i = 1; i <= 10; ++i) {
    text += "PROTO P" + std::to_string(i) + " [ ] { Group { children [ ";
    for (int k = 0; k < 10; ++k) text += "P" + std::to_string(i - 1) + " { } ";
    text += "] } }\n";
  }
  ReadOptions options;
  options.maxInstanceNodes = 20'000;
  text += "P10 { }\nDEF LAST Shape { geometry Box { } }";
  const TestWorld world(std::string_view(text), options);
  EXPECT_EQ(world.status, ReadStatus::world) << "the read goes on";
  EXPECT_EQ(world.messages.count("make more than 20000 nodes"), 1) << world.messages.text();
  EXPECT_NE(world.get<VrmlShape>("LAST"), nullptr);
}

TEST(ProtoLimits, ShownNodesCountWhereBodiesUseTheirOwnAgain) {
  std::string body = "Group { children [ DEF A0 Group { } ";
  for (int i = 1; i < 40; ++i) {
    const std::string before = " USE A" + std::to_string(i - 1);
    body += "DEF A" + std::to_string(i) + " Group { children [" + before + before + " ] } ";
  }
  const TestWorld world("PROTO P [ ] { " + body + "] } }\nGroup { }\nP { }");
  EXPECT_EQ(world.status, ReadStatus::failed) << "no traversal would come to its end";
  EXPECT_EQ(world.messages.count("each USE counted anew"), 1) << world.messages.text();
}

}  // namespace
