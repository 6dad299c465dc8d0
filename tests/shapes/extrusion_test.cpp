// SPDX-License-Identifier: BSD-3-Clause
#include <gmock/gmock.h>

#include <cmath>
#include <string>
#include <vector>

#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/sensors/SoFieldSensor.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlExtrusion.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>

#include "shapes/ExtrusionSurface.h"
#include "shapes/Probe.h"
#include "shapes/SpineFrames.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

std::string extrusion(const std::string& fields) {
  return "Shape { appearance Appearance { material Material { } } geometry DEF E Extrusion { " + fields +
         " } }";
}

struct ExtrusionWorld : TestWorld {
  explicit ExtrusionWorld(const std::string& fields) : TestWorld(extrusion(fields)) {}
  VrmlExtrusion& node() const { return *get<VrmlExtrusion>("E"); }
  std::vector<Triangle> triangles() const { return trianglesOf(root()); }
};

constexpr char squareOutline[] = "crossSection [ 1 1, 1 -1, -1 -1, -1 1, 1 1 ] ";
constexpr char ring[] = "spine [ 3 0 0, 0 3 0, -3 0 0, 0 -3 0, 3 0 0 ] ";

}  // namespace

// The surface

struct Body {
  const char* fields;
  std::size_t triangles;
  double volume;  // below 0: inside out, as the outline asks for
};
void PrintTo(const Body& body, std::ostream* out) { *out << body.fields; }

class ExtrusionBodies : public ::testing::TestWithParam<Body> {};

