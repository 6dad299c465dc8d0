// SPDX-License-Identifier: BSD-3-Clause
// What do instances of prototypes cost, beside the same nodes written out?
#include <malloc.h>

#include <iterator>
#include <string>

#include "support/Bench.h"

using namespace bench;
using tessel::SoRef;

namespace {

struct Parameter {
  const char* type;
  const char* name;
  const char* defaultValue;
};

// In the order of the nodes that have them, see `nodes`.
constexpr Parameter parameters[] = {
    {"SFVec3f", "center", "0 0 0"},       {"SFRotation", "rotation", "0 0 1 0"},
    {"SFVec3f", "scale", "1 1 1"},        {"SFRotation", "scaleOrientation", "0 0 1 0"},
    {"SFVec3f", "translation", "0 0 0"},  {"SFFloat", "ambientIntensity", "0.2"},
    {"SFColor", "diffuseColor", "1 1 1"}, {"SFColor", "emissiveColor", "0 0 0"},
    {"SFFloat", "shininess", "0.2"},      {"SFColor", "specularColor", "0 0 0"},
    {"SFFloat", "transparency", "0"},     {"SFVec2f", "center", "0 0"},
    {"SFFloat", "rotation", "0"},         {"SFVec2f", "scale", "1 1"},
    {"SFVec2f", "translation", "0 0"},    {"SFFloat", "ambientIntensity", "0"},
    {"SFVec3f", "attenuation", "1 0 0"},  {"SFColor", "color", "1 1 1"},
    {"SFFloat", "intensity", "1"},        {"SFVec3f", "location", "0 0 0"},
};
constexpr std::size_t numParameters = std::size(parameters);

std::string valueOf(std::size_t parameter, int instance) {
  const std::string type = parameters[parameter].type;
  const std::string number =
      "0." + std::to_string(1 + (static_cast<std::size_t>(instance) * 7 + parameter) % 9998);
  if (type == "SFFloat") return number;
  if (type == "SFVec2f") return number + " 0.5";
  return type == "SFRotation" ? "0 1 0 " + number : number + " 0.5 0.25";
}

/// The nodes of one instance; `value` gives what stands behind the name of each field.
template <class Value> std::string nodes(Value value) {
  std::string text;
  const auto fields = [&](std::size_t from, std::size_t to) {
    for (std::size_t p = from; p < to; ++p) text += std::string(parameters[p].name) + ' ' + value(p) + '\n';
  };
  text += "Transform {\n";
  fields(0, 5);
  text += "children [ Shape { appearance Appearance {\nmaterial Material {\n";
  fields(5, 11);
  text += "}\ntextureTransform TextureTransform {\n";
  fields(11, 15);
  text += "} } }\nPointLight {\n";
  fields(15, numParameters);
  return text + "} ] }\n";
}

std::string interfaceName(std::size_t parameter) { return "p" + std::to_string(parameter); }

std::string definition(const char* kind) {
  std::string text = "PROTO P [\n";
  for (std::size_t p = 0; p < numParameters; ++p)
    text += std::string(kind) + ' ' + parameters[p].type + ' ' + interfaceName(p) + ' ' +
            parameters[p].defaultValue + '\n';
  return text + "] {\n" + nodes([](std::size_t p) { return "IS " + interfaceName(p); }) + "}\n";
}

std::string name(int instance) { return "I" + std::to_string(instance); }

/// Instances; in the routed world events come to two fields of each.
std::string instances(int count, const char* kind, bool routed) {
  std::string text = "#VRML V2.0 utf8\n" + definition(kind) + "DEF SOURCE Transform { }\n";
  for (int i = 0; i < count; ++i) {
    text += "DEF " + name(i) + " P {\n";
    for (std::size_t p = 0; p < numParameters; ++p) text += interfaceName(p) + ' ' + valueOf(p, i) + '\n';
    text += "}\n";
    if (routed)
      text += "ROUTE SOURCE.translation TO " + name(i) + ".p4\nROUTE SOURCE.scale TO " + name(i) + ".p2\n";
  }
  return text;
}

std::string flat(int count, bool routed) {
  std::string text = "#VRML V2.0 utf8\nDEF SOURCE Transform { }\n";
  for (int i = 0; i < count; ++i) {
    text += "DEF " + name(i) + ' ' + nodes([i](std::size_t p) { return valueOf(p, i); });
    if (routed)
      text += "ROUTE SOURCE.translation TO " + name(i) + ".translation\nROUTE SOURCE.scale TO " + name(i) +
              ".scale\n";
  }
  return text;
}

double heap() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

double memoryOf(const std::string& path) {
  static_cast<void>(readFile(path));  // what the first read of a kind leaves is there
  const double before = heap();
  const SoRef<SoNode> world = readFile(path);
  return heap() - before;
}

void againstFlat(benchmark::State& state, const char* kind, bool routed, double memoryLimit) {
  start();
  const int count = static_cast<int>(state.range(0));
  const TextFile ours(instances(count, kind, routed)), theirs(flat(count, routed));
  const double memory = memoryOf(ours.path()) / memoryOf(theirs.path());
  Duel duel(state, 2);
  for (auto _ : state) {
    duel.rival([&] { return readFile(theirs.path()); });
    duel.library([&] { return readFile(ours.path()); });
  }
  state.counters["memory"] = memory;
  state.counters["memoryLimit"] = memoryLimit;
}

}  // namespace

BENCHMARK_CAPTURE(againstFlat, fields, "field", false, 2)
    ->Arg(10'000)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(againstFlat, routedExposedFields, "exposedField", true, 3)
    ->Arg(10'000)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
