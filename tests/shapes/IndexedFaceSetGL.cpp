// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoTexture2.h>

#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlDirectionalLight.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>
#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/shapes/VrmlPointLight.h>

#include "support/Drawing.h"
#include "support/TestWorld.h"

namespace host = tessel::host;
using namespace tessel::test;

namespace {

constexpr Colour black{0, 0, 0}, red{255, 0, 0}, green{0, 255, 0}, blue{0, 0, 255}, white{255, 255, 255};

const std::string plain;
const std::string lit =
    "appearance Appearance { material Material { diffuseColor 1 1 1 ambientIntensity 0 } } ";
const std::string sunlight = "DirectionalLight { } ";

std::string faces(const std::string& fields, const std::string& appearance = plain) {
  return "Shape { " + appearance + "geometry DEF FACES IndexedFaceSet { " + fields + " } }";
}

std::string group(const std::string& children) { return "Group { children [ " + children + " ] }"; }

/// A place on which one world follows another.
class FaceStage {
public:
  FaceStage() : drawing(place.get()) {}

  const host::Image& draw(const TestWorld& world) { return draw(world.root()); }
  const host::Image& draw(SoNode* scene) {
    place->removeAllChildren();
    place->addChild(scene);
    return drawing.frame();
  }
  const host::Image& redraw(int frames = 1) { return drawing.frame(frames); }
  Colour at(float x, float y) const { return drawing.at(x, y); }
  /// Puts a node of the toolkit before the world.
  void precede(SoNode* node) { drawing.root->insertChild(node, 0); }
  void without(SoNode* node) { drawing.root->removeChild(node); }
  SoNode* root() const { return drawing.root.get(); }

private:
  tessel::SoRef<SoSeparator> place{(startLibrary(), new SoSeparator)};
  Drawing drawing;
};

/// What the library itself reported.
int complaints(const TestWorld& world) { return world.messages.count("Vrml"); }

std::string joined(int count, const std::function<std::string(int)>& item) {
  std::string text;
  for (int i = 0; i < count; ++i) text += item(i) + ' ';
  return text;
}

/// A grid of side x side quads over -1.5 to 1.5, each quad a face of its own color.
std::string grid(int side, const std::string& fields) {
  std::ostringstream points, index, colors;
  for (int i = 0; i <= side; ++i)
    for (int j = 0; j <= side; ++j)
      points << 3.0 * i / side - 1.5 << ' ' << 3.0 * j / side - 1.5 << ' ' << 0.2 * ((i * 7 + j * 3) % 5)
             << ", ";
  for (int i = 0; i < side; ++i)
    for (int j = 0; j < side; ++j) {
      const int a = i * (side + 1) + j, b = a + side + 1;
      index << a << ' ' << b << ' ' << b + 1 << ' ' << a + 1 << " -1 ";
      colors << (i % 3) / 2.0 << ' ' << (j % 4) / 3.0 << ' ' << ((i + j) % 2) << ", ";
    }
  return "solid FALSE coord Coordinate { point [ " + points.str() + " ] } coordIndex [ " + index.str() +
         " ] color Color { color [ " + colors.str() + " ] } " + fields;
}

::testing::AssertionResult alike(const host::Image& a, const host::Image& b, int tolerance) {
  int worst = 0;
  for (std::size_t i = 0; i < a.rgb.size(); ++i) worst = std::max(worst, std::abs(a.rgb[i] - b.rgb[i]));
  if (worst <= tolerance) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "pictures differ by up to " << worst;
}

}  // namespace

// Three faces side by side get red, green and blue, and normals that the light meets, misses, meets.

