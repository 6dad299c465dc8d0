// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <random>
#include <set>

#include "shapes/EarClipper.h"
#include "shapes/FaceIndices.h"
#include "shapes/FaceMesh.h"

namespace {

using namespace tessel;
using By = CornerIndices::By;
using Ints = std::vector<std::int32_t>;

// Runs

struct RunCase {
  Ints indices;
  int triangles, quads, faces;
};

TEST(IndexedFaceSetRuns, AreTheLeadingTrianglesThenQuadsThenTheRest) {
  const RunCase cases[] = {
      {{}, 0, 0, 0},
      {{-1}, 0, 0, 0},
      {{0, 1}, 0, 0, 0},
      {{0, 1, 2}, 1, 0, 0},
      {{0, 1, 2, -1, 0, 2, 3, -1}, 2, 0, 0},
      {{0, 1, 2, -1, 0, 2, 3}, 2, 0, 0},
      {{0, 1, 2, 3}, 0, 1, 0},
      {{0, 1, 2, 3, -1, 0, 1, 2, -1}, 0, 1, 1},
      {{0, 1, 2, -1, 0, 1, 2, 3, -1, 0, 1, 2, 3, 4, -1, 0, 1, 2}, 1, 1, 2},
      {{0, 1, 2, 3, 4, -1, 0, 1, 2, -1}, 0, 0, 2},
      {{0, 1, 2, -1, 0, 1, -1, 0, 1, 2, -1}, 1, 0, 2},  // a face of two corners counts
      {{0, 1, 2, -1, -1, 3, 4, 5, -1}, 1, 0, 2},        // and so does one of none
      {{0, 1, 2, -1, 0, 1}, 1, 0, 0},                   // what is left is no face
      {{-1, 1, 2, -1, 3, 4, 5, -1}, 0, 0, 3},           // -1 in place of a corner makes no triangle
  };
  for (const RunCase& c : cases) {
    const FaceRuns runs = countRuns(c.indices);
    EXPECT_EQ((std::array{runs.triangles, runs.quads, runs.faces}),
              (std::array{c.triangles, c.quads, c.faces}))
        << testing::PrintToString(c.indices);
  }
}

// Index lists

/// Three faces of a quad and two triangles over six points.
struct Quiver {
  Ints coord{0, 1, 2, 3, -1, 0, 1, 4, -1, 1, 2, 5, -1};
  Ints color, normal, texCoord;
  FaceSource source;

