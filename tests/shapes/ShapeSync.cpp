// SPDX-License-Identifier: BSD-3-Clause
// How a Shape and an Appearance keep their children in line with their fields, and who acts where.
#include <gtest/gtest.h>

#include <Inventor/SoPath.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/sensors/SoNodeSensor.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/shapes/VrmlAppearance.h>
#include <tessel/shapes/VrmlBox.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>
#include <tessel/shapes/VrmlIndexedLineSet.h>
#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/shapes/VrmlPointSet.h>
#include <tessel/shapes/VrmlShape.h>
#include <tessel/shapes/VrmlSphere.h>

#include "shapes/Probe.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

std::vector<SoNode*> childrenOf(const SoNode* node) {
  const SoChildList& list = *node->getChildren();
  std::vector<SoNode*> result;
  for (int i = 0; i < list.getLength(); ++i) result.push_back(list[i]);
  return result;
}

using Nodes = std::vector<SoNode*>;

}  // namespace

TEST(ShapeSync, ChildrenFollowTheFieldsInTheirOrder) {
  startLibrary();
  const tessel::SoRef<VrmlShape> shape(new VrmlShape);
  auto* box = new VrmlBox;
  auto* look = new VrmlAppearance;
  shape->geometry = box;
  shape->appearance = look;
  EXPECT_EQ(childrenOf(shape.get()), (Nodes{look, box}));
  auto* sphere = new VrmlSphere;
  shape->geometry = sphere;
  EXPECT_EQ(childrenOf(shape.get()), (Nodes{look, sphere}));
  shape->appearance = nullptr;
  EXPECT_EQ(childrenOf(shape.get()), (Nodes{sphere}));
}

TEST(ShapeSync, AValueThatComesByARouteIsTakenToo) {
  startLibrary();
  const tessel::SoRef<VrmlShape> source(new VrmlShape), shape(new VrmlShape);
  shape->geometry.connectFrom(&source->geometry);
  auto* box = new VrmlBox;
  source->geometry = box;
  EXPECT_EQ(childrenOf(shape.get()), (Nodes{box}));
  auto* sphere = new VrmlSphere;
  source->geometry = sphere;
  EXPECT_EQ(childrenOf(shape.get()), (Nodes{sphere}));
}

TEST(ShapeSync, ANodeOfTheWrongTypeFailsTheReadAndBecomesNullByAnEvent) {
  for (const char* text :
       {"Shape { geometry Coordinate {} }", "Shape { appearance Material {} }", "Shape { geometry Group {} }",
        "Shape { appearance Appearance { material Appearance {} } geometry Box {} }",
        "Shape { appearance Appearance { textureTransform Material {} } }"}) {
    TestWorld world(text);
    EXPECT_EQ(world.root(), nullptr) << text;
  }
  startLibrary();
  const tessel::SoRef<VrmlShape> shape(new VrmlShape);
  shape->geometry = new VrmlBox;
  shape->geometry = new VrmlCoordinate;
  EXPECT_EQ(shape->geometry.getValue(), nullptr);
  EXPECT_EQ(childrenOf(shape.get()), Nodes{});
  const tessel::SoRef<VrmlAppearance> look(new VrmlAppearance);
  auto* material = new VrmlMaterial;
  look->material = material;
  look->texture = new VrmlBox;
  EXPECT_EQ(look->texture.getValue(), nullptr);
  EXPECT_EQ(childrenOf(look.get()), (Nodes{material}));
}

