// SPDX-License-Identifier: BSD-3-Clause
// How long is it from the file to the first picture? As long as reading and four flat draws of its triangles, at most.
#include <string>

#include "support/Bench.h"
#include "support/View.h"
#include "support/Worlds.h"

using namespace bench;

namespace {

using World = std::string (*)(int);

std::string parts(int n) { return textOf(partTree(n)); }

void firstPicture(benchmark::State& state, World make) {
  start();
  const TextFile file(make(static_cast<int>(state.range(0))));
  View view;
  view.show(readFile(file.path()).get());
  view.draw();
  const View::Flat flat(view);
  flat.draw();
  if (flat.triangles() < static_cast<std::size_t>(state.range(0)) / 2) {
    state.SkipWithError("the world has too few triangles");
    return;
  }
  Duel duel(state, 1);
  for (auto _ : state) {
    // The camera stands already. The world of the last round goes first, so that memory is there for both.
    view.show(nullptr);
    duel.rival([&] {
      auto world = readFile(file.path());
      for (int i = 0; i < 4; ++i) flat.draw();
      return world;
    });
    duel.library([&] {
      auto world = readFile(file.path());
      view.show(world.get());
      view.draw();
      return world;
    });
  }
  state.counters["triangles"] = static_cast<double>(flat.triangles());
}

}  // namespace

BENCHMARK_CAPTURE(firstPicture, ifs, faceSet)
    ->Arg(1'000'000)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstPicture, ifs_attr, faceSetWithAttributes)
    ->Arg(200'000)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstPicture, mixed, mixedFaces)
    ->Arg(200'000)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstPicture, shapes, parts)
    ->Arg(20'000)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