TEST_P(ExtrusionBodies, AreClosedAndFaceOneWay) {
  const ExtrusionWorld world(GetParam().fields);
  ASSERT_TRUE(world.root());
  const auto triangles = world.triangles();
  EXPECT_EQ(triangles.size(), GetParam().triangles);
  EXPECT_TRUE(isClosed(triangles));
  EXPECT_NEAR(volumeOf(triangles), GetParam().volume, 1e-3 * std::abs(GetParam().volume));
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

INSTANTIATE_TEST_SUITE_P(
    All, ExtrusionBodies,
    ::testing::Values(Body{"", 12, 4}, Body{"crossSection [ 1 1, -1 1, -1 -1, 1 -1, 1 1 ]", 12, -4},
                      // Triangular outlines of both windings.
                      Body{"crossSection [ 0 0, 1 0, 0 -1, 0 0 ]", 8, 0.5},
                      Body{"crossSection [ 0 0, 0 -1, 1 0, 0 0 ]", 8, -0.5},
                      // A concave outline, though it is said to be convex.
                      Body{"crossSection [ 0 0, 3 0, 3 -1, 1 -1, 1 -3, 0 -3, 0 0 ]", 12 + 8, 5},
                      // Points that repeat, in outlines of both windings.
                      Body{"crossSection [ 1 1, 1 -1, 1 -1, -1 -1, -1 -1, -1 -1, -1 1, 1 1, 1 1 ]", 20, 4},
                      Body{"crossSection [ 1 1, -1 1, -1 1, -1 -1, -1 -1, -1 -1, 1 -1, 1 1, 1 1 ]", 20, -4},
                      // A spine that climbs, one that bends, and a frustum by `scale`.
                      Body{"spine [ 1 2 3, 1 5 7 ]", 12, 20}, Body{"spine [ 0 0 0, 0 0 -3 ]", 12, 12},
                      Body{"spine [ 0 0 0, 0 1 0, 0 2 0, 0 4 0 ]", 24 + 4, 16},
                      Body{"spine [ 0 0 0, 0 3 0 ] scale [ 1 1, 2 2 ]", 12, 28},
                      Body{"spine [ 0 0 0, 0 0 0, 0 1 0, 0 1 0, 0 2 0, 0 2 0 ]", 40 + 4, 8},
                      // A ring of four parts; the caps stand back to back at its seam.
                      Body{"crossSection [ .5 .5, .5 -.5, -.5 -.5, -.5 .5, .5 .5 ] spine [ 3 0 0, 0 3 0, -3 "
                           "0 0, 0 -3 0, 3 0 0 ]",
                           36, 12},
                      // One value holds for all rows, or the last one.
                      Body{"scale 2 .5", 12, 4},
                      Body{"spine [ 0 0 0, 0 1 0, 0 2 0 ] scale [ 1 1, 2 2 ]", 20, 4 * (1 + 4.0 / 3 + 4)}));

TEST(Extrusion, OutlinesAreScaledThenTurnedThenPutAcrossTheSpine) {
  // Along x the outline's x axis points down; a quarter turn about its y axis brings its long side to z.
  const ExtrusionWorld world(squareOutline +
                             std::string("scale 2 1 orientation 0 1 0 1.5707963 spine [ 0 0 0, 5 0 0 ]"));
  const SbBox3f box = boxOf(world.root());
  EXPECT_TRUE(box.getMin().equals({0, -1, -2}, 1e-4f)) << box.getMin().toString().getString();
  EXPECT_TRUE(box.getMax().equals({5, 1, 2}, 1e-4f)) << box.getMax().toString().getString();
}

TEST(Extrusion, CapsCanBeLeftOutAndComeBack) {
  const ExtrusionWorld world("beginCap FALSE");
  EXPECT_EQ(world.triangles().size(), 10U);
  world.node().endCap = FALSE;
  EXPECT_EQ(world.triangles().size(), 8U);
  world.node().beginCap = TRUE;
  EXPECT_EQ(world.triangles().size(), 10U);
  for (const Triangle& t : world.triangles())
    if (t[0].point[1] == 0 && t[1].point[1] == 0 && t[2].point[1] == 0) {
      EXPECT_LT(t[0].normal[1], -0.99f);
    }
}

TEST(Extrusion, AnOutlineWithoutAreaHasNoCaps) {
  for (const char* outline : {"0 0, 1 0", "0 0, 1 0, 0 0", "0 0, 1 0, 2 0, 3 0", "5 5", ""}) {
    const ExtrusionWorld world("crossSection [ " + std::string(outline) + " ]");
    for (const Triangle& t : world.triangles())
      EXPECT_FALSE(t[0].point[1] == t[1].point[1] && t[1].point[1] == t[2].point[1]) << outline;
    EXPECT_FALSE(world.triangles().empty()) << outline;
  }
}

TEST(Extrusion, TexturesGoAlongOutlineAndSpineAndAcrossCaps) {
  const ExtrusionWorld world("crossSection [ 0 0, 3 0, 3 -1, 0 -1, 0 0 ] spine [ 0 0 0, 0 1 0, 0 4 0 ]");
  for (const Triangle& t : world.triangles()) {
    const bool isCap = t[0].point[1] == t[1].point[1] && t[1].point[1] == t[2].point[1];
    for (const Corner& c : t) {
      if (isCap) {
        EXPECT_FLOAT_EQ(c.s, c.point[0] / 3);
        EXPECT_FLOAT_EQ(c.t, -c.point[2]);
      } else {
        EXPECT_FLOAT_EQ(c.t, c.point[1] / 4);
        if (c.point[0] == 3) {
          EXPECT_TRUE(std::abs(c.s - 3.0f / 8) < 1e-5f || std::abs(c.s - 0.5f) < 1e-5f) << c.s;
        }
      }
    }
  }
}

TEST(Extrusion, NormalsFollowTheCreaseAngle) {
  const auto facesSmooth = [](const ExtrusionWorld& world) {
    for (const Triangle& t : world.triangles())
      if (!t[0].normal.equals(t[1].normal, 1e-6f)) return true;
    return false;
  };
  const std::string bent =
      "crossSection [ .1 0, 0 -.1, -.1 0, 0 .1, .1 0 ] spine [ 0 0 0, 0 1 0, .3 2 0, 1 3 0 ] ";
  EXPECT_FALSE(facesSmooth(ExtrusionWorld(bent)));
  EXPECT_TRUE(facesSmooth(ExtrusionWorld(bent + "creaseAngle 0.6")));
}

// Frames

namespace {

std::vector<SbRotation> framesOf(const std::vector<SbVec3f>& spine) {
  std::vector<SbRotation> frames;
  tessel::calcRideAlongSpineRotations(spine, frames);
  return frames;
}

SbVec3f turned(const SbRotation& rotation, const SbVec3f& v) {
  SbVec3f result;
  rotation.multVec(v, result);
  return result;
}

void expectAxes(const SbRotation& frame, const SbVec3f& x, const SbVec3f& y) {
  EXPECT_TRUE(turned(frame, {1, 0, 0}).equals(x, 1e-4f)) << turned(frame, {1, 0, 0}).toString().getString();
  EXPECT_TRUE(turned(frame, {0, 1, 0}).equals(y, 1e-4f)) << turned(frame, {0, 1, 0}).toString().getString();
}

}  // namespace

TEST(SpineFrames, ASpineThatDoesNotBendHasOneFrame) {
  EXPECT_EQ(framesOf({}).size(), 1U);
  EXPECT_TRUE(framesOf({{5, 5, 5}})[0].equals(SbRotation::identity(), 1e-6f));
  for (const SbRotation& frame : framesOf({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}))
    EXPECT_TRUE(frame.equals(SbRotation::identity(), 1e-6f));
  for (const SbRotation& frame : framesOf({{0, 0, 0}, {2, 0, 0}})) expectAxes(frame, {0, -1, 0}, {1, 0, 0});
  // Also back and forth on a line, and with a direction that floats don't hold exactly.
  for (const SbRotation& frame : framesOf({{0, 0, 0}, {1, 2, 3}, {3, 6, 9}, {3, 6, 9}, {-1, -2, -3}}))
    EXPECT_TRUE(turned(frame, {0, 1, 0}).equals(SbVec3f(1, 2, 3) / std::sqrt(14.0f), 1e-4f));
}

TEST(SpineFrames, FollowTheChordsOfABend) {
  const float h = std::sqrt(0.5f);
  const auto open = framesOf({{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 1, 0}, {1, 2, 0}});
  // z is turned to the viewer; the bend to the right and that to the left keep it.
  expectAxes(open[0], {1, 0, 0}, {0, 1, 0});
  expectAxes(open[1], {h, -h, 0}, {h, h, 0});
  expectAxes(open[2], {0, -1, 0}, {1, 0, 0});
  expectAxes(open[3], {1, 0, 0}, {0, 1, 0});
  expectAxes(open[4], {1, 0, 0}, {0, 1, 0});

  const auto closed = framesOf({{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {1, 0, 0}});
  expectAxes(closed[0], {1, 0, 0}, {0, 1, 0});
  expectAxes(closed[1], {0, 1, 0}, {-1, 0, 0});
  EXPECT_EQ(closed[4], closed[0]);
  // There and back: the ends give no plane, and the line none either.
  for (const SbRotation& frame : framesOf({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}}))
    expectAxes(frame, {0, -1, 0}, {1, 0, 0});
}

TEST(SpineFrames, AreRotationsWhateverTheSpine) {
  for (const auto& spine : std::vector<std::vector<SbVec3f>>{
           {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 0}, {1, 1, 5}, {1, 1, 5}},
           {{0, 0, 0}, {0, 1, 0}, {0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 1, 9}, {1, 1, 9}},
           {{0, 0, 0}, {3e38f, 0, 0}, {3e38f, 3e38f, 0}, {-3e38f, 3e38f, 1}, {0, 0, 0}},
           {{0, 0, 0}, {1e-30f, 0, 0}, {1e-30f, 1e-30f, 0}, {0, 1e-30f, 1e-30f}},
           {{-3e38f, 0, 0}, {3e38f, 0, 0}}})
    for (const SbRotation& frame : framesOf(spine)) {
      float length = 0;
      for (int i = 0; i < 4; ++i) length += frame.getValue()[i] * frame.getValue()[i];
      EXPECT_NEAR(length, 1, 1e-5);
    }
}

