// SPDX-License-Identifier: BSD-3-Clause
// A world of several files: the library says what it wants, the host reads it from the disk and hands it over.
//
//     example-fetch WORLD.wrl
#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

#include <Inventor/SoDB.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/proto/VrmlProtoDict.h>
#include <tessel/toolkit/SoRef.h>

namespace {

// What was asked for and is not answered yet. The callback comes in the middle of a traversal: it only takes notes.
std::deque<std::pair<tessel::SoRef<VrmlInline>, std::string>> wanted;

void noteRequest(const SbString& url, void*, VrmlInline* node) {
  wanted.emplace_back(tessel::SoRef<VrmlInline>(node), url.getString());
}

// Reads the file of a `file://` URL. Its nodes get its URL as their base, its prototypes a stack of their own.
tessel::SoRef<SoNode> readFile(const std::string& url, int& stack) {
  std::stringstream bytes;
  bytes << std::ifstream(url.substr(url.find("//") + 2), std::ios::binary).rdbuf();
  const std::string text = bytes.str();
  const SbString before = VrmlDB::baseURL;
  VrmlDB::setBaseURL(url.c_str());
  stack = VrmlProtoDict::createStack();
  tessel::ReadStatus status = tessel::ReadStatus::failed;
  tessel::SoRef<SoNode> root(VrmlDB::read(text, url.c_str(), status));
  VrmlProtoDict::setCurrentStackId(-1);
  VrmlDB::setBaseURL(before.getString());
  return root;
}

void answerAll() {
  while (!wanted.empty()) {
    const auto [node, url] = wanted.front();
    wanted.pop_front();
    int stack = -1;
    const tessel::SoRef<SoNode> root = readFile(url, stack);
    std::printf("%s: %s\n", std::filesystem::path(url).filename().c_str(), root ? "read" : "not to be had");
    if (root) {
      node->setProtoDict(VrmlProtoDict::getTopOfStack(stack));
      node->setStackId(stack);  // from now on it goes with the node
      node->setChildData(static_cast<VrmlNode*>(root.get()));
    } else {
      VrmlProtoDict::deleteStack(stack);
      node->fetchFailed();  // asks for the next alternative, if there is one
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::fprintf(stderr, "usage: example-fetch WORLD.wrl\n"), 2;
  SoDB::init();
  VrmlDB::init();
  VrmlInline::setFetchURLCallBack(noteRequest, nullptr);

  int stack = -1;
  const std::string url = "file://" + std::filesystem::absolute(argv[1]).string();
  const tessel::SoRef<SoNode> world = readFile(url, stack);
  VrmlProtoDict::deleteStack(stack);
  if (!world) return 1;
  // What is looked at asks for what it needs; a host that draws does this frame by frame.
  SoGetBoundingBoxAction bounds(SbViewportRegion(640, 480));
  do {
    answerAll();
    bounds.apply(world.get());
  } while (!wanted.empty());
  const SbVec3f size = bounds.getBoundingBox().getSize();
  std::printf("%g x %g x %g\n", size[0], size[1], size[2]);
  return 0;
}
