// SPDX-License-Identifier: BSD-3-Clause
// Any bytes, cut into files that refer to one another: the first is the world, the others are 1.wrl, 2.wrl and so on.
// Each answer comes between two traversals, as a host gives it.

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tessel/core/VrmlNode.h>
#include <tessel/proto/VrmlExternProtoInline.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/proto/VrmlProtoDict.h>
#include <tessel/toolkit/SoRef.h>

#include "Traversals.h"
#include "host/fetch/Occurrences.h"

namespace {

using tessel::SoRef;

constexpr std::string_view boundary = "\n--8<--\n";
constexpr std::string_view folder = "http://host/";
constexpr int mostAnswers = 24;  // circles end here
constexpr double mostShown = 20'000;

std::vector<std::string_view> filesOf(std::string_view archive) {
  std::vector<std::string_view> files;
  for (;;) {
    const std::size_t end = archive.find(boundary);
    files.push_back(archive.substr(0, end));
    if (end == std::string_view::npos) return files;
    archive.remove_prefix(end + boundary.size());
  }
}

/// A host for one run.
class Host {
public:
  explicit Host(std::string_view archive) : files(filesOf(archive)) {
    VrmlInline::setFetchURLCallBack(noteRequest, this);
  }
  ~Host() {
    VrmlInline::setFetchURLCallBack(nullptr, nullptr);
    VrmlDB::setBaseURL(nullptr);
    wanted.clear();
    for (const int stack : libraries) VrmlProtoDict::deleteStack(stack);
  }

  SoRef<SoNode> read(std::size_t file, int& stack) {
    const std::string url = std::string(folder) + std::to_string(file) + ".wrl";
    VrmlDB::setBaseURL(url.c_str());
    stack = VrmlProtoDict::createStack();
    tessel::ReadStatus status = tessel::ReadStatus::failed;
    SoRef<SoNode> root(VrmlDB::read(files[file], url.c_str(), status, {.maxExpanded = 5'000}));
    VrmlProtoDict::setCurrentStackId(-1);
    if ((status == tessel::ReadStatus::world) != static_cast<bool>(root)) __builtin_trap();
    return root;
  }

  /// Answers what was asked for so far; false when there is nothing or it is enough.
  bool answer() {
    const bool any = !wanted.empty() && answers < mostAnswers;
    for (std::size_t left = wanted.size(); left > 0 && answers < mostAnswers; --left, ++answers) {
      const auto [node, url] = wanted.front();
      wanted.pop_front();
      answerOne(*node, url);
    }
    return any;
  }

private:
  static void noteRequest(const SbString& url, void* self, VrmlInline* node) {
    static_cast<Host*>(self)->wanted.emplace_back(SoRef<VrmlInline>(node), url.getString());
  }

  void answerOne(VrmlInline& node, std::string_view url) {
    std::size_t file = 0;
    const std::string_view name = url.substr(std::min(folder.size(), url.size()));
    const bool known = url.starts_with(folder) &&
                       std::from_chars(name.data(), name.data() + name.size(), file).ec == std::errc() &&
                       file < files.size();
    if (!known) {
      node.fetchFailed();
      return;
    }
    int stack = -1;
    const SoRef<SoNode> root = read(file, stack);
    node.setProtoDict(VrmlProtoDict::getTopOfStack(stack));
    if (node.isOfType(VrmlExternProtoInline::getClassTypeId())) {
      libraries.push_back(stack);
      node.setChildData(nullptr);
    } else if (root) {
      node.setStackId(stack);
      node.setChildData(static_cast<VrmlNode*>(root.get()));
    } else {
      node.setProtoDict(nullptr);
      VrmlProtoDict::deleteStack(stack);
      node.fetchFailed();
    }
  }

  const std::vector<std::string_view> files;
  std::deque<std::pair<SoRef<VrmlInline>, std::string>> wanted;
  std::vector<int> libraries;  // stacks of prototypes that outlive the answer
  int answers = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool started = (tessel::fuzz::start(), true);
  (void)started;

  Host host({reinterpret_cast<const char*>(data), size});
  int stack = -1;
  const SoRef<SoNode> root = host.read(0, stack);
  VrmlProtoDict::deleteStack(stack);
  if (!root) return 0;
  tessel::host::Occurrences inlines;
  do {
    if (tessel::host::countOccurrences(root.get(), 1, inlines) > mostShown) return 0;
    tessel::fuzz::traverse(root.get());
  } while (host.answer());
  const SoRef<SoNode> copy(VrmlNode::deepCopy(static_cast<VrmlNode*>(root.get()), TRUE));
  tessel::fuzz::traverse(copy.get());
  return 0;
}
