// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlTexture.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLMultiTextureEnabledElement.h>
#include <Inventor/elements/SoGLMultiTextureImageElement.h>
#include <Inventor/elements/SoShapeStyleElement.h>

#include "core/NodeClassImpl.h"

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

VrmlTexture::VrmlTexture() { setUpFields(); }

VrmlTexture::~VrmlTexture() = default;

void VrmlTexture::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoGLRenderAction, SoGLMultiTextureImageElement);
  SO_ENABLE(SoGLRenderAction, SoGLMultiTextureEnabledElement);
  SO_ENABLE(SoGLRenderAction, SoShapeStyleElement);
  SO_ENABLE(SoCallbackAction, SoMultiTextureImageElement);
}

template class tessel::NodeClass<VrmlTexture, VrmlNode>;
