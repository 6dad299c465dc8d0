// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/actions/VrmlRenderAction.h>

#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLRenderPassElement.h>
#include <Inventor/elements/SoMultiTextureImageElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/elements/SoWindowElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/system/gl.h>

#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "actions/DelayedShapes.h"
#include "actions/DrawScopeElement.h"
#include "actions/RenderCache.h"

SO_ACTION_SOURCE(VrmlRenderAction);

namespace {

/// What the transparency types that this action sees to itself ask for. The others are the base's.
struct Delay {
  bool delays = false;
  bool sorts = false;
  bool adds = false;
};

Delay delayOf(SoGLRenderAction::TransparencyType type) {
  switch (type) {
    case SoGLRenderAction::DELAYED_ADD:
      return {true, false, true};
    case SoGLRenderAction::SORTED_OBJECT_ADD:
      return {true, true, true};
    case SoGLRenderAction::DELAYED_BLEND:
      return {true, false, false};
    case SoGLRenderAction::SORTED_OBJECT_BLEND:
      return {true, true, false};
    default:
      return {};
  }
}

VrmlRenderAction* asOurs(SoGLRenderAction* action) {
  return action->isOfType(VrmlRenderAction::getClassTypeId()) ? static_cast<VrmlRenderAction*>(action)
                                                              : nullptr;
}

}  // namespace

void VrmlRenderAction::initClass() {
  SO_ACTION_INIT_CLASS(VrmlRenderAction, SoGLRenderAction);
  SO_ENABLE(VrmlRenderAction, SoGLLazyElement);
  SO_ENABLE(VrmlRenderAction, SoGLRenderPassElement);
  SO_ENABLE(VrmlRenderAction, SoViewportRegionElement);
  SO_ENABLE(VrmlRenderAction, SoWindowElement);
  tessel::DrawScopeElement::initClass();
}

VrmlRenderAction::VrmlRenderAction(const SbViewportRegion& region)
    : SoGLRenderAction(region), delayed(std::make_unique<tessel::DelayedShapes>()) {
  SO_ACTION_CONSTRUCTOR(VrmlRenderAction);
}

VrmlRenderAction::~VrmlRenderAction() = default;

bool VrmlRenderAction::isStateTransparent(SoState* state) {
  return SoLazyElement::getInstance(state)->isTransparent() ||
         SoMultiTextureImageElement::containsTransparency(state);
}

bool VrmlRenderAction::isDrawingDelayed(const SoGLRenderAction* action) {
  if (action->isRenderingTranspPaths() || action->isRenderingDelayedPaths()) return true;
  return action->isOfType(getClassTypeId()) && static_cast<const VrmlRenderAction*>(action)->drawingDelayed;
}

bool VrmlRenderAction::mustDelay(SoGLRenderAction* action, bool isTransparent) {
  if (VrmlRenderAction* ours = asOurs(action)) return ours->handleTransparency(isTransparent);
  if (!action->handleTransparency(isTransparent)) return false;
  // A display list that is being made would lose the shape.
  if (SoCacheElement::anyOpen(action->getState())) SoCacheElement::invalidate(action->getState());
  return true;
}

tessel::DelayedShapes* VrmlRenderAction::delayedShapesOf(SoGLRenderAction* action) {
  VrmlRenderAction* ours = asOurs(action);
  return ours ? ours->delayed.get() : nullptr;
}

SbBool VrmlRenderAction::handleTransparency(SbBool isTransparent) {
  const Delay delay = delayOf(getTransparencyType());
  SoState* current = getState();
  if (!delay.delays || current == nullptr) return inherited::handleTransparency(isTransparent);
  if (!isTransparent && !isStateTransparent(current)) {
    SoLazyElement::disableBlending(current);
    return FALSE;
  }
  if (!isDrawingDelayed(this) && delayed->add(this)) return TRUE;
  SoLazyElement::enableBlending(current, GL_SRC_ALPHA, delay.adds ? GL_ONE : GL_ONE_MINUS_SRC_ALPHA);
  return FALSE;
}

void VrmlRenderAction::beginTraversal(SoNode* node) {
  const tessel::ScopedValue<int> deeper(level, level + 1);
  if (level == 1) tessel::RenderCache::beginFrame();
  // The toolkit comes here once for the frame, and from inside once for each pass and for each of its paths.
  const bool isPass = level == 2 && !isDrawingDelayed(this);
  if (!isPass) {
    inherited::beginTraversal(node);
    return;
  }
  {
    // What the root leaves in the state must not act twice on what is drawn after it.
    const tessel::StateScope scope(getState());
    inherited::beginTraversal(node);
  }
  if (!hasTerminated() && !delayed->empty()) drawDelayed();
  delayed->clear();
}

void VrmlRenderAction::drawDelayed() {
  if (delayOf(getTransparencyType()).sorts) delayed->sort();
  const tessel::ScopedValue<bool> drawing(drawingDelayed, true);
  if (!getDelayedObjDepthWrite()) glDepthMask(GL_FALSE);
  while (SoPath* path = delayed->nextRun()) {
    apply(path);
    if (hasTerminated()) break;
  }
  glDepthMask(GL_TRUE);
}

bool VrmlRenderAction::drawDelayedHere(SoGLRenderAction* action) {
  VrmlRenderAction* ours = asOurs(action);
  return ours && ours->drawingDelayed && ours->delayed->drawRun(ours);
}
