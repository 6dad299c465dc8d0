// SPDX-License-Identifier: BSD-3-Clause
// The program `tessel`: looks at, draws and checks VRML 2.0 worlds.
#include <cstdio>
#include <exception>

#include <tessel/version.h>

#include "commands/Command.h"

using namespace tessel::host;

static ExitStatus execute(int argc, char** argv) {
  CLI::App program("Reads, runs and shows VRML 2.0 worlds.", "tessel");
  program.set_version_flag("--version", std::string("tessel ") + tessel::version());
  program.require_subcommand(1);
  program.get_formatter()->label("SUBCOMMAND", "COMMAND");
  program.get_formatter()->label("Subcommands", "Commands");
  program.failure_message(CLI::FailureMessage::simple);

  const std::unique_ptr<Command> commands[] = {makeViewCommand(program), makeShotCommand(program),
                                               makeRunCommand(program), makeCheckCommand(program),
                                               makeInfoCommand(program)};
  ExitStatus status = ExitStatus::wrongUsage;
  try {
    program.parse(argc, argv);
    for (const auto& command : commands)
      if (command->chosen()) status = command->run();
  } catch (const CLI::ParseError& error) {
    status = program.exit(error) == 0 ? ExitStatus::done : ExitStatus::wrongUsage;
  }
  return status;
}

int main(int argc, char** argv) {
  try {
    return static_cast<int>(execute(argc, argv));
  } catch (const std::exception& error) {  // out of memory, above all
    std::fprintf(stderr, "tessel: %s\n", error.what());
  } catch (...) {
    std::fputs("tessel: an unknown exception\n", stderr);
  }
  return static_cast<int>(ExitStatus::surroundings);
}
