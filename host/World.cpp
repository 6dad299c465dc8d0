// SPDX-License-Identifier: BSD-3-Clause
#include "World.h"

#include <filesystem>

#include <Inventor/SoDB.h>
#include <Inventor/SoPath.h>
#include <Inventor/actions/SoSearchAction.h>
#include <tessel/core/VrmlWorldInfo.h>

#include "Diagnostics.h"
#include "Text.h"
#include "WorldFile.h"

namespace tessel::host {

void startLibrary() {
  SoDB::init();
  VrmlDB::init();
}

void startLibrary(const SbTime& virtualStart) {
  SoDB::init();
  VrmlDB::takeClock(virtualStart);
  VrmlDB::init();
}

World loadWorld(const std::string& path, const ReadOptions& options, Diagnostics& diagnostics) {
  const WorldFile file = readWorldFile(path);
  if (!file.readable()) {
    diagnostics.report(Severity::error, file.failure);
    return {ExitStatus::surroundings, {}};
  }
  diagnostics.progress("reading " + counted(static_cast<long long>(file.bytes.size()), "byte"));
  ReadStatus status = ReadStatus::failed;
  SoRef<SoNode> root(VrmlDB::read(file.bytes, file.name.c_str(), status, options));
  if (status != ReadStatus::failed) return {ExitStatus::done, std::move(root)};
  if (!diagnostics.hasErrors()) diagnostics.report(Severity::error, "this is no VRML 2.0 world");
  return {ExitStatus::badWorld, {}};
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