  Quiver() {
    source.numPoints = 6;
    source.numFaces = 3;
    source.color.count = source.normal.count = source.texCoord.count = 1;
    source.checkNormals = source.checkTexCoords = true;
    source.name = "MESH";
  }
  std::string fault(FaceIndices* out = nullptr) {
    FaceIndices indices;
    source.coordIndex = coord;
    source.color.indices = color;
    source.normal.indices = normal;
    source.texCoord.indices = texCoord;
    const auto result = prepareIndices(source, out ? *out : indices);
    return result ? std::string(result->source) + ": " + result->text : "";
  }
};

struct FaultCase {
  const char* name;
  std::function<void(Quiver&)> spoil;
  const char* text;
};

TEST(IndexedFaceSetIndices, EveryFaultHasItsText) {
  const auto use = [](AttributeSource& a, int count, bool perFace) {
    a.count = count;
    a.perFace = perFace;
    a.used = true;
  };
  const FaultCase cases[] = {
      {"no points", [](Quiver& q) { q.source.numPoints = 0; },
       "VrmlIndexedFaceSet::setupIndices: no coordinates specified\n"},
      {"point", [](Quiver& q) { q.coord[5] = 6; },
       "VrmlIndexedFaceSet: vertex index 6 is out of range 0 - 6"},
      {"below -1", [](Quiver& q) { q.coord[5] = -2; },
       "VrmlIndexedFaceSet: vertex index -2 is out of range 0 - 6"},
      {"huge", [](Quiver& q) { q.coord[5] = INT32_MIN; },
       "VrmlIndexedFaceSet: vertex index -2147483648 is out of range 0 - 6"},
      {"color",
       [](Quiver& q) {
         q.color = {0, 4, 0};
       },
       "VrmlIndexedFaceSet: color index 4 is out of range 0 - 1"},
      {"normal", [](Quiver& q) { q.normal = {3}; },
       "VrmlIndexedFaceSet: normal index 3 is out of range 0 - 1"},
      {"texture coordinate",
       [](Quiver& q) {
         q.texCoord = {0, 1};
       },
       "VrmlIndexedFaceSet: texture coordinate index 1 is out of range 0 - 1"},
      {"face colors, few", [&](Quiver& q) { use(q.source.color, 2, true); },
       "VrmlIndexedFaceSet: Material binding is PER_FACE, but only 2 colors given (3 needed)"},
      {"face colors, short list",
       [&](Quiver& q) {
         use(q.source.color, 2, true), q.color = {0, 1};
       },
       "VrmlIndexedFaceSet: Need 3 indices for PER_FACE_INDEXED  material binding, have only 2"},
      {"corner colors, few", [&](Quiver& q) { use(q.source.color, 5, false); },
       "VrmlIndexedFaceSet: Material binding is PER_VERTEX_INDEXED, but only 5 colors given (5 needed)"},
      {"corner colors, short list",
       [&](Quiver& q) {
         use(q.source.color, 2, false), q.color = {0, 1, 0, 1};
       },
       "VrmlIndexedFaceSet: Need 13 indices for PER_VERTEX_INDEXED  material binding, have only 4"},
      {"face normals, few", [&](Quiver& q) { use(q.source.normal, 1, true); },
       "VrmlIndexedFaceSet: MESH: Normal binding is PER_FACE, but only 1 normals given (3 needed)"},
      {"corner normals, few", [&](Quiver& q) { use(q.source.normal, 3, false); },
       "VrmlIndexedFaceSet: MESH: Normal binding is PER_VERTEX_INDEXED, but only 3 normals given (5 needed)"},
      {"corner normals, short list", [&](Quiver& q) { use(q.source.normal, 1, false), q.normal = {0}; },
       "VrmlIndexedFaceSet: Need 13 indices for PER_VERTEX_INDEXED  normal binding, have only 1"},
      {"texture coordinates, few", [&](Quiver& q) { use(q.source.texCoord, 5, false); },
       "VrmlIndexedFaceSet: TexCoord binding is PER_VERTEX_INDEXED, but only 5 texCoords given (5 needed)"},
      {"texture coordinates, short list",
       [&](Quiver& q) { use(q.source.texCoord, 6, false), q.texCoord = {5}; },
       "VrmlIndexedFaceSet: Need 13 indices for PER_VERTEX_INDEXED  texCoord binding, have only 1"},
  };
  for (const FaultCase& c : cases) {
    Quiver quiver;
    EXPECT_EQ(quiver.fault(), "") << c.name;
    c.spoil(quiver);
    EXPECT_EQ(quiver.fault(), c.text) << c.name;
  }
}

TEST(IndexedFaceSetIndices, WhatIsNotSentIsNotChecked) {
  Quiver quiver;
  quiver.normal = quiver.texCoord = {7};
  quiver.source.normal = {{}, 1, true, true};
  quiver.source.checkNormals = quiver.source.checkTexCoords = false;
  EXPECT_EQ(quiver.fault(), "");
}

TEST(IndexedFaceSetIndices, ListsThatAreNotGivenAreReplaced) {
  Quiver quiver;
  for (const Ints& none : {Ints{-1}, Ints{}}) {
    quiver.color = quiver.normal = quiver.texCoord = none;
    quiver.source.color = {{}, 3, true, true};
    quiver.source.normal = quiver.source.texCoord = {{}, 6, false, true};
    FaceIndices indices;
    ASSERT_EQ(quiver.fault(&indices), "");
    EXPECT_EQ(indices.color(2, 1, 9), 2) << "colors by the number of the face";
    EXPECT_EQ(indices.normal(2, 1, 9), 1) << "normals by the point";
    EXPECT_EQ(indices.texCoord(2, 1, 9), 1);
  }
  quiver.color = {2, 0, 1};
  quiver.normal = Ints(13, 4);
  quiver.normal[4] = -1;
  FaceIndices indices;
  ASSERT_EQ(quiver.fault(&indices), "");
  EXPECT_EQ(indices.color(1, 0, 9), 0);
  EXPECT_EQ(indices.normal(1, 0, 9), 4);
  EXPECT_EQ(indices.normal(1, 0, 4), 0) << "an end of a face in place of a corner";
}

// The mesh

/// Faces of three to six corners, flat polygons around centers on a line, with shared and with own points.
struct RandomFaces {
  std::vector<SbVec3f> points;
  Ints coord, cornerIndex;
  std::vector<SbVec3f> normals;
  std::vector<SbColor> colors;
  std::vector<SbVec2f> texCoords;
  int numFaces = 0;

