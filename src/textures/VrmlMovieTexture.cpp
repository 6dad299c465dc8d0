// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlMovieTexture.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoMultiTextureMatrixElement.h>
#include <Inventor/elements/SoTextureQualityElement.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlMovieTexture::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlMovieTexture::speed>("speed", FieldKind::exposedField, {1}),
      fieldSpec<&VrmlMovieTexture::loop>("loop", FieldKind::exposedField, {false}),
      fieldSpec<&VrmlMovieTexture::startTime>("startTime", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlMovieTexture::stopTime>("stopTime", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlMovieTexture::duration_changed>("duration_changed", FieldKind::eventOut, {-1}),
      fieldSpec<&VrmlMovieTexture::isActive>("isActive", FieldKind::eventOut, {false}),
  };
  return table;
}

VrmlMovieTexture::VrmlMovieTexture() { setUpFields(); }

VrmlMovieTexture::~VrmlMovieTexture() = default;

void VrmlMovieTexture::requestImageFromURL() {
  requestMade = true;
  urlPending = false;  // whoever waits for its picture need not: movies are not played yet
}

void VrmlMovieTexture::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoGLRenderAction, SoGLCacheContextElement);
  SO_ENABLE(SoGLRenderAction, SoTextureQualityElement);
  SO_ENABLE(SoGLRenderAction, SoMultiTextureMatrixElement);
  SO_ENABLE(SoCallbackAction, SoMultiTextureMatrixElement);
}

template class tessel::NodeClass<VrmlMovieTexture, VrmlTexture>;
