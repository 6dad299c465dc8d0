// SPDX-License-Identifier: BSD-3-Clause
#include "host/Program.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include <sys/wait.h>

#include "support/Paths.h"

namespace tessel::host {
namespace {

std::string quoted(const std::string& word) {
  std::string out = "'";
  for (const char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + '\'';
}

std::string contentOf(const std::filesystem::path& path) {
  std::ostringstream out;
  out << std::ifstream(path, std::ios::binary).rdbuf();
  return out.str();
}

}  // namespace

Outcome runTessel(const std::vector<std::string>& arguments, std::string_view input) {
  const std::filesystem::path& folder = test::scratchDir();
  makeFile("stdin", input);
  std::string command =
      "cd " + quoted(folder.string()) + " && " + quoted(test::builtProgram("tessel").string());
  for (const std::string& argument : arguments) command += ' ' + quoted(argument);
  const int status = std::system((command + " <stdin >stdout 2>stderr").c_str());
  const bool ended = WIFEXITED(status) && WEXITSTATUS(status) < 126;
  return {ended ? WEXITSTATUS(status) : -1, contentOf(folder / "stdout"), contentOf(folder / "stderr")};
}

std::string makeFile(const std::string& name, std::string_view content) {
  const std::filesystem::path path = test::scratchDir() / name;
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << content;
  return name;
}

std::string world(std::string_view body) { return "#VRML V2.0 utf8\n" + std::string(body); }

std::string shiningBox(const std::string& translation, const std::string& size, const std::string& color) {
  return "Transform { translation " + translation +
         " children Shape { appearance Appearance { material Material { ambientIntensity 0 diffuseColor 0 0 "
         "0 "
         "emissiveColor " +
         color + " } } geometry Box { size " + size + " } } }\n";
}

}  // namespace tessel::host