  explicit RandomFaces(int count) {
    std::mt19937 random(count);
    const auto upTo = [&](int n) { return std::uniform_int_distribution(0, n)(random); };
    for (int i = 0; i < count; ++i) {
      points.emplace_back(float(upTo(50)), float(upTo(50)), float(upTo(50)));
      normals.emplace_back(float(i), 1.0f, 0.0f);
      colors.emplace_back(float(i % 256) / 255, float(i / 256 % 256) / 255, 0.0f);
      texCoords.emplace_back(float(i), 0.5f);
    }
    std::vector<int> sizes(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) sizes[i] = i < count / 3 ? 3 : i < count / 2 ? 4 : 3 + upTo(3);
    for (const int size : sizes) {
      const int from = upTo(count - 8);
      for (int k = 0; k < size; ++k) coord.push_back(from + k);
      coord.push_back(-1);
      ++numFaces;
    }
    for (std::size_t i = 0; i < coord.size(); ++i) cornerIndex.push_back(upTo(count - 1));
  }

  FaceMeshSource source(By color, By normal, By texCoord) const {
    FaceMeshSource s;
    s.coordIndex = coord;
    s.runs = countRuns(coord);
    s.points = points;
    const auto bind = [&](By by) {
      return CornerIndices{by, by == By::corner ? cornerIndex.data() : nullptr};
    };
    if (color != By::none) s.colors = colors;
    if (normal != By::none) s.normals = normals;
    if (texCoord != By::none) s.texCoords = texCoords;
    s.color = bind(color);
    s.normal = bind(normal);
    s.texCoord = bind(texCoord);
    s.alpha = 77;
    return s;
  }
};

struct Vertex {
  SbVec3f point, normal{0, 0, 0};
  std::array<std::uint8_t, 4> color{};
  SbVec2f texCoord{0, 0};
};

std::vector<Vertex> verticesOf(const FaceMesh& mesh) {
  const auto form = mesh.format();
  std::vector<std::byte> bytes(mesh.vertexCount() * form.stride());
  // In two parts, as they go into a buffer.
  const std::size_t half = mesh.vertexCount() / 2;
  mesh.writeVertices(0, half, bytes.data());
  mesh.writeVertices(half, mesh.vertexCount() - half, bytes.data() + half * form.stride());
  std::vector<Vertex> result(mesh.vertexCount());
  for (std::size_t i = 0; i < result.size(); ++i) {
    const std::byte* at = bytes.data() + i * form.stride();
    std::memcpy(&result[i].point, at, 12);
    using NormalForm = tessel::VertexFormat::NormalForm;
    if (form.normals && form.normalForm == NormalForm::bytes) {
      std::int8_t parts[3];
      std::memcpy(parts, at + form.normalAt(), 3);
      result[i].normal = SbVec3f(parts[0], parts[1], parts[2]);
      result[i].normal.normalize();
    } else if (form.normals && form.normalForm == NormalForm::shorts) {
      std::int16_t parts[3];
      std::memcpy(parts, at + form.normalAt(), 6);
      result[i].normal = SbVec3f(parts[0], parts[1], parts[2]) / 32767;
    } else if (form.normals) {
      std::memcpy(&result[i].normal, at + form.normalAt(), 12);
    }
    if (form.colors) std::memcpy(&result[i].color, at + form.colorAt(), 4);
    if (form.texCoords) std::memcpy(&result[i].texCoord, at + form.texCoordAt(), 8);
  }
  return result;
}

TEST(IndexedFaceSetMesh, EveryCornerHasItsValuesInEveryBinding) {
  const RandomFaces faces(300);
  for (const By color : {By::none, By::face, By::corner, By::point})
    for (const By normal : {By::none, By::face, By::corner, By::point})
      for (const By texCoord : {By::none, By::corner, By::point})
        for (const auto layout : {FaceMesh::Layout::smooth, FaceMesh::Layout::flat}) {
          const FaceMeshSource source = faces.source(color, normal, texCoord);
          const bool flat = layout == FaceMesh::Layout::flat;
          if (flat && !FaceMesh::canBeFlat(source)) continue;
          FaceMesh mesh;
          mesh.build(source, layout);
          const auto vertices = verticesOf(mesh);
          const auto triangles = mesh.triangles();
          const std::string what = std::to_string(int(color)) + std::to_string(int(normal)) +
                                   std::to_string(int(texCoord)) + (flat ? " flat" : "");

          // The triangles of a fan around the first corner of each face, as three corners in any rotation.
          std::size_t at = 0;
          std::int32_t face = 0;
          for (std::int32_t begin = 0; begin < std::int32_t(faces.coord.size()); ++face) {
            std::int32_t end = begin;
            while (faces.coord[end] >= 0) ++end;
            for (std::int32_t k = begin + 2; k < end; ++k, at += 3) {
              ASSERT_LE(at + 3, triangles.size()) << what;
              const std::int32_t corners[] = {begin, k - 1, k};
              int turn = 0;
              while (
                  turn < 3 &&
                  !(vertices[triangles[at]].point == faces.points[faces.coord[corners[turn]]] &&
                    vertices[triangles[at + 1]].point == faces.points[faces.coord[corners[(turn + 1) % 3]]]))
                ++turn;
              ASSERT_LT(turn, 3) << what << ", face " << face;
              for (int i = 0; i < 3; ++i) {
                const std::int32_t corner = corners[(turn + i) % 3], point = faces.coord[corner];
                const Vertex& v = vertices[triangles[at + i]];
                EXPECT_EQ(v.point, faces.points[point]);
                if (texCoord != By::none) {
                  EXPECT_EQ(v.texCoord, faces.texCoords[source.texCoord(face, point, corner)]) << what;
                }
                if (flat && i < 2) continue;  // only the last corner stands for the face
                if (normal != By::none) {
                  EXPECT_EQ(v.normal, faces.normals[source.normal(face, point, corner)])
                      << what << ", face " << face;
                }
                if (color != By::none) {
                  EXPECT_EQ(v.color[0], source.color(face, point, corner) % 256) << what << ", face " << face;
                  EXPECT_EQ(v.color[3], 77);
                }
              }
            }
            begin = end + 1;
          }
          EXPECT_EQ(at, triangles.size()) << what;
        }
}

TEST(IndexedFaceSetMesh, NormalsOfBytesKeepTheirDirection) {
  EXPECT_EQ(normalBytes({0, 0, 0}), (std::array<std::int8_t, 4>{}));
  std::mt19937 random(1);
  std::normal_distribution<float> any;
  double sum = 0;
  constexpr int count = 10000;
  for (int i = 0; i < count; ++i) {
    SbVec3f normal(any(random), any(random), any(random));
    if (i < 3) normal = SbVec3f(0, 0, 0), normal[i] = -1;
    normal.normalize();
    const auto bytes = normalBytes(normal);
    SbVec3f kept(bytes[0], bytes[1], bytes[2]);
    kept.normalize();
    const double angle = (kept - normal).length();
    EXPECT_LT(angle, i < 3 ? 1e-6 : 0.006) << i;
    sum += angle;
  }
  EXPECT_LT(sum / count, 0.001);
}

TEST(IndexedFaceSetMesh, SharesVerticesAsFarAsTheirValuesAllow) {
  // A closed grid of quads: as many faces as points.
  const int side = 30;
  Ints coord;
  std::vector<SbVec3f> points, normals(side * side, SbVec3f(0, 0, 1));
  for (int i = 0; i < side; ++i)
    for (int j = 0; j < side; ++j) {
      points.emplace_back(float(i), float(j), 0.0f);
      const int a = i * side, b = (i + 1) % side * side, k = (j + 1) % side;
      for (const int index : {a + j, b + j, b + k, a + k, -1}) coord.push_back(index);
    }
  FaceMeshSource source;
  source.coordIndex = coord;
  source.runs = countRuns(coord);
  source.points = points;
  source.normals = normals;
  FaceMesh mesh;
  source.normal = {By::point, nullptr};
  mesh.build(source, FaceMesh::Layout::smooth);
  EXPECT_EQ(mesh.vertexCount(), points.size());
  source.normal = {By::face, nullptr};
  mesh.build(source, FaceMesh::Layout::smooth);
  EXPECT_EQ(mesh.vertexCount(), 4 * points.size()) << "every face has a normal of its own";
  mesh.build(source, FaceMesh::Layout::flat);
  EXPECT_LT(mesh.vertexCount(), 1.3 * double(points.size())) << "each vertex stands for about one face";
}

TEST(IndexedFaceSetMesh, TakesOnlyThePointsThatItsFacesUse) {
  const std::vector<SbVec3f> points(100000, SbVec3f(1, 2, 3));
  const Ints coord{70000, 70001, 70002};
  FaceMeshSource source;
  source.coordIndex = coord;
  source.runs = countRuns(coord);
  source.points = points;
  FaceMesh mesh;
  mesh.build(source, FaceMesh::Layout::smooth);
  EXPECT_EQ(mesh.vertexCount(), 3u);
}

TEST(IndexedFaceSetMesh, KeepsTheVerticesOfATriangleCloseTogether) {
  // A closed ring: its last faces return to its first points. A mesh in no order can't be helped, and is left.
  const std::int32_t points = 200000;
  const std::vector<SbVec3f> positions(points, SbVec3f(0, 0, 0));
  const std::vector<SbVec3f> normals(points, SbVec3f(0, 0, 1));
  for (const bool inOrder : {true, false})
    for (const auto layout : {FaceMesh::Layout::smooth, FaceMesh::Layout::flat}) {
      Ints coord;
      for (std::int32_t i = 0; i < points; ++i) {
        const std::int32_t at = inOrder ? i : static_cast<std::int32_t>(std::int64_t(i) * 7919 % points);
        for (const std::int32_t k : {at, (at + 1) % points, (at + 2) % points, -1}) coord.push_back(k);
      }
      FaceMeshSource source;
      source.coordIndex = coord;
      source.runs = countRuns(coord);
      source.points = positions;
      source.normals = normals;
      source.normal.by = layout == FaceMesh::Layout::flat ? By::face : By::point;
      FaceMesh mesh;
      mesh.build(source, layout);
      const auto triangles = mesh.triangles();
      std::uint32_t widest = 0;
      for (std::size_t i = 0; i < triangles.size(); i += 3) {
        const auto [low, high] = std::minmax({triangles[i], triangles[i + 1], triangles[i + 2]});
        widest = std::max(widest, high - low);
      }
      EXPECT_EQ(widest < std::uint32_t(BufferContent::shortReach), inOrder) << widest;
      EXPECT_LT(mesh.vertexCount(), (inOrder ? 1.01 : 1.3) * points);
    }
}

// Concave faces

double areaOf(const std::vector<SbVec3f>& outline, const Ints& triangles, double& smallest) {
  double sum = 0;
  smallest = 1e9;
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    const SbVec3f a = outline[triangles[i]], b = outline[triangles[i + 1]], c = outline[triangles[i + 2]];
    const double area = (b - a).cross(c - a)[2] / 2;
    smallest = std::min(smallest, area);
    sum += area;
  }
  return sum;
}