// Events

TEST(Extrusion, EventsMakeTheSurfaceAnewButNotItsIndices) {
  const ExtrusionWorld world("spine [ 0 0 0, 0 1 0, 0 2 0 ]");
  VrmlExtrusion& node = world.node();
  SoSearchAction search;
  search.setType(VrmlIndexedFaceSet::getClassTypeId());
  search.apply(world.root());
  EXPECT_FALSE(search.getPath());
  VrmlExtrusion::searchingChildren = true;
  search.apply(world.root());
  VrmlExtrusion::searchingChildren = false;
  ASSERT_TRUE(search.getPath());
  auto* const sides = static_cast<VrmlIndexedFaceSet*>(static_cast<SoFullPath*>(search.getPath())->getTail());

  int updates = 0, newIndices = 0;
  const auto countUp = [](void* count, auto*) { ++*static_cast<int*>(count); };
  node.addUpdateSurfaceCallback([](void* count, void*) { ++*static_cast<int*>(count); }, &updates);
  SoFieldSensor indexSensor(countUp, &newIndices);
  indexSensor.setPriority(0);
  indexSensor.attach(&sides->coordIndex);

  const SbVec3f higher[] = {{0, 0, 0}, {0, 5, 0}, {0, 9, 0}};
  node.set_spine.setValues(0, 3, higher);
  EXPECT_EQ(node.spine[2], SbVec3f(0, 9, 0));
  EXPECT_NEAR(volumeOf(world.triangles()), 36, 1e-3);
  EXPECT_EQ(updates, 1);
  EXPECT_EQ(newIndices, 0);
  node.set_spine.setNum(2);
  EXPECT_NEAR(volumeOf(world.triangles()), 20, 1e-3);
  EXPECT_EQ(newIndices, 1);
  node.ccw = FALSE;
  EXPECT_LT(world.triangles()[0][0].normal.dot(world.triangles()[0][0].point), 0);
}

