// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlTextureDef.h>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoTextureQualityElement.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/SoRef.h>

#include "textures/VrmlTextureCache.h"
#include "textures/VrmlTextureData.h"

void VrmlTextureDef::setFetchURLCallBack(FetchCallback* callback, void* data) {
  VrmlTextureData::urlCallback = callback;
  VrmlTextureData::urlData = data;
}

VrmlTextureDef::VrmlTextureDef(const SbString& url, VrmlNode* o)
    : data(VrmlTextureData::join(url, this)), owner(o), caches(std::make_unique<tessel::TextureCaches>()) {
  if (!data->isLoaded() && !data->isBad())
    waits = true;
  else if (owner)
    owner->startNotify();
}

VrmlTextureDef::~VrmlTextureDef() {
  caches.reset();
  data->leave(this);
}

void VrmlTextureDef::unref() {
  if (--refCount <= 0) delete this;
}

void VrmlTextureDef::fetch() { data->fetch(this); }

bool VrmlTextureDef::readTexture(const char* localFile) { return data->readImage(localFile); }

void VrmlTextureDef::fetchFailed() {
  data->setBad();
  data->notifyNodes();
}

void VrmlTextureDef::fetchEnded() { data->notifyNodes(); }
void VrmlTextureDef::fetchForgotten() { data->forgetFetch(); }

bool VrmlTextureDef::isBadURL() const { return data->isBad(); }
bool VrmlTextureDef::isLoaded() const { return data->isLoaded(); }
const SbString& VrmlTextureDef::getURL() const { return data->getURL(); }
SbVec2s VrmlTextureDef::getSize() const {
  const tessel::Picture picture = data->picture();
  return SbVec2s(static_cast<short>(picture.width), static_cast<short>(picture.height));
}
int VrmlTextureDef::getNumComponents() const { return data->picture().components; }
const unsigned char* VrmlTextureDef::getBytes() const { return data->picture().bytes; }
bool VrmlTextureDef::isWanted() const { return data->isWanted(); }

void VrmlTextureDef::render(SoGLRenderAction* action, VrmlNode* node, bool repeatS, bool repeatT) {
  SoState* state = action->getState();
  const float quality = SoTextureQualityElement::get(state);
  if (quality <= 0) {
    VrmlTextureCache::disable(state, node);
    return;
  }
  const tessel::Picture picture = data->picture();
  if (!data->isLoaded() || picture.empty()) return;
  const int context = SoGLCacheContextElement::get(state);
  std::shared_ptr<VrmlTextureCache>& cache = caches->of(context);
  if (cache && cache->stale) {
    cache.reset();
    node->startNotify();
  }
  cache = data->getCache(cache, context, {tessel::wrapOf(repeatS), tessel::wrapOf(repeatT), quality});
  cache->display(state, node, picture);
}

void VrmlTextureDef::doAction(SoAction* action, VrmlNode* node, bool repeatS, bool repeatT) {
  const tessel::Picture picture = data->picture();
  if (data->isLoaded() && !picture.empty())
    VrmlTextureCache::set(action->getState(), node, picture, tessel::wrapOf(repeatS),
                          tessel::wrapOf(repeatT));
}
