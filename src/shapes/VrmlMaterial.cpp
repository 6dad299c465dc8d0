// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlMaterial.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoOverrideElement.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlMaterial::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlMaterial::ambientIntensity>("ambientIntensity", exposedField, {0.2}),
      tessel::fieldSpec<&VrmlMaterial::diffuseColor>("diffuseColor", exposedField, {0.8, 0.8, 0.8}),
      tessel::fieldSpec<&VrmlMaterial::specularColor>("specularColor", exposedField, {0, 0, 0}),
      tessel::fieldSpec<&VrmlMaterial::emissiveColor>("emissiveColor", exposedField, {0, 0, 0}),
      tessel::fieldSpec<&VrmlMaterial::shininess>("shininess", exposedField, {0.2}),
      tessel::fieldSpec<&VrmlMaterial::transparency>("transparency", exposedField, {0}),
  };
  return table;
}

void VrmlMaterial::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoCallbackAction, SoLazyElement);
  SO_ENABLE(SoGLRenderAction, SoGLLazyElement);
}

VrmlMaterial::VrmlMaterial() { setUpFields(); }

VrmlMaterial::~VrmlMaterial() = default;

void VrmlMaterial::doAction(SoAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::appearance)) return;

  using Override = SoOverrideElement;
  const struct {
    const SoField& field;
    SbBool (*isOverridden)(SoState*);
    void (*override)(SoState*, SoNode*, SbBool);
    std::uint32_t component;
  } rows[] = {
      {ambientIntensity, Override::getAmbientColorOverride, Override::setAmbientColorOverride,
       SoLazyElement::AMBIENT_MASK},
      {diffuseColor, Override::getDiffuseColorOverride, Override::setDiffuseColorOverride,
       SoLazyElement::DIFFUSE_MASK},
      {transparency, Override::getTransparencyOverride, Override::setTransparencyOverride,
       SoLazyElement::TRANSPARENCY_MASK},
      {specularColor, Override::getSpecularColorOverride, Override::setSpecularColorOverride,
       SoLazyElement::SPECULAR_MASK},
      {emissiveColor, Override::getEmissiveColorOverride, Override::setEmissiveColorOverride,
       SoLazyElement::EMISSIVE_MASK},
      {shininess, Override::getShininessOverride, Override::setShininessOverride,
       SoLazyElement::SHININESS_MASK},
  };
  // All tests come before all overrides: in the toolkit one for the diffuse color is one for transparency.
  std::uint32_t mask = 0;
  for (const auto& row : rows)
    if (!row.field.isIgnored() && !row.isOverridden(state)) mask |= row.component;
  if (isOverride())
    for (const auto& row : rows)
      if (mask & row.component) row.override(state, this, TRUE);
  if (mask == 0) return;

  transparencyInState = transparency.getValue();
  const SbColor& diffuse = emissiveOnly ? emissiveColor.getValue() : diffuseColor.getValue();
  const SbColor ambient(diffuseColor.getValue() * ambientIntensity.getValue());
  SoLazyElement::setMaterials(state, this, mask, &colorPacker, &diffuse, 1, &transparencyInState, 1, ambient,
                              emissiveColor.getValue(), specularColor.getValue(), shininess.getValue(),
                              transparencyInState > 0);
}

void VrmlMaterial::GLRender(SoGLRenderAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::appearance)) return;
  // A surface that shows no light needs none: it is drawn in its emissive color as it is. The geometry sends
  // the state when it draws.
  if (!diffuseColor.isIgnored()) {
    emissiveOnly = diffuseColor.getValue() == SbColor(0, 0, 0) && ambientIntensity.getValue() == 0 &&
                   specularColor.isDefault();
    if (emissiveOnly) SoLazyElement::setLightModel(state, SoLazyElement::BASE_COLOR);
  }
  doAction(action);
}

void VrmlMaterial::callback(SoCallbackAction* action) { doAction(action); }

template class tessel::NodeClass<VrmlMaterial, VrmlNode>;
