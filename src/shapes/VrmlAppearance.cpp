// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlAppearance.h>

#include <Inventor/actions/SoActions.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/textures/VrmlTexture.h>
#include <tessel/textures/VrmlTextureTransform.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"
#include "shapes/SyncedChildren.h"

std::span<const tessel::FieldSpec> VrmlAppearance::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlAppearance::material>("material", exposedField),
      tessel::fieldSpec<&VrmlAppearance::texture>("texture", exposedField),
      tessel::fieldSpec<&VrmlAppearance::textureTransform>("textureTransform", exposedField),
  };
  return table;
}

void VrmlAppearance::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoGLRenderAction, SoGLLazyElement);
}

VrmlAppearance::VrmlAppearance() {
  setUpFields();
  children = std::make_unique<tessel::SyncedChildren>(
      this, std::initializer_list<tessel::SyncedChildren::Slot>{
                {&material, VrmlMaterial::getClassTypeId()},
                {&texture, VrmlTexture::getClassTypeId()},
                {&textureTransform, VrmlTextureTransform::getClassTypeId()}});
}

VrmlAppearance::~VrmlAppearance() = default;

// Children

void VrmlAppearance::syncChildListToSFNodeFields() { children->sync(); }

SoChildList* VrmlAppearance::getChildren() const { return &children->list; }

bool VrmlAppearance::readBody(tessel::WorldReader& reader) {
  if (!NodeClass::readBody(reader) || !children->fieldsAreSound()) return false;
  children->setStale();
  children->sync();
  return true;
}

void VrmlAppearance::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  NodeClass::copyContents(from, copyConnections);
  children->setStale();
  children->sync();
}

void VrmlAppearance::notify(SoNotList* list) {
  if (children->notify(list)) NodeClass::notify(list);
}

void VrmlAppearance::notifyContainerOnly(const SoField* field) {
  if (!children->concerns(field)) return;
  children->setStale();
  children->sync();
}

// Actions

void VrmlAppearance::doAction(SoAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::shape)) return;
  children->sync();
  // No push: what the material sets must stay for the geometry.
  const tessel::ContainerScope scope(state, this, VrmlContainerElement::appearance);
  children->list.traverse(action);
}

void VrmlAppearance::GLRender(SoGLRenderAction* action) {
  SoState* state = action->getState();
  if (!VrmlContainerElement::has(state, VrmlContainerElement::shape)) return;
  if (!material.isIgnored() && !material.getValue())
    SoLazyElement::setLightModel(state, SoLazyElement::BASE_COLOR);
  doAction(action);
}

void VrmlAppearance::callback(SoCallbackAction* action) { doAction(action); }
void VrmlAppearance::getMatrix(SoGetMatrixAction* action) { doAction(action); }
void VrmlAppearance::pick(SoPickAction* action) { doAction(action); }

void VrmlAppearance::search(SoSearchAction* action) {
  SoNode::search(action);
  if (action->hasTerminated()) return;
  children->sync();
  children->list.traverse(action);
}

template class tessel::NodeClass<VrmlAppearance, VrmlNode>;
