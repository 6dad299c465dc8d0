// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlCullingGroup.h>

#include <algorithm>

#include <Inventor/SbXfBox3f.h>
#include <Inventor/actions/SoActions.h>
#include <Inventor/caches/SoBoundingBoxCache.h>
#include <Inventor/elements/SoBBoxModelMatrixElement.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoCullElement.h>
#include <Inventor/elements/SoLocalBBoxMatrixElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/sensors/SoOneShotSensor.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/toolkit/Scoped.h>

#include "actions/RenderCache.h"
#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

int VrmlCullingGroup::doChildEvents = 1;

namespace {

int numRenderCaches = 2;

// The groups that have child events waiting, and the one sensor that serves them behind the notification.
struct WaitingGroups {
  std::vector<tessel::SoRef<VrmlCullingGroup>> groups;
  std::unique_ptr<SoOneShotSensor> sensor;
};
WaitingGroups& waiting() {
  static WaitingGroups all;
  return all;
}

}  // namespace

std::span<const FieldSpec> VrmlCullingGroup::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlCullingGroup::children>("children", FieldKind::exposedField),
      fieldSpec<&VrmlCullingGroup::addChildren>("addChildren", FieldKind::eventIn),
      fieldSpec<&VrmlCullingGroup::removeChildren>("removeChildren", FieldKind::eventIn),
      fieldSpec<&VrmlCullingGroup::bboxCenter>("bboxCenter", FieldKind::field, {0, 0, 0}),
      fieldSpec<&VrmlCullingGroup::bboxSize>("bboxSize", FieldKind::field, {-1, -1, -1}),
  };
  return table;
}

void VrmlCullingGroup::initClass() {
  NodeClass::initClass();
  SO_ENABLE(SoGetBoundingBoxAction, SoCacheElement);
}

VrmlCullingGroup::VrmlCullingGroup() : VrmlCullingGroup(0) {}

VrmlCullingGroup::VrmlCullingGroup(int expectedChildren)
    : NodeClass(expectedChildren) {
  children.setValue(childList.get());
  setUpFields();
  children.setDefault(FALSE);  // a group always writes its children
}

VrmlCullingGroup::~VrmlCullingGroup() = default;

void VrmlCullingGroup::setNumRenderCaches(int number) { numRenderCaches = number; }
int VrmlCullingGroup::getNumRenderCaches() { return numRenderCaches; }

bool VrmlCullingGroup::readBody(tessel::WorldReader& reader) {
  const tessel::NotifyOff a(static_cast<SoField&>(children)), b(static_cast<SoField&>(addChildren)),
      c(static_cast<SoField&>(removeChildren)), d(static_cast<SoField&>(bboxCenter)), e(static_cast<SoField&>(bboxSize));
  return NodeClass::readBody(reader);
}

// Boxes.

bool VrmlCullingGroup::hasDeclaredBox() const { return !bboxCenter.isDefault() || !bboxSize.isDefault(); }

void VrmlCullingGroup::updateBoundingBox(SoAction* action) {
  if (bboxCache) return;
  if (!hasDeclaredBox()) {
    SoGetBoundingBoxAction fill(SoViewportRegionElement::get(action->getState()));
    fill.apply(this);
    return;
  }
  const SbVec3f half = bboxSize.getValue() / 2;
  bboxCache.reset(new SoBoundingBoxCache(action->getState()));
  bboxCache->set(SbXfBox3f(bboxCenter.getValue() - half, bboxCenter.getValue() + half), TRUE, SbVec3f(0, 0, 0));
}

void VrmlCullingGroup::getBoundingBox(SoGetBoundingBoxAction* action) {
  if (hasDeclaredBox()) {
    const SbVec3f half = bboxSize.getValue() / 2;
    action->extendBy(SbBox3f(bboxCenter.getValue() - half, bboxCenter.getValue() + half));
    action->setCenter(bboxCenter.getValue(), FALSE);
    return;
  }

  SoState* state = action->getState();
  const SoAction::PathCode code = action->getCurPathCode();
  if (code == SoAction::OFF_PATH) return;
  const bool caching = code != SoAction::IN_PATH && !action->isInCameraSpace() && !action->getResetPath();

  if (caching && bboxCache && bboxCache->isValid(state)) {
    SoCacheElement::addCacheDependency(state, bboxCache.get());
    if (bboxCache->hasLinesOrPoints()) SoBoundingBoxCache::setHasLinesOrPoints(state);
    action->extendBy(bboxCache->getBox());
    if (bboxCache->isCenterSet()) action->setCenter(bboxCache->getCenter(), TRUE);
    return;
  }
  if (!caching) {
    const tessel::StateScope scope(state);
    VrmlBaseGroup::getBoundingBox(action);
    return;
  }

  SbXfBox3f& box = action->getXfBoundingBox();
  const SbXfBox3f before = box;
  const SbBool stored = SoCacheElement::setInvalid(FALSE);
  bool hasCenter = false;
  SbVec3f center(0, 0, 0);
  SbXfBox3f children;
  {
    const tessel::StateScope scope(state);
    bboxCache.reset(new SoBoundingBoxCache(state));
    SoCacheElement::set(state, bboxCache.get());
    SoLocalBBoxMatrixElement::makeIdentity(state);
    box.makeEmpty();
    action->resetCenter();
    VrmlBaseGroup::getBoundingBox(action);
    children = box;
    hasCenter = action->isCenterSet();
    if (hasCenter) {
      center = action->getCenter();
      action->resetCenter();
    }
    bboxCache->set(children, hasCenter, center);
  }
  SoCacheElement::setInvalid(stored);
  box = before;
  if (!children.isEmpty()) {
    action->extendBy(children);
    if (hasCenter) action->setCenter(center, TRUE);
  }
}

