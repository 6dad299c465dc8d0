// SPDX-License-Identifier: BSD-3-Clause
// What does a large mesh cost: a still frame beside a display list of the same triangles, the first picture, its
// memory, and a mesh whose points move beside plain loops?
//
// Run it with GALLIUM_NOOP=1 too: then the software driver does nothing, and only the library's own work is left.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>

#include "DisplayList.h"
#include "Frame.h"
#include "support/Bench.h"

namespace {

template <class... N> void print(std::string& to, const char* format, N... numbers) {
  char text[160];
  to.append(text, static_cast<std::size_t>(std::snprintf(text, sizeof text, format, numbers...)));
}

std::string faceSet(const std::string& fields, const std::string& points, const std::string& index) {
  return "Shape { appearance Appearance { material Material { } } geometry DEF MESH IndexedFaceSet { " +
         fields + " coord DEF POINTS Coordinate { point [ " + points + " ] } coordIndex [ " + index +
         " ] } }";
}

/// The points of an uneven torus in rings of half as many.
std::string torusPoints(int rings) {
  std::string points;
  for (int i = 0; i < rings; ++i)
    for (int j = 0; j < rings / 2; ++j) {
      const double u = 2 * std::numbers::pi * i / rings, v = 4 * std::numbers::pi * j / rings;
      const double r = 0.3 + 0.01 * std::sin(50 * u + 30 * v);
      print(points, "%.5f %.5f %.5f\n", (0.7 + r * std::cos(v)) * std::cos(u),
            (0.7 + r * std::cos(v)) * std::sin(u), r * std::sin(v));
    }
  return points;
}

template <class Cell> void eachCell(int rings, Cell cell) {
  const int sides = rings / 2;
  for (int i = 0; i < rings; ++i)
    for (int j = 0; j < sides; ++j) {
      const int a = i * sides, b = (i + 1) % rings * sides, k = (j + 1) % sides;
      cell(a + j, b + j, b + k, a + k);
    }
}

std::string torus(int triangles, const char* fields) {
  const int rings = static_cast<int>(std::sqrt(triangles));
  std::string index;
  eachCell(rings,
           [&](int a, int b, int c, int d) { print(index, "%d %d %d -1 %d %d %d -1\n", a, b, c, a, c, d); });
  return faceSet(fields, torusPoints(rings), index);
}

/// Triangles, quads and hexagons, each face with a color of its own.
std::string mixed(int triangles) {
  const int rings = static_cast<int>(std::sqrt(triangles));
  std::string index, colors;
  int cell = 0;
  const auto color = [&] {
    print(colors, "%.2f %.2f %.2f\n", cell % 7 / 6.0, cell % 11 / 10.0, cell % 13 / 12.0);
  };
  int held[2] = {};
  eachCell(rings, [&](int a, int b, int c, int d) {
    switch (++cell % 5) {
      case 0:
        print(index, "%d %d %d -1 %d %d %d -1\n", a, b, c, a, c, d);
        color();
        break;
      case 1:
        print(index, "%d %d %d %d -1\n", a, b, c, d);
        break;
      case 2:
        held[0] = a, held[1] = b;
        return;
      case 3:
        print(index, "%d %d %d %d %d %d -1\n", held[0], held[1], b, c, d, a);
        break;
      default:
        print(index, "%d %d %d %d -1\n", a, b, c, d);
    }
    color();
  });
  return faceSet("solid FALSE colorPerVertex FALSE color Color { color [ " + colors + " ] }",
                 torusPoints(rings), index);
}

/// Stars of twelve corners.
std::string concave(int triangles) {
  std::string points, index;
  const int stars = triangles / 10;
  for (int i = 0; i < stars; ++i) {
    const double x = std::fmod(i * 0.618034, 1) * 2, y = std::fmod(i * 0.754878, 1) * 2,
                 z = std::fmod(i * 0.56984, 1) * 2;
    for (int k = 0; k < 12; ++k) {
      const double angle = 2 * std::numbers::pi * k / 12, r = k % 2 ? 0.02 : 0.008;
      print(points, "%.5f %.5f %.5f\n", x + r * std::cos(angle), y + r * std::sin(angle),
            z + r * 0.3 * std::cos(angle + i));
      print(index, "%d ", 12 * i + k);
    }
    index += "-1\n";
  }
  return faceSet("convex FALSE solid FALSE", points, index);
}

struct Kind {
  const char* name;
  std::string (*build)(int triangles);
};
const Kind kinds[] = {{"flat", [](int n) { return torus(n, ""); }},
                      {"creased", [](int n) { return torus(n, "creaseAngle 1"); }},
                      {"smooth", [](int n) { return torus(n, "creaseAngle 4"); }},
                      {"mixed", mixed},
                      {"concave", concave}};

double heap() {
  malloc_trim(0);
  const auto now = mallinfo2();
  return static_cast<double>(now.uordblks + now.hblkhd);
}

std::string worldOf(benchmark::State& state) {
  const Kind& kind = kinds[state.range(0)];
  state.SetLabel(kind.name);
  return kind.build(static_cast<int>(state.range(1)));
}

void list(benchmark::State& state) {
  bench::start();
  Frame frame(worldOf(state), 0);
  const DisplayList rival(frame);
  for (auto _ : state) {
    frame.clear();
    rival.draw();
  }
  state.counters["triangles"] = static_cast<double>(rival.triangles());
}

void still(benchmark::State& state) {
  bench::start();
  Frame frame(worldOf(state));
  for (auto _ : state) frame.draw();
}

// To be held against four frames of the list. Memory is that after the first frame beside that after reading.
void firstPicture(benchmark::State& state) {
  bench::start();
  const std::string world = worldOf(state);
  double memory = 0;
  for (auto _ : state) {
    state.PauseTiming();
    Frame("Group { }", 1);  // frees the buffers of the iteration before
    const double before = heap();
    Frame frame(world, 0);
    const double read = heap();
    state.ResumeTiming();
    frame.draw();
    state.PauseTiming();
    memory = (heap() - before) / (read - before);
    state.ResumeTiming();
  }
  state.counters["memory"] = memory;
}

// Points in motion

constexpr int movingRings = 64;  // about 2,000 points and as many quads

std::string quads(const char* fields) {
  std::string index;
  eachCell(movingRings, [&](int a, int b, int c, int d) { print(index, "%d %d %d %d -1\n", a, b, c, d); });
  return faceSet(fields, torusPoints(movingRings), index);
}

std::vector<SbVec3f> pointsOf() {
  const auto* coordinates = static_cast<VrmlCoordinate*>(SoNode::getByName("POINTS"));
  return {coordinates->point.getValues(0), coordinates->point.getValues(0) + coordinates->point.getNum()};
}

void blend(const std::vector<SbVec3f>& from, const std::vector<SbVec3f>& to, float at, SbVec3f* out) {
  for (std::size_t i = 0; i < from.size(); ++i) out[i] = from[i] + (to[i] - from[i]) * at;
}

/// The least that must be computed for points in motion: the blend, the normals of the faces, those of the points.
struct PlainLoops {
  std::vector<SbVec3f> from, to, points = from, normals = from;
  std::vector<GLuint> corners = cornersOf(*static_cast<VrmlIndexedFaceSet*>(SoNode::getByName("MESH")));

