// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlTextureTransform.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoPickAction.h>
#include <Inventor/elements/SoGLMultiTextureMatrixElement.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlTextureTransform::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlTextureTransform::translation>("translation", FieldKind::exposedField, {0, 0}),
      fieldSpec<&VrmlTextureTransform::rotation>("rotation", FieldKind::exposedField, {0}),
      fieldSpec<&VrmlTextureTransform::scale>("scale", FieldKind::exposedField, {1, 1}),
      fieldSpec<&VrmlTextureTransform::center>("center", FieldKind::exposedField, {0, 0}),
  };
  return table;
}

VrmlTextureTransform::VrmlTextureTransform() { setUpFields(); }

VrmlTextureTransform::~VrmlTextureTransform() = default;

void VrmlTextureTransform::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoCallbackAction, SoMultiTextureMatrixElement);
  SO_ENABLE(SoPickAction, SoMultiTextureMatrixElement);
  SO_ENABLE(SoGLRenderAction, SoGLMultiTextureMatrixElement);
}

template class tessel::NodeClass<VrmlTextureTransform, VrmlNode>;
