// SPDX-License-Identifier: BSD-3-Clause
// Display lists must not show: a world that keeps them and one that keeps none go through the same changes, and
// every frame of both looks the same.
#include <gtest/gtest.h>

#include <functional>

#include <Inventor/system/gl.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlSwitch.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/shapes/VrmlAppearance.h>
#include <tessel/shapes/VrmlDirectionalLight.h>
#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/shapes/VrmlPointLight.h>
#include <tessel/shapes/VrmlShape.h>
#include <tessel/shapes/VrmlSphere.h>

#include "support/Drawing.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

std::string named(const char* letter, int number) {
  std::string name(letter);
  name += std::to_string(number);
  return name;
}

/// Many small shapes in one group, so many that it keeps them in runs; panes among them, lights, a switch, and parts
/// that stand in two places.
std::string crowd() {
  std::string text =
      "DEF W Transform { children [ DEF L PointLight { location 0 0 6 } DEF CROWD Group { children [ "
      "DEF D DirectionalLight { intensity 0.3 color 1 0.5 0 } ";
  for (int i = 0; i < 300; ++i) {
    const auto at = [i](int k) { return std::to_string((i * k % 61) / 30.0 - 1); };
    const bool pane = i % 29 == 3;
    text += named("DEF T", i) + " Transform { translation " + at(7) + " " + at(11) + " " + at(13) +
            named(" children DEF S", i) + named(" Shape { appearance Appearance { material DEF M", i) +
            " Material { diffuseColor " + std::to_string(i % 5 / 4.0) + " " + std::to_string(i % 3 / 2.0) +
            " 0.5 transparency " + (pane ? "0.5" : "0") + " } } geometry Box { size " +
            (pane ? "0.6 0.6 0.1" : "0.1 0.1 0.1") + " } } } ";
  }
  return text +
         "] } DEF SW Switch { whichChoice 0 choice [ Transform { translation 0.4 0.4 1 children [ "
         "DirectionalLight { color 0 0 1 } USE T3 USE T4 ] } Transform { translation -1 0 2 rotation 0 1 0 "
         "0.5 "
         "children USE S32 } ] } ] }";
}

/// The world and its own way to its nodes: both worlds have the same names.
struct Stage {
  explicit Stage(int numRenderCaches) : before(VrmlCullingGroup::getNumRenderCaches()) {
    VrmlCullingGroup::setNumRenderCaches(numRenderCaches);
    world = std::make_unique<TestWorld>(crowd());
    for (int i = 0; i < 300; ++i) {
      parts.push_back(world->get<VrmlTransform>(named("T", i).c_str()));
      materials.push_back(world->get<VrmlMaterial>(named("M", i).c_str()));
      shapes.push_back(world->get<VrmlShape>(named("S", i).c_str()));
    }
    all = world->get<VrmlTransform>("W");
    group = world->get<VrmlGroup>("CROWD");
    choice = world->get<VrmlSwitch>("SW");
    point = world->get<VrmlPointLight>("L");
    sun = world->get<VrmlDirectionalLight>("D");
    drawing = std::make_unique<Drawing>(world->root());
    drawing->frame();  // the lists are kept from here on
  }
  ~Stage() { VrmlCullingGroup::setNumRenderCaches(before); }

  int before;
  std::unique_ptr<TestWorld> world;
  std::unique_ptr<Drawing> drawing;
  std::vector<VrmlTransform*> parts;
  std::vector<VrmlMaterial*> materials;
  std::vector<VrmlShape*> shapes;
  VrmlTransform* all;
  VrmlGroup* group;
  VrmlSwitch* choice;
  VrmlPointLight* point;
  VrmlDirectionalLight* sun;
};

struct Change {
  const char* name;
  std::function<void(Stage&)> make;
};

const Change changes[] = {
    {"nothing", [](Stage&) {}},
    {"a part moves", [](Stage& s) { s.parts[70]->translation.setValue(0.3f, 0.3f, 4); }},
    {"a part that stands in two places moves",
     [](Stage& s) { s.parts[4]->translation.setValue(0, 0.5f, 0); }},
    {"a pane moves behind the others", [](Stage& s) { s.parts[32]->translation.setValue(0, 0, -5); }},
    {"a colour changes", [](Stage& s) { s.materials[150]->diffuseColor.setValue(1, 1, 1); }},
    {"an opaque part becomes glass", [](Stage& s) { s.materials[151]->transparency = 0.7f; }},
    {"glass becomes opaque", [](Stage& s) { s.materials[61]->transparency = 0; }},
    {"a material goes",
     [](Stage& s) { static_cast<VrmlAppearance*>(s.shapes[10]->appearance.getValue())->material = nullptr; }},
    {"a geometry is replaced", [](Stage& s) { s.shapes[90]->geometry = new VrmlSphere; }},
    {"everything moves", [](Stage& s) { s.all->translation.setValue(0.3f, -0.25f, 0); }},
    {"everything turns", [](Stage& s) { s.all->rotation.setValue(SbVec3f(0, 1, 0), 0.4f); }},
    {"the other choice", [](Stage& s) { s.choice->whichChoice = 1; }},
    {"a light moves", [](Stage& s) { s.point->location.setValue(3, 3, 3); }},
    {"a light of the group goes out", [](Stage& s) { s.sun->on = FALSE; }},
    {"a child goes", [](Stage& s) { s.group->removeChild(20); }},
    {"a child comes first", [](Stage& s) { s.group->insertChild(s.shapes[3], 0); }},
    {"the camera moves", [](Stage& s) { s.drawing->camera->position.setValue(0.2f, 0.1f, 12); }},
    {"nothing transparent is delayed",
     [](Stage& s) { s.drawing->action.setTransparencyType(SoGLRenderAction::BLEND); }},
    {"it is delayed again",
     [](Stage& s) { s.drawing->action.setTransparencyType(SoGLRenderAction::DELAYED_BLEND); }},
};

