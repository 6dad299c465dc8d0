// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/elements/SoGLCacheContextElement.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlElevationGrid.h>
#include <tessel/shapes/VrmlMaterial.h>

#include "shapes/Probe.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

constexpr char threeByTwo[] = "xDimension 3 zDimension 2 xSpacing 2 zSpacing 3 ";
constexpr char message[] = "Incorrect number of heights specified";

struct GridWorld : TestWorld {
  explicit GridWorld(const std::string& fields)
      : TestWorld("Shape { appearance Appearance { material Material { } } geometry DEF G ElevationGrid { " +
                  fields + " } }") {}
  VrmlElevationGrid& node() const { return *get<VrmlElevationGrid>("G"); }
  std::vector<Triangle> triangles() const { return trianglesOf(root()); }
};

/// A grid of n x n points that rises along x.
std::string slope(int n) {
  const std::string size = std::to_string(n);
  std::string heights;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) heights += std::to_string(i) + ' ';
  return "xDimension " + size + " zDimension " + size + " xSpacing 1 zSpacing 1 height [ " + heights + "]";
}

int countOf(SoNode* scene) {
  VrmlCountAction count;
  count.apply(scene);
  return count.numTriangles;
}

}  // namespace

TEST(ElevationGrid, IsAStripForEachTwoRows) {
  const GridWorld world(std::string(threeByTwo) + "height [ -5 -4 -3 -5 -4 -2 ]");
  const auto triangles = world.triangles();
  ASSERT_EQ(triangles.size(), 4U);
  EXPECT_EQ(triangles[0][0].point, SbVec3f(0, -5, 0));
  EXPECT_EQ(triangles[0][1].point, SbVec3f(0, -5, 3));
  EXPECT_EQ(triangles[0][2].point, SbVec3f(2, -4, 0));
  EXPECT_EQ(triangles[3][2].point, SbVec3f(4, -2, 3));
  for (const Triangle& t : triangles)
    for (const Corner& c : t) {
      EXPECT_GT((t[1].point - t[0].point).cross(t[2].point - t[0].point).dot(c.normal), 0);
      EXPECT_FLOAT_EQ(c.s, c.point[0] / 4);
      EXPECT_FLOAT_EQ(c.t, c.point[2] / 3);
    }
  const SbBox3f box = boxOf(world.root());
  EXPECT_EQ(box.getMin(), SbVec3f(0, -5, 0));
  EXPECT_EQ(box.getMax(), SbVec3f(4, -2, 3));
  EXPECT_EQ(countOf(world.root()), 4);
}

TEST(ElevationGrid, NormalsAreSmoothAndPointToTheFront) {
  for (const std::string order : {"", "ccw FALSE"}) {
    const GridWorld world(
        "creaseAngle 0 xDimension 3 zDimension 3 xSpacing 1 zSpacing 2 "
        "height [ 0 0 0, 0 4 0, 0 0 8 ] " +
        order);
    const float sign = order.empty() ? 1 : -1;
    for (const Triangle& t : world.triangles())
      for (const Corner& c : t) {
        if (c.point == SbVec3f(1, 4, 2)) {
          EXPECT_TRUE(c.normal.equals(SbVec3f(0, sign, 0), 1e-5f));
        }
        // At an edge the one neighbour counts: the tangents are (1, 4, 0) and (0, 0, 4).
        SbVec3f edge(-4, 1, 0);
        edge.normalize();
        if (c.point == SbVec3f(0, 0, 2)) {
          EXPECT_TRUE(c.normal.equals(edge * sign, 1e-5f));
        }
        EXPECT_NEAR(c.normal.length(), 1, 1e-5);
      }
  }
}

TEST(ElevationGrid, ListsGoByPointAndHoldTheirLastValueOrTheirFirst) {
  const std::string lists =
      "height [ 0 0 0 0 0 0 ] normal Normal { vector [ 0 1 0, 1 0 0 ] } color Color { color [ 1 0 0, 0 1 0 ] "
      "} "
      "texCoord TextureCoordinate { point [ .25 .5, .75 .125 ] } ";
  for (const Triangle& t : GridWorld(threeByTwo + lists).triangles())
    for (const Corner& c : t) {
      const bool isFirst = c.point == SbVec3f(0, 0, 0);
      EXPECT_EQ(c.normal, isFirst ? SbVec3f(0, 1, 0) : SbVec3f(1, 0, 0));
      EXPECT_EQ(c.diffuse, isFirst ? SbColor(1, 0, 0) : SbColor(0, 1, 0));
      EXPECT_EQ(c.s, isFirst ? 0.25f : 0.75f);
    }
  for (const Triangle& t :
       GridWorld(threeByTwo + lists + "normalPerVertex FALSE colorPerVertex FALSE").triangles())
    for (const Corner& c : t) {
      EXPECT_EQ(c.normal, SbVec3f(0, 1, 0));
      EXPECT_EQ(c.diffuse, SbColor(1, 0, 0));
    }
}

