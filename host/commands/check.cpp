// SPDX-License-Identifier: BSD-3-Clause
#include "Command.h"

#include <algorithm>
#include <iostream>

#include "../JsonWriter.h"
#include "../Text.h"
#include "../World.h"

namespace tessel::host {
namespace {

class CheckCommand : public Command {
public:
  explicit CheckCommand(CLI::App& program)
      : Command(program, "check", "Read worlds and report what is wrong with them") {
    takeWorlds();
    app.add_flag("--follow", follow, "Read the files that the worlds ask for, too");
    app.add_flag("--json", json, "Report on standard output, as JSON");
  }
  ExitStatus run() override;

private:
  bool json = false, follow = false;
};

ExitStatus CheckCommand::run() {
  startLibrary();
  Diagnostics diagnostics(json ? Diagnostics::Output::collectOnly : output());
  fetchOptions.missingIsError = true;
  readOptions.checkScripts = VrmlScript::allEnabled;
  Fetcher fetcher(diagnostics, fetchOptions);
  JsonWriter out(std::cout);
  if (json) {
    out.beginObject();
    out.key("worlds");
    out.beginArray();
  }
  ExitStatus status = ExitStatus::done;
  int good = 0;
  for (const std::string& path : worlds) {
    diagnostics.beginWorld(path == "-" ? "<stdin>" : path);
    World world = fetcher.open(path, readOptions);
    if (follow && world.good()) fetcher.settle(world.root.get(), true);
    if (world.good() && diagnostics.hasErrors()) world.status = ExitStatus::badWorld;
    diagnostics.endWorld();
    good += world.good();
    status = std::max(status, world.status);
    if (json) {
      out.beginObject();
      out.member("path", path);
      out.member("good", world.good());
      out.key("messages");
      diagnostics.write(out);
      out.endObject();
    }
  }
  const int bad = static_cast<int>(worlds.size()) - good;
  if (json) {
    out.endArray();
    out.member("good", good);
    out.member("bad", bad);
    out.endObject();
  } else if (!quiet) {
    std::cout << counted(static_cast<long long>(worlds.size()), "world") << ": " << good << " good, " << bad
              << " bad\n";
  }
  return status;
}

}  // namespace

std::unique_ptr<Command> makeCheckCommand(CLI::App& program) {
  return std::make_unique<CheckCommand>(program);
}

}  // namespace tessel::host
