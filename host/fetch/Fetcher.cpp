// SPDX-License-Identifier: BSD-3-Clause
#include "Fetcher.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <unordered_set>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/misc/SoChildList.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/proto/VrmlExternProtoInline.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/proto/VrmlProtoDict.h>
#include <unistd.h>

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

/// Calls `look` for every node that hangs from `root`, once.
template <class Look> void forAllBelow(SoNode* root, const Look& look) {
  std::unordered_set<const SoNode*> seen;
  std::vector<SoNode*> open{root};
  while (!open.empty()) {
    SoNode* node = open.back();
    open.pop_back();
    if (!seen.insert(node).second) continue;
    look(node);
    const SoChildList* children = node->getChildren();
    for (int i = children ? children->getLength() - 1 : -1; i >= 0; --i) open.push_back((*children)[i]);
  }
}

/// Calls `look` for every Inline that a traversal of the scene as it stands comes to.
template <class Look> void forAllInSight(SoNode* root, const Look& look) {
  SoCallbackAction walk;
  const auto visit = [](void* data, SoCallbackAction*, const SoNode* node) {
    (*static_cast<const Look*>(data))(const_cast<SoNode*>(node));
    return SoCallbackAction::CONTINUE;
  };
  walk.addPreCallback(VrmlInline::getClassTypeId(), visit, const_cast<Look*>(&look));
  walk.apply(root);
}

constexpr std::string_view fileScheme = "file://";  // before the path, in all URLs that we make ourselves
constexpr const char* switchedOff = "the network is switched off";
constexpr const char* tooLarge = "it is too large";
constexpr const char* inItself = "a file can't be inlined in itself";

}  // namespace

Fetcher::Fetcher(Diagnostics& d, const FetchOptions& o)
    : diagnostics(d),
      options(o),
      listener([this](RequestPtr request) { queue.push_back(std::move(request)); }) {}

Fetcher::~Fetcher() {
  forgetWorld();
  VrmlDB::setBaseURL(nullptr);
}

void Fetcher::forgetWorld() {
  queue.clear();
  coming.clear();
  for (const auto& [url, answer] : downloaded) unlink(answer.file.c_str());
  downloaded.clear();
  for (const auto& [url, library] : libraries) VrmlProtoDict::deleteStack(library.stack);
  libraries.clear();
  totalBytes = 0;
  inlines.clear();
  shown = 0;
  if (network) network->forget();
}

World Fetcher::open(const std::string& path, const ReadOptions& newReadOptions) {
  forgetWorld();
  readOptions = newReadOptions;
  const Data data = openWorld(path);
  if (!data.failure.empty()) {
    diagnostics.report(Severity::error, data.failure);
    return {ExitStatus::surroundings, {}};
  }
  diagnostics.progress("reading " + counted(static_cast<long long>(data.bytes.size()), "byte"));
  files.begin(data.url, data.name);
  SoRef<SoNode> root;
  ReadStatus status = ReadStatus::failed;
  VrmlProtoDict::deleteStack(readWorld(data, 0, root, status));
  if (root) shown = countOccurrences(root.get(), 1, inlines);
  if (status != ReadStatus::failed) return {ExitStatus::done, std::move(root)};
  if (!diagnostics.hasErrors()) diagnostics.report(Severity::error, "this is no VRML 2.0 world");
  return {ExitStatus::badWorld, {}};
}

Fetcher::Data Fetcher::openWorld(const std::string& path) {
  if (isNetworkUrl(path)) {
    if (!options.network) return {{}, switchedOff, {}, {}};
    const std::string url = tidiedForNetwork(withoutFragment(path));
    askNetwork(url);
    while (!downloaded.contains(url)) {
      network->wait(options.limits.time);
      takeFromNetwork();
    }
    return readDownloaded(downloaded[url]);
  }
  const bool isUrl = schemeOf(path) == "file";
  std::error_code ignored;
  const auto found = isUrl ? findLocalFile(withoutFragment(path), fs::current_path(ignored)) : std::nullopt;
  WorldFile file = readWorldFile(found ? found->string() : path);
  return {std::move(file.bytes), std::move(file.failure), fileUrlOf(found ? *found : fs::path(path)),
          file.name};
}

