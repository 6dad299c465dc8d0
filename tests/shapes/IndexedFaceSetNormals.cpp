// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/NormalGenerator.h"

#include <cmath>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include <Inventor/misc/SoNormalGenerator.h>

namespace {

using tessel::NormalGenerator;
using Sharing = NormalGenerator::Sharing;

struct Faces {
  std::vector<SbVec3f> points;
  std::vector<std::int32_t> index;
};

std::vector<SbVec3f> cornerNormals(const Faces& faces, bool ccw, float crease) {
  NormalGenerator generator;
  generator.generate(faces.points, faces.index, ccw, crease);
  std::vector<SbVec3f> result;
  std::int32_t face = 0;
  for (std::size_t i = 0; i < faces.index.size(); ++i) {
    if (faces.index[i] < 0)
      ++face;
    else
      result.push_back(
          generator.normals()[generator.indexOf(face, faces.index[i], static_cast<std::int32_t>(i))]);
  }
  return result;
}

std::vector<SbVec3f> toolkitNormals(const Faces& faces, bool ccw, float crease) {
  SoNormalGenerator generator(ccw);
  bool open = false;
  for (const std::int32_t i : faces.index) {
    if (!open) generator.beginPolygon();
    open = i >= 0;
    if (open)
      generator.polygonVertex(faces.points[i]);
    else
      generator.endPolygon();
  }
  if (open) generator.endPolygon();
  generator.generate(crease);
  return {generator.getNormals(), generator.getNormals() + generator.getNumNormals()};
}

void expectEqual(const std::vector<SbVec3f>& is, const std::vector<SbVec3f>& should,
                 const std::string& what) {
  ASSERT_EQ(is.size(), should.size()) << what;
  for (std::size_t i = 0; i < is.size(); ++i)
    EXPECT_TRUE(is[i].equals(should[i], 1e-8f))
        << what << ", corner " << i << ": " << is[i].toString().getString() << " instead of "
        << should[i].toString().getString();
}

Faces cube() {
  return {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
          {0, 3, 2, 1, -1, 4, 5, 6, 7, -1, 0, 1, 5, 4, -1, 1, 2, 6, 5, -1, 2, 3, 7, 6, -1, 3, 0, 4, 7, -1}};
}

// Quads and triangles over an uneven ground, every face with points of its own where `apart`.
Faces ground(int side, bool apart) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> height(0, 0.7f);
  Faces shared;
  for (int i = 0; i <= side; ++i)
    for (int j = 0; j <= side; ++j) shared.points.emplace_back(float(i), float(j), height(random));
  for (int i = 0; i < side; ++i) {
    for (int j = 0; j < side; ++j) {
      const int a = i * (side + 1) + j, b = a + side + 1;
      if ((i + j) % 3)
        for (const int k : {a, b, b + 1, a + 1, -1}) shared.index.push_back(k);
      else
        for (const int k : {a, b, b + 1, -1, a, b + 1, a + 1, -1}) shared.index.push_back(k);
    }
  }
  if (!apart) return shared;
  Faces own;
  for (const int k : shared.index) {
    if (k >= 0) own.points.push_back(shared.points[k]);
    own.index.push_back(k < 0 ? -1 : static_cast<int>(own.points.size()) - 1);
  }
  return own;
}

// A sphere about the origin of quads with triangles at the poles; points come in rings from the south.
Faces sphere(int rings, int sectors) {
  Faces s;
  for (int i = 0; i <= rings; ++i) {
    const double v = std::numbers::pi * (double(i) / rings - 0.5);
    for (int j = 0; j < sectors; ++j) {
      const double u = 2 * std::numbers::pi * j / sectors;
      const double r = i == 0 || i == rings ? 0 : std::cos(v);
      s.points.emplace_back(float(r * std::cos(u)), float(r * std::sin(u)), float(std::sin(v)));
    }
  }
  for (int i = 0; i < rings; ++i) {
    for (int j = 0; j < sectors; ++j) {
      const int a = i * sectors + j, b = i * sectors + (j + 1) % sectors;
      if (i > 0)
        for (const int k : {a, b, b + sectors}) s.index.push_back(k);
      else
        for (const int k : {a, b + sectors}) s.index.push_back(k);
      if (i + 1 < rings) s.index.push_back(a + sectors);
      s.index.push_back(-1);
    }
  }
  return s;
}