TEST(ElevationGrid, HeightsCanBeReplaced) {
  const GridWorld world(std::string(threeByTwo) + "height [ 0 0 0 0 0 0 ]");
  const float higher[] = {1, 2, 3, 4, 5, 6};
  world.node().set_height.setValues(0, 6, higher);
  EXPECT_EQ(world.node().height[5], 6);
  EXPECT_EQ(boxOf(world.root()).getMax(), SbVec3f(4, 6, 3));
  EXPECT_EQ(world.triangles()[0][0].point[1], 1);
}

TEST(ElevationGrid, IsPickedByQuad) {
  const GridWorld world(slope(20));
  for (const SbVec3f& direction : {SbVec3f(0, -1, 0), SbVec3f(0, -1, -0.01f), SbVec3f(0.3f, -1, 0.2f)}) {
    const SbVec3f target(7.25f, 7.25f, 3.6f);
    SoRayPickAction pick(SbViewportRegion(100, 100));
    pick.setRay(target - direction * 20, direction);
    pick.apply(world.root());
    const SoPickedPoint* point = pick.getPickedPoint();
    ASSERT_TRUE(point);
    EXPECT_TRUE(point->getPoint().equals(target, 1e-3f)) << point->getPoint().toString().getString();
    EXPECT_NEAR(point->getTextureCoords()[0], 7.25f / 19, 1e-4);
    ASSERT_TRUE(point->getDetail() && point->getDetail()->isOfType(SoFaceDetail::getClassTypeId()));
    const auto& face = *static_cast<const SoFaceDetail*>(point->getDetail());
    EXPECT_EQ(face.getFaceIndex(), 3 * 19 + 7);
    EXPECT_EQ(face.getPartIndex(), 3);
    ASSERT_EQ(face.getNumPoints(), 4);
    const int corners[] = {67, 87, 88, 68};
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(face.getPoint(i)->getCoordinateIndex(), corners[i]);
      EXPECT_EQ(face.getPoint(i)->getNormalIndex(), corners[i]);
      EXPECT_EQ(face.getPoint(i)->getMaterialIndex(), 0);
    }
  }
  EXPECT_EQ(hitsOf(world.root(), {-5, 3.3f, 4.4f}, {1, 0, 0}).size(), 1U);
  EXPECT_EQ(hitsOf(world.root(), {3.5f, 3.5f, -9}, {0, 0, 1}).size(), 0U);
  EXPECT_EQ(hitsOf(world.root(), {30, 30, 30}, {0, -1, 0}).size(), 0U);
}

// What the ray passes by is left out: as many hits as without that.
TEST(ElevationGrid, PicksMissNothing) {
  std::string heights;
  for (int k = 0; k < 15 * 15; ++k)
    heights += std::to_string(std::sin(0.7 * k) + 2 * std::cos(0.31 * k)) + ' ';
  for (const char* spacing : {"xSpacing .5 zSpacing 2 ", "xSpacing -1 zSpacing .7 "}) {
    const GridWorld world(std::string("xDimension 15 zDimension 15 ") + spacing + "height [ " + heights +
                          "]");
    const auto triangles = world.triangles();
    for (int k = 0; k < 50; ++k) {
      const SbVec3f from(10 * std::sin(2.1f * static_cast<float>(k)),
                         5 * std::cos(1.7f * static_cast<float>(k)), -9);
      const SbVec3f to = boxOf(world.root()).getCenter() + SbVec3f(0, 0, 5 * std::sin(static_cast<float>(k)));
      SoRayPickAction test(SbViewportRegion(100, 100));
      std::size_t expected = 0;
      const SbVec3f along = to - from;
      for (const Triangle& t : triangles) {
        const SbVec3f e1 = t[1].point - t[0].point, e2 = t[2].point - t[0].point, p = along.cross(e2);
        const float det = e1.dot(p);
        if (std::abs(det) < 1e-9f) continue;
        const SbVec3f s = from - t[0].point, q = s.cross(e1);
        const float u = s.dot(p) / det, v = along.dot(q) / det;
        if (u > 0 && v > 0 && u + v < 1 && e2.dot(q) / det > 0) ++expected;
      }
      EXPECT_NEAR(static_cast<double>(hitsOf(world.root(), from, along).size()),
                  static_cast<double>(expected), 1)
          << spacing << k;
    }
  }
}

