// SPDX-License-Identifier: BSD-3-Clause
#include "Run.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <Inventor/SoDB.h>
#include <Inventor/sensors/SoSensorManager.h>
#include <CLI/CLI.hpp>

#include "Diagnostics.h"
#include "Text.h"
#include "fetch/Fetcher.h"

namespace tessel::host {

void RunOptions::addTo(CLI::App& app) {
  constexpr double longest = 1e6, fastest = 1e4;
  app.add_option("--time", seconds, "How long to run, in seconds")
      ->capture_default_str()
      ->check(CLI::Range(0.0, longest))
      ->type_name("S");
  app.add_option("--fps", framesPerSecond, "Frames per second")
      ->capture_default_str()
      ->check(CLI::Range(1e-3, fastest))
      ->type_name("N");
  app.add_option("--clock", start, "What the world's clock shows at the start, in seconds (1000000000)")
      ->check(CLI::Range(0.0, 1e10))
      ->type_name("START");
  app.add_option("--input", input, "File of events to send; see docs/TRACE.md")->type_name("FILE");
}

std::int64_t RunOptions::lastFrame() const {
  constexpr double rounding = 1e-6;  // 0.29 s of 100 frames are 29, though the product is a little less
  return static_cast<std::int64_t>(std::floor(seconds * framesPerSecond + rounding));
}

Run::LastNodes::~LastNodes() { SoDB::getSensorManager()->processDelayQueue(TRUE); }

Run::Run(const RunOptions& o, const InputFile& i, const std::vector<std::string>& traced, int width,
         int height, Fetcher& f, Diagnostics& d)
    : stage(width, height), options(o), input(i), fetcher(f), diagnostics(d), timeline(stage, f) {
  stage.onChange([this] { changed = true; });
  if (traced.empty()) return;
  trace = std::make_unique<EventTrace>(
      names, [this](auto node, auto field, auto value) { print(node, field, value); });
  for (const std::string& what : traced) trace->select(what);
}

ExitStatus Run::load(const std::string& path, const ReadOptions& readOptions) {
  srand48(0);
  VrmlDB::setClock(SbTime(options.start));
  VrmlDB::setFrameTime();
  const World world = fetcher.open(path, readOptions);
  if (!world.good()) return world.status;
  if (!world.root) {
    diagnostics.report(Severity::error, "there is nothing to show");
    return ExitStatus::badWorld;
  }
  names.setWorld(world.root.get());
  stage.setWorld(world.root.get());
  fetcher.settle(world.root.get(), false);
  if (trace) trace->unknownSelections();  // what is there now need not be there in the end
  timeline.setInput(input, names, diagnostics);
  return ExitStatus::done;
}

void Run::frame(std::int64_t number, bool drawn) {
  seconds = static_cast<double>(number) / options.framesPerSecond;
  timeline.advanceTo(seconds, options.start);
  if (!drawn) stage.skipDrawing();
  while (drawn && changed) {
    timeline.draw();
    changed = fetcher.answer() > 0;  // what a world asks for when it is drawn comes into the same picture
  }
  if (trace) trace->flush();
}

ExitStatus Run::finish() {
  bool good = timeline.inputMadeSense();
  if (trace) {
    for (const std::string& what : trace->unknownSelections()) {
      diagnostics.report(Severity::error, "there is no " + what + " to trace");
      good = false;
    }
  }
  return good ? ExitStatus::done : ExitStatus::badWorld;
}

void Run::print(std::string_view node, std::string_view field, std::string_view value) const {
  std::printf("%.6f\t%s.%.*s\t%.*s\n", seconds, printable(node).c_str(), static_cast<int>(field.size()),
              field.data(), static_cast<int>(value.size()), value.data());
}

}  // namespace tessel::host
