// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <set>
#include <tuple>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/nodes/SoComplexity.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlSphere.h>

#include "shapes/Probe.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

constexpr double pi = std::numbers::pi;

std::string shape(const std::string& geometry) {
  return "Shape { appearance Appearance { material Material { } } geometry " + geometry + " }";
}

void expectNear(const SbVec3f& actual, const SbVec3f& expected, float tolerance = 1e-4f) {
  EXPECT_TRUE(actual.equals(expected, tolerance * tolerance))
      << actual.toString().getString() << " is not " << expected.toString().getString();
}

void expectBox(SoNode* scene, const SbVec3f& low, const SbVec3f& high) {
  const SbBox3f box = boxOf(scene);
  ASSERT_FALSE(box.isEmpty());
  expectNear(box.getMin(), low);
  expectNear(box.getMax(), high);
}

}  // namespace

// The meshes

struct Solid {
  const char* geometry;
  double volume;
  float complexity;
  std::size_t triangles;
  double shrink;  // how much of the volume the mesh may lack
};
void PrintTo(const Solid& solid, std::ostream* out) { *out << solid.geometry << " at " << solid.complexity; }

class PrimitiveMesh : public ::testing::TestWithParam<Solid> {};

TEST_P(PrimitiveMesh, IsClosedAndFacesOutward) {
  const Solid& solid = GetParam();
  TestWorld world(shape(solid.geometry));
  ASSERT_TRUE(world.root()) << world.messages.text();
  const auto triangles = trianglesOf(world.root(), solid.complexity);
  EXPECT_EQ(triangles.size(), solid.triangles);
  EXPECT_TRUE(isClosed(triangles));
  const double volume = volumeOf(triangles);
  EXPECT_LE(volume, solid.volume * 1.0001);
  EXPECT_GE(volume, solid.volume * (1 - solid.shrink));
  for (const Triangle& t : triangles) {
    const SbVec3f face = (t[1].point - t[0].point).cross(t[2].point - t[0].point);
    if (face.sqrLength() < 1e-12f) continue;
    for (const Corner& c : t) {
      EXPECT_GT(face.dot(c.normal), 0) << "a normal points into the body";
      EXPECT_NEAR(c.normal.length(), 1, 1e-4);
    }
  }
}

// Triangles: sections and sides, divisions, depth follow from the complexity. A fan and each of its rings have one
// more step than sides, so that a fan of 16 sides has 16 triangles and a strip 32.
INSTANTIATE_TEST_SUITE_P(
    All, PrimitiveMesh,
    ::testing::Values(Solid{"Box { size 2 4 6 }", 48, 0.5f, 12, 0},
                      Solid{"Box { }", 8, 1, 6 * 16 * 16 * 2, 0}, Solid{"Sphere { }", 4 * pi / 3, 0, 8, 0.7},
                      Solid{"Sphere { radius 2 }", 32 * pi / 3, 0.5f, 200, 0.1},
                      Solid{"Sphere { }", 4 * pi / 3, 1, 8 * 30 * 30, 0.003},
                      Solid{"Cylinder { radius 2 height 3 }", 12 * pi, 0.5f, 64, 0.03},
                      Solid{"Cylinder { }", 2 * pi, 1, 8 * 64 * 2 + 2 * (7 * 64 * 2 + 64), 0.002},
                      Solid{"Cylinder { }", 2 * pi, 0, 6 + 2 * 3, 0.6},
                      Solid{"Cone { bottomRadius 2 height 3 }", 4 * pi, 0.5f, 32 + 16, 0.03},
                      Solid{"Cone { }", 2 * pi / 3, 1, 8 * 64 * 2 + 7 * 64 * 2 + 64, 0.002}));