TEST(ElevationGridGL, ColorsAndTheWrongNumberOfHeights) {
  const std::string colors = "height [ 0 0 0 0 0 0 ] color Color { color [ 1 0 0, 0 1 0 ] } solid FALSE ";
  const auto middleOf = [](const std::string& fields) {
    TestWorld world(
        "Transform { rotation 1 0 0 1.5708 translation -2 1.5 0 children Shape { geometry ElevationGrid { " +
        std::string(threeByTwo) + fields + " } } }");
    Drawing drawing(world.root());
    drawing.frame();
    return drawing.at(1, -0.5f);
  };
  EXPECT_EQ(middleOf(colors), (Colour{0, 255, 0}));
  EXPECT_EQ(middleOf(colors + "colorPerVertex FALSE"), (Colour{255, 0, 0}));

  const GridWorld world(std::string(threeByTwo) + "height [ 0 0 0 0 0 ]");
  EXPECT_EQ(countLit(world.root()), 0);
  EXPECT_EQ(world.messages.count(message), 1) << world.messages.text();
  EXPECT_EQ(world.messages.count("need 6, have 5"), 1);
  EXPECT_TRUE(world.triangles().empty());
}

// A material does not tell the geometry beside it that it has changed.
TEST(ElevationGridGL, ItsColorsTakeANewTransparencyInAllContexts) {
  for (const std::string& geometry : {"ElevationGrid { " + slope(40) + " color Color { color 1 0 0 } }",
                                      std::string("IndexedFaceSet { coord Coordinate { point [ 0 0 0, 40 0 "
                                                  "0, 0 0 40 ] } color Color { color [ 1 0 0, 1 0 0, 1 "
                                                  "0 0 ] } coordIndex [ ") +
                                          [] {
                                            std::string faces = "0 2 1 -1 ";
                                            for (int i = 0; i < 300; ++i) faces += "1 1 1 -1 ";
                                            return faces;
                                          }() +
                                          "] }"}) {
    const TestWorld world(
        "Transform { rotation 1 0 0 1.5708 translation -1 1 -1 scale .1 .1 .1 children Shape { appearance "
        "Appearance { "
        "material DEF M Material { emissiveColor 1 0 0 } } geometry " +
        geometry + " } }");
    Drawing first(world.root());
    first.frame();
    const Colour solid = first.at(0, 0);
    world.get<VrmlMaterial>("M")->transparency = 0.75f;
    {
      const auto context = openContext(Drawing::size, Drawing::size);
      VrmlRenderAction action(SbViewportRegion(Drawing::size, Drawing::size));
      action.setCacheContext(SoGLCacheContextElement::getUniqueCacheContext());
      action.setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
      action.apply(first.root.get());
    }
    first.frame();
    EXPECT_NEAR(first.at(0, 0).r, solid.r / 4, 2) << geometry.substr(0, 9);
  }
}

TEST(ElevationGridGL, HostileSizesAreRefusedOrEmpty) {
  for (const auto& [fields, reports] : std::initializer_list<std::pair<const char*, int>>{
           {"", 0},
           {"xDimension 1 zDimension 3 height [ 1 2 3 ]", 0},
           {"xDimension 3 zDimension 1 height [ 1 2 3 ]", 0},
           {"xDimension -2 zDimension -2", 0},
           {"xDimension -2 zDimension -2 height [ 1 2 3 4 ]", 1},
           {"xDimension 2147483647 zDimension 2147483647 height [ 1 ]", 1},
           {"xDimension 65536 zDimension 65536", 1},
           {"xDimension 2 zDimension 2 height [ 1 2 3 4 5 ]", 1}}) {
    const GridWorld world(fields);
    EXPECT_EQ(countLit(world.root()), 0) << fields;
    EXPECT_EQ(world.messages.count(message), reports) << fields << world.messages.text();
    EXPECT_TRUE(world.triangles().empty()) << fields;
    EXPECT_TRUE(hitsOf(world.root(), {0.5f, 9, 0.5f}, {0, -1, 0}).empty()) << fields;
    EXPECT_GE(countOf(world.root()), 0) << fields;
  }
  const GridWorld world(
      "xDimension 3 zDimension 2 xSpacing 1e38 zSpacing 3e38 height [ 3e38 -3e38 3e38 0 -3e38 1 ]");
  countLit(world.root());
  const SbBox3f box = boxOf(world.root());
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(std::isfinite(box.getMax()[i])) << i;
  for (const Triangle& t : world.triangles())
    for (const Corner& c : t) EXPECT_TRUE(std::isfinite(c.normal.length()));
}