  void move(float at) {
    blend(from, to, at, points.data());
    std::fill(normals.begin(), normals.end(), SbVec3f(0, 0, 0));
    for (const GLuint* c = corners.data(); c != corners.data() + corners.size(); c += 4) {
      SbVec3f n = (points[c[2]] - points[c[0]]).cross(points[c[3]] - points[c[1]]);
      n.normalize();
      for (int k = 0; k < 4; ++k) normals[c[k]] += n;
    }
    for (SbVec3f& n : normals) n.normalize();
  }

  void draw(const Frame& frame) const {
    Frame::clear();
    frame.loadMatrices();
    glEnable(GL_LIGHTING);
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY}) glEnableClientState(array);
    glVertexPointer(3, GL_FLOAT, 0, points.data());
    glNormalPointer(GL_FLOAT, 0, normals.data());
    glDrawElements(GL_QUADS, static_cast<GLsizei>(corners.size()), GL_UNSIGNED_INT, corners.data());
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY}) glDisableClientState(array);
    glFinish();
  }

private:
  static std::vector<GLuint> cornersOf(const VrmlIndexedFaceSet& quads) {
    std::vector<GLuint> result;
    for (int i = 0; i < quads.coordIndex.getNum(); ++i)
      if (quads.coordIndex[i] >= 0) result.push_back(static_cast<GLuint>(quads.coordIndex[i]));
    return result;
  }
};

/// A mesh that finds its own normals, whose points move in every frame.
void moving(benchmark::State& state, const char* fields) {
  bench::start();
  Frame frame(quads(fields));
  const auto from = pointsOf();
  auto to = from;
  for (SbVec3f& p : to) p *= 1.1f;
  SoMFVec3f& point = static_cast<VrmlCoordinate*>(SoNode::getByName("POINTS"))->point;
  PlainLoops loops{from, to};
  bench::Duel duel(state, 3);
  int step = 0;
  for (auto _ : state) {
    const float at = static_cast<float>(++step % 10) / 10;
    duel.rival([&] {
      loops.move(at);
      loops.draw(frame);
      return 0;
    });
    duel.library([&] {
      blend(from, to, at, point.startEditing());
      point.finishEditing();
      frame.draw();
      return 0;
    });
  }
}

}  // namespace

BENCHMARK(list)
    ->ArgsProduct({benchmark::CreateDenseRange(0, 4, 1), {1000000}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(still)
    ->ArgsProduct({benchmark::CreateDenseRange(0, 4, 1), {1000000}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(firstPicture)
    ->ArgsProduct({benchmark::CreateDenseRange(0, 4, 1), {1000000}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
BENCHMARK_CAPTURE(moving, flat, "")->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(moving, creased, "creaseAngle 1")->UseManualTime()->Unit(benchmark::kMicrosecond);
