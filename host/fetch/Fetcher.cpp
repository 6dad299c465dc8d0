// SPDX-License-Identifier: BSD-3-Clause
#include "Fetcher.h"

#include <algorithm>
#include <filesystem>

#include <Inventor/SoFullPath.h>
#include <Inventor/actions/SoSearchAction.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/proto/VrmlExternProtoInline.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/proto/VrmlProtoDict.h>

#include "../Diagnostics.h"
#include "../Text.h"
#include "../WorldFile.h"
#include "LocalFile.h"
#include "Url.h"

namespace tessel::host {
namespace {

namespace fs = std::filesystem;

/// How a message names a file of the disk: from the working directory if it lies below it.
std::string shortName(const fs::path& path) {
  std::error_code ignored;
  const fs::path relative = path.lexically_relative(fs::current_path(ignored));
  return relative.empty() || *relative.begin() == ".." ? path.string() : relative.string();
}

}  // namespace

Fetcher::Fetcher(Diagnostics& d, const FetchOptions& o) : diagnostics(d), options(o) {
  VrmlInline::setFetchURLCallBack(requestCB, this);
}

Fetcher::~Fetcher() {
  VrmlInline::setFetchURLCallBack(nullptr, nullptr);
  forgetWorld();
  VrmlDB::setBaseURL(nullptr);
}

void Fetcher::forgetWorld() {
  queue.clear();
  for (const auto& [url, library] : libraries) VrmlProtoDict::deleteStack(library.stack);
  libraries.clear();
  totalBytes = 0;
}

World Fetcher::open(const std::string& path, const ReadOptions& newReadOptions) {
  forgetWorld();
  readOptions = newReadOptions;
  const WorldFile file = readWorldFile(path);
  if (!file.readable()) {
    diagnostics.report(Severity::error, file.failure);
    return {ExitStatus::surroundings, {}};
  }
  diagnostics.progress("reading " + counted(static_cast<long long>(file.bytes.size()), "byte"));
  files.begin(fileUrlOf(path == "-" ? fs::path("-") : fs::path(path)), file.name);
  SoRef<SoNode> root;
  ReadStatus status = ReadStatus::failed;
  VrmlProtoDict::deleteStack(readWorld({file.bytes, {}, {}, file.name}, 0, root, status));
  if (status != ReadStatus::failed) return {ExitStatus::done, std::move(root)};
  if (!diagnostics.hasErrors()) diagnostics.report(Severity::error, "this is no VRML 2.0 world");
  return {ExitStatus::badWorld, {}};
}

int Fetcher::readWorld(const Data& data, int file, SoRef<SoNode>& root, ReadStatus& status) {
  VrmlDB::setBaseURL(files.baseOf(file).c_str());
  const int stack = VrmlProtoDict::createStack();
  root.reset(VrmlDB::read(data.bytes, data.name.c_str(), status, readOptions));
  VrmlProtoDict::setCurrentStackId(-1);
  VrmlDB::setBaseURL(files.baseOfLive().c_str());
  return stack;
}

// Requests.

void Fetcher::requestCB(const SbString& url, void* self, VrmlInline* node) {
  const bool forPrototypes = node->isOfType(VrmlExternProtoInline::getClassTypeId());
  static_cast<Fetcher*>(self)->queue.push_back({SoRef<VrmlInline>(node), url.getString(), forPrototypes});
}

int Fetcher::answer(std::chrono::nanoseconds budget) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  int answered = 0;
  while (!queue.empty() && Clock::now() - start < budget) {
    const Request request = std::move(queue.front());
    queue.pop_front();
    if (request.node->getRefCount() > 1) serve(request);  // else nobody but us knows the node any more
    ++answered;
  }
  return answered;
}

std::string Fetcher::target(const Request& request, std::string& failure) const {
  const std::string base = request.node->getBaseURL().getString();
  std::string url(withoutFragment(request.url));
  const std::string_view server = serverOf(base);
  if (!server.empty() && url.starts_with('/')) url.insert(0, server);
  if (isNetworkUrl(url)) {
    failure = "there is no network here";
    return {};
  }
  if (files.isFromNetwork(base)) {
    failure = "a world from the network gets nothing from this disk";
    return {};
  }
  if (const std::string scheme = schemeOf(url); !scheme.empty() && scheme != "file") {
    failure = "a URL of a kind that is not fetched";
    return {};
  }
  const fs::path folder = fs::path(percentDecoded(withoutFragment(base).substr(7))).parent_path();
  const auto path = findLocalFile(url, folder);
  if (!path) {
    failure = "there is no such file";
    return {};
  }
  return fileUrlOf(*path);
}

