// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <numeric>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/details/SoFaceDetail.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>

#include "shapes/Probe.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

std::string faces(const std::string& fields) {
  return "Shape { geometry DEF FACES IndexedFaceSet { " + fields + " } }";
}

/// A triangle, a quad, a face of two corners, and a pentagon from left to right, seen along -z.
const std::string row =
    "coord Coordinate { point [ 0 0 0, 1 0 0, 0 1 0,  2 0 0, 3 0 0, 3 1 0, 2 1 0,  4 0 0, 5 0 0, 5.5 1 0, "
    "4.5 2 0, 4 1 0 ] } "
    "coordIndex [ 0 1 2 -1 3 4 5 6 -1 0 1 -1 7 8 9 10 11 -1 ] ";

struct FaceHit {
  int face = -1;
  std::vector<int> coordinates, materials, normals, texCoords;
  int material = -1;
  SbVec3f point, normal;
  SbVec4f texCoord;
};

std::vector<int> gathered(const SoFaceDetail& detail, int (SoPointDetail::*number)() const) {
  std::vector<int> result;
  for (int i = 0; i < detail.getNumPoints(); ++i) result.push_back((detail.getPoint(i)->*number)());
  return result;
}

/// The nearest face on a line along -z.
FaceHit faceAt(const TestWorld& world, float x, float y) {
  SoRayPickAction action(SbViewportRegion(100, 100));
  action.setRay(SbVec3f(x, y, 10), SbVec3f(0, 0, -1));
  action.apply(world.root());
  const SoPickedPoint* picked = action.getPickedPoint();
  if (!picked) return {};
  FaceHit hit;
  hit.material = picked->getMaterialIndex();
  hit.point = picked->getPoint();
  hit.normal = picked->getNormal();
  hit.texCoord = picked->getTextureCoords();
  if (const auto* detail = dynamic_cast<const SoFaceDetail*>(picked->getDetail())) {
    hit.face = detail->getFaceIndex();
    EXPECT_EQ(detail->getPartIndex(), hit.face);
    hit.coordinates = gathered(*detail, &SoPointDetail::getCoordinateIndex);
    hit.materials = gathered(*detail, &SoPointDetail::getMaterialIndex);
    hit.normals = gathered(*detail, &SoPointDetail::getNormalIndex);
    hit.texCoords = gathered(*detail, &SoPointDetail::getTextureCoordIndex);
  }
  return hit;
}

using Ints = std::vector<int>;

}  // namespace

TEST(IndexedFaceSetPick, TellsFaceAndPoints) {
  for (const char* const form : {"", "convex FALSE", "creaseAngle 1"}) {
    TestWorld world(faces(row + form));
    EXPECT_EQ(faceAt(world, 0.2f, 0.2f).coordinates, (Ints{0, 1, 2})) << form;
    EXPECT_EQ(faceAt(world, 0.2f, 0.2f).face, 0);
    EXPECT_EQ(faceAt(world, 2.7f, 0.2f).coordinates, (Ints{3, 4, 5, 6})) << form;
    EXPECT_EQ(faceAt(world, 2.7f, 0.2f).face, 1);
    const FaceHit pentagon = faceAt(world, 4.5f, 1.5f);
    EXPECT_EQ(pentagon.coordinates, (Ints{7, 8, 9, 10, 11})) << form;
    EXPECT_EQ(pentagon.face, 3) << "the face of two corners has a number too";
    EXPECT_EQ(pentagon.normals, (Ints{7, 8, 9, 10, 11})) << "but its corners are not counted";
    EXPECT_TRUE(pentagon.point.equals(SbVec3f(4.5f, 1.5f, 0), 1e-8f));
    EXPECT_TRUE(pentagon.normal.equals(SbVec3f(0, 0, 1), 1e-8f));
    EXPECT_EQ(faceAt(world, 1.5f, 0.5f).face, -1);
    EXPECT_EQ(faceAt(world, 5.5f, 1.5f).face, -1);
  }
}

TEST(IndexedFaceSetPick, TellsTheIndicesOfEachBinding) {
  const std::string colors = "color Color { color [ 1 0 0, 0 1 0, 0 0 1, 1 1 1, 0 0 0 ] } ";
  const std::string normals = "normal Normal { vector [ 0 0 1, 0 1 0 ] } ";
  TestWorld faceByFace(
      faces(row + colors + normals + "colorPerVertex FALSE normalPerVertex FALSE normalIndex [ 1 0 1 0 ]"));
  FaceHit hit = faceAt(faceByFace, 2.7f, 0.2f);
  EXPECT_EQ(hit.material, 1);
  EXPECT_EQ(hit.materials, (Ints{1, 1, 1, 1}));
  EXPECT_EQ(hit.normals, (Ints{0, 0, 0, 0}));
  EXPECT_TRUE(faceAt(faceByFace, 0.2f, 0.2f).normal.equals(SbVec3f(0, 1, 0), 1e-8f));

  TestWorld cornerByCorner(faces(row + colors + normals +
                                 "colorIndex [ 4 3 2 -1 1 2 3 4 -1 0 0 -1 0 0 0 0 0 -1 ] "
                                 "normalIndex [ 0 0 0 -1 1 1 1 1 -1 0 0 -1 0 0 0 0 0 -1 ] "
                                 "texCoord TextureCoordinate { point [ 0 0, 1 0, 0.25 0.75 ] } "
                                 "texCoordIndex [ 2 2 2 -1 0 1 1 0 -1 0 0 -1 0 0 0 0 0 -1 ]"));
  hit = faceAt(cornerByCorner, 2.7f, 0.2f);
  EXPECT_EQ(hit.materials, (Ints{1, 2, 3, 4}));
  EXPECT_EQ(hit.normals, (Ints{1, 1, 1, 1}));
  EXPECT_EQ(hit.texCoords, (Ints{0, 1, 1, 0}));
  EXPECT_NEAR(hit.texCoord[0], 0.7f, 1e-5f);
  EXPECT_TRUE(faceAt(cornerByCorner, 0.2f, 0.2f).texCoord.equals(SbVec4f(0.25f, 0.75f, 0, 1), 1e-8f));

  TestWorld plain(faces(row));
  EXPECT_EQ(faceAt(plain, 0.2f, 0.2f).material, 0);
  EXPECT_NEAR(faceAt(plain, 2.7f, 0.2f).texCoord[0], 2.7f / 5.5f, 1e-5f)
      << "along the longest side of the box";
}

