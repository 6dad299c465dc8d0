// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace tessel::host {

/// What the program tells the shell. With several worlds the greatest one counts.
enum class ExitStatus {
  done = 0,
  badWorld = 1,      ///< a world did not read, or has nothing to show
  wrongUsage = 2,    ///< arguments that make no sense
  surroundings = 3,  ///< no such file, no display, no room to write
};

}  // namespace tessel::host
