// SPDX-License-Identifier: BSD-3-Clause
// What do geometries that are computed cost: a grid beside the same triangles as a face set, an extrusion that moves
// beside the arithmetic of its points, the cutting of caps, and the choice of levels of detail beside drawing them?
//
// Run it with GALLIUM_NOOP=1 too: then the software driver does nothing, and only the library's own work is left.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include <Inventor/SoFullPath.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/fields/SoMFInt32.h>
#include <Inventor/fields/SoMFVec3f.h>

#include <tessel/core/VrmlLOD.h>
#include <tessel/shapes/VrmlExtrusion.h>
#include <tessel/shapes/VrmlTriangulator.h>

#include "DisplayList.h"
#include "Frame.h"
#include "support/Bench.h"

namespace {

template <class... N> void print(std::string& to, const char* format, N... numbers) {
  char text[160];
  to.append(text, static_cast<std::size_t>(std::snprintf(text, sizeof text, format, numbers...)));
}

double heightAt(int i, int j) {
  return 3 * std::sin(i * 0.05) * std::cos(j * 0.07) + 0.1 * ((i * 7 + j * 13) % 5);
}

std::string shapeOf(const std::string& geometry) {
  return "Shape { appearance Appearance { material Material { } } geometry " + geometry + " }";
}

// A grid

std::string grid(int n) {
  std::string heights;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) print(heights, i + 1 < n ? "%.4f " : "%.4f\n", heightAt(i, j));
  std::string size;
  print(size, "xDimension %d zDimension %d xSpacing 0.1 zSpacing 0.1 ", n, n);
  return shapeOf("ElevationGrid { " + size + "height [ " + heights + " ] }");
}

/// The same triangles, smooth too.
std::string gridAsFaces(int n) {
  std::string points, index;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) print(points, "%.1f %.4f %.1f\n", i * 0.1, heightAt(i, j), j * 0.1);
  for (int j = 0; j + 1 < n; ++j)
    for (int i = 0; i + 1 < n; ++i) {
      const int a = j * n + i, b = a + n;
      print(index, "%d %d %d -1 %d %d %d -1\n", a, b, a + 1, a + 1, b, b + 1);
    }
  return shapeOf("IndexedFaceSet { creaseAngle 4 coord Coordinate { point [ " + points +
                 " ] } coordIndex [ " + index + " ] }");
}

int drawn(Frame& frame) {
  frame.draw();
  return 0;
}

void gridToFirstFrame(benchmark::State& state) {
  bench::start();
  const int n = static_cast<int>(state.range(0));
  const std::string asGrid = grid(n), asFaces = gridAsFaces(n);
  const auto readAndDraw = [](const std::string& world) { return Frame(world, 1).getWorld() != nullptr; };
  bench::Duel duel(state, 2);
  for (auto _ : state) {
    duel.rival([&] { return readAndDraw(asFaces); });
    duel.library([&] { return readAndDraw(asGrid); });
  }
}

void stillGrid(benchmark::State& state) {
  bench::start();
  Frame frame(grid(static_cast<int>(state.range(0))));
  const DisplayList list(frame);
  bench::Duel duel(state, 1.2);
  for (auto _ : state) {
    duel.rival([&] {
      Frame::clear();
      list.draw();
      return 0;
    });
    duel.library([&] { return drawn(frame); });
  }
  state.counters["triangles"] = static_cast<double>(list.triangles());
}

// An extrusion

struct Sweep {
  std::vector<SbVec2f> outline;
  std::vector<SbVec3f> spine;

  Sweep(int along, int around) {
    for (int i = 0; i < around; ++i) {
      const auto angle = static_cast<float>(-2 * std::numbers::pi * i / (around - 1));
      outline.emplace_back(std::cos(angle), std::sin(angle));
    }
    spine.resize(static_cast<std::size_t>(along));
    bend(0);
  }
  void bend(int step) {
    for (std::size_t i = 0; i < spine.size(); ++i) {
      const auto at = static_cast<float>(i);
      spine[i].setValue(at, 20 * std::sin(at * 0.01f + static_cast<float>(step)), 20 * std::cos(at * 0.02f));
    }
  }
};