int differing(const tessel::host::Image& a, const tessel::host::Image& b) {
  int count = 0;
  for (int y = 0; y < a.height; ++y)
    for (int x = 0; x < a.width; ++x) count += !near(pixel(a, x, y), pixel(b, x, y), 6);
  return count;
}

}  // namespace

TEST(DisplayListsGL, ChangeNoPixel) {
  Stage listed(2), plain(0);
  for (const Change& change : changes) {
    change.make(listed);
    change.make(plain);
    for (int frame = 0; frame < 4; ++frame) {
      const auto expected = plain.drawing->frame();
      const auto seen = listed.drawing->frame();
      EXPECT_LE(differing(seen, expected), 4) << change.name << ", frame " << frame;
      EXPECT_GT(countLit(seen), 500);
    }
  }
}

TEST(DisplayListsGL, PartsThatAlwaysMoveAreDrawnWhereTheyAre) {
  Stage listed(2), plain(0);
  for (int frame = 0; frame < 20; ++frame) {
    for (Stage* stage : {&listed, &plain})
      for (const int part : {5, 32, 64, 250})
        stage->parts[static_cast<std::size_t>(part)]->translation.setValue(
            static_cast<float>(frame * (part + 3) % 17) / 10 - 0.8f, static_cast<float>(frame % 7) / 4 - 0.8f,
            2);
    const auto expected = plain.drawing->frame();
    EXPECT_LE(differing(listed.drawing->frame(), expected), 4) << "frame " << frame;
  }
}

TEST(DisplayListsGL, FramesShareTheMakingOfThem) {
  std::string text = "Group { children [ ";
  for (int i = 0; i < 3000; ++i)
    text += "Transform { translation " + std::to_string(i % 60 / 30.0 - 1) + " " +
            std::to_string(i / 60 / 25.0 - 1) +
            " 0 children Shape { appearance Appearance { material Material { } } geometry Box { size .1 .1 "
            ".1 } } } ";
  TestWorld world(text + "] }");
  Drawing drawing(world.root());
  std::vector<unsigned> made;
  for (int frame = 0; frame < 8; ++frame) {
    const unsigned before = glGenLists(1);
    drawing.frame();
    const unsigned after = glGenLists(1);
    made.push_back(after - before - 1);
    glDeleteLists(before, 1);
    glDeleteLists(after, 1);
  }
  EXPECT_EQ(made[0], 0u) << "the first picture waits for no list";
  for (std::size_t frame = 1; frame <= 3; ++frame) EXPECT_GT(made[frame], 0u) << "frame " << frame;
  EXPECT_LT(2 * made[1], made[1] + made[2] + made[3]);
  for (std::size_t frame = 5; frame < 8; ++frame) EXPECT_EQ(made[frame], 0u) << "frame " << frame;
}

struct Still {
  const char* name;
  const char* world;  // in which the middle of the picture is dark
};

class DisplayListGL : public testing::TestWithParam<Still> {};

// The first frame has no list yet; a shape out of view keeps the whole world from having a single one.
TEST_P(DisplayListGL, LooksLikeTheFirstFrame) {
  const TestWorld world(std::string(GetParam().world) +
                        "Transform { translation 9 0 0 children Shape { geometry Box { } } }");
  Drawing drawing(world.root());
  const auto first = drawing.frame().rgb;
  EXPECT_TRUE(near(drawing.at(0, 0), Colour{}, 1)) << drawing.at(0, 0);
  for (int i = 2; i < 6; ++i) EXPECT_EQ(drawing.frame().rgb, first) << "frame " << i;
}

INSTANTIATE_TEST_SUITE_P(
    Of, DisplayListGL,
    testing::Values(Still{"ABranchWithALight",
                          "Transform { translation -1.5 0 0 children [ DirectionalLight { } DEF BOX Shape { "
                          "appearance Appearance "
                          "{ material Material { ambientIntensity 0 } } geometry Box { size 1 1 1 } } ] } "
                          "Group { children USE BOX }"},
                    Still{"AFaceAlongTheLight",
                          "DirectionalLight { direction -1 0 0 } Group { children Shape { appearance "
                          "Appearance { material Material "
                          "{ ambientIntensity 0 specularColor 1 1 1 shininess 0.01 } } geometry "
                          "IndexedFaceSet { coord Coordinate "
                          "{ point [ -1 -1 0, 1 -1 0, 1 1 0, -1 1 0 ] } coordIndex [ 0 1 2 3 ] } } }"}),
    [](const auto& info) { return info.param.name; });