std::string Fetcher::limitReached(int asker) const {
  if (files[asker].depth + 1 > options.maxChain)
    return "more than " + std::to_string(options.maxChain) + " files that lead to one another";
  if (files.size() > options.maxFiles)
    return "the world is put together from more than " + counted(options.maxFiles, "file");
  if (totalBytes > options.maxTotalBytes) return "the files of the world are too large together";
  return {};
}

Fetcher::Data Fetcher::readLocal(const std::string& url) const {
  const std::string path = percentDecoded(std::string_view(url).substr(7));
  WorldFile file = readWorldFile(path);
  return {std::move(file.bytes), std::move(file.failure), url, shortName(path)};
}

void Fetcher::serve(const Request& request) {
  const int asker = files.fileOf(request.node->getBaseURL().getString());
  if (request.url.empty()) {
    const auto& alternatives = request.node->url;
    const int index = request.node->getUrlIndex();
    const bool named = index < alternatives.getNum() && alternatives[index].getLength() > 0;
    fail(request, named ? "a file can't be inlined in itself" : "", Severity::warning);
    return;
  }
  std::string failure;
  const std::string url = target(request, failure);
  if (url.empty()) {
    fail(request, failure, Severity::warning);
    return;
  }
  if (request.forPrototypes && libraries.contains(url)) {
    give(request, {{}, {}, url, {}});
    return;
  }
  if (!request.forPrototypes && files.leadsTo(asker, url)) {
    fail(request, "a file can't be inlined in itself", Severity::error);
    return;
  }
  if (failure = limitReached(asker); !failure.empty()) {
    fail(request, failure, Severity::error);
    return;
  }
  give(request, readLocal(url));
}

void Fetcher::give(const Request& request, const Data& data) {
  const int asker = files.fileOf(request.node->getBaseURL().getString());
  if (!data.failure.empty()) {
    fail(request, data.failure, Severity::warning);
    return;
  }
  if (const auto known = libraries.find(data.url); request.forPrototypes && known != libraries.end()) {
    files.lower(known->second.file, asker);
    request.node->setProtoDict(VrmlProtoDict::getTopOfStack(known->second.stack));
    request.node->setChildData(nullptr);
    return;
  }
  totalBytes += data.bytes.size();
  const int file = files.add(data.url, data.name, asker);
  SoRef<SoNode> root;
  ReadStatus status = ReadStatus::failed;
  const int stack = readWorld(data, file, root, status);
  auto* world = dynamic_cast<VrmlNode*>(root.get());
  const bool good = request.forPrototypes ? status != ReadStatus::failed : world != nullptr;
  if (!good) {
    VrmlProtoDict::deleteStack(stack);
    fail(request, status == ReadStatus::empty ? "there is nothing in it" : "it can't be read",
         Severity::warning);
    return;
  }
  request.node->setProtoDict(VrmlProtoDict::getTopOfStack(stack));
  if (request.forPrototypes)
    libraries.emplace(data.url, Library{stack, file});
  else
    request.node->setStackId(stack);
  request.node->setChildData(world);
}

void Fetcher::fail(const Request& request, const std::string& why, Severity atLeast) {
  const std::size_t before = queue.size();
  request.node->fetchFailed();
  if (why.empty()) return;
  const bool lastHope = queue.size() == before;
  const DefName* def = request.node->getDef();
  const std::string& asker = files[files.fileOf(request.node->getBaseURL().getString())].name;
  diagnostics.report(lastHope && options.missingIsError ? Severity::error : atLeast, asker,
                     def ? def->line : 0,
                     "can't get " + (request.url.empty() ? "a file" : request.url) + ": " + why);
}

// What a scene has not asked for yet.

int Fetcher::askForMissing(SoNode* root, bool all) {
  if (!root) return 0;
  SoSearchAction search;
  search.setType(VrmlInline::getClassTypeId());
  search.setInterest(SoSearchAction::ALL);
  search.setSearchingAll(all);
  search.apply(root);
  int asked = 0;
  const SoPathList& found = search.getPaths();
  for (int i = 0; i < found.getLength(); ++i) {
    auto* node = static_cast<VrmlInline*>(static_cast<SoFullPath*>(found[i])->getTail());
    if (node->areChildrenLoaded()) {
      if (!all) asked += askForMissing(node->getChildData(), all);
    } else if (!node->isFetchRequested()) {
      node->requestChildrenFromURL();
      ++asked;
    }
  }
  return asked;
}

void Fetcher::settle(SoNode* root, bool all) {
  do answer();
  while (askForMissing(root, all) > 0);
}

}  // namespace tessel::host
