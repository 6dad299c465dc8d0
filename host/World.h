// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include <Inventor/nodes/SoNode.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/SoRef.h>

#include "ExitStatus.h"

namespace tessel::host {

/// A world as it came from its file.
struct World {
  ExitStatus status =
      ExitStatus::done;  ///< `surroundings` if there is no such file, `badWorld` after an error
  SoRef<SoNode> root;    ///< none after an error, and in an empty world

  bool good() const { return status == ExitStatus::done; }
};

/// Starts toolkit and library on the wall clock, at the first call.
void startLibrary();
/// The same on a clock that stands still but for VrmlDB::setClock.
void startLibrary(const SbTime& virtualStart);

/// The title that the world gives itself, else its file's name.
std::string titleOf(SoNode* root, const std::string& path);

}  // namespace tessel::host