TEST(IndexedFaceSetPick, ConcaveFacesAreMissedInTheirNotches) {
  // The repeated point upsets nothing.
  TestWorld world(
      faces("convex FALSE coord Coordinate { point [ -1.5 -1 0, 0 -0.2 0, 1.5 -1 0, 0 1.5 0 ] } "
            "coordIndex [ 0 1 1 2 3 -1 ]"));
  EXPECT_EQ(faceAt(world, 0, -0.6f).face, -1);
  EXPECT_EQ(faceAt(world, -0.8f, -0.4f).face, 0);
  EXPECT_EQ(faceAt(world, 0, 0.5f).face, 0);
}

TEST(IndexedFaceSetPick, FollowsAChangeOfThePoints) {
  TestWorld world(faces("creaseAngle 1 " + row));
  EXPECT_TRUE(faceAt(world, 0.2f, 0.2f).normal.equals(SbVec3f(0, 0, 1), 1e-8f));
  auto* set = world.get<VrmlIndexedFaceSet>("FACES");
  set->ccw = FALSE;
  EXPECT_TRUE(faceAt(world, 0.2f, 0.2f).normal.equals(SbVec3f(0, 0, -1), 1e-8f));
}

TEST(IndexedFaceSetPick, BadIndicesAreNeverFollowed) {
  const char* const spoilt[] = {
      "coordIndex [ 0 1 99999 -1 0 1 2 -1 ]",
      "coordIndex [ 0 1 -5 2 -1 0 1 2 ]",
      "colorPerVertex FALSE colorIndex [ 88888 ] color Color { color [ 1 0 0 ] }",
      "normal Normal { vector [ 0 0 1 ] } normalIndex [ 0 77777 -3 0 1 ]",
      "texCoord TextureCoordinate { point [ 0 0 ] } texCoordIndex [ 66666 0 -9 ]",
      "normal Normal { vector [ ] } color Color { color [ ] } texCoord TextureCoordinate { point [ ] }",
  };
  for (const char* const fields : spoilt) {
    TestWorld world(faces(row + fields));
    ASSERT_TRUE(world.root()) << world.messages.text();
    faceAt(world, 0.2f, 0.2f);
    faceAt(world, 2.7f, 0.2f);
    trianglesOf(world.root());
    boxOf(world.root());
    EXPECT_EQ(world.messages.count("Vrml"), 0) << world.messages.text();
  }
}

TEST(IndexedFaceSetPrimitives, CarryTheirNumbers) {
  TestWorld world(
      faces(row + "convex FALSE colorPerVertex FALSE color Color { color [ 1 0 0, 0 1 0, 0 0 1, 1 1 1 ] }"));
  struct Seen {
    std::map<int, int> triangles;  // of each face
    std::set<int> coordinates;
  } seen;
  SoCallbackAction action;
  action.addTriangleCallback(
      VrmlIndexedFaceSet::getClassTypeId(),
      [](void* data, SoCallbackAction*, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
         const SoPrimitiveVertex* c) {
        auto& to = *static_cast<Seen*>(data);
        const auto* detail = static_cast<const SoFaceDetail*>(c->getDetail());
        ++to.triangles[detail->getFaceIndex()];
        EXPECT_GT((b->getPoint() - a->getPoint()).cross(c->getPoint() - a->getPoint())[2], 0);
        for (int i = 0; i < 3; ++i) to.coordinates.insert(detail->getPoint(i)->getCoordinateIndex());
        EXPECT_EQ(c->getMaterialIndex(), detail->getFaceIndex());
        EXPECT_EQ(c->getNormal(), SbVec3f(0, 0, 1));
      },
      &seen);
  action.apply(world.root());
  EXPECT_EQ(seen.triangles, (std::map<int, int>{{0, 1}, {1, 2}, {3, 3}}));
  EXPECT_EQ(seen.coordinates.size(), 12u);
}

TEST(IndexedFaceSetCount, CountsTrianglesOfAllFaces) {
  const struct {
    const char* index;
    int count;
  } cases[] = {{"[ -1 ]", 0},
               {"[ 0 1 2 -1 0 2 3 ]", 2},
               {"[ 0 1 2 -1 0 1 2 3 -1 0 1 2 3 -1 ]", 5},
               {"[ 0 1 2 3 4 5 ]", 4},
               {"[ 0 1 2 3 -1 0 1 2 -1 0 1 -1 -1 0 1 2 3 4 ]", 6}};
  for (const auto& c : cases) {
    TestWorld world(faces(std::string("coordIndex ") + c.index));
    VrmlCountAction action;
    action.apply(world.root());
    EXPECT_EQ(action.numTriangles, c.count) << c.index;
  }
}
