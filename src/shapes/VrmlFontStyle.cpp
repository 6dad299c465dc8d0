// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlFontStyle.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoPickAction.h>
#include <Inventor/elements/SoFontNameElement.h>
#include <Inventor/elements/SoFontSizeElement.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlFontStyle::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlFontStyle::size>("size", FieldKind::field, {1}),
      fieldSpec<&VrmlFontStyle::family>("family", FieldKind::field, {"SERIF"}),
      fieldSpec<&VrmlFontStyle::style>("style", FieldKind::field, {"PLAIN"}),
      fieldSpec<&VrmlFontStyle::horizontal>("horizontal", FieldKind::field, {true}),
      fieldSpec<&VrmlFontStyle::leftToRight>("leftToRight", FieldKind::field, {true}),
      fieldSpec<&VrmlFontStyle::topToBottom>("topToBottom", FieldKind::field, {true}),
      fieldSpec<&VrmlFontStyle::language>("language", FieldKind::field, {""}),
      fieldSpec<&VrmlFontStyle::justify>("justify", FieldKind::field, {"BEGIN"}),
      fieldSpec<&VrmlFontStyle::spacing>("spacing", FieldKind::field, {1}),
  };
  return table;
}

VrmlFontStyle::VrmlFontStyle() { setUpFields(); }

VrmlFontStyle::~VrmlFontStyle() = default;

void VrmlFontStyle::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoGLRenderAction, SoFontNameElement);
  SO_ENABLE(SoGLRenderAction, SoFontSizeElement);
  SO_ENABLE(SoPickAction, SoFontNameElement);
  SO_ENABLE(SoPickAction, SoFontSizeElement);
  SO_ENABLE(SoGetBoundingBoxAction, SoFontNameElement);
  SO_ENABLE(SoGetBoundingBoxAction, SoFontSizeElement);
  SO_ENABLE(SoCallbackAction, SoFontNameElement);
  SO_ENABLE(SoCallbackAction, SoFontSizeElement);
}

template class tessel::NodeClass<VrmlFontStyle, VrmlNode>;
