// SPDX-License-Identifier: BSD-3-Clause
// What a Shape looks like: with and without appearance and material, in light, in display lists, after events.
#include <gtest/gtest.h>

#include <cmath>

#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/shapes/VrmlShape.h>

#include "support/Drawing.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

const char* const sunlight = "DirectionalLight {} ";

Colour middleOf(const std::string& world) {
  TestWorld read(world);
  EXPECT_TRUE(read.root()) << read.messages.text();
  if (!read.root()) return {};
  Drawing drawing(read.root());
  drawing.frame();
  return drawing.at(0, 0);
}

struct Look {
  const char* name;
  std::string world;
  Colour middle;
};
void PrintTo(const Look& look, std::ostream* out) { *out << look.name; }
class ShapeGL : public testing::TestWithParam<Look> {};

}  // namespace

TEST_P(ShapeGL, HasTheColour) {
  const Colour seen = middleOf(GetParam().world);
  EXPECT_TRUE(near(seen, GetParam().middle)) << seen;
}

INSTANTIATE_TEST_SUITE_P(
    Looks, ShapeGL,
    testing::Values(
        Look{"NoAppearanceIsUnlitGrey", "Shape { geometry Box {} }", {204, 204, 204}},
        Look{"NoMaterialIsUnlitGrey", "Shape { appearance Appearance {} geometry Box {} }", {204, 204, 204}},
        // The toolkit's own ambient light of 0.2 is left: 0.2 x 0.2 x 0.8.
        Look{"MaterialInTheDarkIsAlmostBlack",
             "Shape { appearance Appearance { material Material {} } geometry Box {} }",
             {8, 8, 8}},
        Look{"MaterialInFullLight",
             "Group { children [" + std::string(sunlight) +
                 "Shape { appearance Appearance { material Material { diffuseColor 0 1 0 } } geometry Box {} "
                 "} ] }",
             {0, 255, 0}},
        Look{"EmissiveOnlyNeedsNoLight",
             "Shape { appearance Appearance { material Material { diffuseColor 0 0 0 ambientIntensity 0 "
             "emissiveColor 1 0 0 } } geometry Box {} }",
             {255, 0, 0}},
        Look{"EmissiveOnlyIsNotAddedToLight",
             "Group { children [" + std::string(sunlight) +
                 "Shape { appearance Appearance { material Material { diffuseColor 0 0 0 ambientIntensity 0 "
                 "emissiveColor 0.5 0 0 specularColor 0 1 0 shininess 0 } } geometry Box {} } ] }",
             {128, 255, 0}},
        Look{"Intensity",
             "Group { children [ DirectionalLight { intensity 0.5 color 1 1 0 } "
             "Shape { appearance Appearance { material Material { diffuseColor 1 1 1 ambientIntensity 0 } } "
             "geometry Box {} } ] }",
             {128, 128, 0}},
        Look{
            "AmbientOfALight",
            "Group { children [ DirectionalLight { direction 0 0 1 ambientIntensity 0.5 } "
            "Shape { appearance Appearance { material Material { diffuseColor 1 1 1 ambientIntensity 0.8 } } "
            "geometry Box {} } ] }",
            {143, 143, 143}},
        Look{"OutsideAShapeGeometryIsInert", "Group { children [ Box {} ] }", {0, 0, 0}},
        Look{"GeometryOutsideLeavesItsShapeAlone",
             "Group { children [ DEF B Box {} Shape { geometry USE B } ] }",
             {204, 204, 204}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ShapeGL_Scope, DirectionalLightBehindAShapeInItsGroupLightsItAndNothingOutside) {
  const std::string white =
      "Shape { appearance Appearance { material Material { diffuseColor 1 1 1 } } "
      "geometry Box { size 1 1 1 } } ";
  TestWorld world("Group { children [ Transform { translation -1 0 0 children [ " + white +
                  "Transform { translation 0 1.2 0 children " + white + "} " + sunlight +
                  "] } Transform { translation 1 0 0 children " + white + "} ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  Drawing drawing(world.root());
  // The same in the first frame, while display lists are made, and out of them.
  for (int i = 0; i < 5; ++i) {
    drawing.frame();
    EXPECT_TRUE(near(drawing.at(-1, 0), {255, 255, 255})) << i << ": " << drawing.at(-1, 0);
    EXPECT_TRUE(near(drawing.at(-1, 1.2f), {255, 255, 255})) << i << ": " << drawing.at(-1, 1.2f);
    EXPECT_TRUE(near(drawing.at(1, 0), {10, 10, 10})) << i << ": " << drawing.at(1, 0);
  }
}

TEST(ShapeGL_Scope, PointAndSpotLightsReachTheWholeWorldFromWhereTheyStand) {
  const std::string white =
      "Shape { appearance Appearance { material Material { diffuseColor 1 1 1 "
      "ambientIntensity 0 } } geometry Box { size 0.5 0.5 0.1 } } ";
  const auto row = [&](const std::string& light) {
    return "Group { children [ Transform { translation -1 0 0 children " + white + "} " + white +
           "Transform { translation 1 0 0 children [ " + white +
           "] } Transform { translation 1 0 0 rotation 0 1 0 3.14159265 "
           "children [ " +
           light + "] } ] }";
  };
  // Turned round: what points to +z in its own space shines down at the third box.
  TestWorld spot(row("SpotLight { location 0 0 -3 direction 0 0 1 cutOffAngle 0.15 beamWidth 1.6 }"));
  ASSERT_TRUE(spot.root()) << spot.messages.text();
  Drawing narrow(spot.root());
  for (int i = 0; i < 4; ++i) {
    narrow.frame();
    EXPECT_TRUE(near(narrow.at(1, 0), {255, 255, 255})) << narrow.at(1, 0);
    EXPECT_TRUE(near(narrow.at(0, 0), {0, 0, 0})) << narrow.at(0, 0);
  }
  // GL lights the corners of a face: what a corner `dx` beside the light, 0.95 below it and 0.25 aside shows.
  const auto corner = [](double dx) { return 0.95 / std::sqrt(dx * dx + 0.95 * 0.95 + 0.25 * 0.25); };
  const auto grey = [](double share) {
    const int level = static_cast<int>(255 * share);
    return Colour{level, level, level};
  };
  TestWorld point(row("PointLight { location 0 0 -1 }"));
  Drawing wide(point.root());
  wide.frame();
  EXPECT_TRUE(near(wide.at(1, 0), grey(corner(0.25)), 4)) << wide.at(1, 0);
  EXPECT_TRUE(near(wide.at(0, 0), grey((corner(0.75) + corner(1.25)) / 2), 4)) << wide.at(0, 0);
  // At distance d it fades to 1 / (1 + d).
  TestWorld fading(row("PointLight { location 0 0 -1 attenuation 1 1 0 }"));
  Drawing weak(fading.root());
  weak.frame();
  EXPECT_TRUE(near(weak.at(1, 0), grey(corner(0.25) / (1 + 0.95 / corner(0.25))), 4)) << weak.at(1, 0);
}

TEST(ShapeGL_Scope, LightsThatAreOffOrTooManyDoNotShine) {
  std::string lights;
  for (int i = 0; i < 12; ++i)
    lights += "DirectionalLight { on " + std::string(i < 4 ? "FALSE" : "TRUE") + " intensity 0.05 } ";
  const Colour seen = middleOf("Group { children [ " + lights +
                               "Shape { appearance Appearance { material Material { "
                               "diffuseColor 1 1 1 ambientIntensity 0 } } geometry Box {} } ] }");
  EXPECT_TRUE(near(seen, {102, 102, 102})) << seen;  // eight of them
}

TEST(ShapeGL_Events, AChangeShowsInTheNextFrameThroughDisplayLists) {
  TestWorld world(
      "Group { children [ " + std::string(sunlight) +
      "Group { children Shape { appearance Appearance { material DEF M Material { diffuseColor 1 0 0 } } "
      "geometry Box {} } } ] }");
  ASSERT_TRUE(world.root()) << world.messages.text();
  auto* material = world.get<VrmlMaterial>("M");
  Drawing drawing(world.root());
  drawing.frame(4);
  EXPECT_TRUE(near(drawing.at(0, 0), {255, 0, 0})) << drawing.at(0, 0);
  material->diffuseColor.setValue(0, 0, 1);
  drawing.frame();
  EXPECT_TRUE(near(drawing.at(0, 0), {0, 0, 255})) << drawing.at(0, 0);

  // To emissive only and back.
  material->diffuseColor.setValue(0, 0, 0);
  material->ambientIntensity = 0;
  material->emissiveColor.setValue(0, 1, 0);
  drawing.frame(3);
  EXPECT_TRUE(near(drawing.at(0, 0), {0, 255, 0})) << drawing.at(0, 0);
  material->emissiveColor.setValue(0, 0, 0);
  material->diffuseColor.setValue(1, 1, 1);
  drawing.frame();
  EXPECT_TRUE(near(drawing.at(0, 0), {255, 255, 255})) << drawing.at(0, 0);

  // Transparent over black, then opaque again.
  material->transparency = 0.5;
  drawing.frame(4);
  EXPECT_TRUE(near(drawing.at(0, 0), {128, 128, 128})) << drawing.at(0, 0);
  material->transparency = 0;
  drawing.frame();
  EXPECT_TRUE(near(drawing.at(0, 0), {255, 255, 255})) << drawing.at(0, 0);
}
