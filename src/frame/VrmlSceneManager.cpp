// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlSceneManager.h>

#include <algorithm>
#include <utility>

#include <Inventor/SbColor.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoDB.h>
#include <Inventor/SoFullPath.h>
#include <Inventor/actions/SoGetMatrixAction.h>
#include <Inventor/actions/SoHandleEventAction.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/fields/SoSFTime.h>
#include <Inventor/nodes/SoGroup.h>
#include <Inventor/system/gl.h>

#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/actions/VrmlRenderAction.h>
#include <tessel/collision/VrmlVisibilityList.h>
#include <tessel/collision/VrmlVisibilitySensor.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/frame/VrmlBackground.h>
#include <tessel/frame/VrmlFog.h>
#include <tessel/frame/VrmlNavigationInfo.h>
#include <tessel/frame/VrmlViewpoint.h>
#include <tessel/frame/VrmlViewpointManager.h>
#include <tessel/pointing/VrmlAnchor.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/shapes/VrmlLight.h>
#include <tessel/toolkit/Scoped.h>

#include "core/ByClass.h"
#include "frame/MatrixRotation.h"
#include "frame/PathTail.h"

using tessel::ScopedValue;
using tessel::SoRef;

VrmlSceneManager* VrmlSceneManager::activeSceneManager = nullptr;

namespace {

SoSFTime* realTime() { return static_cast<SoSFTime*>(SoDB::getGlobalField("realTime")); }

// What a node is to the scene manager.
enum class Role : std::uint8_t { none, camera, binding, transform, anchor, inlined, group };

Role findRole(SoType type) {
  const std::pair<SoType, Role> roles[] = {
      {SoCamera::getClassTypeId(), Role::camera},         {VrmlBindingNode::getClassTypeId(), Role::binding},
      {VrmlTransform::getClassTypeId(), Role::transform}, {VrmlAnchor::getClassTypeId(), Role::anchor},
      {VrmlInline::getClassTypeId(), Role::inlined},      {VrmlBaseGroup::getClassTypeId(), Role::group},
      {SoGroup::getClassTypeId(), Role::group},
  };
  for (const auto& [base, role] : roles)
    if (type.isDerivedFrom(base)) return role;
  return Role::none;
}

Role roleOf(const SoBase* object) { return tessel::byClass<findRole>(object->getTypeId()); }

// When a Transform on a path was last notified, itself or from below; 0 without a Transform.
SbUniqueId latestTransformChange(const SoPath* path) {
  SbUniqueId latest = 0;
  const auto* full = static_cast<const SoFullPath*>(path);
  for (int i = 0; full && i < full->getLength(); ++i)
    if (roleOf(full->getNode(i)) == Role::transform) latest = std::max(latest, full->getNode(i)->getNodeId());
  return latest;
}

}  // namespace

VrmlSceneManager::VrmlSceneManager()
    : renderAction(std::make_unique<VrmlRenderAction>(SbViewportRegion(1, 1))),
      preTraverseAction(std::make_unique<VrmlPreTraverseAction>()),
      getMatrixAction(std::make_unique<SoGetMatrixAction>(SbViewportRegion(1, 1))),
      visibilitySensors(std::make_unique<VrmlVisibilityList>()),
      viewpointManager(std::make_unique<VrmlViewpointManager>()),
      notifySensor(&notifyHandlerCB, this),
      redrawSensor(&redrawCB, this),
      moveSensor(&moveCB, this),
      realTimeWatcher(&realTimeWatcherCB, this),
      clockSensor(&clockCB, this) {
  moveSensor.setPriority(0);
  renderAction->setCacheContext(SoGLCacheContextElement::getUniqueCacheContext());
  setGLRenderAction(renderAction.get());
  viewpointManager->setSceneManager(this);
  if (SoSFTime* clock = realTime()) realTimeWatcher.attach(clock);
  addBindingStack(VrmlViewpoint::getClassTypeId(), &viewpointBindingChangedCB, this, &viewpointSceneChangedCB,
                  this);
  addBindingStack(VrmlNavigationInfo::getClassTypeId(), &navInfoBindingChangedCB, this, nullptr, nullptr);
  addBindingStack(VrmlBackground::getClassTypeId(), &bgBindingChangedCB, this, nullptr, nullptr);
  addBindingStack(VrmlFog::getClassTypeId(), nullptr, nullptr, nullptr, nullptr);
}

VrmlSceneManager::~VrmlSceneManager() {
  forgetArrivals();
  setAnchorHighlightCallback(nullptr, nullptr);
  setAnchorFetchCallback(nullptr, nullptr);
  setNavigationInfoChangedCallback(nullptr, nullptr);
  viewpointManager->setCameraCallback(nullptr, nullptr);
  setSceneGraph(nullptr);
  deactivate();
  if (getGLRenderAction() == renderAction.get()) setGLRenderAction(nullptr);
}

