// SPDX-License-Identifier: BSD-3-Clause
#include "Command.h"

#include <iostream>

#include "../Contents.h"
#include "../JsonWriter.h"
#include "../Text.h"
#include "../World.h"

namespace tessel::host {
namespace {

class InfoCommand : public Command {
public:
  explicit InfoCommand(CLI::App& program) : Command(program, "info", "Tell what is in a world") {
    takeWorld();
    app.add_flag("--json", json, "Print JSON");
  }
  ExitStatus run() override;

private:
  bool json = false;
};

ExitStatus InfoCommand::run() {
  startLibrary();
  Diagnostics diagnostics(output());
  const std::string& path = worlds.front();
  diagnostics.beginWorld(path == "-" ? "<stdin>" : path);
  Fetcher fetcher(diagnostics, fetchOptions);
  const World world = fetcher.open(path, readOptions);
  if (world.good()) {
    const Contents contents = contentsOf(world.root.get());
    if (json) {
      JsonWriter out(std::cout);
      out.beginObject();
      out.member("path", path);
      write(out, contents);
      out.endObject();
    } else {
      std::cout << formatted(contents);
    }
  }
  diagnostics.endWorld();
  return world.status;
}

}  // namespace

std::unique_ptr<Command> makeInfoCommand(CLI::App& program) { return std::make_unique<InfoCommand>(program); }

}  // namespace tessel::host