TEST(PrimitiveMesh, TexturesStandUprightAndMeetAtTheSeam) {
  TestWorld box(shape("Box { }"));
  for (const Triangle& t : trianglesOf(box.root()))
    for (const Corner& c : t) {
      if (c.part != 0) continue;  // the front
      EXPECT_EQ(c.s, c.point[0] > 0 ? 1 : 0);
      EXPECT_EQ(c.t, c.point[1] > 0 ? 1 : 0);
    }
  // Round the cylinder s falls from 1 at the back by way of +x; round the cone it rises.
  const auto sAtRight = [](const char* geometry) {
    TestWorld world(shape(geometry));
    for (const Triangle& t : trianglesOf(world.root()))
      for (const Corner& c : t)
        if (c.part == 1 && c.point[0] > 0.99f) return c.s;
    return -1.0f;
  };
  EXPECT_NEAR(sAtRight("Cylinder { }"), 0.75f, 1e-5);
  EXPECT_NEAR(sAtRight("Cone { }"), 0.25f, 1e-5);
  // No triangle of the sphere runs back through the whole texture.
  TestWorld sphere(shape("Sphere { }"));
  for (const Triangle& t : trianglesOf(sphere.root())) {
    const auto [low, high] = std::minmax({t[0].s, t[1].s, t[2].s});
    EXPECT_LT(high - low, 0.3f);
    for (const Corner& c : t) {
      const bool isPole = std::abs(c.point[1]) > 0.99f;
      EXPECT_NEAR(c.t, isPole ? (c.point[1] > 0 ? 1 : 0) : std::asin(c.point[1]) * 0.318 + 0.5, 1e-4);
    }
  }
}

TEST(PrimitiveMesh, TellsTheParts) {
  for (const auto& [geometry, parts] :
       std::map<std::string, std::set<int>>{{"Box { }", {0, 1, 2, 3, 4, 5}},
                                            {"Cylinder { }", {1, 2, 4}},
                                            {"Cylinder { side FALSE }", {2, 4}},
                                            {"Cone { }", {1, 2}},
                                            {"Cone { bottom FALSE }", {1}}}) {
    TestWorld world(shape(geometry));
    std::set<int> seen;
    for (const Triangle& t : trianglesOf(world.root())) seen.insert(t[0].part);
    EXPECT_EQ(seen, parts) << geometry;
  }
}

TEST(PrimitiveMesh, StaysSmallForSizesThatAreNoneAndEndlessDetail) {
  for (const char* geometry : {"Box { size 1e38 1e38 -1 }", "Sphere { radius -1e30 }",
                               "Cylinder { radius 1e38 height -1e38 }", "Cone { bottomRadius 0 height 0 }"}) {
    TestWorld world(shape(geometry));
    for (const float complexity : {-5.0f, 0.5f, 1e30f, std::nanf("")})
      EXPECT_LT(trianglesOf(world.root(), complexity).size(), 2000000u) << geometry << complexity;
  }
  TestWorld world(shape("DEF BALL Sphere { }"));
  world.get<VrmlSphere>("BALL")->radius = std::nanf("");
  EXPECT_TRUE(boxOf(world.root()).isEmpty());
  EXPECT_TRUE(hitsOf(world.root(), {0, 0, 10}, {0, 0, -1}).empty());
}

// Boxes and counts

TEST(PrimitiveBox, FollowsTheParts) {
  const auto box = [](const std::string& geometry, const SbVec3f& low, const SbVec3f& high) {
    SCOPED_TRACE(geometry);
    TestWorld world(shape(geometry));
    expectBox(world.root(), low, high);
  };
  box("Box { size 1 2 3 }", {-0.5f, -1, -1.5f}, {0.5f, 1, 1.5f});
  box("Box { size -1 2 3 }", {-0.5f, -1, -1.5f}, {0.5f, 1, 1.5f});
  box("Sphere { radius 3 }", {-3, -3, -3}, {3, 3, 3});
  box("Cylinder { radius 2 height 6 }", {-2, -3, -2}, {2, 3, 2});
  box("Cylinder { side FALSE bottom FALSE }", {-1, 1, -1}, {1, 1, 1});
  box("Cylinder { side FALSE top FALSE }", {-1, -1, -1}, {1, -1, 1});
  box("Cylinder { top FALSE bottom FALSE }", {-1, -1, -1}, {1, 1, 1});
  box("Cylinder { side FALSE top FALSE bottom FALSE }", {0, 0, 0}, {0, 0, 0});
  box("Cone { bottomRadius 2 height 6 }", {-2, -3, -2}, {2, 3, 2});
  box("Cone { side FALSE }", {-1, -1, -1}, {1, -1, 1});
  box("Cone { bottom FALSE }", {-1, -1, -1}, {1, 1, 1});
  TestWorld nothing(shape("Cone { side FALSE bottom FALSE }"));
  EXPECT_TRUE(boxOf(nothing.root()).isEmpty());
}

