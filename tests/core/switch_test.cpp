// SPDX-License-Identifier: BSD-3-Clause
// The groups that show one child of many.
#include <gtest/gtest.h>

#include <tessel/core/VrmlLOD.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/core/VrmlSwitch.h>
#include <tessel/core/VrmlTransform.h>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoFullPath.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoSearchAction.h>

#include "support/TestWorld.h"

using namespace tessel;
using namespace tessel::test;

namespace {

constexpr const char* threeBoxes = R"([
  DEF ONE Shape { geometry Box { size 1 1 1 } }
  DEF TWO Shape { geometry Box { size 2 2 2 } }
  DEF FOUR Shape { geometry Box { size 4 4 4 } }
])";

// Of the box, 0 if there is none.
template <class Applied> float widthOf(Applied* node) {
  SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
  action.apply(node);
  const SbBox3f box = action.getBoundingBox();
  return box.isEmpty() ? 0 : box.getMax()[0] - box.getMin()[0];
}

int countOf(SoNode* root, SoType type) {
  int count = 0;
  SoCallbackAction action;
  action.addPreCallback(
      type,
      [](void* data, SoCallbackAction*, const SoNode*) {
        return ++*static_cast<int*>(data), SoCallbackAction::CONTINUE;
      },
      &count);
  action.apply(root);
  return count;
}

SoRef<SoFullPath> pathTo(SoNode* root, SoNode* node) {
  SoSearchAction search;
  search.setNode(node);
  search.setSearchingAll(TRUE);
  search.apply(root);
  return SoRef(static_cast<SoFullPath*>(search.getPath()));
}

TEST(Switch, ShowsTheChildOfItsChoiceAlone) {
  const TestWorld world(
      std::string_view{std::string("DEF S Switch { choice ") + threeBoxes + " whichChoice 1 }"});
  auto* chooser = world.get<VrmlSwitch>("S");
  ASSERT_TRUE(chooser) << world.messages.text();
  const std::pair<int, float> widths[] = {{0, 1}, {1, 2}, {2, 4}, {3, 0}, {-1, 0}, {1000000, 0}};
  EXPECT_EQ(widthOf(chooser), 2);
  for (const auto& [choice, width] : widths) {
    chooser->whichChoice = choice;
    EXPECT_EQ(widthOf(chooser), width) << choice;
    EXPECT_EQ(countOf(chooser, VrmlSwitch::getClassTypeId().getParent()), 1) << "the Switch itself, once";
  }
}

TEST(Switch, IsStoppedAtAPathThroughAnotherChild) {
  const TestWorld world(std::string_view{std::string("DEF S Switch { choice ") + threeBoxes + " }"});
  auto* chooser = world.get<VrmlSwitch>("S");
  ASSERT_TRUE(chooser) << world.messages.text();
  const SoRef<SoFullPath> path = pathTo(chooser, chooser->getChild(2));
  ASSERT_TRUE(path);
  const std::pair<int, float> widths[] = {{2, 4}, {1, 0}, {-1, 4}};
  for (const auto& [choice, width] : widths) {
    chooser->whichChoice = choice;
    EXPECT_EQ(widthOf<SoPath>(path.get()), width) << choice;
  }
}

TEST(Switch, FindsWhatIsNotChosenOnlyWhenAllIsSearched) {
  const TestWorld world(
      std::string_view{std::string("DEF S Switch { choice ") + threeBoxes + " whichChoice 0 }"});
  auto* chooser = world.get<VrmlSwitch>("S");
  ASSERT_TRUE(chooser) << world.messages.text();
  for (const bool all : {false, true}) {
    SoSearchAction search;
    search.setNode(chooser->getChild(1));
    search.setSearchingAll(all);
    search.apply(chooser);
    EXPECT_EQ(search.getPath() != nullptr, all);
  }
}

TEST(Switch, ChildrenAreReadAsOneAListOrNull) {
  const TestWorld world(
      "Group { children [ DEF A Switch { choice Shape { } } DEF B Switch { choice [ NULL Shape { } ] } DEF C "
      "Switch { choice [ ] } ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  EXPECT_EQ(world.get<VrmlSwitch>("A")->getNumChildren(), 1);
  EXPECT_EQ(world.get<VrmlSwitch>("B")->getNumChildren(), 2);
  EXPECT_TRUE(world.get<VrmlSwitch>("B")->getChild(0)->isOfType(VrmlNULL::getClassTypeId()));
  EXPECT_EQ(world.get<VrmlSwitch>("C")->getNumChildren(), 0);
}

TEST(Lod, WithoutAViewerHasAllLevelsInItsBoxAndInTheHandsOfCallbacks) {
  const TestWorld world(
      std::string_view{std::string("DEF L LOD { range [ 10 20 ] level ") + threeBoxes + " }"});
  auto* levels = world.get<VrmlLOD>("L");
  ASSERT_TRUE(levels) << world.messages.text();
  EXPECT_EQ(levels->range.getNum(), 2);
  EXPECT_EQ(widthOf(levels), 4);
  EXPECT_EQ(countOf(levels, levels->getChild(0)->getTypeId()), 3);
}

}  // namespace