TEST(IndexedFaceSetGL, EveryBindingReachesItsFace) {
  FaceStage stage;
  const struct {
    const char* name;
    std::string color;
    bool used;
  } colors[] = {
      {"no colors", "", false},
      {"per face", "colorPerVertex FALSE color Color { color [ 1 0 0, 0 1 0, 0 0 1 ] }", true},
      {"per face indexed",
       "colorPerVertex FALSE color Color { color [ 0 0 1, 0 1 0, 1 0 0 ] } colorIndex [ 2 1 0 ]", true},
      {"per vertex", "VERTEX_COLORS", true},
      {"per vertex indexed", "VERTEX_COLOR_INDEX color Color { color [ 0 0 1, 0 1 0, 1 0 0 ] }", true},
  };
  const struct {
    const char* name;
    std::string normal;
    bool used;
  } normals[] = {
      {"generated", "", false},
      {"per face", "normalPerVertex FALSE normal Normal { vector [ 0 0 1, 1 0 0, 0 0 1 ] }", true},
      {"per face indexed",
       "normalPerVertex FALSE normal Normal { vector [ 1 0 0, 0 0 1 ] } normalIndex [ 1 0 1 ]", true},
      {"per vertex", "VERTEX_NORMALS", true},
      {"per vertex indexed", "VERTEX_NORMAL_INDEX normal Normal { vector [ 1 0 0, 0 0 1 ] }", true},
  };
  for (const int corners : {3, 4, 5}) {
    const auto perVertex = [&](std::string text) {
      const auto put = [&](const char* key, const std::string& value) {
        if (const auto at = text.find(key); at != std::string::npos)
          text.replace(at, std::string(key).size(), value);
      };
      const auto each = [&](const char* a, const char* b, const char* c, const char* end) {
        const char* of[] = {a, b, c};
        return joined(3,
                      [&](int f) { return joined(corners, [&](int) { return std::string(of[f]); }) + end; });
      };
      put("VERTEX_COLORS", "color Color { color [ " + each("1 0 0", "0 1 0", "0 0 1", "") + "] }");
      put("VERTEX_COLOR_INDEX", "colorIndex [ " + each("2", "1", "0", "-1") + "]");
      put("VERTEX_NORMALS", "normal Normal { vector [ " + each("0 0 1", "1 0 0", "0 0 1", "") + "] }");
      put("VERTEX_NORMAL_INDEX", "normalIndex [ " + each("1", "0", "1", "-1") + "]");
      return text;
    };
    const std::string coordinates =
        "coord Coordinate { point [ " +
        joined(3,
               [&](int f) {
                 return joined(corners, [&](int k) {
                   const double angle = 2 * 3.14159265 * k / corners;
                   return std::to_string(1.2 * f - 1.2 + 0.5 * std::cos(angle)) + ' ' +
                          std::to_string(0.5 * std::sin(angle)) + " 0,";
                 });
               }) +
        "] } coordIndex [ " +
        joined(3,
               [&](int f) {
                 return joined(corners, [&](int k) { return std::to_string(f * corners + k); }) + "-1";
               }) +
        "] ";
    for (const auto& color : colors)
      for (const auto& normal : normals)
        for (const bool isLit : {false, true}) {
          const std::string what = std::to_string(corners) + " corners, colors " + color.name + ", normals " +
                                   normal.name + (isLit ? ", lit" : "");
          TestWorld world(group(sunlight + faces(coordinates + perVertex(color.color + ' ' + normal.normal),
                                                 isLit ? lit : plain)));
          ASSERT_TRUE(world.root()) << world.messages.text();
          stage.draw(world);
          const Colour own[] = {red, green, blue};
          for (int f = 0; f < 3; ++f) {
            Colour expected = color.used ? own[f] : isLit ? white : Colour{204, 204, 204};
            if (isLit && normal.used && f == 1) expected = black;
            EXPECT_TRUE(near(stage.at(1.2f * static_cast<float>(f) - 1.2f, 0.02f), expected))
                << what << ", face " << f << ": " << stage.at(1.2f * static_cast<float>(f) - 1.2f, 0.02f);
          }
          EXPECT_EQ(complaints(world), 0) << what << ": " << world.messages.text();
        }
  }
}

TEST(IndexedFaceSetGL, ColorsOfCornersBlend) {
  FaceStage stage;
  TestWorld world(
      faces("coord Coordinate { point [ -1 -1 0, 1 -1 0, 1 1 0, -1 1 0 ] } coordIndex [ 0 1 2 3 ] "
            "color Color { color [ 1 0 0, 0 0 1, 0 0 1, 1 0 0 ] }"));
  stage.draw(world);
  EXPECT_TRUE(near(stage.at(0, 0), {128, 0, 128}));
  EXPECT_TRUE(near(stage.at(-0.9f, 0), {242, 0, 13}, 16));
}