int Fetcher::readWorld(const Data& data, int file, SoRef<SoNode>& root, ReadStatus& status) {
  VrmlDB::setBaseURL(files.baseOf(file).c_str());
  const int stack = VrmlProtoDict::createStack();
  ReadOptions here = readOptions;
  int levels = here.levelsAbove = files[file].above;
  here.levels = &levels;
  root.reset(VrmlDB::read(data.bytes, data.name.c_str(), status, here));
  files.setLevels(file, levels);
  VrmlProtoDict::setCurrentStackId(-1);
  VrmlDB::setBaseURL(files.baseOfLive().c_str());
  return stack;
}

// Requests.

int Fetcher::pending() const {
  std::size_t count = queue.size();
  for (const auto& [url, requests] : coming) count += requests.size();
  return static_cast<int>(count);
}

void Fetcher::askNetwork(const std::string& url) {
  if (!network) network = std::make_unique<Network>(options.limits);
  network->ask(url);
}

void Fetcher::takeFromNetwork() {
  if (!network) return;
  for (Network::Answer& answer : network->take()) {
    const auto waiting = coming.find(answer.url);
    if (waiting != coming.end()) {
      std::ranges::move(waiting->second, std::back_inserter(queue));
      coming.erase(waiting);
    }
    const std::string url = answer.url;
    downloaded.insert_or_assign(url, std::move(answer));
  }
}

int Fetcher::answer(std::chrono::nanoseconds budget) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  int answered = 0;
  const VrmlSceneManager::Arrivals together;
  takeFromNetwork();
  while (!queue.empty() && Clock::now() - start < budget) {
    RequestPtr request = std::move(queue.front());
    queue.pop_front();
    if (request->isWanted()) serve(std::move(request));
    ++answered;
  }
  return answered;
}

std::string Fetcher::target(const Request& request, std::string& failure) const {
  std::string url(withoutFragment(request.url));
  const std::string_view server = serverOf(request.base);
  if (!server.empty() && url.starts_with('/')) url.insert(0, server);
  if (isNetworkUrl(url)) {
    if (options.network) return tidiedForNetwork(url);
    failure = switchedOff;
    return {};
  }
  if (files.isFromNetwork(request.base)) {
    failure = "a world from the network gets nothing from this disk";
    return {};
  }
  if (const std::string scheme = schemeOf(url); !scheme.empty() && scheme != "file") {
    failure = "a URL of a kind that is not fetched";
    return {};
  }
  const fs::path folder =
      fs::path(percentDecoded(withoutFragment(request.base).substr(fileScheme.size()))).parent_path();
  const auto path = findLocalFile(url, folder);
  if (!path) {
    failure = "there is no such file";
    return {};
  }
  return fileUrlOf(*path);
}

std::string Fetcher::limitReached(int asker, bool forWorld) const {
  if (forWorld && files[asker].depth + 1 > options.maxChain)
    return "more than " + std::to_string(options.maxChain) + " files that lead to one another";
  if (forWorld && files.size() > options.maxFiles)
    return "the world is put together from more than " + counted(options.maxFiles, "file");
  if (totalBytes > options.maxTotalBytes) return "the files of the world are too large together";
  return {};
}

Fetcher::Data Fetcher::readLocal(const std::string& url) const {
  const std::string path = percentDecoded(std::string_view(url).substr(fileScheme.size()));
  std::error_code unknown;
  if (fs::file_size(path, unknown) > options.limits.bytes && !unknown) return {{}, tooLarge, {}, {}};
  WorldFile file = readWorldFile(path);
  return {std::move(file.bytes), std::move(file.failure), url, shortName(path)};
}

Fetcher::Data Fetcher::readDownloaded(const Network::Answer& answer) {
  if (!answer.failure.empty()) return {{}, answer.failure, {}, {}};
  WorldFile file = readWorldFile(answer.file);
  const std::string url(withoutFragment(answer.finalUrl));
  return {std::move(file.bytes), std::move(file.failure), url, url};
}

void Fetcher::serve(RequestPtr request) {
  auto* world = dynamic_cast<WorldRequest*>(request.get());
  if (request->url.empty()) {
    fail(*request, world && world->meansItself() ? inItself : "", Severity::warning);
    return;
  }
  const bool forPrototypes = world && world->forPrototypes;  // a library may have been read already
  const std::string limit = limitReached(files.fileOf(request->base), world != nullptr);
  if (!limit.empty() && !forPrototypes) {
    fail(*request, limit, Severity::error);
    return;
  }
  std::string failure;
  const std::string url = target(*request, failure);
  if (url.empty()) {
    fail(*request, failure, Severity::warning);
    return;
  }
  if (const auto known = libraries.find(url); forPrototypes && known != libraries.end()) {
    giveLibrary(*world, known->second);
    return;
  }
  if (!limit.empty()) {
    fail(*request, limit, Severity::error);
    return;
  }
  if (!isNetworkUrl(url) || downloaded.contains(url)) {
    give(*request, url);
  } else {
    std::vector<RequestPtr>& waiting = coming[url];
    if (waiting.empty()) askNetwork(url);
    waiting.push_back(std::move(request));
  }
}