/// The least that must be computed: a frame from each three points, and all points by it.
void sweepPlainly(const Sweep& sweep, std::vector<SbVec3f>& points) {
  SbVec3f* to = points.data();
  for (std::size_t i = 0; i < sweep.spine.size(); ++i) {
    const SbVec3f before = sweep.spine[i > 0 ? i - 1 : 0],
                  after = sweep.spine[std::min(i + 1, sweep.spine.size() - 1)];
    SbVec3f y = after - before, z = (after - sweep.spine[i]).cross(before - sweep.spine[i]), x;
    y.normalize();
    if (z.sqrLength() > 0) z.normalize();
    x = y.cross(z);
    for (const SbVec2f& at : sweep.outline) *to++ = x * at[0] + z * at[1] + sweep.spine[i];
  }
}

void bendExtrusion(benchmark::State& state) {
  bench::start();
  Sweep sweep(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  const tessel::SoRef<VrmlExtrusion> node(new VrmlExtrusion);
  node->crossSection.setValues(0, static_cast<int>(sweep.outline.size()), sweep.outline.data());
  std::vector<SbVec3f> points(sweep.outline.size() * sweep.spine.size());
  int step = 0;
  bench::Duel duel(state, 5);
  for (auto _ : state) {
    sweep.bend(++step);
    duel.rival([&] {
      sweepPlainly(sweep, points);
      return points.back()[0];
    });
    duel.library([&] {
      node->set_spine.setValues(0, static_cast<int>(sweep.spine.size()), sweep.spine.data());
      return 0;
    });
  }
}

// Caps

/// A star with arms of uneven length.
void triangulate(benchmark::State& state) {
  bench::start();
  const int n = static_cast<int>(state.range(0));
  SoMFVec3f points;
  SoMFInt32 outline, triangles;
  for (int i = 0; i < n; ++i) {
    const double angle = 2 * std::numbers::pi * i / n, radius = i % 2 ? 60 : 100 + i * 37 % 50;
    points.set1Value(i, static_cast<float>(radius * std::cos(angle)), 0,
                     static_cast<float>(radius * std::sin(angle)));
    outline.set1Value(i, i);
  }
  outline.set1Value(n, -1);
  int good = 0;
  for (auto _ : state) good = VrmlTriangulator::triangulate(points, outline, triangles);
  if (!good || triangles.getNum() != 4 * (n - 2)) state.SkipWithError("not cut");
  state.SetComplexityN(n);
}

// Levels of detail

std::string levelsOfBoxes(int n) {
  std::string world = "Group { children [\n";
  for (int i = 0; i < n; ++i) {
    print(world, "Transform { translation %d %d 0 children ", i % 40 * 3, i / 40 * 3);
    world +=
        "LOD { range [ 1, 2, 3 ] level [ Group { } Group { } Group { } " + shapeOf("Box { }") + " ] } }\n";
  }
  return world + "] }";
}

/// Beside the same nodes when nothing is to be chosen: each draws its box.
void levels(benchmark::State& state) {
  bench::start();
  const std::string world = levelsOfBoxes(static_cast<int>(state.range(0)));
  Frame set(world), chosen(world);
  SoSearchAction search;
  search.setType(VrmlLOD::getClassTypeId());
  search.setInterest(SoSearchAction::ALL);
  search.apply(set.getWorld());
  for (int i = 0; i < search.getPaths().getLength(); ++i) {
    auto* const lod = static_cast<VrmlLOD*>(static_cast<const SoFullPath*>(search.getPaths()[i])->getTail());
    lod->setAutoLevel(false);
    lod->setLevel(3);
  }
  for (int i = 0; i < 8; ++i) set.draw();
  bench::Duel duel(state, 1.25);
  for (auto _ : state) {
    duel.rival([&] { return drawn(set); });
    duel.library([&] { return drawn(chosen); });
  }
}

}  // namespace

BENCHMARK(gridToFirstFrame)->Arg(1000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(stillGrid)->Arg(1000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(bendExtrusion)->Args({1000, 100})->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(triangulate)->RangeMultiplier(2)->Range(250, 4000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(levels)->Arg(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);