TEST(Extrusion, ScalesBelowZeroBecomeZero) {
  const ExtrusionWorld world("scale [ -1 1, 1 1 ]");
  EXPECT_EQ(world.node().scale[0], SbVec2f(0, 1));
  const SbVec2f both[] = {{2, 2}, {1, -3}};
  world.node().set_scale.setValues(0, 2, both);
  EXPECT_EQ(world.node().scale[1], SbVec2f(1, 0));
  EXPECT_EQ(world.node().scale[0], SbVec2f(2, 2));
  EXPECT_EQ(boxOf(world.root()).getMax(), SbVec3f(2, 1, 2));
}

TEST(Extrusion, InstancesOfAPrototypeHaveSurfacesOfTheirOwn) {
  const TestWorld world(R"(
    PROTO Bar [ field MFVec3f way [ 0 0 0, 0 1 0 ] ] { Shape { geometry Extrusion { spine IS way scale 1 .5 } } }
    Bar { way [ 0 0 0, 0 3 0 ] }
    Transform { translation 9 0 0 children Bar { } })");
  const auto triangles = trianglesOf(world.root());
  EXPECT_EQ(triangles.size(), 24U);
  EXPECT_NEAR(volumeOf(triangles), 6 + 2, 1e-3);
}

// Other actions

TEST(Extrusion, IsPickedAndCounted) {
  const ExtrusionWorld world(squareOutline + std::string("spine [ 0 0 0, 0 1 0, 0 2 0 ]"));
  const auto hits = hitsOf(world.root(), {0.2f, 1.5f, 9}, {0, 0, -1});
  ASSERT_EQ(hits.size(), 2U);
  EXPECT_TRUE(hits[0].point.equals({0.2f, 1.5f, 1}, 1e-4f));
  EXPECT_TRUE(hits[0].normal.equals({0, 0, 1}, 1e-4f));
  EXPECT_GE(hits[0].part, 0);
  VrmlCountAction count;
  count.apply(world.root());
  EXPECT_EQ(count.numTriangles, 4 * 4 + 2 * 4);
  int points = 0;
  std::unique_ptr<float[]> lengths;
  world.node().createSpineDistanceArray(points, lengths);
  ASSERT_EQ(points, 3);
  EXPECT_EQ(lengths[2], 2);
}

TEST(ExtrusionGL, IsDrawnAlsoIfTransparent) {
  EXPECT_GT(countLit(ExtrusionWorld(ring).root()), 500);
  TestWorld world(
      "Shape { appearance Appearance { material Material { transparency 0.5 } } geometry Extrusion { } }");
  EXPECT_GT(countLit(world.root()), 500);
}

// Bad input

TEST(Extrusion, HostileListsLeaveFiniteBoxes) {
  for (const char* fields :
       {"spine [ ]", "spine [ 1 1 1 ]", "crossSection [ ]", "crossSection [ 1 1 ]",
        "scale [ ] orientation [ ]", "spine [ ] crossSection [ ] scale [ ] orientation [ ]",
        "spine [ 0 0 0, 0 0 0 ]", "orientation 0 0 0 1", "crossSection [ 1 1, 1 1, 1 1, 1 1, 1 1 ]",
        "crossSection [ 0 0, 2 1, 0 1, 2 0, 1 3, 1 -2, 0 0 ]",
        "scale 1e38 1e38 crossSection [ 1e38 1e38, 1e38 -1e38, -1e38 -1e38 ]",
        "spine [ 3e38 0 0, -3e38 0 1, 3e38 1 1 ]", "spine [ 0 0 0, 1 0 0, 0 0 0, 1 0 0 ]",
        "scale [ 0 0, 0 0 ]"}) {
    const ExtrusionWorld world(fields);
    ASSERT_TRUE(world.root()) << fields;
    const SbBox3f box = boxOf(world.root());
    for (int i = 0; i < 3; ++i) {
      EXPECT_TRUE(std::isfinite(box.getMin()[i])) << fields;
      EXPECT_TRUE(std::isfinite(box.getMax()[i])) << fields;
    }
    EXPECT_TRUE(world.messages.empty()) << world.messages.text();
  }
}

TEST(Extrusion, OnesThatTakeTooMuchStayEmpty) {
  std::string spine, outline;
  for (int i = 0; i < 3000; ++i) {
    spine += "0 " + std::to_string(i) + " 0 ";
    outline += std::to_string(i) + " 0 ";
  }
  const ExtrusionWorld world("spine [ " + spine + "] crossSection [ " + outline + "]");
  EXPECT_EQ(world.messages.count("VrmlExtrusion::updateSurface"), 1);
  EXPECT_TRUE(world.triangles().empty());
  EXPECT_TRUE(boxOf(world.root()).isEmpty());
}