void VrmlSceneManager::setAnchorHighlightCallback(AnchorHighlightCallback* callback, void* data) {
  anchorHighlightCB = callback;
  anchorHighlightData = data;
}

void VrmlSceneManager::setAnchorFetchCallback(AnchorFetchCallback* callback, void* data) {
  anchorFetchCB = callback;
  anchorFetchData = data;
}

void VrmlSceneManager::setNavigationInfoChangedCallback(NavigationInfoCallback* callback, void* data) {
  navInfoChangedCB = callback;
  navInfoChangedData = data;
}

// --- the world ---------------------------------------------------------------------------------------------

void VrmlSceneManager::setSceneGraph(SoNode* sceneRoot) {
  setSceneCamera(nullptr);
  newWorld = true;
  const bool wasActive = isActive();
  deactivate();
  if (!wasActive) updateOnActivate = true;

  // What would keep the old world alive, or sounding.
  getHandleEventAction()->releaseGrabber();
  viewpointManager->clearViewpoints();
  backgroundPath.reset();
  if (root) {
    const SoRef<SoGroup> nothing(new SoGroup);
    preTraverseAction->apply(nothing.get());
  }
  root.reset(sceneRoot);

  if (!wasActive) return;
  activate();
  updateBindingNodes();
  if (root) scheduleRedraw();
}

void VrmlSceneManager::activate() {
  SoSceneManager::activate();
  if (root) {
    notifySensor.attach(root.get());
    if (SoSFTime* clock = realTime()) realTimeWatcher.attach(clock);
  }
  if (!updateOnActivate) return;
  updateOnActivate = false;
  updateBindingNodes();
}

void VrmlSceneManager::deactivate() {
  notifySensor.detach();
  realTimeWatcher.detach();
  redrawSensor.unschedule();
  moveSensor.unschedule();
  clockSensor.unschedule();
  SoSceneManager::deactivate();
}

SbBool VrmlSceneManager::processEvent(const SoEvent* event) {
  if (!root) return FALSE;
  SoHandleEventAction* action = getHandleEventAction();
  action->setEvent(event);
  action->apply(root.get());
  return action->isHandled();
}

// --- clock and redraw --------------------------------------------------------------------------------------

void VrmlSceneManager::scheduleRedraw() {
  if (!isActive() || !isAutoRedraw() || redrawSensor.isScheduled()) return;
  redrawSensor.setPriority(getRedrawPriority());
  redrawSensor.schedule();
}

bool VrmlSceneManager::isRedrawScheduled() const { return redrawSensor.isScheduled(); }

void VrmlSceneManager::redrawCB(void* data, SoSensor*) { static_cast<VrmlSceneManager*>(data)->redraw(); }

void VrmlSceneManager::realTimeWatcherCB(void* data, SoSensor*) {
  // Several managers watch one clock: the first of them advances the frame time.
  const SoSFTime* clock = realTime();
  if (!clock || clock->getValue().getValue() != VrmlDB::getFrameTime().getValue()) VrmlDB::setFrameTime();
  static_cast<VrmlSceneManager*>(data)->checkSoundTraversal();
}

void VrmlSceneManager::clockCB(void*, SoSensor*) {
  if (SoSFTime* clock = realTime()) clock->setValue(SbTime::getTimeOfDay());
}

void VrmlSceneManager::checkSoundTraversal() {
  if (!mute && !redrawSensor.isScheduled() && root) preTraverse(tessel::KidType::sound, 0);
}

void VrmlSceneManager::setMute(int flag) {
  mute = flag;
  if (mute && root) preTraverse(tessel::KidType::sound, mute);
}

void VrmlSceneManager::preTraverse(std::uint32_t kidTypes, int silence) {
  preTraverseAction->kidTypeMask = static_cast<int>(kidTypes);
  const ScopedValue<int> silenced(preTraverseAction->silence, silence);
  preTraverseAction->apply(root.get());
}

// --- the frame ---------------------------------------------------------------------------------------------

void VrmlSceneManager::render(SbBool clearWindow, SbBool clearZbuffer) {
  render(getGLRenderAction(), TRUE, clearWindow, clearZbuffer);
}

