// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlTexture.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLMultiTextureEnabledElement.h>
#include <Inventor/elements/SoGLMultiTextureImageElement.h>
#include <Inventor/elements/SoShapeStyleElement.h>
#include <Inventor/elements/SoTextureQualityElement.h>

#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"
#include "core/UrlNodes.h"
#include "textures/ReadPicture.h"
#include "textures/VrmlTextureCache.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlTexture::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlTexture::url>("url", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlTexture::image>("image", FieldKind::exposedField),
      fieldSpec<&VrmlTexture::repeatS>("repeatS", FieldKind::field, {true}),
      fieldSpec<&VrmlTexture::repeatT>("repeatT", FieldKind::field, {true}),
  };
  return table;
}

namespace {

/// The image of a node; a Picture without bytes if it has none.
tessel::Picture pictureIn(const SoSFImage& image) {
  SbVec2s size;
  int components;
  const unsigned char* bytes = image.getValue(size, components);
  return {size[0], size[1], components, bytes};
}

}  // namespace

VrmlTexture::VrmlTexture()
    : baseURL(VrmlDB::baseURL),
      caches(std::make_unique<tessel::TextureCaches>()),
      imageSensor([](void* self, SoSensor*) { static_cast<VrmlTexture*>(self)->imageChanged(); }, this),
      urlSensor([](void* self, SoSensor*) { static_cast<VrmlTexture*>(self)->urlChanged(); }, this) {
  setUpFields();
  imageSensor.setPriority(0);
  urlSensor.setPriority(0);
  VrmlTexture::attachFieldSensors();
}

VrmlTexture::~VrmlTexture() = default;

void VrmlTexture::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoGLRenderAction, SoGLMultiTextureImageElement);
  SO_ENABLE(SoGLRenderAction, SoGLMultiTextureEnabledElement);
  SO_ENABLE(SoGLRenderAction, SoShapeStyleElement);
  SO_ENABLE(SoGLRenderAction, SoTextureQualityElement);
  SO_ENABLE(SoCallbackAction, SoMultiTextureImageElement);
  tessel::registerUrlNodes({getClassTypeId(), false, [](SoNode& node, bool request) {
                              auto& self = static_cast<VrmlTexture&>(node);
                              if (request && self.urlPending && !self.requestMade) self.requestImageFromURL();
                              return !self.urlPending;
                            }});
}

void VrmlTexture::attachFieldSensors() {
  imageSensor.attach(&image);
  urlSensor.attach(&url);
}

void VrmlTexture::detachFieldSensors() {
  imageSensor.detach();
  urlSensor.detach();
}

// Where the image comes from

SbBool VrmlTexture::readImage(const SbString& fileName, int& width, int& height, int& components,
                              unsigned char*& bytes) {
  width = height = components = 0;
  bytes = nullptr;
  if (fileName.getLength() == 0) return TRUE;
  tessel::DecodedImage read;
  if (!tessel::readPicture(fileName, read)) return FALSE;
  width = read.width;
  height = read.height;
  components = read.components;
  bytes = read.bytes.release();
  return TRUE;
}

const SbString& VrmlTexture::getFullURLName() {
  url.evaluate();
  fullURL = tessel::fullURL(baseURL, url, urlIndex);
  return fullURL;
}

void VrmlTexture::requestImageFromURL() {
  if (urlIndex >= url.getNum() || url[urlIndex].getLength() == 0) {
    requestMade = true;  // there is nothing more to try
    return;
  }
  if (fetchURLcb) {
    requestMade = true;
    const SbString wanted = getFullURLName();
    fetchURLcb(wanted, fetchURLdata, this);
    return;
  }
  tessel::DecodedImage read;
  if (!tessel::readPicture(url[urlIndex], read)) {
    ++urlIndex;  // tried when the texture is drawn next
    return;
  }
  image.setValue(SbVec2s(static_cast<short>(read.width), static_cast<short>(read.height)), read.components,
                 read.bytes.get());
  image.setDefault(TRUE);  // it is not the world's
}

void VrmlTexture::fetchFailed() {
  if (urlIndex >= url.getNum() - 1) return;
  ++urlIndex;
  requestImageFromURL();
}

void VrmlTexture::resetTexture() {
  urlPending = requestMade = false;
  caches->clear();
}

void VrmlTexture::reload() {
  resetTexture();
  urlPending = true;
  urlIndex = 0;
  startNotify();
}

void VrmlTexture::urlChanged() {
  resetTexture();
  urlPending = true;
  urlIndex = 0;
  requestImageFromURL();
}

void VrmlTexture::notifyContainerOnly(const SoField* field) {
  VrmlNode::notifyContainerOnly(field);
  if (isTakingCopy()) return;
  if (field == &image) imageChanged();
  if (field == &url) urlChanged();
}

bool VrmlTexture::readBody(tessel::WorldReader& reader) {
  urlSensor.detach();
  const bool good = NodeClass::readBody(reader);
  if (good && !url.isDefault()) urlChanged();
  urlSensor.attach(&url);
  if (good && !requestMade) requestImageFromURL();
  return good;
}

void VrmlTexture::copyQuietly(const SoFieldContainer* from, SbBool copyConnections) {
  const auto* source = static_cast<const VrmlTexture*>(from);
  baseURL = source->baseURL;
  NodeClass::copyContents(from, copyConnections);
  urlIndex = source->urlIndex;
}

void VrmlTexture::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  copyQuietly(from, copyConnections);
  const auto* source = static_cast<const VrmlTexture*>(from);
  urlPending = source->urlPending;
}

// Actions

bool VrmlTexture::actsIn(SoAction* action) {
  return VrmlContainerElement::has(action->getState(), VrmlContainerElement::appearance);
}

void VrmlTexture::GLRender(SoGLRenderAction* action) {
  if (!renderEnabled) return;
  if (urlPending && !requestMade) requestImageFromURL();
  if (!urlPending) reallyGLRender(action);
}

void VrmlTexture::reallyGLRender(SoGLRenderAction* action) {
  if (!actsIn(action) || image.isIgnored()) return;
  SoState* state = action->getState();
  const float quality = SoTextureQualityElement::get(state);
  const tessel::Picture picture = pictureIn(image);
  if (quality <= 0 || picture.empty()) {
    VrmlTextureCache::disable(state, this);
    return;
  }
  const int context = SoGLCacheContextElement::get(state);
  const tessel::TextureForm form{tessel::wrapOf(repeatS.getValue()), tessel::wrapOf(repeatT.getValue()),
                                 quality};
  std::shared_ptr<VrmlTextureCache>& cache = caches->of(context);
  if (!cache || !cache->match(context, form)) cache = std::make_shared<VrmlTextureCache>(context, form);
  cache->display(state, this, picture);
}

void VrmlTexture::doAction(SoAction* action) {
  if (!actsIn(action) || image.isIgnored()) return;
  const tessel::Picture picture = pictureIn(image);
  if (!picture.empty())
    VrmlTextureCache::set(action->getState(), this, picture, tessel::wrapOf(repeatS.getValue()),
                          tessel::wrapOf(repeatT.getValue()));
}

void VrmlTexture::callback(SoCallbackAction* action) { doAction(action); }

template class tessel::NodeClass<VrmlTexture, VrmlNode>;
