// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlFontStyle.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoPickAction.h>
#include <Inventor/elements/SoFontNameElement.h>
#include <Inventor/elements/SoFontSizeElement.h>
#include <Inventor/elements/SoOverrideElement.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

namespace {

constexpr std::string_view styles[] = {"PLAIN", "BOLD", "ITALIC", "BOLD ITALIC"};

struct Family {
  std::string_view name;
  const char* fonts[std::size(styles)];
};
constexpr Family families[] = {
    {"SERIF", {"Utopia-Regular", "Utopia-Bold", "Utopia-Italic", "Utopia-BoldItalic"}},
    {"SANS", {"Helvetica", "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique"}},
    {"TYPEWRITER", {"Courier", "Courier-Bold", "Courier-Oblique", "Courier-BoldOblique"}},
};

std::string upperCase(const SoSFString& field, std::string_view ifNone) {
  if (field.isIgnored() || field.getValue().getLength() == 0) return std::string(ifNone);
  std::string text = field.getValue().getString();
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

}  // namespace

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

SbString VrmlFontStyle::getFontName() const {
  const auto* row = std::ranges::find(families, upperCase(family, families[0].name), &Family::name);
  const auto* column = std::ranges::find(styles, upperCase(style, styles[0]));
  if (row == std::end(families) || column == std::end(styles)) return families[0].fonts[0];
  return row->fonts[column - styles];
}

void VrmlFontStyle::setElements(SoAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::fontStyle) ||
      !state->isElementEnabled(SoFontNameElement::getClassStackIndex()))
    return;
  // Not every traversal knows overrides.
  const bool overrides = state->isElementEnabled(SoOverrideElement::getClassStackIndex());
  if (!(family.isIgnored() && style.isIgnored()) &&
      !(overrides && SoOverrideElement::getFontNameOverride(state))) {
    if (overrides && isOverride()) SoOverrideElement::setFontNameOverride(state, this, TRUE);
    SoFontNameElement::set(state, this, SbName(getFontName()));
  }
  if (!size.isIgnored() && !(overrides && SoOverrideElement::getFontSizeOverride(state))) {
    if (overrides && isOverride()) SoOverrideElement::setFontSizeOverride(state, this, TRUE);
    SoFontSizeElement::set(state, this, size.getValue());
  }
}

template class tessel::NodeClass<VrmlFontStyle, VrmlNode>;
