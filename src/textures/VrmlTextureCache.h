// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <vector>

#include "textures/TextureDownload.h"

class SoAction;
class SoGLDisplayList;
class SoGLImage;
class SoNode;
class SoState;

/// The texture object of a picture in one GL context, with one form.
class VrmlTextureCache {
public:
  VrmlTextureCache(int context, const tessel::TextureForm& form);
  ~VrmlTextureCache();
  VrmlTextureCache(const VrmlTextureCache&) = delete;
  VrmlTextureCache& operator=(const VrmlTextureCache&) = delete;

  int getContext() const { return context; }
  bool match(int otherContext, const tessel::TextureForm& other) const;
  /// Whether the picture is not that of the data any more.
  bool stale = false;

  /// Puts the texture into the state, for the shape that is drawn. The picture goes to GL at the first time.
  void display(SoState* state, SoNode* node, const tessel::Picture& picture);

  /// No texture for the shape that is drawn.
  static void disable(SoState* state, SoNode* node);
  /// Puts the picture into the state of an action that draws nothing.
  static void set(SoState* state, SoNode* node, const tessel::Picture& picture, int wrapS, int wrapT);

private:
  void download(SoState* state, const tessel::Picture& picture);

  struct Release {
    void operator()(SoGLDisplayList* list) const;
    void operator()(SoGLImage* image) const;
  };
  int context;
  tessel::TextureForm form;
  std::unique_ptr<SoGLDisplayList, Release> list;  // the texture object; null until the first display
  std::unique_ptr<SoGLImage, Release> image;       // as which the toolkit knows it
};

namespace tessel {

/// GL_REPEAT or GL_CLAMP.
int wrapOf(bool repeats);

/// The caches that a user of a picture holds: one for each context in which it was drawn last.
class TextureCaches {
public:
  /// The one of a context; a null entry is made if there is none.
  std::shared_ptr<VrmlTextureCache>& of(int context);
  void clear() { list.clear(); }

private:
  struct Entry {
    int context;
    std::shared_ptr<VrmlTextureCache> cache;
  };
  std::vector<Entry> list;
};

}  // namespace tessel
