// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::host {

/// How a run of the program `tessel` ended.
struct Outcome {
  int status = -1;  ///< -1 if it was killed by a signal or never started
  std::string out;
  std::string err;
};

/// Runs `tessel` with these arguments in the test's own folder, with `input` on standard input.
Outcome runTessel(const std::vector<std::string>& arguments, std::string_view input = {});

/// Writes a file into the test's own folder and gives its name.
std::string makeFile(const std::string& name, std::string_view content);

/// `body` as a world, with its header.
std::string world(std::string_view body);

/// A box that shines by itself, so that its colour is the same from all sides; the arguments are VRML values.
std::string shiningBox(const std::string& translation, const std::string& size, const std::string& color);

}  // namespace tessel::host