TEST(IndexedFaceSetGL, LargeMeshesLookTheSameInEveryLayout) {
  // Under parallel light the color of a face can stand at one corner. With a point of light it can't, nor if it is
  // given corner by corner.
  FaceStage stage;
  std::string perCorner = " colorIndex [ ";
  for (int face = 0; face < 400; ++face)
    for (const int corner : {face, face, face, face, -1}) perCorner += std::to_string(corner) + ' ';
  for (const std::string& appearance : {plain, lit})
    for (const char* const form : {"", "convex FALSE"})
      for (const char* const lamp : {sunlight.c_str(), "PointLight { location 0.5 0 1 }"}) {
        TestWorld perFace(
            group(lamp + faces(grid(20, std::string(form) + " colorPerVertex FALSE"), appearance)));
        TestWorld byCorners(group(lamp + faces(grid(20, form + perCorner + "]"), appearance)));
        ASSERT_TRUE(perFace.root() && byCorners.root()) << byCorners.messages.text();
        const host::Image picture = stage.draw(perFace);
        EXPECT_GT(countLit(picture), 1000);
        EXPECT_TRUE(alike(picture, stage.draw(byCorners), 3)) << lamp << appearance << form;
      }
}

TEST(IndexedFaceSetGL, ALampThatIsSwitchedOnChangesTheLayout) {
  FaceStage stage;
  const std::string mesh = faces(grid(20, "colorPerVertex FALSE"), lit);
  TestWorld lampOn(group("PointLight { location 0.5 0 1 } " + mesh));
  const host::Image under = stage.draw(lampOn);
  TestWorld world(
      group("DEF SUN DirectionalLight { } DEF LAMP PointLight { on FALSE location 0.5 0 1 } " + mesh));
  stage.draw(world);
  world.get<VrmlDirectionalLight>("SUN")->on = FALSE;
  world.get<VrmlPointLight>("LAMP")->on = TRUE;
  EXPECT_TRUE(alike(under, stage.redraw(), 1));
}

TEST(IndexedFaceSetGL, ALargeMeshLooksLikeItsFacesAlone) {
  FaceStage stage;
  TestWorld large(faces(grid(20, "colorPerVertex FALSE")));
  const auto picture = stage.draw(large);
  const auto* set = large.get<VrmlIndexedFaceSet>("FACES");
  const auto* colors = static_cast<VrmlColor*>(set->color.getValue());
  for (int i = 0; i < 20; ++i)
    for (int j = 0; j < 20; ++j) {
      const SbColor& c = colors->color[i * 20 + j];
      const auto byte = [](float f) { return static_cast<int>(f * 255 + 0.5f); };
      const float x = (static_cast<float>(i) + 0.5f) * 0.15f - 1.5f,
                  y = (static_cast<float>(j) + 0.5f) * 0.15f - 1.5f;
      EXPECT_TRUE(near(stage.at(x, y), {byte(c[0]), byte(c[1]), byte(c[2])}, 2)) << i << ' ' << j;
    }
}

TEST(IndexedFaceSetGL, MeshesBeyondShortIndicesAreWhole) {
  // Left half red, right half blue; once with neighbours side by side, once with the faces in no order.
  constexpr int side = 300;
  FaceStage stage;
  for (const int stride : {1, 7919}) {
    std::string points, index, colorIndex;
    for (int i = 0; i <= side; ++i)
      for (int j = 0; j <= side; ++j)
        points += std::to_string(3.0 * i / side - 1.5) + ' ' + std::to_string(3.0 * j / side - 1.5) + " 0 ";
    for (int k = 0; k < side * side; ++k) {
      const int face = static_cast<int>(static_cast<long>(k) * stride % (side * side)), i = face / side;
      const int a = i * (side + 1) + face % side, b = a + side + 1;
      for (const int n : {a, b, b + 1, a + 1, -1}) index += std::to_string(n) + ' ';
      colorIndex += i < side / 2 ? "0 " : "1 ";
    }
    TestWorld world(
        faces("colorPerVertex FALSE color Color { color [ 1 0 0, 0 0 1 ] } coord Coordinate { point [ " +
              points + " ] } coordIndex [ " + index + " ] colorIndex [ " + colorIndex + " ]"));
    stage.draw(world);
    for (float x = -1.4f; x < 1.45f; x += 0.2f)
      for (const float y : {-1.4f, -0.3f, 0.8f, 1.4f})
        EXPECT_EQ(stage.at(x, y), x < 0 ? red : blue) << stride << ": " << x << ' ' << y;
    EXPECT_EQ(complaints(world), 0) << world.messages.text();
  }
}

