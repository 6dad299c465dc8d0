// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <vector>

#include <Inventor/SbString.h>

#include "textures/Picture.h"

class SoGLDisplayList;
class SoMFString;
class SoState;

namespace tessel {

/// One of the images of a Background, and how far the search for it has come: nothing, to be asked for, asked for, and
/// then an image, the next alternative or an end with nothing.
class BackgroundImage {
public:
  explicit BackgroundImage(SoMFString& alternatives) : urlField(&alternatives) {}
  /// Forgets the image and begins anew with the first alternative.
  void reset();
  /// Takes a copy of an image.
  void setImage(const Picture& picture);
  void clearImage();

  bool hasImage() const { return image.width > 0; }
  int components() const { return image.components; }
  bool hasAlpha() const { return image.hasAlpha(); }
  bool hasTexture() const { return texture != nullptr; }

  /// The current alternative as the file has it; empty past the end.
  SbString wantedURL() const;

  /// Binds the image, and sends it first if this context does not have it.
  void bind(SoState* state);
  /// Drops the texture object if it is another context's.
  void dropForeignTexture(SoState* state);

  SoMFString* const urlField;
  int urlIndex = 0;
  bool needsFetch = false;
  bool requested = false;

private:
  void send();
  void fitSize();

  struct Release {
    void operator()(SoGLDisplayList* list) const;
  };
  std::vector<unsigned char> bytes;
  Picture image;
  bool sizeCheckPending = false;
  std::unique_ptr<SoGLDisplayList, Release> texture;
};

}  // namespace tessel