// Rendering.

bool VrmlCullingGroup::cullTest(SoGLRenderAction* action) {
  updateBoundingBox(action);
  if (!bboxCache) return false;
  const SbBox3f& box = bboxCache->getProjectedBox();
  return box.isEmpty() || SoCullElement::cullBox(action->getState(), box, TRUE);
}

void VrmlCullingGroup::GLRenderBelowPath(SoGLRenderAction* action) {
  SoState* state = action->getState();
  const tessel::StateScope scope(state);
  wasCulled = false;
  if (!SoCullElement::completelyInside(state)) {
    wasCulled = cullTest(action);
    if (wasCulled) return;
  }
  // A display list stands for the whole group, so it is for groups wholly in view.
  if (!SoCullElement::completelyInside(state)) {
    reallyRenderBelowPath(action);
    return;
  }
  if (!renderCache) renderCache = std::make_unique<tessel::RenderCache>(numRenderCaches);
  if (renderCache->call(action)) return;
  renderCache->open(action);
  reallyRenderBelowPath(action);
  renderCache->close(action);
}

void VrmlCullingGroup::reallyRenderBelowPath(SoGLRenderAction* action) { VrmlBaseGroup::GLRenderBelowPath(action); }

// Other traversals.

void VrmlCullingGroup::rayPick(SoRayPickAction* action) {
  if (action->getCurPathCode() == SoAction::OFF_PATH) return;
  if (action->isCullingEnabled() && action->hasWorldSpaceRay()) {
    updateBoundingBox(action);
    if (bboxCache) {
      const SbBox3f& box = bboxCache->getProjectedBox();
      if (box.isEmpty()) return;
      action->setObjectSpace();
      if (!action->intersect(box, bboxCache->hasLinesOrPoints())) return;
    }
  }
  pick(action);
}

void VrmlCullingGroup::collisionDetect(VrmlCollideAction* action) {
  const SoAction::PathCode code = action->getCurPathCode();
  if (code == SoAction::BELOW_PATH || code == SoAction::OFF_PATH) return;
  updateBoundingBox(action);
  if (bboxCache && (bboxCache->getProjectedBox().isEmpty() || !action->collideXfBox(bboxCache->getBox()))) return;
  const tessel::StateScope scope(action->getState());
  doAction(action);
}

void VrmlCullingGroup::count(VrmlCountAction* action) {
  if (action->skipCulled && wasCulled) return;
  const tessel::StateScope scope(action->getState());
  doAction(action);
}

// Notification and child events.

void VrmlCullingGroup::childrenChanged() { children.touch(); }

void VrmlCullingGroup::notify(SoNotList* list) {
  bboxCache.reset();
  if (renderCache) renderCache->invalidate();
  const SoField* field = list->getLastField();
  if (isNotifyEnabled() && list->getLastRec() && list->getLastRec()->getType() == SoNotRec::CONTAINER &&
      (field == &addChildren || field == &removeChildren))
    scheduleSensor(this);
  NodeClass::notify(list);
}

void VrmlCullingGroup::scheduleSensor(VrmlCullingGroup* group) {
  WaitingGroups& all = waiting();
  if (!all.sensor) {
    all.sensor = std::make_unique<SoOneShotSensor>(childSensorCB, nullptr);
    all.sensor->setPriority(0);
  }
  if (std::ranges::none_of(all.groups, [=](const auto& g) { return g.get() == group; })) all.groups.emplace_back(group);
  all.sensor->schedule();
}

void VrmlCullingGroup::childSensorCB(void*, SoSensor*) {
  const std::vector<tessel::SoRef<VrmlCullingGroup>> groups = std::exchange(waiting().groups, {});
  for (const auto& group : groups) {
    group->serviceAddChildren();
    group->serviceRemoveChildren();
  }
}

void VrmlCullingGroup::serviceAddChildren() {
  if (doChildEvents)
    for (int i = 0; i < addChildren.getNum(); ++i)
      if (auto* child = static_cast<VrmlNode*>(addChildren[i]); child && findChild(child) < 0) addChild(child);
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  addChildren.setNum(0);
}

void VrmlCullingGroup::serviceRemoveChildren() {
  if (doChildEvents)
    for (int i = 0; i < removeChildren.getNum(); ++i)
      if (auto* child = static_cast<VrmlNode*>(removeChildren[i]); child && findChild(child) >= 0)
        removeChild(findChild(child));
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  removeChildren.setNum(0);
}

template class tessel::NodeClass<VrmlCullingGroup, VrmlBaseGroup>;
