// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlBackground.h>

#include <Inventor/caches/SoGLCacheList.h>
#include <Inventor/misc/SoNotification.h>

#include <tessel/core/FetchConvention.h>
#include <tessel/core/VrmlDB.h>

#include "core/NodeClassImpl.h"
#include "frame/BackgroundBands.h"
#include "frame/BackgroundImage.h"
#include "textures/ReadPicture.h"

using namespace tessel;

int VrmlBackground::enabled = 1;

std::span<const FieldSpec> VrmlBackground::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlBackground::groundAngle>("groundAngle", FieldKind::exposedField),
      fieldSpec<&VrmlBackground::groundColor>("groundColor", FieldKind::exposedField),
      fieldSpec<&VrmlBackground::backUrl>("backUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::bottomUrl>("bottomUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::frontUrl>("frontUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::leftUrl>("leftUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::rightUrl>("rightUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::topUrl>("topUrl", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlBackground::skyAngle>("skyAngle", FieldKind::exposedField),
      fieldSpec<&VrmlBackground::skyColor>("skyColor", FieldKind::exposedField, {0, 0, 0}),
  };
  return table;
}

VrmlBackground::VrmlBackground()
    : bands(std::make_unique<BackgroundBands>()),
      cacheList(std::make_unique<SoGLCacheList>(1)),
      baseURL(VrmlDB::baseURL) {
  setUpFields();
  SoMFString* const urls[numImages] = {&backUrl, &bottomUrl, &frontUrl, &leftUrl, &rightUrl, &topUrl};
  for (int i = 0; i < numImages; ++i) images[i] = std::make_unique<BackgroundImage>(*urls[i]);
}

VrmlBackground::~VrmlBackground() = default;

// The images

const SbString& VrmlBackground::getFullURLName(int index) {
  images[index]->urlField->evaluate();
  fullURL = tessel::fullURL(baseURL, *images[index]->urlField, images[index]->urlIndex);
  return fullURL;
}

void VrmlBackground::setImage(int index, const SbVec2s& size, int components, const unsigned char* bytes) {
  if (index < 0 || index >= numImages) return;
  images[index]->setImage({size[0], size[1], components, bytes});
  drawingChanged();
}

void VrmlBackground::fetchFailed(int index) {
  if (index < 0 || index >= numImages) return;
  BackgroundImage& image = *images[index];
  ++image.urlIndex;
  image.requested = false;
  image.needsFetch = true;
  requestHolderImage(index);
}

void VrmlBackground::requestHolderImage(int index) {
  BackgroundImage& image = *images[index];
  image.requested = true;
  if (image.wantedURL().getLength() > 0) {
    if (fetchURLcb) {
      const SbString wanted = getFullURLName(index);
      fetchURLcb(wanted, fetchURLdata, this, index);
      return;
    }
    DecodedImage read;
    if (readPicture((*image.urlField)[0], read)) {
      setImage(index, SbVec2s(static_cast<short>(read.width), static_cast<short>(read.height)),
               read.components, read.bytes.get());
    } else {
      image.clearImage();
      updateTextureFlags();
    }
  }
  image.needsFetch = false;
}

void VrmlBackground::checkFetches() {
  for (int i = 0; i < numImages; ++i)
    if (images[i]->needsFetch && !images[i]->requested) requestHolderImage(i);
  needsFetchCheck = false;
}

void VrmlBackground::updateTextureFlags() {
  anyAlpha = modulates = false;
  numTextures = missingLists = 0;
  for (const auto& image : images) {
    if (!image->hasImage()) continue;
    ++numTextures;
    anyAlpha = anyAlpha || image->hasAlpha();
    modulates = modulates || image->components() != 3;
    if (!image->hasTexture()) ++missingLists;
  }
}

// Changes

void VrmlBackground::drawingChanged() {
  updateTextureFlags();
  cacheList->invalidateAll();
  startNotify();
}

void VrmlBackground::clearColors() {
  bands->clear();
  cacheList->invalidateAll();
}

void VrmlBackground::notifyContainerOnly(const SoField* field) {
  if (!field) return;
  if (field == &groundAngle || field == &groundColor || field == &skyAngle || field == &skyColor)
    clearColors();
  for (const auto& image : images) {
    if (field != image->urlField) continue;
    image->reset();
    needsFetchCheck = true;
    updateTextureFlags();
    cacheList->invalidateAll();
  }
}

void VrmlBackground::notify(SoNotList* list) {
  // No node stands below, so the last field is one of this node, wherever the change began.
  if (isNotifyEnabled()) notifyContainerOnly(list->getLastField());
  NodeClass::notify(list);
}

bool VrmlBackground::readBody(WorldReader& reader) {
  needsFetchCheck = true;
  for (const auto& image : images) image->reset();
  if (!NodeClass::readBody(reader)) return false;
  clearColors();
  for (int i = 0; fetchOnRead && i < numImages; ++i) requestHolderImage(i);
  return true;
}

void VrmlBackground::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  baseURL = static_cast<const VrmlBackground*>(from)->baseURL;
  NodeClass::copyContents(from, copyConnections);
}

template class tessel::NodeClass<VrmlBackground, VrmlBindingNode>;
