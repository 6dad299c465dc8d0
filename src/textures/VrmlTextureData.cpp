// SPDX-License-Identifier: BSD-3-Clause
#include "textures/VrmlTextureData.h"

#include <sys/stat.h>

#include <strings.h>
#include <algorithm>
#include <cstring>
#include <string>
#include <unordered_map>
#include <utility>

#include <tessel/core/VrmlNode.h>
#include <tessel/textures/VrmlTextureDef.h>
#include <tessel/toolkit/SoRef.h>

#include "textures/ReadPicture.h"

namespace tessel {

int localPathOffset(const SbString& url) {
  constexpr int scheme = 5;  // "file:"
  constexpr const char* localHost = "//localhost/";
  const char* text = url.getString();
  if (strncasecmp(text, "file:", scheme) != 0) return 0;
  const char* rest = text + scheme;
  if (strncasecmp(rest, localHost, std::strlen(localHost)) == 0)
    return scheme + static_cast<int>(std::strlen(localHost)) - 1;
  const int slashes = static_cast<int>(std::strspn(rest, "/"));
  const bool namesHost = slashes == 2 && rest[2] != '\0';
  return slashes == 0 || namesHost ? 0 : scheme - 1 + slashes;
}

}  // namespace tessel

namespace {

using Dictionary = std::unordered_map<std::string, std::unique_ptr<VrmlTextureData>>;

/// All pictures alive, by the path of a local file or the URL of another.
Dictionary& dictionary() {
  static Dictionary all;
  return all;
}

std::string keyOf(const SbString& url) { return url.getString() + tessel::localPathOffset(url); }

}  // namespace

VrmlTextureData::VrmlTextureData(const SbString& u) : url(u), pathOffset(tessel::localPathOffset(u)) {
  clock_gettime(CLOCK_REALTIME, &modTime);
}

VrmlTextureData::~VrmlTextureData() = default;

VrmlTextureData* VrmlTextureData::join(const SbString& url, VrmlTextureDef* def) {
  std::unique_ptr<VrmlTextureData>& entry = dictionary()[keyOf(url)];
  if (!entry) entry.reset(new VrmlTextureData(url));
  entry->defs.push_back(def);
  return entry.get();
}

void VrmlTextureData::leave(VrmlTextureDef* def) {
  std::erase(defs, def);
  if (defs.empty()) dictionary().erase(keyOf(SbString(url)));
}

tessel::Picture VrmlTextureData::picture() const {
  return {image.width, image.height, image.components, image.bytes.get()};
}

bool VrmlTextureData::isWanted() const {
  return std::ranges::any_of(defs, [](const VrmlTextureDef* def) { return def->waits && def->owner; });
}

// Fetching

void VrmlTextureData::fetch(VrmlTextureDef* def) {
  if (loaded) {
    reloadLocal(def);
  } else if (!fetching) {
    fetching = true;
    if (urlCallback)
      urlCallback(url, urlData, def);
    else
      readImage(url);
  }
}

bool VrmlTextureData::readImage(const SbString& name) {
  if (loaded) return true;
  constexpr int scheme = 5;
  const bool isFileUrl = std::strncmp(name.getString(), "file:", scheme) == 0;
  const SbString path(name.getString() + (isFileUrl ? scheme : 0));
  image = tessel::DecodedImage();
  if (path.getLength() == 0 || tessel::readPicture(path, image)) {
    loaded = true;
    fileTime(modTime);
  } else {
    badURL = true;
  }
  notifyNodes();
  return loaded;
}

void VrmlTextureData::notifyNodes() {
  // Who is told may let go of its def, and of the data with it.
  std::vector<tessel::SoRef<VrmlTextureDef>> waiting;
  for (VrmlTextureDef* def : defs)
    if (std::exchange(def->waits, false)) waiting.emplace_back(def);
  for (const auto& def : waiting)
    if (def->owner) def->owner->startNotify();
}

bool VrmlTextureData::fileTime(timespec& time) const {
  struct stat status;
  if (pathOffset == 0 || stat(url.getString() + pathOffset, &status) != 0) return false;
  time = status.st_mtim;
  return true;
}

void VrmlTextureData::reloadLocal(VrmlTextureDef* def) {
  timespec now;
  if (!fileTime(now) || (now.tv_sec == modTime.tv_sec && now.tv_nsec == modTime.tv_nsec)) return;
  for (const auto& cache : caches)
    if (const auto live = cache.lock()) live->stale = true;
  caches.clear();
  image = tessel::DecodedImage();
  loaded = badURL = fetching = false;
  modTime = now;
  for (VrmlTextureDef* user : defs) user->waits = true;
  fetch(def);
}

// Drawing

std::shared_ptr<VrmlTextureCache> VrmlTextureData::getCache(const std::shared_ptr<VrmlTextureCache>& old,
                                                            int context, const tessel::TextureForm& form) {
  if (old && old->match(context, form)) return old;
  std::erase_if(caches, [](const auto& cache) { return cache.expired(); });
  for (const auto& cache : caches)
    if (auto live = cache.lock(); live && live->match(context, form)) return live;
  auto made = std::make_shared<VrmlTextureCache>(context, form);
  caches.push_back(made);
  return made;
}