void VrmlSceneManager::render(SoGLRenderAction* action, SbBool initMatrices, SbBool clearWindow,
                              SbBool clearZbuffer) {
  // Only our own action tells when a camera is set, which is when a background is drawn.
  const bool backgroundsKnown = root && action->isOfType(VrmlRenderAction::getClassTypeId());
  renderBackground = clearWindow && VrmlBackground::enabled && backgroundsKnown;
  if (bindingsDirty) updateBindingNodes();

  GLint depthBits = 0;
  glGetIntegerv(GL_DEPTH_BITS, &depthBits);
  if (depthBits > 0) {
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
  }
  const SbViewportRegion& region = action->getViewportRegion();
  const SbVec2s origin = region.getViewportOriginPixels();
  const SbVec2s size = region.getViewportSizePixels();
  glViewport(origin[0], origin[1], size[0], size[1]);
  if (initMatrices) {
    for (const GLenum which : {GL_PROJECTION, GL_MODELVIEW}) {
      glMatrixMode(which);
      glLoadIdentity();
    }
  }
  if (renderBackground && getCurrentBinding(VrmlBackground::getClassTypeId()))
    updateBackgroundRotation();
  else
    clearPlainly(clearWindow, clearZbuffer && depthBits > 0);

  redrawSensor.unschedule();
  if (root) traverseForFrame(action);

  if (isRealTimeUpdateEnabled() && isActive() && !clockSensor.isScheduled()) {
    clockSensor.setTimeFromNow(SbTime::zero());
    clockSensor.schedule();
  }
}

void VrmlSceneManager::clearPlainly(bool clearColor, bool clearDepth) const {
  if (clearColor && isRGBMode()) {
    const SbColor& color = getBackgroundColor();
    glClearColor(color[0], color[1], color[2], 0);
  } else if (clearColor) {
    glClearIndex(static_cast<GLfloat>(getBackgroundIndex()));
  }
  const GLbitfield buffers = (clearColor ? GLbitfield{GL_COLOR_BUFFER_BIT} : 0U) |
                             (clearDepth ? GLbitfield{GL_DEPTH_BUFFER_BIT} : 0U);
  if (buffers) glClear(buffers);
}

void VrmlSceneManager::traverseForFrame(SoGLRenderAction* action) {
  VrmlVisibilityList* outer = VrmlVisibilitySensor::startTraversal(visibilitySensors.get());
  cameraDone = false;
  {
    const ScopedValue<VrmlSceneManager*> active(activeSceneManager, this);
    const ScopedValue<SoGLRenderAction*> running(runningAction, action);
    // The lights of a muted world shine on; its sounds, where the way to the lights leads past them, stay
    // silent.
    using namespace tessel::KidType;
    preTraverse(mute ? spatialLight : spatialLight | sound, mute);
    action->apply(root.get());
  }
  VrmlVisibilitySensor::finishTraversal(outer);
}

void VrmlSceneManager::cameraPostRender(SoGLRenderAction* action) {
  if (activeSceneManager) activeSceneManager->doPostCameraRenderStuff(action);
}

void VrmlSceneManager::doPostCameraRenderStuff(SoGLRenderAction* action) {
  // What is drawn here depends on more than the state, so no display list may hold it.
  if (action->getState()->isCacheOpen()) SoCacheElement::invalidate(action->getState());
  if (!cameraDone) {
    cameraDone = true;
    if (renderBackground) doBackground(action);
    if (VrmlFog::enabled)
      doFog(action);
    else
      glDisable(GL_FOG);
  }
  for (const SoRef<VrmlLight>& light : preTraverseAction->getLights()) {
    light->setRenderEnabled(1);
    light->GLRender(action);
    light->setRenderEnabled(0);
  }
}

namespace {

// Whether an action draws a whole scene for the first time, not a path, a delayed part or a further pass.
bool drawsFirstWhole(const SoGLRenderAction* action) {
  const SoAction::PathCode code = action->getCurPathCode();
  return code != SoAction::IN_PATH && code != SoAction::OFF_PATH && action->getCurPass() == 0 &&
         !VrmlRenderAction::isDrawingDelayed(action);
}

}  // namespace

void VrmlSceneManager::doBackground(SoGLRenderAction* action) {
  auto* background = static_cast<VrmlBackground*>(getCurrentBinding(VrmlBackground::getClassTypeId()));
  if (background && drawsFirstWhole(action)) background->drawIt(action);
}

void VrmlSceneManager::doFog(SoGLRenderAction* action) {
  auto* fog = static_cast<VrmlFog*>(getCurrentBinding(VrmlFog::getClassTypeId()));
  if (!drawsFirstWhole(action)) return;
  if (fog)
    fog->drawIt(action->getState());
  else
    glDisable(GL_FOG);
}

void VrmlSceneManager::updateBackgroundRotation() {
  const SbUniqueId change = latestTransformChange(backgroundPath.get());
  if (!backgroundMoved && change == backgroundChange) return;
  backgroundMoved = false;
  backgroundChange = change;
  SbMatrix rotation = SbMatrix::identity();
  if (backgroundPath) {
    getMatrixAction->apply(backgroundPath.get());
    rotation = tessel::rotationPart(getMatrixAction->getMatrix());
  }
  static_cast<VrmlBackground*>(getCurrentBinding(VrmlBackground::getClassTypeId()))
      ->setRotationMatrix(rotation);
}

