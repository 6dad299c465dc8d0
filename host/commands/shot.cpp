// SPDX-License-Identifier: BSD-3-Clause
#include "Command.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <set>

#include "../Image.h"
#include "../Run.h"
#include "../Text.h"
#include "../World.h"
#include "../WorldFile.h"
#include "../gl/OffscreenContext.h"

namespace tessel::host {
namespace {

namespace fs = std::filesystem;

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
    options.addTo(app);
    app.add_option("--frames", frames,
                   "Folder for a picture of every frame; in folders of their own for several worlds")
        ->type_name("DIR");
  }
  ExitStatus run() override;

private:
  ExitStatus shoot(const std::string& path, const std::string& target, Diagnostics& diagnostics,
                   Fetcher& fetcher);
  ExitStatus save(const fs::path& target, const Diagnostics& diagnostics);
  std::string targetFor(const std::string& path);
  bool makeFolder(const fs::path& folder, const char* purpose, const Diagnostics& diagnostics);

  std::string output_;
  Size size;
  std::string viewpoint;
  RunOptions options;
  std::string frames;
  InputFile input;
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

bool ShotCommand::makeFolder(const fs::path& folder, const char* purpose, const Diagnostics& diagnostics) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error)
    diagnostics.complain("no folder " + folder.string() + " for " + purpose + ": " + error.message());
  return !error;
}

ExitStatus ShotCommand::run() {
  startLibrary(SbTime(options.start));
  Diagnostics diagnostics(output());
  Fetcher fetcher(diagnostics, fetchOptions);
  if (worlds.size() > 1 && !output_.empty() && !fs::is_directory(output_) &&
      !makeFolder(output_, "several pictures", diagnostics))
    return ExitStatus::surroundings;
  if (!options.input.empty()) input = InputFile::read(options.input, diagnostics);
  if (input.status != ExitStatus::done) return input.status;
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
  Run course(options, input, {}, size.width, size.height, fetcher, diagnostics);
  const ExitStatus loaded = course.load(path, readOptions);
  if (loaded != ExitStatus::done) return loaded;
  if (!viewpoint.empty() && !course.stage.showViewpoint(viewpoint)) {
    diagnostics.report(Severity::error, "there is no viewpoint " + viewpoint);
    return ExitStatus::badWorld;
  }
  const fs::path folder = worlds.size() > 1 ? fs::path(frames) / fs::path(target).stem() : fs::path(frames);
  if (!frames.empty() && !makeFolder(folder, "frames", diagnostics)) return ExitStatus::surroundings;

  diagnostics.progress("drawing");
  const std::int64_t last = options.lastFrame();
  for (std::int64_t frame = 0; frame <= last; ++frame) {
    course.frame(frame, true);
    if (frames.empty()) continue;
    char name[32];
    std::snprintf(name, sizeof name, "%06lld.png", static_cast<long long>(frame));
    if (save(folder / name, diagnostics) != ExitStatus::done) return ExitStatus::surroundings;
  }
  if ((frames.empty() || !output_.empty()) && save(target, diagnostics) != ExitStatus::done)
    return ExitStatus::surroundings;
  return course.finish();
}

ExitStatus ShotCommand::save(const fs::path& target, const Diagnostics& diagnostics) {
  const std::string failure = writePng(context->picture(), target);
  if (!failure.empty()) {
    diagnostics.complain("can't write " + target.string() + ": " + failure);
    return ExitStatus::surroundings;
  }
  diagnostics.progress("written to " + target.string());
  return ExitStatus::done;
}

}  // namespace

std::unique_ptr<Command> makeShotCommand(CLI::App& program) { return std::make_unique<ShotCommand>(program); }

}  // namespace tessel::host