TEST(ShapeSync, AGroupInThePlaceOfAPropertyIsNoWayRoundForATraversal) {
  const std::string values = "coord Coordinate { point [ 0 0 0, 1 0 0, 0 1 0 ] } coordIndex [ 0 1 2 ]";
  TestWorld world("DEF G Group { children [ Shape { geometry DEF F IndexedFaceSet { " + values +
                  " } } Shape { geometry DEF L IndexedLineSet { " + values +
                  " } } Shape { geometry DEF P PointSet { coord Coordinate { point [ 2 0 0 ] } } } ] }");
  auto* group = world.get<VrmlGroup>("G");
  for (VrmlVertexShape* shape : {static_cast<VrmlVertexShape*>(world.get<VrmlIndexedFaceSet>("F")),
                                 static_cast<VrmlVertexShape*>(world.get<VrmlIndexedLineSet>("L")),
                                 static_cast<VrmlVertexShape*>(world.get<VrmlPointSet>("P"))}) {
    shape->color.setValue(group);
    EXPECT_EQ(trianglesOf(world.root()).size(), 1U);
    EXPECT_EQ(hitsOf(world.root(), SbVec3f(0.2f, 0.2f, 5), SbVec3f(0, 0, -1)).size(), 1U);
    shape->color.setValue(nullptr);
  }
  world.get<VrmlIndexedFaceSet>("F")->coord.setValue(group);
  EXPECT_EQ(trianglesOf(world.root()).size(), 0U);
  EXPECT_GT(countLit(world.root()), 0) << "the lines";
  group->addChild(new VrmlGroup);
  world.get<VrmlIndexedFaceSet>("F")->coord.setValue(nullptr);
}

TEST(ShapeSync, AChangeFarBelowIsToldAboveOnce) {
  TestWorld world(
      "Group { children Shape { appearance Appearance { material DEF M Material {} } geometry Box {} } }");
  int told = 0;
  SoNodeSensor sensor([](void* count, SoSensor*) { ++*static_cast<int*>(count); }, &told);
  sensor.setPriority(0);
  sensor.attach(world.root());
  struct Counting : VrmlGroup {
    int notified = 0;
    void notify(SoNotList* list) override {
      ++notified;
      VrmlGroup::notify(list);
    }
    ~Counting() override = default;
  };
  const tessel::SoRef<Counting> group(new Counting);
  group->addChild(static_cast<VrmlNode*>(world.root()));
  group->notified = 0;
  world.get<VrmlMaterial>("M")->shininess = 0.7f;
  EXPECT_EQ(told, 1);
  EXPECT_EQ(group->notified, 1);
}

TEST(ShapeSync, ACopyHasTheSameShapeOfTree) {
  TestWorld world("Shape { appearance Appearance { material Material {} } geometry Box {} }");
  const tessel::SoRef<SoNode> copy(VrmlNode::deepCopy(static_cast<VrmlNode*>(world.root()), 0));
  auto* shape = static_cast<VrmlShape*>(copy.get());
  EXPECT_NE(copy.get(), world.root());
  EXPECT_NE(shape->geometry.getValue(), static_cast<VrmlShape*>(world.root())->geometry.getValue());
  EXPECT_EQ(childrenOf(shape), (Nodes{shape->appearance.getValue(), shape->geometry.getValue()}));
  SoNode* look = shape->appearance.getValue();
  EXPECT_EQ(childrenOf(look), Nodes{static_cast<VrmlAppearance*>(look)->material.getValue()});
}

TEST(ShapeSync, ASearchFindsTheMaterialOfAnAppearance) {
  TestWorld world("Shape { appearance Appearance { material Material {} } geometry Box {} }");
  SoSearchAction search;
  search.setType(VrmlMaterial::getClassTypeId());
  search.apply(world.root());
  ASSERT_TRUE(search.getPath());
  EXPECT_TRUE(search.getPath()->containsNode(
      static_cast<VrmlAppearance*>(static_cast<VrmlShape*>(world.root())->appearance.getValue())
          ->material.getValue()));
}

TEST(ShapeSync, OnlyAGeometryInAShapeHasABox) {
  SoGetBoundingBoxAction action(SbViewportRegion(1, 1));
  TestWorld bare("Group { children [ Box {} Sphere { radius 3 } ] }");
  ASSERT_TRUE(bare.root()) << bare.messages.text();
  action.apply(bare.root());
  EXPECT_TRUE(action.getBoundingBox().isEmpty());
  TestWorld shaped(
      "Group { children [ Box {} Transform { translation 5 0 0 children Shape { geometry Box {} } } ] }");
  action.apply(shaped.root());
  EXPECT_EQ(action.getBoundingBox(), SbBox3f(4, -1, -1, 6, 1, 1));
}