// --- changes of the scene ----------------------------------------------------------------------------------

void VrmlSceneManager::notifyHandlerCB(void* data, SoSensor* sensor) {
  auto* manager = static_cast<VrmlSceneManager*>(data);
  const auto* source = static_cast<const VrmlNotifySensor*>(sensor);
  manager->scheduleRedraw();
  if (!manager->moveSensor.isScheduled() && manager->viewpointMayMove()) manager->moveSensor.schedule();
  // An event that came along routes began at another node than the one whose field it changed last.
  if (SoField* field = source->getTriggerField())
    manager->fieldChanged(field);
  else if (SoNode* node = source->getTriggerNode())
    manager->structureChanged(node);
}

// Every event asks: most viewpoints stand below no Transform, and did not before.
bool VrmlSceneManager::viewpointMayMove() const {
  if (viewpointChange != 0) return true;
  const VrmlViewpoint* viewpoint = boundViewpoint();
  return viewpoint && latestTransformChange(viewpoint->getPath()) != 0;
}

void VrmlSceneManager::moveCB(void* data, SoSensor*) {
  static_cast<VrmlSceneManager*>(data)->checkViewpointMoved();
}

void VrmlSceneManager::checkViewpointMoved() {
  // Asked at the end of each notification: of several Transforms that one event moves, and of several fields
  // of one Transform, only the first is heard of at the root, and the others have not their values by then.
  VrmlViewpoint* viewpoint = boundViewpoint();
  if (!viewpoint || !viewpoint->getPath()) return;
  if (bindingsDirty && tessel::tailOf(viewpoint->getPath()) != viewpoint) {
    // The change has cut the path. In the middle of a frame or of an update the next frame finds the new one.
    if (pathsOfUpdate || this == activeSceneManager) return;
    updateBindingNodes();
    viewpoint = boundViewpoint();
    if (!viewpoint || !viewpoint->getPath()) return;
  }
  const SbUniqueId change = latestTransformChange(viewpoint->getPath());
  if (change == viewpointChange) return;
  viewpointChange = change;
  const SoRef<SoPath> path(const_cast<SoPath*>(viewpoint->getPath()));
  getMatrixAction->apply(path.get());
  if (getMatrixAction->getMatrix() != viewpointManager->getMatrix())
    viewpointManager->updateSceneCamera(viewpoint, 1, 0);
}

void VrmlSceneManager::fieldChanged(SoField* field) {
  SoFieldContainer* const holder = field->getContainer();
  if (field->getTypeId() == VrmlMFChildren::getClassTypeId())
    bindingsDirty = true;
  else if (holder && roleOf(holder) == Role::binding)
    bindingFieldChanged(static_cast<VrmlBindingNode*>(holder), field);
}

void VrmlSceneManager::bindingFieldChanged(VrmlBindingNode* node, SoField* field) {
  if (field == &node->set_bind) {
    // A node that has just come into the scene must be known by its path first.
    if (bindingsDirty && !pathsOfUpdate && this != activeSceneManager) updateBindingNodes();
    if (node->set_bind.getValue())
      bindNode(node);
    else
      unbindNode(node);
  } else if (node->isOfType(VrmlNavigationInfo::getClassTypeId())) {
    if (navInfoChangedCB) navInfoChangedCB(navInfoChangedData, static_cast<VrmlNavigationInfo*>(node), field);
  } else if (node == boundViewpoint()) {
    auto* viewpoint = static_cast<VrmlViewpoint*>(node);
    if (field == &viewpoint->orientation || field == &viewpoint->position)
      viewpointManager->updateSceneCamera(viewpoint, 1, 0);
  }
}

void VrmlSceneManager::structureChanged(SoNode* node) {
  switch (roleOf(node)) {
    case Role::anchor:
      if (!serveAnchor(static_cast<VrmlAnchor*>(node))) bindingsDirty = true;
      break;
    case Role::inlined:
      worldArrived();
      break;
    case Role::transform:
    case Role::group:
      bindingsDirty = true;
      break;
    default:
      break;
  }
}

bool VrmlSceneManager::serveAnchor(VrmlAnchor* anchor) const {
  SbString url, parameter, highlightUrl;
  const bool fetch = anchor->isRequestingFetch(url, parameter);
  const bool highlight = anchor->isRequestingHighlight(highlightUrl);
  if (fetch && anchorFetchCB) anchorFetchCB(url, parameter, anchorFetchData, anchor);
  if (highlight && anchorHighlightCB) anchorHighlightCB(highlightUrl, anchorHighlightData, anchor);
  return fetch || highlight;
}