TEST(IndexedFaceSetGL, LargeMeshesDrawInsideDisplayListsOfTheToolkit) {
  FaceStage stage;
  TestWorld world(group(sunlight + faces(grid(20, "colorPerVertex FALSE"), lit)));
  const host::Image picture = stage.draw(world);
  const tessel::SoRef<SoSeparator> cached(new SoSeparator);
  cached->renderCaching = SoSeparator::ON;
  cached->addChild(world.root());
  for (int frame = 0; frame < 5; ++frame) EXPECT_TRUE(alike(picture, stage.draw(cached.get()), 1)) << frame;
  EXPECT_TRUE(alike(picture, stage.draw(world), 1)) << "and outside again";
}

TEST(IndexedFaceSetGL, ConcaveFacesKeepTheirNotches) {
  FaceStage stage;
  for (const char* const order : {"coordIndex [ 0 1 2 3 -1 ]", "ccw FALSE coordIndex [ 3 2 1 0 ]"}) {
    TestWorld world(faces(
        std::string("convex FALSE coord Coordinate { point [ -1.5 -1 0, 0 -0.2 0, 1.5 -1 0, 0 1.5 0 ] } ") +
        order));
    stage.draw(world);
    EXPECT_EQ(stage.at(0, -0.6f), black) << "the notch";
    for (const float x : {-0.8f, 0.8f}) EXPECT_NE(stage.at(x, -0.4f), black);
    EXPECT_NE(stage.at(0, 0.5f), black);
  }
  // Where edges cross, a corner is made; what is wound round twice is outside.
  TestWorld star(
      faces("convex FALSE solid FALSE coord Coordinate { point [ 0 1.6 0, -1 -1.5 0, 1.5 0.4 0, -1.5 0.4 0, "
            "1 -1.5 0 ] } "
            "coordIndex [ 0 1 2 3 4 -1 ] color Color { color [ 1 0 0, 1 0 0, 1 0 0, 1 0 0, 1 0 0 ] }"));
  const auto picture = stage.draw(star);
  EXPECT_EQ(stage.at(0, 0), black);
  EXPECT_TRUE(near(stage.at(0, 1.1f), red)) << stage.at(0, 1.1f);
}

TEST(IndexedFaceSetGL, BackFacesAreSeenOnlyOfWhatIsNotSolid) {
  FaceStage stage;
  const struct {
    const char* fields;
    bool seen;
  } cases[] = {{"coordIndex [ 0 1 2 ]", true},
               {"coordIndex [ 2 1 0 ]", false},
               {"coordIndex [ 2 1 0 ] ccw FALSE", true},
               {"coordIndex [ 2 1 0 ] solid FALSE", true},
               {"coordIndex [ 0 1 2 ] ccw FALSE solid FALSE", true}};
  for (const auto& c : cases) {
    TestWorld world(
        group(sunlight +
              faces(std::string("coord Coordinate { point [ -1 -1 0, 1 -1 0, 0 1 0 ] } ") + c.fields, lit)));
    stage.draw(world);
    EXPECT_TRUE(near(stage.at(0, 0), c.seen ? white : black)) << c.fields;
  }
}

TEST(IndexedFaceSetGL, TheCreaseAngleDecidesWhatLooksSmooth) {
  // A roof: its two sides look to the left and to the right, its ridge is at x = 0.
  FaceStage stage;
  const std::string roof =
      "coord Coordinate { point [ -1 -1 -1, -1 1 -1, 0 1 0, 0 -1 0, 1 1 -1, 1 -1 -1 ] } "
      "coordIndex [ 0 3 2 1 -1 3 5 4 2 -1 ] creaseAngle ";
  for (const auto& [angle, ridge] : {std::pair("0", 180), {"1.5", 180}, {"1.6", 255}, {"4", 255}}) {
    TestWorld world(group(sunlight + faces(roof + angle, lit)));
    stage.draw(world);
    EXPECT_NEAR(stage.at(-0.03f, 0).r, ridge, 12) << angle;
    EXPECT_NEAR(stage.at(-0.95f, 0).r, 180, 12) << angle;
  }
}

