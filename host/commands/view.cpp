// SPDX-License-Identifier: BSD-3-Clause
#include "Command.h"

#include "../Viewer.h"
#include "../World.h"
#include "../gl/Window.h"

namespace tessel::host {
namespace {

class ViewCommand : public Command {
public:
  explicit ViewCommand(CLI::App& program) : Command(program, "view", "Show a world in a window") {
    takeWorld();
    app.footer(
        "Left button: turn. Middle: pan. Right or wheel: nearer and farther.\n"
        "e examine, f fly, PageUp and PageDown viewpoints, h headlight, r read again, q quit.");
  }
  ExitStatus run() override;
};

ExitStatus ViewCommand::run() {
  startLibrary();
  Diagnostics diagnostics(output());
  const std::string& path = worlds.front();
  diagnostics.beginWorld(path == "-" ? "<stdin>" : path);
  Fetcher fetcher(diagnostics, fetchOptions);
  const World world = fetcher.open(path, readOptions);
  if (!world.good()) {
    diagnostics.endWorld();
    return world.status;
  }
  if (!world.root) {
    diagnostics.report(Severity::error, "there is nothing to show");
    return ExitStatus::badWorld;
  }
  std::string failure;
  const auto window = Window::create(800, 600, "tessel", failure);
  if (!window) {
    diagnostics.complain(failure);
    return ExitStatus::surroundings;
  }
  Viewer(*window, path, world, readOptions, fetcher, diagnostics).run();
  diagnostics.endWorld();
  return ExitStatus::done;
}

}  // namespace

std::unique_ptr<Command> makeViewCommand(CLI::App& program) { return std::make_unique<ViewCommand>(program); }

}  // namespace tessel::host
