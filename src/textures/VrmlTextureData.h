// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <ctime>
#include <memory>
#include <vector>

#include <Inventor/SbString.h>

#include "textures/DecodedImage.h"
#include "textures/Picture.h"
#include "textures/VrmlTextureCache.h"

class VrmlTextureDef;

namespace tessel {
/// Where the path begins in the URL of a local file; 0 in any other URL.
int localPathOffset(const SbString& url);
}  // namespace tessel

/// The picture at a URL, for all in the process who name that URL, and its texture objects.
class VrmlTextureData {
public:
  using FetchCallback = void(const SbString& url, void* data, VrmlTextureDef* requestor);
  inline static FetchCallback* urlCallback =
      nullptr;  ///< the host's; without one local files are read at once
  inline static void* urlData = nullptr;

  /// Counts `def` among the users of the data of that URL, which are made if there are none.
  static VrmlTextureData* join(const SbString& url, VrmlTextureDef* def);
  /// The data are deleted with their last user.
  void leave(VrmlTextureDef* def);
  ~VrmlTextureData();
  VrmlTextureData(const VrmlTextureData&) = delete;
  VrmlTextureData& operator=(const VrmlTextureData&) = delete;

  void fetch(VrmlTextureDef* def);
  bool readImage(const SbString& name);
  void setBad() { badURL = true; }
  /// What is known to be bad is not asked for again.
  void forgetFetch() { fetching = badURL; }
  /// Tells the owners that wait for the outcome, each once.
  void notifyNodes();

  bool isBad() const { return badURL; }
  bool isLoaded() const { return loaded; }
  const SbString& getURL() const { return url; }
  tessel::Picture picture() const;
  bool isWanted() const;

  /// The cache of a context and a form: `old` if it fits, another one, or a new one.
  std::shared_ptr<VrmlTextureCache> getCache(const std::shared_ptr<VrmlTextureCache>& old, int context,
                                             const tessel::TextureForm& form);

private:
  explicit VrmlTextureData(const SbString& url);
  void reloadLocal(VrmlTextureDef* def);
  bool fileTime(timespec& time) const;

  SbString url;
  int pathOffset;
  tessel::DecodedImage image;
  bool loaded = false, badURL = false, fetching = false;
  timespec modTime;  // of the file that was read
  std::vector<std::weak_ptr<VrmlTextureCache>> caches;
  std::vector<VrmlTextureDef*> defs;
};