TEST(PrimitiveCount, IsFixedWhateverTheComplexity) {
  for (const auto& [geometry, triangles] : std::map<std::string, int>{{"Box { }", 12},
                                                                      {"Sphere { }", 200},
                                                                      {"Cylinder { }", 64},
                                                                      {"Cylinder { side FALSE }", 32},
                                                                      {"Cylinder { bottom FALSE }", 48},
                                                                      {"Cone { }", 32},
                                                                      {"Cone { bottom FALSE }", 16}}) {
    TestWorld world(shape(geometry));
    VrmlCountAction count;
    count.apply(world.root());
    EXPECT_EQ(count.numTriangles, triangles) << geometry;
  }
}

// Picking

TEST(PrimitivePick, SphereIsExact) {
  TestWorld world("Transform { translation 5 0 0 children " + shape("Sphere { radius 2 }") + " }");
  const auto hits = hitsOf(world.root(), {6, 0, 10}, {0, 0, -1});
  ASSERT_EQ(hits.size(), 2u);
  const float z = std::sqrt(3.0f);
  expectNear(hits[0].point, {6, 0, z});
  expectNear(hits[0].normal, {0.5f, 0, z / 2});
  EXPECT_NEAR(hits[0].texCoords[0], std::atan2(1, z) * 0.159 + 0.5, 1e-5);
  EXPECT_NEAR(hits[0].texCoords[1], 0.5, 1e-5);
  EXPECT_EQ(hits[0].part, -1);
  expectNear(hits[1].point, {6, 0, -z});
  EXPECT_TRUE(hitsOf(world.root(), {7.1f, 0, 10}, {0, 0, -1}).empty());
}

TEST(PrimitivePick, BoxTellsTheFace) {
  TestWorld world(shape("Box { size 2 4 6 }"));
  const auto hits = hitsOf(world.root(), {10, 1, 0}, {-1, 0, 0});
  ASSERT_EQ(hits.size(), 2u);
  expectNear(hits[0].point, {1, 1, 0});
  expectNear(hits[0].normal, {1, 0, 0});
  EXPECT_EQ(hits[0].part, 3);
  EXPECT_NEAR(hits[0].texCoords[0], 0.5, 1e-5);
  EXPECT_NEAR(hits[0].texCoords[1], 0.75, 1e-5);
  EXPECT_EQ(hits[1].part, 2);
}

TEST(PrimitivePick, WhatLiesBehindTheEyeIsNotHit) {
  for (const std::string geometry :
       {"Box { size 20 20 20 }", "Sphere { radius 9 }", "Cylinder { radius 9 height 9 }",
        "Extrusion { spine [ 0 2 -9, 0 2 9 ] }",
        "IndexedFaceSet { solid FALSE coordIndex [ 0 1 2 -1 3 4 5 -1 ] "
        "coord Coordinate { point [ -9 -9 -5, 9 -9 -5, 0 9 -5, -9 -9 9, 9 -9 9, 0 9 9 ] } }",
        "ElevationGrid { solid FALSE xDimension 2 zDimension 3 xSpacing 1 zSpacing 9 height [ 4 4 0 0 4 4 ] "
        "}",
        "IndexedLineSet { coord Coordinate { point [ -1 2 -3, 1 2 -3, -1 2 9, 1 2 9 ] } coordIndex [ 0 1 -1 "
        "2 3 ] }",
        "PointSet { coord Coordinate { point [ .2 2 -3, .2 2 9 ] } }"}) {
    const TestWorld world("Transform { translation 0 -2 0 children " + shape(geometry) + " }");
    SoRayPickAction pick(SbViewportRegion(100, 100));
    pick.setPickAll(TRUE);
    pick.setRay({.2f, 0, 5}, {0, 0, -1}, 0, 100);
    pick.apply(world.root());
    ASSERT_GE(pick.getPickedPointList().getLength(), 1) << geometry;
    for (int i = 0; i < pick.getPickedPointList().getLength(); ++i)
      EXPECT_LT(pick.getPickedPointList()[i]->getPoint()[2], 5) << geometry;
  }
}

