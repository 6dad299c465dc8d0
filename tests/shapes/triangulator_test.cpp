// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlTriangulator.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/fields/SoMFInt32.h>
#include <Inventor/fields/SoMFVec3f.h>

#include "support/TestWorld.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

struct Polygon {
  explicit Polygon(const std::vector<SbVec2f>& corners) {
    tessel::test::startLibrary();
    for (const SbVec2f& corner : corners) {
      indices.set1Value(points.getNum(), points.getNum());
      points.set1Value(points.getNum(), corner[0], 0, corner[1]);
    }
    indices.set1Value(indices.getNum(), -1);
  }

  int cut() { return VrmlTriangulator::triangulate(points, indices, cutUp); }
  std::vector<int> result() const { return {cutUp.getValues(0), cutUp.getValues(0) + cutUp.getNum()}; }

  SoMFVec3f points;
  SoMFInt32 indices, cutUp;
};

/// Twice the area of a face of the list, which begins at `start`.
float turn(const Polygon& polygon, const std::vector<int>& face) {
  float area = 0;
  for (std::size_t i = 0; i < face.size(); ++i) {
    const SbVec3f a = polygon.points[face[i]], b = polygon.points[face[(i + 1) % face.size()]];
    area += a[0] * b[2] - b[0] * a[2];
  }
  return area;
}

std::vector<std::vector<int>> facesOf(const std::vector<int>& indices) {
  std::vector<std::vector<int>> faces(1);
  for (const int index : indices) {
    if (index < 0)
      faces.emplace_back();
    else
      faces.back().push_back(index);
  }
  faces.pop_back();
  return faces;
}

std::vector<SbVec2f> star(int corners, float inner) {
  std::vector<SbVec2f> outline;
  for (int i = 0; i < corners; ++i) {
    const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / static_cast<float>(corners);
    const float radius = i % 2 ? inner : 1;
    outline.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
  }
  return outline;
}

const std::vector<SbVec2f> square = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

}  // namespace

class TriangulatorOutlines : public ::testing::TestWithParam<std::vector<SbVec2f>> {};

TEST_P(TriangulatorOutlines, BecomeTrianglesOfOneWindingThatFillThem) {
  for (const bool isReversed : {false, true}) {
    std::vector<SbVec2f> outline = GetParam();
    if (isReversed) std::reverse(outline.begin(), outline.end());
    Polygon polygon(outline);
    const int count = static_cast<int>(outline.size());
    const float area =
        turn(polygon, facesOf({polygon.indices.getValues(0), polygon.indices.getValues(0) + count + 1})[0]);
    EXPECT_EQ(VrmlTriangulator::clockWiseTest(polygon.points, polygon.indices, 0, count), area > 0);
    ASSERT_EQ(polygon.cut(), 1);
    float filled = 0;
    const auto faces = facesOf(polygon.result());
    EXPECT_LE(faces.size(), outline.size() - 2);
    for (const auto& face : faces) {
      ASSERT_EQ(face.size(), 3U);
      EXPECT_GT(turn(polygon, face), 0);
      filled += turn(polygon, face);
    }
    EXPECT_NEAR(filled, std::abs(area), 1e-4);
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, TriangulatorOutlines,
    ::testing::Values(square, star(10, 0.4f), star(60, 0.9f), star(7, 1),
                      // An L, a comb, and a spiral, which has no triangle at its first corner.
                      std::vector<SbVec2f>{{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 3}, {0, 3}},
                      std::vector<SbVec2f>{
                          {0, 0}, {5, 0}, {5, 3}, {4.5f, 1}, {3.5f, 3}, {3, 1}, {2, 3}, {1.5f, 1}, {0, 3}},
                      std::vector<SbVec2f>{{1.9f, 2.1f},
                                           {2.8f, 2.3f},
                                           {3.1f, 3.8f},
                                           {0.2f, 4.1f},
                                           {-0.1f, 0.1f},
                                           {5.2f, 0},
                                           {4.9f, 5.1f},
                                           {4.2f, 4.9f},
                                           {4.1f, 0.9f},
                                           {0.9f, 1.2f},
                                           {1.1f, 2.9f},
                                           {2.1f, 3.2f}}));

TEST(Triangulator, CornersOnAStraightSideGo) {
  Polygon beside({{0, 0}, {0.5f, 0}, {1, 0}, {1, 1}, {0, 1}});
  ASSERT_EQ(beside.cut(), 1);
  EXPECT_EQ(facesOf(beside.result()).size(), 2U);
  EXPECT_THAT(beside.result(), Not(::testing::Contains(1)));
  Polygon line({{0, 0}, {1, 0}, {2, 0}, {3, 0}});
  EXPECT_EQ(line.cut(), 1);
  EXPECT_THAT(line.result(), IsEmpty());
}

TEST(Triangulator, TrianglesStayAndEmptyPolygonsGo) {
  Polygon triangle({{0, 0}, {0, 1}, {1, 0}, {5, 5}});
  const std::int32_t list[] = {-1, 0, 1, 2, -1, -1, 0, 2, 1};
  triangle.indices.setNum(9);
  triangle.indices.setValues(0, 9, list);
  EXPECT_EQ(triangle.cut(), 1);
  EXPECT_THAT(triangle.result(), ElementsAre(0, 1, 2, -1, 0, 2, 1));
}

TEST(Triangulator, WhatCannotBeCutIsRefused) {
  Polygon raised(square);
  raised.points.set1Value(2, 1, 0.1f, 1);
  raised.cutUp.setValue(7);
  EXPECT_EQ(raised.cut(), 0);
  EXPECT_THAT(raised.result(), ElementsAre(7));
  Polygon missing(square);
  missing.indices.set1Value(1, 99);
  EXPECT_EQ(missing.cut(), 0);
  Polygon crossing({{7, 6}, {1, 2}, {3, 1}, {9, 8}, {1, 1}, {8, 6}});
  EXPECT_EQ(crossing.cut(), 0);
  Polygon unknown({{0, 0}, {1, 0}, {std::nanf(""), 1}, {1, 1}, {0, 1}});
  EXPECT_EQ(unknown.cut(), 0);
}

TEST(Triangulator, SegmentsThatMeetAtAnEndDoNotCross) {
  const Polygon p({{0, 0}, {2, 2}, {0, 2}, {2, 0}, {0, 4}, {1, 1.1f}});
  const auto crosses = [&p](int a, int b, int c, int d) {
    return !VrmlTriangulator::triangEdgeTest(p.points, a, b, c, d);
  };
  EXPECT_TRUE(crosses(0, 1, 2, 3));
  EXPECT_FALSE(crosses(0, 1, 1, 2));
  EXPECT_FALSE(crosses(0, 1, 0, 2));
  EXPECT_FALSE(crosses(2, 3, 5, 1));
  EXPECT_TRUE(VrmlTriangulator::triangInsideTest(p.points, 5, 0, 3, 4));
  EXPECT_FALSE(VrmlTriangulator::triangInsideTest(p.points, 5, 4, 3, 0));
  EXPECT_FALSE(VrmlTriangulator::triangInsideTest(p.points, 5, 0, 3, 2));
}
