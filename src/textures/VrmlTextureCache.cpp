// SPDX-License-Identifier: BSD-3-Clause
#include "textures/VrmlTextureCache.h"

#include <algorithm>

#include <Inventor/SbColor.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLDisplayList.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLMultiTextureEnabledElement.h>
#include <Inventor/elements/SoGLMultiTextureImageElement.h>
#include <Inventor/elements/SoOverrideElement.h>
#include <Inventor/misc/SoGLImage.h>
#include <Inventor/misc/SoState.h>

namespace {

/// The colour of a texture takes the place of the material's, its alpha that of the transparency.
void meetMaterial(SoState* state, SoNode* node, int components) {
  if (components < 3) return;
  static SoColorPacker packer;
  static const SbColor white(1, 1, 1), black(0, 0, 0);
  static const float opaque = 0;
  const bool alpha = components == 4;
  bool transparent = SoLazyElement::getInstance(state)->isTransparent();
  std::uint32_t mask = SoLazyElement::DIFFUSE_MASK;
  SoOverrideElement::setDiffuseColorOverride(state, node, TRUE);
  if (alpha) {
    SoOverrideElement::setTransparencyOverride(state, node, TRUE);
    mask |= SoLazyElement::TRANSPARENCY_MASK;
    transparent = false;
  }
  SoLazyElement::setMaterials(state, node, mask, &packer, &white, 1, &opaque, 1, black, black, black, 1,
                              transparent);
}

SoGLImage::Wrap imageWrap(int wrap) { return wrap == GL_REPEAT ? SoGLImage::REPEAT : SoGLImage::CLAMP; }

SoMultiTextureImageElement::Wrap elementWrap(int wrap) {
  return wrap == GL_REPEAT ? SoMultiTextureImageElement::REPEAT : SoMultiTextureImageElement::CLAMP;
}

const SbColor noBlendColor(0, 0, 0);

}  // namespace

VrmlTextureCache::VrmlTextureCache(int c, const tessel::TextureForm& f) : context(c), form(f) {}

VrmlTextureCache::~VrmlTextureCache() = default;

// Without a state, GL objects wait until their context is current.
void VrmlTextureCache::Release::operator()(SoGLDisplayList* l) const { l->unref(nullptr); }
void VrmlTextureCache::Release::operator()(SoGLImage* i) const { i->unref(nullptr); }

bool VrmlTextureCache::match(int otherContext, const tessel::TextureForm& other) const {
  return context == otherContext && form.wrapS == other.wrapS && form.wrapT == other.wrapT &&
         form.quality == other.quality;
}

void VrmlTextureCache::download(SoState* state, const tessel::Picture& picture) {
  // A display list that is being made would send the picture whenever it is drawn.
  if (SoCacheElement::anyOpen(state)) SoCacheElement::invalidate(state);
  auto* made = new SoGLDisplayList(state, SoGLDisplayList::TEXTURE_OBJECT, 1, FALSE);
  made->ref();
  list.reset(made);
  list->open(state);
  tessel::downloadTexture(state, picture, form);
  list->close(state);
}

void VrmlTextureCache::display(SoState* state, SoNode* node, const tessel::Picture& picture) {
  SoGLMultiTextureEnabledElement::set(state, node, 0, TRUE);
  meetMaterial(state, node, picture.components);
  if (!list) download(state, picture);
  if (!image) {
    image.reset(new SoGLImage);
    image->setFlags(image->getFlags() | (picture.hasAlpha() ? SoGLImage::FORCE_TRANSPARENCY_TRUE
                                                            : SoGLImage::FORCE_TRANSPARENCY_FALSE));
  }
  // The toolkit forgets objects that it has not seen for some frames, since display lists bind them without it.
  if (image->getGLDisplayList(state) != list.get())
    image->setGLDisplayList(list.get(), state, imageWrap(form.wrapS), imageWrap(form.wrapT), form.quality);
  SoGLMultiTextureImageElement::set(state, node, 0, image.get(), SoMultiTextureImageElement::MODULATE,
                                    noBlendColor);
}

void VrmlTextureCache::disable(SoState* state, SoNode* node) {
  SoGLMultiTextureEnabledElement::set(state, node, 0, FALSE);
}

void VrmlTextureCache::set(SoState* state, SoNode* node, const tessel::Picture& picture, int wrapS,
                           int wrapT) {
  meetMaterial(state, node, picture.components);
  SoMultiTextureImageElement::set(
      state, node, 0, SbVec2s(static_cast<short>(picture.width), static_cast<short>(picture.height)),
      picture.components, picture.bytes, elementWrap(wrapS), elementWrap(wrapT),
      SoMultiTextureImageElement::MODULATE, noBlendColor);
}

namespace tessel {

int wrapOf(bool repeats) { return repeats ? GL_REPEAT : GL_CLAMP; }

std::shared_ptr<VrmlTextureCache>& TextureCaches::of(int context) {
  const auto known = std::ranges::find(list, context, &Entry::context);
  return known != list.end() ? known->cache : list.emplace_back(Entry{context, nullptr}).cache;
}

}  // namespace tessel
