// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ExitStatus.h"

namespace tessel::host {

class Diagnostics;

/// What is to be done to a world, and when.
struct InputLine {
  enum class Action { set, viewpoint };
  double seconds = 0;  ///< since the start
  Action action = Action::set;
  std::string target;  ///< NODE.FIELD, or the name of the viewpoint
  std::string value;   ///< of `set`, VRML text
  int line = 0;        ///< in the file
};

/// A file of lines `SECONDS ACTION ...`, each done in the first frame that is not before its time.
struct InputFile {
  std::string name;
  std::vector<InputLine> lines;  ///< by time, those of one time in the order of the file
  ExitStatus status = ExitStatus::done;

  /// Reads a file, or standard input for `-`. Every line that is none is reported; the status is then
  /// `wrongUsage`, or `surroundings` if there is no file.
  static InputFile read(const std::string& path, Diagnostics& diagnostics);
};

}  // namespace tessel::host
