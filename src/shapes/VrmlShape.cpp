// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlShape.h>

#include <Inventor/actions/SoActions.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlRenderAction.h>
#include <tessel/core/VrmlCullingGroup.h>
#include <tessel/shapes/VrmlAppearance.h>
#include <tessel/shapes/VrmlGeometry.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "actions/RenderCache.h"
#include "core/NodeClassImpl.h"
#include "shapes/SyncedChildren.h"

std::span<const tessel::FieldSpec> VrmlShape::fields() {
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlShape::appearance>("appearance", tessel::FieldKind::exposedField),
      tessel::fieldSpec<&VrmlShape::geometry>("geometry", tessel::FieldKind::exposedField),
  };
  return table;
}

void VrmlShape::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoGLRenderAction, SoGLLazyElement);
}

VrmlShape::VrmlShape() {
  setUpFields();
  children = std::make_unique<tessel::SyncedChildren>(
      this,
      std::initializer_list<tessel::SyncedChildren::Slot>{{&appearance, VrmlAppearance::getClassTypeId()},
                                                          {&geometry, VrmlGeometry::getClassTypeId()}});
}

VrmlShape::~VrmlShape() = default;

// Children

void VrmlShape::syncChildListToSFNodeFields() { children->sync(); }

SoChildList* VrmlShape::getChildren() const { return &children->list; }

bool VrmlShape::readBody(tessel::WorldReader& reader) {
  if (!NodeClass::readBody(reader) || !children->fieldsAreSound()) return false;
  children->setStale();
  children->sync();
  return true;
}

void VrmlShape::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  NodeClass::copyContents(from, copyConnections);
  children->setStale();
  children->sync();
}

void VrmlShape::notify(SoNotList* list) {
  if (children->isSyncing()) return;
  // What the change means for the next draw is found by going down again.
  if (cache) cache->invalidate();
  isTransparent = false;
  if (children->notify(list)) NodeClass::notify(list);
}

void VrmlShape::notifyContainerOnly(const SoField* field) {
  if (!children->concerns(field)) return;
  children->setStale();
  children->sync();
}

// Rendering

void VrmlShape::GLRender(SoGLRenderAction* action) {
  SoState* state = action->getState();
  children->sync();
  tessel::RenderCache::countShape();
  const bool drawDelayed = VrmlRenderAction::isDrawingDelayed(action);
  if (drawDelayed && VrmlRenderAction::drawDelayedHere(action)) return;
  if (!drawDelayed && isTransparent && VrmlRenderAction::mustDelay(action, true)) return;

  const tessel::StateScope scope(state);
  VrmlContainerElement::enter(state, this, VrmlContainerElement::shape);
  // A display list of more than this shape takes what it draws as its own: to look after a list of each shape in it
  // would cost more than it saves.
  if (SoCacheElement::anyOpen(state)) {
    renderChildren(action);
    return;
  }
  if (!cache) cache = std::make_unique<tessel::RenderCache>(VrmlCullingGroup::getNumRenderCaches());
  if (cache->call(action)) return;
  cache->open(action);
  renderChildren(action);
  cache->close(action);
}

void VrmlShape::renderChildren(SoGLRenderAction* action) {
  if (!appearance.isIgnored() && !appearance.getValue())
    SoLazyElement::setLightModel(action->getState(), SoLazyElement::BASE_COLOR);
  const SoChildList& list = children->list;
  action->pushCurPath();
  for (int i = 0; i < list.getLength(); ++i) {
    SoNode* child = list[i];
    action->popPushCurPath(i, child);
    if (action->abortNow()) {
      SoCacheElement::invalidate(action->getState());
      break;
    }
    child->GLRender(action);
  }
  action->popCurPath();
  isTransparent = VrmlRenderAction::isStateTransparent(action->getState());
}

// Other actions

void VrmlShape::doAction(SoAction* action) {
  children->sync();
  const tessel::StateScope scope(action->getState());
  VrmlContainerElement::enter(action->getState(), this, VrmlContainerElement::shape);
  children->list.traverse(action);
}

void VrmlShape::callback(SoCallbackAction* action) { doAction(action); }
void VrmlShape::getBoundingBox(SoGetBoundingBoxAction* action) { doAction(action); }
void VrmlShape::getMatrix(SoGetMatrixAction* action) { doAction(action); }
void VrmlShape::pick(SoPickAction* action) { doAction(action); }
void VrmlShape::rayPick(SoRayPickAction* action) { doAction(action); }
void VrmlShape::collisionDetect(VrmlCollideAction* action) { doAction(action); }
void VrmlShape::count(VrmlCountAction* action) { doAction(action); }

void VrmlShape::search(SoSearchAction* action) {
  SoNode::search(action);
  if (!action->hasTerminated()) doAction(action);
}

template class tessel::NodeClass<VrmlShape, VrmlNode>;
