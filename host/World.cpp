// SPDX-License-Identifier: BSD-3-Clause
#include "World.h"

#include <filesystem>

#include <Inventor/SoDB.h>
#include <Inventor/SoPath.h>
#include <Inventor/actions/SoSearchAction.h>
#include <tessel/core/VrmlWorldInfo.h>
#include <tessel/script/ScriptReport.h>

#include "Text.h"

namespace tessel::host {

// As many steps as a script takes in a part of a second.
static constexpr std::int64_t maxScriptSteps = 10'000'000;

void startLibrary() {
  SoDB::init();
  VrmlDB::init();
  setScriptStepLimit(maxScriptSteps);
}

void startLibrary(const SbTime& virtualStart) {
  SoDB::init();
  VrmlDB::takeClock(virtualStart);
  VrmlDB::init();
  setScriptStepLimit(maxScriptSteps);
}

std::string titleOf(SoNode* root, const std::string& path) {
  SoSearchAction search;
  search.setType(VrmlWorldInfo::getClassTypeId());
  search.apply(root);
  if (search.getPath()) {
    const auto* info = static_cast<VrmlWorldInfo*>(static_cast<SoFullPath*>(search.getPath())->getTail());
    if (info->title.getValue().getLength() > 0) return printable(info->title.getValue().getString());
  }
  return path == "-" ? "standard input" : printable(std::filesystem::path(path).filename().string());
}

}  // namespace tessel::host