TEST(IndexedFaceSetGL, TransparencyGoesWithTheColors) {
  FaceStage stage;
  TestWorld world(
      group(sunlight + faces("coord Coordinate { point [ -1 -1 0, 1 -1 0, 0 1 0 ] } coordIndex [ 0 1 2 ] "
                             "color Color { color [ 0 1 0, 0 1 0, 0 1 0 ] }",
                             "appearance Appearance { material DEF MAT Material { "
                             "transparency 0.5 ambientIntensity 0 } } ")));
  stage.draw(world);
  for (const auto& [transparency, level] : {std::pair(0.5f, 128), {0.75f, 64}, {0.0f, 255}}) {
    world.get<VrmlMaterial>("MAT")->transparency = transparency;
    stage.redraw(3);
    EXPECT_TRUE(near(stage.at(0, 0), {0, level, 0})) << transparency << ' ' << stage.at(0, 0);
  }
}

TEST(IndexedFaceSetGL, ColorsDoNotLeakIntoTheNextShape) {
  // One material before and after the colors: the state has no reason of its own to send it again.
  FaceStage stage;
  const auto triangle = [](float x, const std::string& fields, const std::string& appearance) {
    return "Transform { translation " + std::to_string(x) + " 0 0 children " +
           faces("coord Coordinate { point [ -.5 -.5 0, .5 -.5 0, 0 .5 0 ] } coordIndex [ 0 1 2 ] " + fields,
                 "appearance " + appearance) +
           " } ";
  };
  TestWorld world(
      group(sunlight +
            triangle(-1.2f, "",
                     "DEF BLUE Appearance { material Material { diffuseColor 0 0 1 ambientIntensity 0 } } ") +
            triangle(0, "color Color { color [ 1 0 0, 1 0 0, 1 0 0 ] }", "USE BLUE ") +
            triangle(1.2f, "", "USE BLUE ")));
  stage.draw(world);
  for (int frame = 0; frame < 6; ++frame) {
    EXPECT_TRUE(near(stage.at(0, 0), red)) << frame << stage.at(0, 0);
    for (const float x : {-1.2f, 1.2f}) EXPECT_TRUE(near(stage.at(x, 0), blue)) << frame << stage.at(x, 0);
    stage.redraw();
  }
}

TEST(IndexedFaceSetGL, TextureCoordinatesComeFromTheNodeOrTheBox) {
  FaceStage stage;
  const tessel::SoRef<SoTexture2> texture(new SoTexture2);
  const unsigned char pixels[] = {255, 0, 0, 0, 0, 255};  // red at s = 0, blue at s = 1
  texture->image.setValue(SbVec2s(2, 1), 3, pixels);
  texture->model = SoTexture2::DECAL;
  texture->wrapS = texture->wrapT = SoTexture2::CLAMP;
  stage.precede(texture.get());
  const std::string wide =
      "coord Coordinate { point [ -1.6 -0.5 0, 1.6 -0.5 0, 1.6 0.5 0, -1.6 0.5 0 ] } coordIndex [ 0 1 2 3 ] ";
  const struct {
    const char* fields;
    Colour left, right;
  } cases[] = {{"", red, blue},
               {"texCoord TextureCoordinate { point [ 1 0, 0 0, 0 1, 1 1 ] }", blue, red},
               {"texCoord TextureCoordinate { point [ 0 0, 1 0 ] } texCoordIndex [ 1 1 1 1 ]", blue, blue}};
  for (const auto& c : cases) {
    TestWorld world(faces(wide + c.fields, lit));
    stage.draw(world);
    EXPECT_TRUE(near(stage.at(-1.5f, 0), c.left, 30)) << c.fields << stage.at(-1.5f, 0);
    EXPECT_TRUE(near(stage.at(1.5f, 0), c.right, 30)) << c.fields << stage.at(1.5f, 0);
  }
  // A texture that comes after the mesh was made gets its coordinates all the same.
  stage.without(texture.get());
  TestWorld world(group(sunlight + faces(wide + cases[1].fields, lit)));
  stage.draw(world);
  EXPECT_TRUE(near(stage.at(-1.5f, 0), white)) << stage.at(-1.5f, 0);
  stage.precede(texture.get());
  stage.redraw();
  EXPECT_TRUE(near(stage.at(-1.5f, 0), blue, 30)) << stage.at(-1.5f, 0);
}

