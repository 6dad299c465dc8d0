// SPDX-License-Identifier: BSD-3-Clause
#include "frame/BackgroundImage.h"

#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLDisplayList.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/system/gl.h>

#include "textures/TextureDownload.h"

namespace tessel {

// Without a state, GL objects wait until their context is current.
void BackgroundImage::Release::operator()(SoGLDisplayList* list) const { list->unref(nullptr); }

void BackgroundImage::clearImage() {
  bytes.clear();
  image = Picture();
  texture.reset();
}

void BackgroundImage::reset() {
  clearImage();
  needsFetch = true;
  requested = false;
  urlIndex = 0;
}

void BackgroundImage::setImage(const Picture& picture) {
  clearImage();
  needsFetch = false;
  if (picture.empty()) return;
  const std::size_t size = static_cast<std::size_t>(picture.width) *
                           static_cast<std::size_t>(picture.height) *
                           static_cast<std::size_t>(picture.components);
  bytes.assign(picture.bytes, picture.bytes + size);
  image = picture;
  image.bytes = bytes.data();
  sizeCheckPending = true;
}

SbString BackgroundImage::wantedURL() const {
  return urlIndex < urlField->getNum() ? (*urlField)[urlIndex] : SbString();
}

void BackgroundImage::dropForeignTexture(SoState* state) {
  if (texture && texture->getContext() != SoGLCacheContextElement::get(state)) texture.reset();
}

void BackgroundImage::bind(SoState* state) {
  if (!texture && !SoCacheElement::anyOpen(state)) {
    auto* made = new SoGLDisplayList(state, SoGLDisplayList::TEXTURE_OBJECT, 1, FALSE);
    made->ref();
    texture.reset(made);
    texture->open(state);
    send();
    texture->close(state);
  }
  if (texture)
    texture->call(state);
  else
    send();
}

void BackgroundImage::send() {
  if (sizeCheckPending) fitSize();
  for (const GLenum filter : {GL_TEXTURE_MAG_FILTER, GL_TEXTURE_MIN_FILTER})
    glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
  for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
    glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP);
  glTexImage2D(GL_TEXTURE_2D, 0, image.components, image.width, image.height, 0,
               pixelFormat(image.components), GL_UNSIGNED_BYTE, image.bytes);
}

void BackgroundImage::fitSize() {
  sizeCheckPending = false;
  std::vector<unsigned char> scaled;
  if (!scaleToTexture(image, mostTextureSide(), scaled)) return;
  bytes.swap(scaled);
  image.bytes = bytes.data();
}

}  // namespace tessel
