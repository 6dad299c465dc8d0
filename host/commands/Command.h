// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <tessel/core/VrmlDB.h>
#include <tessel/script/VrmlScript.h>
#include <CLI/CLI.hpp>

#include "../Diagnostics.h"
#include "../ExitStatus.h"
#include "../fetch/Fetcher.h"

namespace tessel::host {

/// One command of the program: its arguments and what it does.
class Command {
public:
  virtual ~Command() = default;
  /// Whether the user asked for this one.
  bool chosen() const { return app.parsed(); }
  virtual ExitStatus run() = 0;

protected:
  /// Adds the command and the options that all have in common.
  Command(CLI::App& program, const std::string& name, const std::string& description)
      : app(*program.add_subcommand(name, description)) {
    CLI::Option* quietFlag = app.add_flag("--quiet,-q", quiet, "Print errors only");
    app.add_flag("--verbose,-v", verbose, "Print what is being done, too")->excludes(quietFlag);
    app.add_flag("--strict", readOptions.strict, "Refuse what would pass with a warning");
    app.add_flag_callback(
        "--no-network", [this] { fetchOptions.network = false; }, "Get nothing over the network");
    app.add_flag_callback(
        "--no-scripts", [] { VrmlScript::allEnabled = 0; }, "Leave the Scripts of the world alone");
  }
  /// The argument of the commands that take one world.
  void takeWorld() {
    app.add_option("WORLD", worlds, "File, URL, or - for standard input")
        ->required()
        ->expected(1)
        ->type_name("");
  }
  /// The argument of those that take many.
  void takeWorlds() {
    app.add_option("WORLD", worlds, "Files, URLs, or - for standard input")
        ->required()
        ->expected(-1)
        ->type_name("");
  }

  Diagnostics::Output output() const {
    return quiet     ? Diagnostics::Output::quiet
           : verbose ? Diagnostics::Output::verbose
                     : Diagnostics::Output::normal;
  }

  CLI::App& app;
  std::vector<std::string> worlds;
  ReadOptions readOptions;
  FetchOptions fetchOptions;
  bool quiet = false, verbose = false;
};

std::unique_ptr<Command> makeViewCommand(CLI::App& program);
std::unique_ptr<Command> makeShotCommand(CLI::App& program);
std::unique_ptr<Command> makeRunCommand(CLI::App& program);
std::unique_ptr<Command> makeCheckCommand(CLI::App& program);
std::unique_ptr<Command> makeInfoCommand(CLI::App& program);

}  // namespace tessel::host