/// Answers with what is on this disk by now.
void Fetcher::give(Request& request, const std::string& url) {
  if (auto* world = dynamic_cast<WorldRequest*>(&request))
    giveWorld(*world, url, isNetworkUrl(url) ? readDownloaded(downloaded.find(url)->second) : readLocal(url));
  else
    giveFile(static_cast<FileRequest&>(request), url);
}

void Fetcher::giveFile(FileRequest& request, const std::string& url) {
  std::string path, failure;
  if (const auto came = downloaded.find(url); came != downloaded.end()) {
    path = came->second.file;
    failure = came->second.failure;
  } else {
    path = percentDecoded(std::string_view(url).substr(fileScheme.size()));
  }
  std::error_code unknown;
  const std::uintmax_t size = failure.empty() ? fs::file_size(path, unknown) : 0;
  if (unknown) failure = "it can't be read";
  if (size > options.limits.bytes && !unknown) failure = tooLarge;
  if (!failure.empty()) {
    fail(request, failure, Severity::warning);
    return;
  }
  totalBytes += size;
  request.give(path.c_str());
}

void Fetcher::giveLibrary(const WorldRequest& request, const Library& library) {
  files.lower(library.file, files.fileOf(request.base));
  request.node->setProtoDict(VrmlProtoDict::getTopOfStack(library.stack));
  request.node->setChildData(nullptr);
}

void Fetcher::giveWorld(WorldRequest& request, const std::string& url, const Data& data) {
  if (!data.failure.empty()) {
    fail(request, data.failure, Severity::warning);
    return;
  }
  const int asker = files.fileOf(request.base);
  if (!request.forPrototypes && files.leadsTo(asker, data.url)) {
    fail(request, inItself, Severity::error);
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
  if (request.forPrototypes) {
    giveLibrary(request, libraries.emplace(url, Library{stack, file}).first->second);
    return;
  }
  const auto met = inlines.find(request.node.get());
  shown += countOccurrences(world, met == inlines.end() ? 1 : met->second, inlines);
  if (shown > options.maxShown) {
    VrmlProtoDict::deleteStack(stack);
    fail(request, "the world would show too many nodes", Severity::error);
    return;
  }
  request.node->setProtoDict(VrmlProtoDict::getTopOfStack(stack));
  request.node->setStackId(stack);
  request.node->setChildData(world);
}

const std::string& Fetcher::nameOfAsker(const Request& request) const {
  return files[files.fileOf(request.base)].name;
}

void Fetcher::fail(Request& request, std::string_view why, Severity atLeast) {
  const std::size_t before = queue.size();
  request.fail();
  if (why.empty()) return;
  const bool lastHope = queue.size() == before;
  diagnostics.report(lastHope && options.missingIsError ? Severity::error : atLeast, nameOfAsker(request),
                     request.line,
                     "can't get " + (request.url.empty() ? "a file" : request.url) + ": " + std::string(why));
}

// What a scene has not asked for yet.

int Fetcher::askForMissing(SoNode* root, bool all) {
  if (!root) return 0;
  int asked = 0;
  const auto look = [&asked](SoNode* node) {
    if (!node->isOfType(VrmlInline::getClassTypeId())) return;
    auto* wants = static_cast<VrmlInline*>(node);
    if (wants->areChildrenLoaded() || wants->isFetchRequested()) return;
    wants->requestChildrenFromURL();
    ++asked;
  };
  if (all)
    forAllBelow(root, look);
  else
    forAllInSight(root, look);
  return asked;
}

void Fetcher::settle(SoNode* root, bool all) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end = Clock::now() + options.patience;
  for (;;) {
    while (answer() + askForMissing(root, all) > 0) continue;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    if (coming.empty() || left.count() <= 0) break;
    network->wait(left);
  }
  for (const auto& [url, requests] : coming)
    diagnostics.report(Severity::warning, nameOfAsker(*requests.front()), 0, url + " did not come in time");
}

}  // namespace tessel::host