TEST(PrimitivePick, CylinderThroughBothDiscsOnly) {
  TestWorld world(shape("Cylinder { radius 2 height 6 }"));
  auto hits = hitsOf(world.root(), {1, 10, 0.5f}, {0, -1, 0});
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0].part, 2);
  expectNear(hits[0].point, {1, 3, 0.5f});
  expectNear(hits[0].normal, {0, 1, 0});
  EXPECT_NEAR(hits[0].texCoords[0], 0.75, 1e-5);
  EXPECT_NEAR(hits[0].texCoords[1], 0.375, 1e-5);
  EXPECT_EQ(hits[1].part, 4);
  EXPECT_NEAR(hits[1].texCoords[1], 0.625, 1e-5);

  hits = hitsOf(world.root(), {0, 1.5f, 10}, {0, 0, -1});  // through the side only
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0].part, 1);
  expectNear(hits[0].normal, {0, 0, 1});
  EXPECT_NEAR(hits[0].texCoords[0], 0.5, 1e-5);
  EXPECT_NEAR(hits[0].texCoords[1], 0.75, 1e-5);
  EXPECT_EQ(hits[1].part, 1);

  hits = hitsOf(world.root(), {0, 5, 0}, {0.5f, -1, 0});  // in by the top, out by the side
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0].part, 2);
  EXPECT_EQ(hits[1].part, 1);
  EXPECT_TRUE(hitsOf(world.root(), {0, 3.1f, 10}, {0, 0, -1}).empty());
}

TEST(PrimitivePick, PartsThatAreOffAreNotHit) {
  TestWorld tube(shape("Cylinder { top FALSE bottom FALSE }"));
  EXPECT_TRUE(hitsOf(tube.root(), {0.5f, 10, 0}, {0, -1, 0}).empty());
  TestWorld discs(shape("Cylinder { side FALSE }"));
  EXPECT_TRUE(hitsOf(discs.root(), {0, 0, 10}, {0, 0, -1}).empty());
  EXPECT_EQ(hitsOf(discs.root(), {0, 10, 0}, {0, -1, 0}).size(), 2u);
  TestWorld hat(shape("Cone { bottom FALSE }"));
  EXPECT_EQ(hitsOf(hat.root(), {0.5f, 10, 0}, {0, -1, 0}).size(), 1u);
}

TEST(PrimitivePick, ConeSideAndBase) {
  TestWorld world("Transform { translation 0 0 -3 children " + shape("Cone { bottomRadius 2 height 3 }") +
                  " }");
  // Down at half the radius: the side at half the height, then the base.
  auto hits = hitsOf(world.root(), {1, 10, -3}, {0, -1, 0});
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0].part, 1);
  expectNear(hits[0].point, {1, 0, -3});
  SbVec3f normal(3, 2, 0);  // across the side, which falls by 3 over 2
  normal.normalize();
  expectNear(hits[0].normal, normal);
  EXPECT_NEAR(hits[0].texCoords[0], 0.75, 1e-5);
  EXPECT_NEAR(hits[0].texCoords[1], 0.5, 1e-5);
  EXPECT_EQ(hits[1].part, 2);
  expectNear(hits[1].point, {1, -1.5f, -3});
  EXPECT_NEAR(hits[1].texCoords[0], 0.75, 1e-5);
  // Across at a quarter of the height, the nearer side first; above the tip nothing, not even the mirrored cone.
  hits = hitsOf(world.root(), {0, -0.75f, 10}, {0, 0, -1});
  ASSERT_EQ(hits.size(), 2u);
  expectNear(hits[0].point, {0, -0.75f, -1.5f});
  expectNear(hits[1].point, {0, -0.75f, -4.5f});
  EXPECT_TRUE(hitsOf(world.root(), {0, 1.6f, 10}, {0, 0, -1}).empty());
  // Down the axis: the tip once, then the base.
  hits = hitsOf(world.root(), {0, 10, -3}, {0, -1, 0});
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[1].part, 2);
}

