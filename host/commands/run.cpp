// SPDX-License-Identifier: BSD-3-Clause
#include "Command.h"

#include <cstdio>

#include "../Run.h"
#include "../World.h"
#include "../gl/OffscreenContext.h"

namespace tessel::host {
namespace {

class RunCommand : public Command {
public:
  explicit RunCommand(CLI::App& program)
      : Command(program, "run", "Run a world on a virtual clock, and tell its events") {
    takeWorld();
    options.seconds = 1;
    options.addTo(app);
    app.add_option("--trace", trace,
                   "Print the events of a node, of one of its fields, or all; may be repeated")
        ->allow_extra_args(false)
        ->type_name("NODE[.FIELD]|all");
  }
  ExitStatus run() override;

private:
  RunOptions options;
  std::vector<std::string> trace;
};

ExitStatus RunCommand::run() {
  constexpr int width = 800, height = 600;
  startLibrary(SbTime(options.start));
  Diagnostics diagnostics(output());
  const std::string& path = worlds.front();
  diagnostics.beginWorld(path == "-" ? "<stdin>" : path);
  const InputFile input = options.input.empty() ? InputFile() : InputFile::read(options.input, diagnostics);
  if (input.status != ExitStatus::done) return input.status;
  // A world asks for what it needs when it is drawn, so it is drawn though nobody looks.
  std::string failure;
  const auto context = OffscreenContext::create(width, height, failure);
  if (!context) diagnostics.complain(failure + "; the world runs undrawn");
  Fetcher fetcher(diagnostics, fetchOptions);
  Run course(options, input, trace, width, height, fetcher, diagnostics);
  ExitStatus status = course.load(path, readOptions);
  if (status == ExitStatus::done) {
    diagnostics.progress("running");
    const std::int64_t last = options.lastFrame();
    for (std::int64_t frame = 0; frame <= last; ++frame) course.frame(frame, context != nullptr);
    status = course.finish();
  }
  diagnostics.endWorld();
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return status;
  diagnostics.complain("can't write the trace");
  return ExitStatus::surroundings;
}

}  // namespace

std::unique_ptr<Command> makeRunCommand(CLI::App& program) { return std::make_unique<RunCommand>(program); }

}  // namespace tessel::host
