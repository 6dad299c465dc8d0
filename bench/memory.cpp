// SPDX-License-Identifier: BSD-3-Clause
// How much memory does a world take: while it is read, then, and once it has been drawn?
//
// Each measure is made in a child process, since memory that was once taken hides what is taken next.
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTransform.h>

#include "support/Bench.h"
#include "support/Rivals.h"
#include "support/View.h"
#include "support/Worlds.h"

using namespace bench;
using tessel::SoRef;

namespace {

constexpr double mega = 1e6;

/// What the system says of this process, in bytes: VmRSS now, VmHWM at most.
double memory(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(name + ":")) return std::atof(line.c_str() + name.size() + 1) * 1024;
  std::abort();
}

/// What is taken from the heap, in bytes, whether or not the system still counts what is free.
double heap() {
  const struct mallinfo2 taken = mallinfo2();
  return static_cast<double>(taken.uordblks + taken.hblkhd);
}

struct Taken {
  double peak = 0, after = 0, heap = 0;
};

/// What `run` takes beyond what stood before. Its result is kept until both are measured.
template <class Run> Taken taken(Run run) {
  // As in a process that has read nothing large yet, but has been through it once: large blocks come from the system
  // and go back there, and what the first read of all takes is there.
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  static_cast<void>(readFile(TextFile(textOf(partTree(10))).path()));
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";  // the peak starts anew
  const double before = memory("VmRSS"), heapBefore = heap();
  const auto kept = run();
  const double peak = memory("VmHWM");
  malloc_trim(0);  // what is free, but not given back
  return {peak - before, memory("VmRSS") - before, heap() - heapBefore};
}

/// Runs in a child process, which gives its figures back.
template <class Run> Taken inChild(Run run) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    const Taken result = run();
    _exit(write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1);
  }
  close(ends[1]);
  Taken result;
  const bool got = child > 0 && read(ends[0], &result, sizeof result) == sizeof result;
  close(ends[0]);
  int status = 0;
  if (!got || waitpid(child, &status, 0) != child || status != 0) std::abort();
  return result;
}

Taken reading(const std::string& path) {
  return inChild([&] { return taken([&] { return readFile(path); }); });
}

/// Of `least` and the file.
void report(benchmark::State& state, const Taken& read, double least, double fileBytes, double limit) {
  state.counters["peak_ratio"] = read.peak / (least + fileBytes);
  state.counters["after_ratio"] = read.after / least;
  state.counters["limit"] = limit;
  state.counters["peak_MB"] = read.peak / mega;
  state.counters["after_MB"] = read.after / mega;
  state.counters["least_MB"] = least / mega;
  state.counters["file_MB"] = fileBytes / mega;
}

using World = std::string (*)(int);

void arrays(benchmark::State& state, World make) {
  start();
  const std::string text = make(static_cast<int>(state.range(0)));
  const TextFile file(text);
  const double least = static_cast<double>(scanNumbers(text).bytes());
  for (auto _ : state) report(state, reading(file.path()), least, static_cast<double>(text.size()), 1.3);
}

// The same tree of the toolkit's own nodes, as small as it gets.

SoSeparator* toolkitShape(const PartTree::Form& form) {
  auto* material = new SoMaterial;
  material->diffuseColor.setValue(form.color);
  material->specularColor.setValue(0.3F, 0.3F, 0.3F);
  material->shininess.setValue(0.4F);
  auto* points = new SoCoordinate3;
  points->point.setValues(0, static_cast<int>(form.points.size()), form.points.data());
  auto* faces = new SoIndexedFaceSet;
  faces->coordIndex.setValues(0, static_cast<int>(form.indices.size()), form.indices.data());
  auto* shape = new SoSeparator;
  shape->addChild(material);
  shape->addChild(points);
  shape->addChild(faces);
  return shape;
}

SoRef<SoSeparator> buildOfToolkit(const PartTree& tree) {
  std::vector<SoSeparator*> shapes, built;
  for (const PartTree::Form& form : tree.forms) shapes.push_back(toolkitShape(form));
  for (const PartTree::Place& place : tree.places) {
    auto* transform = new SoTransform;
    transform->translation.setValue(place.translation);
    transform->rotation.setValue(SbVec3f(place.turn[0], place.turn[1], place.turn[2]), place.turn[3]);
    auto* group = new SoSeparator;
    group->addChild(transform);
    for (const int child : place.children) group->addChild(built[static_cast<std::size_t>(child)]);
    if (place.form >= 0) group->addChild(shapes[static_cast<std::size_t>(place.form)]);
    built.push_back(group);
  }
  SoRef<SoSeparator> root(new SoSeparator);
  for (const int place : tree.top) root->addChild(built[static_cast<std::size_t>(place)]);
  return root;
}

void objects(benchmark::State& state, bool ofToolkit) {
  start();
  const int parts = static_cast<int>(state.range(0));
  const std::string text = textOf(partTree(parts));
  const TextFile file(text);
  for (auto _ : state) {
    const Taken built = inChild([&] {
      const PartTree tree = partTree(parts);
      return ofToolkit ? taken([&] { return buildOfToolkit(tree); })
                       : taken([&] { return buildByCalls(tree); });
    });
    report(state, reading(file.path()), built.after, static_cast<double>(text.size()), 1.3);
  }
}

/// What a world takes once it has been drawn so often. The software driver keeps the triangles of its last two pictures,
/// up to 36 MB each, whoever drew them: with `pictures` they stand before, drawn by hand, and are not counted.
Taken drawing(const std::string& path, int frames, bool pictures) {
  return inChild([&] {
    View view;
    const auto triangle = readFile(TextFile(faceSet(1)).path());
    view.show(triangle.get());
    view.draw();  // what library and driver take once
    if (pictures) {
      const auto world = readFile(path);
      view.show(world.get());
      const View::Flat flat(view);
      for (int i = 0; i < 2; ++i) flat.draw();
      view.show(triangle.get());
    }
    return taken([&] {
      auto world = readFile(path);
      view.show(world.get());
      for (int i = 0; i < frames; ++i) view.draw();
      return world;
    });
  });
}

void afterFirstFrame(benchmark::State& state, World make) {
  start();
  const TextFile file(make(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    const Taken read = reading(file.path()), drawn = drawing(file.path(), 1, true);
    state.counters["ratio"] = drawn.heap / read.heap;
    state.counters["ratio_with_lists"] = drawing(file.path(), 32, true).heap / read.heap;
    state.counters["ratio_with_pictures"] = drawing(file.path(), 1, false).after / read.after;
    state.counters["limit"] = 2;
    state.counters["read_MB"] = read.heap / mega;
    state.counters["drawn_MB"] = drawn.heap / mega;
  }
}

std::string parts(int n) { return textOf(partTree(n)); }

}  // namespace

BENCHMARK_CAPTURE(arrays, ifs, faceSet)->Arg(1'000'000)->Iterations(1);
BENCHMARK_CAPTURE(arrays, ifs_attr, faceSetWithAttributes)->Arg(200'000)->Iterations(1);
BENCHMARK_CAPTURE(arrays, mixed, mixedFaces)->Arg(200'000)->Iterations(1);
BENCHMARK_CAPTURE(objects, by_calls, false)->Arg(20'000)->Iterations(1);
BENCHMARK_CAPTURE(objects, of_toolkit, true)->Arg(20'000)->Iterations(1);
BENCHMARK_CAPTURE(afterFirstFrame, ifs, faceSet)->Arg(1'000'000)->Iterations(1);
BENCHMARK_CAPTURE(afterFirstFrame, shapes, parts)->Arg(20'000)->Iterations(1);