TEST(PrimitivePick, ConeAlongALineOfItsSide) {
  // Parallel to the line from the tip to (1, -1, 0), one to the right: meets the far half of the side once only.
  TestWorld world(shape("Cone { }"));
  const auto hits = hitsOf(world.root(), {-0.5f, 1, 0}, {1, -2, 0});
  ASSERT_EQ(hits.size(), 2u);
  EXPECT_EQ(hits[0].part, 1);
  EXPECT_EQ(hits[1].part, 2);
}

TEST(PrimitivePick, FlatConeIsPickedAsItIsDrawn) {
  TestWorld world(shape("Cone { height 0 }"));
  EXPECT_FALSE(hitsOf(world.root(), {0.3f, 10, 0.1f}, {0, -1, 0}).empty());
}

// Drawing

class PrimitiveGL : public ::testing::TestWithParam<std::tuple<const char*, double>> {};

TEST_P(PrimitiveGL, FillsItsOutline) {
  const auto& [geometry, area] = GetParam();
  TestWorld world(shape(geometry));
  LitDrawing drawing(world.root());
  const auto picture = drawing.frame();
  const double pixels = area * 16 * 16;
  EXPECT_NEAR(countLit(picture), pixels, 0.06 * pixels);
  // Lit straight on, by the default material: as bright as its diffuse colour.
  if (std::string(geometry).find("Cone") == std::string::npos) {
    EXPECT_TRUE(near(drawing.at(0.05f, 0.05f), {204, 204, 204}, 14)) << drawing.at(0.05f, 0.05f);
  }
  for (int frame = 0; frame < 4; ++frame) EXPECT_EQ(drawing.frame().rgb, picture.rgb) << "frame " << frame;
}

INSTANTIATE_TEST_SUITE_P(All, PrimitiveGL,
                         ::testing::Values(std::make_tuple("Box { size 3 2 1 }", 6.0),
                                           std::make_tuple("Sphere { radius 1.5 }", 2.25 * pi),
                                           std::make_tuple("Cylinder { radius 1.5 height 2 }", 6.0),
                                           std::make_tuple("Cone { bottomRadius 1.5 height 2 }", 3.0)));

TEST(PrimitiveGL, UnlitAndTexturedWaysDrawTheSameOutline) {
  TestWorld lit(shape("Sphere { }"));
  TestWorld unlit("Shape { geometry Sphere { } }");
  TestWorld textured(
      "Shape { appearance Appearance { material Material { } texture PixelTexture { image 1 1 3 0xFF0000 } } "
      "geometry Sphere { } }");
  const int pixels = countLit(lit.root());
  EXPECT_EQ(countLit(unlit.root()), pixels);
  EXPECT_EQ(countLit(textured.root()), pixels);
}

TEST(PrimitiveGL, BoundingBoxComplexityDrawsTheBox) {
  TestWorld world(shape("Sphere { }"));
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  auto* boxes = new SoComplexity;
  boxes->type = SoComplexity::BOUNDING_BOX;
  root->addChild(boxes);
  root->addChild(world.root());
  EXPECT_NEAR(countLit(root.get()), 32 * 32, 70);
}
