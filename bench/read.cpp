// SPDX-License-Identifier: BSD-3-Clause
// How fast is a world read, beside the least that any reader must do?
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include <Inventor/SoInput.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlDB.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>
#include <tessel/shapes/VrmlNormal.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>
#include <tessel/shapes/VrmlVertexShape.h>

#include "support/Bench.h"
#include "support/Rivals.h"
#include "support/Worlds.h"

using namespace bench;
using tessel::SoRef;

namespace {

/// The numbers that a world holds in the lists of its geometries, and its Transforms.
struct Held {
  long fractions = 0;
  long indices = 0;
  long transforms = 0;
  explicit Held(const SoNode* world) { add(*world); }
  bool operator==(const Held&) const = default;

private:
  void add(const SoNode& node) {
    if (node.isOfType(VrmlTransform::getClassTypeId())) ++transforms;
    if (node.isOfType(VrmlVertexShape::getClassTypeId())) addLists(static_cast<const VrmlVertexShape&>(node));
    if (const SoChildList* children = node.getChildren())
      for (int i = 0; i < children->getLength(); ++i) add(*(*children)[i]);
  }
  void addLists(const VrmlVertexShape& shape) {
    if (const auto* n = static_cast<VrmlCoordinate*>(shape.coord.getValue()))
      fractions += 3L * n->point.getNum();
    if (const auto* n = static_cast<VrmlColor*>(shape.color.getValue())) fractions += 3L * n->color.getNum();
    if (!shape.isOfType(VrmlIndexedFaceSet::getClassTypeId())) return;
    const auto& faces = static_cast<const VrmlIndexedFaceSet&>(shape);
    indices += faces.coordIndex.getNum();
    if (const auto* n = static_cast<VrmlNormal*>(faces.normal.getValue()))
      fractions += 3L * n->vector.getNum();
    if (const auto* n = static_cast<VrmlTextureCoordinate*>(faces.texCoord.getValue()))
      fractions += 2L * n->point.getNum();
  }
};

// Number-heavy worlds, against one pass of std::from_chars.

using World = std::string (*)(int);
enum class Source { file, memory, stream };

SoRef<SoNode> readFrom(Source source, const std::string& path, const std::string& text) {
  if (source == Source::file) return readFile(path);
  SoInput in;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (source == Source::memory)
    in.setBuffer(text.data(), text.size());
  else
    in.setFilePointer(file.get());
  return SoRef<SoNode>(VrmlDB::read(&in));
}

void numbers(benchmark::State& state, World make, Source source) {
  start();
  const std::string text = make(static_cast<int>(state.range(0)));
  const TextFile file(text);
  const Numbers known = readNumbers(file.path());
  {
    const SoRef<SoNode> world = readFrom(source, file.path(), text);
    // Beside the lists stand a handful of single values: view point, colours, an image's size.
    const Held held(world.get());
    constexpr long singleValues = 20;
    if (held.indices != static_cast<long>(known.indices.size()) ||
        std::labs(held.fractions - static_cast<long>(known.fractions.size())) > singleValues) {
      state.SkipWithError("the world holds other numbers than its text");
      return;
    }
  }
  Duel duel(state, source == Source::file ? 1.5 : 2.5);
  for (auto _ : state) {
    duel.rival([&] { return readNumbers(file.path(), known); });
    duel.library([&] { return readFrom(source, file.path(), text); });
  }
  state.counters["MB"] = static_cast<double>(text.size()) / 1e6;
}

// Node-heavy worlds, against the same calls by hand and a look at every token.

void nodes(benchmark::State& state, PartTree (*make)(int)) {
  start();
  const PartTree tree = make(static_cast<int>(state.range(0)));
  const std::string text = textOf(tree);
  const TextFile file(text);
  const Numbers known = readNumbers(file.path());
  if (Held(readFile(file.path()).get()) != Held(buildByCalls(tree).get())) {
    state.SkipWithError("what is read is not what is built");
    return;
  }
  Duel duel(state, 1.5);
  for (auto _ : state) {
    duel.rival([&] {
      benchmark::DoNotOptimize(readNumbers(file.path(), known));
      return buildByCalls(tree);
    });
    duel.library([&] { return readFile(file.path()); });
  }
  state.counters["MB"] = static_cast<double>(text.size()) / 1e6;
}

// How the time grows with the number of parts: the exponent, 1 for a straight line.

void growth(benchmark::State& state) {
  start();
  const TextFile small(textOf(partTree(static_cast<int>(state.range(0)))));
  const TextFile large(textOf(partTree(static_cast<int>(state.range(1)))));
  const auto timeOf = [](const std::string& path) {
    const double from = processorTime();
    const SoRef<SoNode> world = readFile(path);
    return processorTime() - from;
  };
  std::vector<double> smallTimes, largeTimes;
  for (auto _ : state) {
    for (int i = 0; i < 9; ++i) smallTimes.push_back(timeOf(small.path()));
    largeTimes.push_back(timeOf(large.path()));
    state.SetIterationTime(largeTimes.back());
  }
  state.counters["ratio"] =
      std::log(median(largeTimes) / median(smallTimes)) /
      std::log(static_cast<double>(state.range(1)) / static_cast<double>(state.range(0)));
  state.counters["limit"] = 1.1;
}

const bool registered = [] {
  const auto add = [](const std::string& name, auto function, auto... arguments) {
    return benchmark::RegisterBenchmark(name.c_str(), function, arguments...)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  };
  const struct {
    const char* name;
    World make;
    int size;
  } worlds[] = {{"ifs", faceSet, 1'000'000},
                {"ifs_attr", faceSetWithAttributes, 200'000},
                {"mixed", mixedFaces, 200'000},
                {"lexical", lexicalForms, 300'000}};
  const std::pair<const char*, Source> sources[] = {
      {"file", Source::file}, {"memory", Source::memory}, {"stream", Source::stream}};
  for (const auto& [name, make, size] : worlds)
    for (const auto& [sourceName, source] : sources)
      add(std::string("numbers/") + name + "/" + sourceName, numbers, make, source)->Arg(size)->Iterations(9);
  add("nodes/shapes", nodes, partTree)->Arg(20'000)->Iterations(9);
  add("nodes/deep", nodes, chain)->Arg(3'000)->Iterations(99);
  add("growth", growth)->Args({5'000, 100'000})->Iterations(3);
  return true;
}();

}  // namespace