TEST(IndexedFaceSetClipper, CoversStarsAndCombsWithoutOverlap) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> radius(0.2, 1);
  for (const int corners : {4, 5, 12, 60, 128}) {
    std::vector<SbVec3f> outline;
    double area = 0;
    for (int i = 0; i < corners; ++i) {
      const double angle = 2 * M_PI * i / corners, r = radius(random);
      outline.emplace_back(float(r * std::cos(angle)), float(r * std::sin(angle)), 0.0f);
    }
    for (int i = 0; i < corners; ++i) area += outline[i].cross(outline[(i + 1) % corners])[2] / 2;
    EarClipper clipper;
    Ints triangles;
    ASSERT_TRUE(clipper.cut(outline, triangles)) << corners;
    EXPECT_EQ(triangles.size(), 3u * (corners - 2));
    double smallest;
    EXPECT_NEAR(areaOf(outline, triangles, smallest), area, 1e-5 * area);
    EXPECT_GE(smallest, 0) << "a triangle that is turned over would hide an overlap";
  }
}

TEST(IndexedFaceSetClipper, LeavesWhatIsNotSimpleToATessellator) {
  const std::vector<std::vector<SbVec3f>> outlines = {
      {{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}},             // crosses itself
      {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {1, 0, 0}, {0, 2, 0}},  // touches itself
      {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}, {1, 1, 0}},             // doubles back
      {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}},             // has no area
      {{0, 0, 0}, {1, 0, 0}},
      {{0, 1.6f, 0}, {-1, -1.5f, 0}, {1.5f, 0.4f, 0}, {-1.5f, 0.4f, 0}, {1, -1.5f, 0}},  // goes round twice
      std::vector<SbVec3f>(EarClipper::largestOutline + 1, SbVec3f(0, 0, 0)),
  };
  for (std::size_t i = 0; i < outlines.size(); ++i) {
    EarClipper clipper;
    Ints triangles{7};
    EXPECT_FALSE(clipper.cut(outlines[i], triangles)) << i;
    EXPECT_EQ(triangles, Ints{7});
  }
  EarClipper clipper;
  Ints triangles;
  EXPECT_TRUE(
      clipper.cut(std::vector<SbVec3f>{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, triangles))
      << "corners on a straight side are no fault";
  EXPECT_EQ(triangles.size(), 9u);
}

}  // namespace