TEST(IndexedFaceSetNormals, AgreeWithTheToolkit) {
  for (const bool ccw : {true, false}) {
    for (const float crease : {0.0f, 0.2f, 0.5f, 1.0f, 1.5f, 1.6f, 3.0f}) {
      const std::string at = " at " + std::to_string(crease);
      expectEqual(cornerNormals(cube(), ccw, crease), toolkitNormals(cube(), ccw, crease), "cube" + at);
      for (const bool apart : {false, true}) {
        const Faces faces = ground(6, apart);
        expectEqual(cornerNormals(faces, ccw, crease), toolkitNormals(faces, ccw, crease), "ground" + at);
      }
    }
  }
}

TEST(IndexedFaceSetNormals, ASmoothSphereLooksOutward) {
  const Faces faces = sphere(24, 32);
  const auto normals = cornerNormals(faces, true, 4);
  std::size_t corner = 0;
  for (const std::int32_t i : faces.index)
    if (i >= 0) {
      EXPECT_GT(normals[corner++].dot(faces.points[i]), 0.995f);
    }

  NormalGenerator generator;
  generator.generate(faces.points, faces.index, true, 4);
  EXPECT_EQ(generator.sharing(), Sharing::perPoint);
  EXPECT_EQ(generator.normals().size(), 23u * 32 + 2) << "the points of a pole are one";
}

TEST(IndexedFaceSetNormals, AreSharedAsFarAsTheCreaseAngleAllows) {
  NormalGenerator generator;
  const Faces box = cube();
  const struct {
    float crease;
    Sharing sharing;
    std::size_t count;
  } cases[] = {{0, Sharing::perFace, 6}, {1.5f, Sharing::perCorner, 24}, {1.6f, Sharing::perPoint, 8}};
  for (const auto& c : cases) {
    generator.generate(box.points, box.index, true, c.crease);
    EXPECT_EQ(generator.sharing(), c.sharing) << c.crease;
    EXPECT_EQ(generator.normals().size(), c.count) << c.crease;
  }
}

TEST(IndexedFaceSetNormals, FacesWithoutAreaKeepTheNormalsAroundThem) {
  // Two corners, three in a line, three at one point, and an empty face, beside one that looks along z.
  const Faces faces{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0.5f, 0, 0}},
                    {0, 1, 2, -1, 0, 1, -1, 0, 3, 1, -1, 0, 0, 0, -1, -1, 2, 0, 1}};
  for (const float crease : {0.5f, 2.0f, 3.2f}) {
    const auto normals = cornerNormals(faces, true, crease);
    ASSERT_EQ(normals.size(), 14u);
    for (const std::size_t corner : {0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13})
      EXPECT_EQ(normals[corner], SbVec3f(0, 0, 1)) << corner << " at " << crease;
    EXPECT_EQ(normals[6], SbVec3f(0, 0, 0)) << "a point that only a face without area uses";
  }
}

TEST(IndexedFaceSetNormals, BothSidesOfASheetKeepTheirOwn) {
  const Faces sheet{{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 1, 2, 3, -1, 3, 2, 1, 0, -1}};
  const auto normals = cornerNormals(sheet, true, 4);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(normals[i], SbVec3f(0, 0, i < 4 ? 1 : -1)) << i;
}

TEST(IndexedFaceSetNormals, TinyAndFarFacesHaveUnitNormals) {
  for (const float size : {1e-15f, 1.0f, 1e15f}) {
    const Faces faces{{{0, 0, 0}, {size, 0, 0}, {0, size, 0}}, {0, 1, 2}};
    EXPECT_EQ(cornerNormals(faces, true, 0)[1], SbVec3f(0, 0, 1)) << size;
  }
  const Faces far{{{5000000, 4000000, 100}, {5000001, 4000000, 100}, {5000001, 4000001, 100}}, {0, 1, 2, -1}};
  EXPECT_EQ(cornerNormals(far, true, 1)[2], SbVec3f(0, 0, 1));
}

TEST(IndexedFaceSetNormals, AFanOfManyFacesStaysLinear) {
  Faces fan{{{0, 0, 1}}, {}};
  const int count = 400000;
  for (int i = 0; i < count; ++i) {
    const double u = 2 * std::numbers::pi * i / count;
    fan.points.emplace_back(float(std::cos(u)), float(std::sin(u)), 0.0f);
    for (const int k : {0, i + 1, i + 1 < count ? i + 2 : 1, -1}) fan.index.push_back(k);
  }
  const auto normals = cornerNormals(fan, true, 0.5f);  // minutes if every face met every other
  const SbVec3f& mid = normals[3 * (count / 8)];
  EXPECT_NEAR(mid[0], 0.5f, 1e-3f);
  EXPECT_NEAR(mid[1], 0.5f, 1e-3f);
}

}  // namespace
