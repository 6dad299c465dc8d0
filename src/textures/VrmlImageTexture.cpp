// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlImageTexture.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>

#include <tessel/toolkit/Scoped.h>

#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"

using tessel::SoRef;

std::span<const tessel::FieldSpec> VrmlImageTexture::fields() { return {}; }

VrmlImageTexture::VrmlImageTexture() { setUpFields(); }

VrmlImageTexture::~VrmlImageTexture() {
  if (texDef) texDef->clearOwner();
}

SbVec2s VrmlImageTexture::getSize() const { return texDef ? texDef->getSize() : SbVec2s(0, 0); }
int VrmlImageTexture::getNumComponents() const { return texDef ? texDef->getNumComponents() : 0; }
const unsigned char* VrmlImageTexture::getBytes() const { return texDef ? texDef->getBytes() : nullptr; }

void VrmlImageTexture::requestImageFromURL() {
  requestMade = true;
  // The old one goes last: the data of the same URL must not die and be read again in between. But it is put aside
  // first, since what the new one tells at once is not about it.
  const SoRef<VrmlTextureDef> old(texDef);
  texDef.reset();
  for (;; ++urlIndex) {
    if (urlIndex >= url.getNum() || url[urlIndex].getLength() == 0) {
      urlPending = false;  // nothing more can come
      break;
    }
    const SoRef<VrmlTextureDef> made(new VrmlTextureDef(getFullURLName(), this));
    if (!made->isBadURL()) made->fetch();  // which may fail at once
    if (!made->isBadURL()) {
      texDef = made;
      if (made->isLoaded()) urlPending = false;
      break;
    }
    made->clearOwner();
  }
  if (old) old->clearOwner();
}

void VrmlImageTexture::notify(SoNotList* list) {
  const bool isNewSearch = list->getLastField() == &url;  // which begins behind this
  if (texDef && !isNewSearch) {
    if (texDef->isBadURL()) {
      if (urlIndex + 1 >= url.getNum()) urlPending = false;  // that was the last alternative
      fetchFailed();
    } else if (urlPending && requestMade && texDef->isLoaded()) {
      resetTexture();
    }
  }
  NodeClass::notify(list);
}

bool VrmlImageTexture::readBody(tessel::WorldReader& reader) {
  image.setDefault(TRUE);
  const bool good = NodeClass::readBody(reader);
  if (image.isDefault()) return good;
  const tessel::NotifyOff silence(image);
  image.setValue(SbVec2s(0, 0), 0, nullptr);
  image.setDefault(TRUE);
  return good && reader.error("An ImageTexture has no field \"image\"");
}

void VrmlImageTexture::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  detachFieldSensors();
  copyQuietly(from, copyConnections);
  urlPending = static_cast<const VrmlImageTexture*>(from)->urlPending;
  requestImageFromURL();
  attachFieldSensors();
}

// Actions

void VrmlImageTexture::GLRender(SoGLRenderAction* action) {
  if (!renderEnabled) return;
  if (urlPending && !requestMade) requestImageFromURL();
  reallyGLRender(action);
}

void VrmlImageTexture::reallyGLRender(SoGLRenderAction* action) {
  if (actsIn(action) && texDef) texDef->render(action, this, repeatS.getValue(), repeatT.getValue());
}

void VrmlImageTexture::doAction(SoAction* action) {
  if (actsIn(action) && texDef) texDef->doAction(action, this, repeatS.getValue(), repeatT.getValue());
}

void VrmlImageTexture::callback(SoCallbackAction* action) { doAction(action); }

template class tessel::NodeClass<VrmlImageTexture, VrmlTexture>;
