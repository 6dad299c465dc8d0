// SPDX-License-Identifier: BSD-3-Clause
// The actions that gather and count.
#include <gtest/gtest.h>

#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTranslation.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/core/VrmlSwitch.h>
#include <tessel/shapes/VrmlLight.h>

#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

std::vector<std::string> lightsOf(VrmlPreTraverseAction& action, SoNode* root) {
  action.apply(root);
  std::vector<std::string> names;
  for (const auto& light : action.getLights()) names.push_back(light->getName().getString());
  return names;
}

using Names = std::vector<std::string>;

}  // namespace

TEST(PreTraverse, GathersTheSpatialLightsThatTheTraversalReaches) {
  TestWorld world(
      "Group { children [ DirectionalLight {} DEF A PointLight {} Group { children DEF B SpotLight {} } "
      "DEF S Switch { whichChoice 1 choice [ DEF C PointLight {} DEF D PointLight {} ] } ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  VrmlPreTraverseAction action;
  EXPECT_EQ(lightsOf(action, world.root()), (Names{"A", "B", "D"}));
  world.get<VrmlSwitch>("S")->whichChoice = 0;
  EXPECT_EQ(lightsOf(action, world.root()), (Names{"A", "B", "C"}));
  world.get<VrmlSwitch>("S")->whichChoice = -1;
  EXPECT_EQ(lightsOf(action, world.root()), (Names{"A", "B"}));
}

TEST(PreTraverse, GoesThroughTheToolkitsGroupsAndTransformations) {
  TestWorld world("Group { children DEF L PointLight {} }");
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  root->addChild(new SoTranslation);
  root->addChild(world.root());
  VrmlPreTraverseAction action;
  EXPECT_EQ(lightsOf(action, root.get()), (Names{"L"}));
  action.kidTypeMask = tessel::KidType::sound;
  EXPECT_EQ(lightsOf(action, root.get()), Names{});
}

TEST(Count, AddsUpWhatIsInTheWorldAndStartsAnew) {
  TestWorld world(
      "Group { children [ Shape { geometry DEF B Box {} } Transform { children Shape { geometry Sphere {} } "
      "} "
      "Shape { geometry USE B } Shape { geometry PointSet { coord Coordinate { point [ 0 0 0, 1 1 1 ] } } } "
      "Shape { geometry IndexedLineSet { coord Coordinate { point [ 0 0 0, 1 1 1 ] } coordIndex [ 0 1 0 -1 ] "
      "} } ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  root->addChild(world.root());
  VrmlCountAction action;
  for (int i = 0; i < 2; ++i) {
    action.apply(root.get());
    EXPECT_EQ(action.numLineSegments, 2);
    EXPECT_EQ(action.numPoints, 2);
  }
  EXPECT_EQ(action.numTriangles, 12 + 200 + 12);
}
