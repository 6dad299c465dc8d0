// SPDX-License-Identifier: BSD-3-Clause
#include "Command.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <set>

#include <Inventor/SoDB.h>
#include <Inventor/sensors/SoSensorManager.h>

#include "../Image.h"
#include "../Stage.h"
#include "../Text.h"
#include "../World.h"
#include "../WorldFile.h"
#include "../gl/OffscreenContext.h"

namespace tessel::host {
namespace {

namespace fs = std::filesystem;

constexpr double virtualStart = 1000000000;  // seconds; every run begins at the same moment
constexpr int largestSide = 16384;

/// Reads `WxH`.
struct Size {
  int width = 800, height = 600;
};

bool parseSize(const std::string& text, Size& size) {
  int used = 0;
  if (std::sscanf(text.c_str(), "%5dx%5d%n", &size.width, &size.height, &used) != 2) return false;
  const auto fits = [](int side) { return side >= 1 && side <= largestSide; };
  return static_cast<std::size_t>(used) == text.size() && fits(size.width) && fits(size.height);
}

class ShotCommand : public Command {
public:
  explicit ShotCommand(CLI::App& program)
      : Command(program, "shot", "Draw pictures of worlds, without a display") {
    takeWorlds();
    app.add_option("-o,--output", output_, "Picture to write (PNG); a folder for several worlds")
        ->type_name("OUT.png");
    app.add_option(
           "--size", [this](const CLI::results_t& given) { return parseSize(given.back(), size); },
           "Width and height in pixels (800x600)")
        ->type_name("WxH");
    app.add_option("--viewpoint", viewpoint,
                   "Where to look from: a Viewpoint's DEF name or description, #N for the N-th, all to frame "
                   "everything")
        ->type_name("NAME|#N|all");
  }
  ExitStatus run() override;

private:
  ExitStatus shoot(const std::string& path, const std::string& target, Diagnostics& diagnostics,
                   Fetcher& fetcher);
  std::string targetFor(const std::string& path);

  std::string output_;
  Size size;
  std::string viewpoint;
  std::unique_ptr<OffscreenContext> context;
  std::set<std::string> taken;  // names of pictures in this run
};

/// OUT.png for one world; for several, or a folder, the world's name in that folder, numbered if it comes
/// again.
std::string ShotCommand::targetFor(const std::string& path) {
  const bool folder =
      worlds.size() > 1 || output_.empty() || output_.ends_with('/') || fs::is_directory(output_);
  if (!folder) return output_;
  const std::string stem = stemOf(path);
  std::string name = stem + ".png";
  for (int n = 2; !taken.insert(name).second; ++n) name = stem + '-' + std::to_string(n) + ".png";
  return (fs::path(output_) / name).string();
}

ExitStatus ShotCommand::run() {
  startLibrary(SbTime(virtualStart));
  Diagnostics diagnostics(output());
  Fetcher fetcher(diagnostics);
  if (worlds.size() > 1 && !output_.empty() && !fs::is_directory(output_)) {
    std::error_code error;
    fs::create_directories(output_, error);
    if (error) {
      diagnostics.complain("no folder " + output_ + " for several pictures: " + error.message());
      return ExitStatus::surroundings;
    }
  }
  std::string failure;
  context = OffscreenContext::create(size.width, size.height, failure);
  if (!context) {
    diagnostics.complain(failure);
    return ExitStatus::surroundings;
  }
  ExitStatus status = ExitStatus::done;
  int drawn = 0;
  for (const std::string& path : worlds) {
    diagnostics.beginWorld(path == "-" ? "<stdin>" : path);
    const ExitStatus one = shoot(path, targetFor(path), diagnostics, fetcher);
    diagnostics.endWorld();
    drawn += one == ExitStatus::done;
    status = std::max(status, one);
  }
  if (worlds.size() > 1 && !quiet)
    std::cout << counted(static_cast<long long>(worlds.size()), "world") << ": " << counted(drawn, "picture")
              << '\n';
  return status;
}

ExitStatus ShotCommand::shoot(const std::string& path, const std::string& target, Diagnostics& diagnostics,
                              Fetcher& fetcher) {
  srand48(0);
  VrmlDB::setClock(SbTime(virtualStart));
  const World world = fetcher.open(path, readOptions);
  if (!world.good()) return world.status;
  if (!world.root) {
    diagnostics.report(Severity::error, "there is nothing to show");
    return ExitStatus::badWorld;
  }
  Stage stage(size.width, size.height);
  stage.setWorld(world.root.get());
  fetcher.settle(world.root.get(), false);
  if (!viewpoint.empty() && !stage.showViewpoint(viewpoint)) {
    diagnostics.report(Severity::error, "there is no viewpoint " + viewpoint);
    return ExitStatus::badWorld;
  }
  SoSensorManager& sensors = *SoDB::getSensorManager();
  sensors.processTimerQueue();
  sensors.processDelayQueue(TRUE);
  diagnostics.progress("drawing");
  stage.draw();
  // What is asked for when it is drawn comes into the picture, too.
  while (fetcher.answer() > 0) {
    fetcher.settle(world.root.get(), false);
    stage.draw();
  }
  const std::string failure = writePng(context->picture(), target);
  if (!failure.empty()) {
    diagnostics.complain("can't write " + target + ": " + failure);
    return ExitStatus::surroundings;
  }
  diagnostics.progress("written to " + target);
  return ExitStatus::done;
}

}  // namespace

std::unique_ptr<Command> makeShotCommand(CLI::App& program) { return std::make_unique<ShotCommand>(program); }

}  // namespace tessel::host