TEST(IndexedFaceSetGL, AChangeOfAnythingIsDrawn) {
  FaceStage stage;
  TestWorld world(
      faces("coord DEF POINTS Coordinate { point [ -1 -1 0, 1 -1 0, 0 1 0, 0 0.5 0 ] } coordIndex [ 0 1 2 ] "
            "color DEF COLORS Color { color [ 1 0 0, 1 0 0, 1 0 0, 0 0 1 ] }"));
  stage.draw(world);
  EXPECT_TRUE(near(stage.at(0, 0), red));
  stage.redraw(4);  // by now it may be in a display list

  world.get<VrmlCoordinate>("POINTS")->point.set1Value(2, SbVec3f(0, -0.5f, 0));
  stage.redraw();
  EXPECT_EQ(stage.at(0, 0), black);
  world.get<VrmlCoordinate>("POINTS")->point.set1Value(2, SbVec3f(0, 1, 0));
  const SbColor greens[] = {SbColor(0, 1, 0), SbColor(0, 1, 0), SbColor(0, 1, 0)};
  world.get<VrmlColor>("COLORS")->color.setValues(0, 3, greens);
  stage.redraw();
  EXPECT_TRUE(near(stage.at(0, 0), green));
  auto* set = world.get<VrmlIndexedFaceSet>("FACES");
  const int blues[] = {3, 3, 3};
  set->set_colorIndex.setValues(0, 3, blues);
  stage.redraw();
  EXPECT_TRUE(near(stage.at(0, 0), blue));
  const int low[] = {0, 1, 3};
  set->set_coordIndex.setValues(0, 3, low);
  stage.redraw();
  EXPECT_EQ(stage.at(0, 0.7f), black);
  EXPECT_EQ(complaints(world), 0) << world.messages.text();
}

TEST(IndexedFaceSetGL, MovingPointsLookLikeAFreshMesh) {
  FaceStage stage, fresh;
  for (const char* const fields : {"colorPerVertex FALSE", "colorPerVertex FALSE creaseAngle 0.4",
                                   "colorPerVertex FALSE creaseAngle 4", "colorPerVertex FALSE convex FALSE"})
    for (const int side : {6, 20}) {
      const std::string text = group(sunlight + faces(grid(side, fields), lit));
      TestWorld world(text);
      stage.draw(world);
      auto* const moving =
          static_cast<VrmlCoordinate*>(world.get<VrmlIndexedFaceSet>("FACES")->coord.getValue());
      std::vector<SbVec3f> points(moving->point.getValues(0),
                                  moving->point.getValues(0) + moving->point.getNum());
      for (int frame = 0; frame < 6; ++frame) {
        // Creases open and close, and points meet and part.
        for (std::size_t i = 0; i < points.size(); ++i)
          points[i][2] = 0.3f * static_cast<float>(frame % 3) * std::sin(static_cast<float>(i * (frame + 1)));
        if (frame == 3) points[1] = points[0];
        moving->point.setValues(0, static_cast<int>(points.size()), points.data());
        const host::Image moved = stage.redraw();
        TestWorld other(text);
        static_cast<VrmlCoordinate*>(other.get<VrmlIndexedFaceSet>("FACES")->coord.getValue())->point =
            moving->point;
        EXPECT_TRUE(alike(moved, fresh.draw(other), 1)) << fields << ", side " << side << ", frame " << frame;
      }
    }
}

TEST(IndexedFaceSetGL, PointsThatGoInSilenceAreNotFollowed) {
  // The indices change while nobody is told; then points go too, and that is told.
  FaceStage stage;
  for (const int side : {6, 20}) {
    TestWorld world(group(sunlight + faces(grid(side, "colorPerVertex FALSE creaseAngle 0.4"), lit)));
    stage.draw(world);
    auto* const set = world.get<VrmlIndexedFaceSet>("FACES");
    auto& point = static_cast<VrmlCoordinate*>(set->coord.getValue())->point;
    for (int frame = 0; frame < 4; ++frame) {
      point.set1Value(0, SbVec3f(-1.5f, -1.5f, static_cast<float>(frame)));
      stage.redraw();
    }
    set->coordIndex.enableNotify(FALSE);
    set->coordIndex.setNum(10);
    set->coordIndex.enableNotify(TRUE);
    point.setNum(side + 4);
    EXPECT_LT(countLit(stage.redraw()), 600);
    EXPECT_EQ(complaints(world), 0) << world.messages.text();
  }
}

