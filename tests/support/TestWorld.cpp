// SPDX-License-Identifier: BSD-3-Clause
#include "support/TestWorld.h"

#include <string>

#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <Inventor/SoInteraction.h>

namespace tessel::test {

void startLibrary() {
  static const bool once = [] {
    SoDB::init();
    SoInteraction::init();
    VrmlDB::init();
    return true;
  }();
  (void)once;
}

TestWorld::TestWorld(std::string_view text, const tessel::ReadOptions& options) {
  std::string whole(text);
  if (text.substr(0, 1) != "#") whole.insert(0, "#VRML V2.0 utf8\n");
  node.reset(VrmlDB::read(whole, "test.wrl", status, options));
}

TestWorld::TestWorld(const std::filesystem::path& file, const tessel::ReadOptions& options)
    : status(tessel::ReadStatus::failed) {
  SoInput in;
  if (in.openFile(file.c_str(), TRUE)) node.reset(VrmlDB::read(&in, status, options));
}

SoNode* TestWorld::named(const char* name) { return SoNode::getByName(name); }

}  // namespace tessel::test
