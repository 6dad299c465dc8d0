// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlCullingGroup.h>

#include <algorithm>

#include <Inventor/SbXfBox3f.h>
#include <Inventor/actions/SoActions.h>
#include <Inventor/caches/SoBoundingBoxCache.h>
#include <Inventor/elements/SoBBoxModelMatrixElement.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoCullElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/sensors/SoOneShotSensor.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/toolkit/Scoped.h>

#include "actions/RenderCache.h"
#include "core/BoxCache.h"
#include "core/ChildRuns.h"
#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

int VrmlCullingGroup::doChildEvents = 1;

namespace {

int numRenderCaches = 2;

// Has a group find its box. To make an action costs several times what it does for most groups, so one serves all; it
// is never destroyed, since the toolkit may be gone before static objects are.
void measure(SoNode* group, const SbViewportRegion& region) {
  static auto* const shared = new SoGetBoundingBoxAction(region);
  static bool busy = false;
  if (busy) {  // asked from within
    SoGetBoundingBoxAction(region).apply(group);
    return;
  }
  const tessel::ScopedValue<bool> inUse(busy, true);
  shared->setViewportRegion(region);
  shared->apply(group);
}

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

/// What is found out about the group and holds until something in it changes.
struct VrmlCullingGroup::Caches {
  tessel::BoxCache box;
  tessel::RenderCache drawing{numRenderCaches};
  tessel::ChildRuns runs;
};

VrmlCullingGroup::Caches& VrmlCullingGroup::caches() {
  if (!allCaches) allCaches = std::make_unique<Caches>();
  return *allCaches;
}

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

VrmlCullingGroup::VrmlCullingGroup(int expectedChildren) : NodeClass(expectedChildren) {
  children.setValue(childList.get());
  setUpFields();
  children.setDefault(FALSE);  // a group always writes its children
}

VrmlCullingGroup::~VrmlCullingGroup() = default;

void VrmlCullingGroup::setNumRenderCaches(int number) { numRenderCaches = number; }
int VrmlCullingGroup::getNumRenderCaches() { return numRenderCaches; }

// Boxes.

// Many files write the defaults out: a size below zero is none, whoever gave it.
bool VrmlCullingGroup::hasDeclaredBox() const {
  const SbVec3f& size = bboxSize.getValue();
  return size[0] >= 0 && size[1] >= 0 && size[2] >= 0;
}

void VrmlCullingGroup::updateBoundingBox(SoAction* action) {
  if (caches().box.get()) return;
  if (!hasDeclaredBox()) {
    measure(this, SoViewportRegionElement::get(action->getState()));
    return;
  }
  const SbVec3f half = bboxSize.getValue() / 2;
  caches().box.keep(action->getState(), SbXfBox3f(bboxCenter.getValue() - half, bboxCenter.getValue() + half),
                    true, SbVec3f(0, 0, 0));
}

void VrmlCullingGroup::getBoundingBox(SoGetBoundingBoxAction* action) {
  if (hasDeclaredBox()) {
    const SbVec3f half = bboxSize.getValue() / 2;
    action->extendBy(SbBox3f(bboxCenter.getValue() - half, bboxCenter.getValue() + half));
    action->setCenter(bboxCenter.getValue(), FALSE);
    return;
  }
  const SoAction::PathCode code = action->getCurPathCode();
  if (code == SoAction::OFF_PATH) return;
  if (code == SoAction::IN_PATH || action->isInCameraSpace() || action->getResetPath()) {
    const tessel::StateScope scope(action->getState());
    VrmlBaseGroup::getBoundingBox(action);
  } else if (!caches().box.extend(action)) {
    caches().box.fill(action, [&] { extendByAllChildren(action); });
  }
}

void VrmlCullingGroup::extendByAllChildren(SoGetBoundingBoxAction* action) {
  if (getNumChildren() < tessel::ChildRuns::many) {
    VrmlBaseGroup::getBoundingBox(action);
    return;
  }
  SbVec3f sum(0, 0, 0);
  int centers = extendByChildren(action, getRenderOrder(true), sum);
  for (const auto& run : caches().runs.update(*childList, getRenderOrder(false))) {
    if (!run->box.extend(action))
      run->box.fill(action, [&] {
        // Each child's box as it lies in the group's space: joining turned boxes would make a loose one.
        SbXfBox3f& box = action->getXfBoundingBox();
        SbBox3f whole;
        SbVec3f ofRun(0, 0, 0);
        run->numCenters = 0;
        for (const int& child : run->children) {
          box.makeEmpty();
          run->numCenters += extendByChildren(action, {&child, 1}, ofRun);
          if (!box.isEmpty()) whole.extendBy(box.project());
        }
        box = SbXfBox3f(whole);
        if (run->numCenters > 0) action->setCenter(ofRun / static_cast<float>(run->numCenters), FALSE);
      });
    if (!action->isCenterSet()) continue;
    sum += action->getCenter() * static_cast<float>(run->numCenters);
    centers += run->numCenters;
    action->resetCenter();
  }
  if (centers > 0) action->setCenter(sum / static_cast<float>(centers), FALSE);
}

// Rendering.

bool VrmlCullingGroup::cullTest(SoGLRenderAction* action) {
  updateBoundingBox(action);
  if (!caches().box.get()) return false;
  const SbBox3f& bounds = caches().box.get()->getProjectedBox();
  return bounds.isEmpty() || SoCullElement::cullBox(action->getState(), bounds, TRUE);
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
  tessel::RenderCache& drawing = caches().drawing;
  if (drawing.call(action)) return;
  drawing.open(action);
  reallyRenderBelowPath(action);
  drawing.close(action);
}

void VrmlCullingGroup::reallyRenderBelowPath(SoGLRenderAction* action) {
  // A run is for children that need no test against the view.
  if (getNumChildren() < tessel::ChildRuns::many || !SoCullElement::completelyInside(action->getState())) {
    VrmlBaseGroup::GLRenderBelowPath(action);
    return;
  }
  renderChildren(action, getRenderOrder(true));
  for (const auto& run : caches().runs.update(*childList, getRenderOrder(false))) {
    const tessel::StateScope scope(action->getState());
    if (run->drawing.call(action)) continue;
    run->drawing.open(action);
    renderChildren(action, run->children);
    run->drawing.close(action);
    if (action->hasTerminated()) break;
  }
}

// Other traversals.

void VrmlCullingGroup::rayPick(SoRayPickAction* action) {
  if (action->getCurPathCode() == SoAction::OFF_PATH) return;
  if (action->isCullingEnabled() && action->hasWorldSpaceRay()) {
    updateBoundingBox(action);
    if (const SoBoundingBoxCache* cache = caches().box.get()) {
      const SbBox3f& box = cache->getProjectedBox();
      if (box.isEmpty()) return;
      action->setObjectSpace();
      if (!action->intersect(box, cache->hasLinesOrPoints())) return;
    }
  }
  pick(action);
}

void VrmlCullingGroup::collisionDetect(VrmlCollideAction* action) {
  const SoAction::PathCode code = action->getCurPathCode();
  if (code == SoAction::BELOW_PATH || code == SoAction::OFF_PATH) return;
  updateBoundingBox(action);
  const SoBoundingBoxCache* cache = caches().box.get();
  if (cache && (cache->getProjectedBox().isEmpty() || !action->collideXfBox(cache->getBox()))) return;
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
  if (allCaches) {
    allCaches->box.drop();
    allCaches->drawing.invalidate();
    allCaches->runs.setStale();
  }
  const SoField* field = list->getLastField();
  if ((field == &addChildren || field == &removeChildren) && isNotifyEnabled() && list->getLastRec() &&
      list->getLastRec()->getType() == SoNotRec::CONTAINER)
    scheduleSensor(this);
  NodeClass::notify(list);
}

void VrmlCullingGroup::scheduleSensor(VrmlCullingGroup* group) {
  WaitingGroups& all = waiting();
  if (!all.sensor) {
    all.sensor = std::make_unique<SoOneShotSensor>(childSensorCB, nullptr);
    all.sensor->setPriority(0);
  }
  if (std::ranges::none_of(all.groups, [=](const auto& g) { return g.get() == group; }))
    all.groups.emplace_back(group);
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
      if (VrmlNode* child = acceptableChild(addChildren[i]); child && findChild(child) < 0) addChild(child);
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  addChildren.setNum(0);
}

void VrmlCullingGroup::serviceRemoveChildren() {
  if (doChildEvents)
    for (int i = 0; i < removeChildren.getNum(); ++i)
      if (auto* child = dynamic_cast<VrmlNode*>(removeChildren[i]); child && findChild(child) >= 0)
        removeChild(findChild(child));
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  removeChildren.setNum(0);
}

template class tessel::NodeClass<VrmlCullingGroup, VrmlBaseGroup>;