TEST(IndexedFaceSetGL, OneLargeMeshServesTwoContexts) {
  TestWorld world(faces(grid(20, "colorPerVertex FALSE")));
  FaceStage stage;
  const host::Image picture = stage.draw(world);
  EXPECT_GT(countLit(picture), 1000);
  for (int round = 0; round < 2; ++round) {
    const auto context = openContext(Drawing::size, Drawing::size);
    VrmlRenderAction action(SbViewportRegion(Drawing::size, Drawing::size));
    action.setCacheContext(SoGLCacheContextElement::getUniqueCacheContext());
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    action.apply(stage.root());
    EXPECT_TRUE(alike(picture, context->picture(), 0)) << "in the other context";
    EXPECT_TRUE(alike(picture, stage.redraw(), 0)) << "in the first";
  }
  world.get<VrmlIndexedFaceSet>("FACES")->coordIndex.setNum(1010);
  EXPECT_LT(countLit(stage.redraw()), countLit(picture));
}

TEST(IndexedFaceSetGL, BuffersGoWithTheNode) {
  FaceStage stage;
  const auto buffers = [] {
    int count = 0;
    for (GLuint name = 1; name < 200; ++name) count += glIsBuffer(name) ? 1 : 0;
    return count;
  };
  TestWorld other(faces("coord Coordinate { point [ -1 -1 0, 1 -1 0, 0 1 0 ] } coordIndex [ 0 1 2 ]"));
  stage.draw(other);  // frees what earlier tests left
  const int before = buffers();
  {
    TestWorld world(faces(grid(20, "colorPerVertex FALSE")));
    stage.draw(world);
    EXPECT_EQ(buffers(), before + 2);
    world.get<VrmlIndexedFaceSet>("FACES")->creaseAngle = 1;
    stage.redraw();
    EXPECT_EQ(buffers(), before + 2) << "a changed mesh reuses them";
  }
  stage.draw(other);
  stage.redraw();
  EXPECT_EQ(buffers(), before);
}

// Reports

TEST(IndexedFaceSetGL, AFaultIsReportedOnceAndNothingDrawnUntilAChange) {
  FaceStage stage;
  TestWorld world(
      faces("coord Coordinate { point [ -1 -1 0, 1 -1 0, 0 1 0, 0 0 0 ] } coordIndex [ 0 1 2 -1 0 1 5 -1 ]",
            "appearance Appearance { material Material { emissiveColor 1 0 0 } } "));
  EXPECT_EQ(countLit(stage.draw(world)), 0);
  stage.redraw();
  EXPECT_EQ(world.messages.count("VrmlIndexedFaceSet(): vertex index 5 is out of range 0 - 4"), 1);
  EXPECT_EQ(world.messages.all().size(), 1u);

  auto* set = world.get<VrmlIndexedFaceSet>("FACES");
  set->coordIndex.set1Value(6, 7);
  stage.redraw();
  EXPECT_EQ(world.messages.count("vertex index 7 is out of range 0 - 4"), 1);
  set->coordIndex.set1Value(6, 2);
  EXPECT_GT(countLit(stage.redraw()), 100);
  EXPECT_EQ(world.messages.all().size(), 2u);
  set->normalIndex.setValue(6);
  stage.redraw();
  EXPECT_EQ(world.messages.count("normal index 6 is out of range 0 - 6"), 1) << "one is made for each corner";
}

TEST(IndexedFaceSetGL, WhatHasNoFacesIsSilent) {
  FaceStage stage;
  for (const char* const fields : {"", "coordIndex [ ]", "coordIndex [ -1 -1 ]", "coordIndex [ 0 1 ]",
                                   "coord Coordinate { point [ ] }"}) {
    TestWorld world(faces(fields));
    EXPECT_EQ(countLit(stage.draw(world)), 0) << fields;
    EXPECT_EQ(complaints(world), 0) << fields << ": " << world.messages.text();
  }
  for (const char* const fields :
       {"coordIndex [ 0 1 2 ]", "coordIndex [ 0 1 2 ] coord Coordinate { point [ ] }"}) {
    TestWorld world(faces(fields));
    EXPECT_EQ(countLit(stage.draw(world)), 0) << fields;
    stage.redraw();
    EXPECT_EQ(world.messages.count("VrmlIndexedFaceSet::setupIndices(): no coordinates specified\n"), 1);
  }
}
