// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlBaseGroup.h>

#include <algorithm>
#include <unordered_map>

#include <Inventor/SoFullPath.h>
#include <Inventor/actions/SoActions.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/core/VrmlMFChildren.h>
#include <tessel/toolkit/Scoped.h>

#include "core/AsVrmlNode.h"
#include "core/DeepCopy.h"
#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"

using tessel::DeepCopy;
using tessel::FieldSpec;

namespace {

// The mark "handled" ends a traversal of the toolkit. A group with several sensors takes it back for as long
// as it has sensors to ask.
struct HandledMark : SoHandleEventAction {
  static void clear(SoHandleEventAction* action) {
    const auto setTerminated = &HandledMark::setTerminated;
    (action->*setTerminated)(FALSE);
  }
};

bool isSensor(const SoNode& child) {
  const VrmlNode* node = tessel::asVrmlNode(&child);
  return node && node->isGeometricSensor();
}
bool actsOnSiblings(const SoNode& child) {
  const VrmlNode* node = tessel::asVrmlNode(&child);
  return node && !node->isGeometricSensor() && node->shouldRenderBeforeOtherChildren();
}

}  // namespace

// The two orders, as indices of the child list. They are found when somebody asks after a change.
struct VrmlBaseGroup::Orders {
  std::vector<int> render;
  std::size_t numRenderFirst = 0;  // entries at the head of `render` that act on their siblings
  std::vector<int> event;
  std::size_t numSensors = 0;  // entries at the tail of `event` that are geometric sensors
};

std::span<const FieldSpec> VrmlBaseGroup::fields() { return {}; }

VrmlBaseGroup::VrmlBaseGroup() : VrmlBaseGroup(0) {}

VrmlBaseGroup::VrmlBaseGroup(int expectedChildren)
    : childList(expectedChildren > 0 ? std::make_unique<SoChildList>(this, expectedChildren)
                                     : std::make_unique<SoChildList>(this)) {
  setUpFields();
  kidType = tessel::KidType::notComputed;
}

VrmlBaseGroup::~VrmlBaseGroup() { childList.reset(); }  // notifies, so while the other members are there

// Children.

SoChildList* VrmlBaseGroup::getChildren() const { return childList.get(); }

template <class Change> void VrmlBaseGroup::changeChildren(Change change) {
  {
    const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
    change(*childList);
  }
  recalcTraverseOrder();
  childrenChanged();
}

void VrmlBaseGroup::childrenChanged() { startNotify(); }

void VrmlBaseGroup::addChild(VrmlNode* child) {
  if (!child) return;
  changeChildren([&](SoChildList& list) { list.append(child); });
}

void VrmlBaseGroup::insertChild(VrmlNode* child, int index) {
  if (!child || index < 0) return;
  changeChildren([&](SoChildList& list) {
    if (index < list.getLength())
      list.insert(child, index);
    else
      list.append(child);
  });
}

SoNode* VrmlBaseGroup::getChild(int index) const { return (*childList)[index]; }
int VrmlBaseGroup::findChild(const VrmlNode* child) const {
  return childList->find(const_cast<VrmlNode*>(child));
}
int VrmlBaseGroup::getNumChildren() const { return childList->getLength(); }

void VrmlBaseGroup::removeChild(int index) {
  if (index < 0) return;
  const tessel::SoRef<SoNode> keep((*childList)[index]);  // no destructor in the middle of a notification
  changeChildren([&](SoChildList& list) { list.remove(index); });
}

void VrmlBaseGroup::removeAllChildren() {
  changeChildren([](SoChildList& list) { list.truncate(0); });
}

void VrmlBaseGroup::replaceChild(int index, VrmlNode* child) {
  if (!child || index < 0) return;
  const tessel::SoRef<SoNode> keep((*childList)[index]);
  changeChildren([&](SoChildList& list) { list.set(index, child); });
}

void VrmlBaseGroup::replaceChild(VrmlNode* oldChild, VrmlNode* newChild) {
  replaceChild(findChild(oldChild), newChild);
}

namespace {

constexpr int meetsWanted = -1;

// How many levels of nodes a branch has; `meetsWanted` if that node stands in it.
int levelsBelow(const SoNode* node, const SoNode* wanted, std::unordered_map<const SoNode*, int>& known) {
  if (node == wanted) return meetsWanted;
  if (const auto [place, isNew] = known.try_emplace(node, 0); !isNew) return place->second;
  int levels = 0;
  const SoChildList* children = node->getChildren();
  for (int i = 0; children && i < children->getLength(); ++i) {
    const int below = levelsBelow((*children)[i], wanted, known);
    if (below == meetsWanted) return meetsWanted;
    levels = std::max(levels, below);
  }
  return known[node] = levels + 1;
}

}  // namespace

int VrmlBaseGroup::maxLevels = 4000;

VrmlNode* VrmlBaseGroup::acceptableChild(SoNode* node) {
  auto* child = dynamic_cast<VrmlNode*>(node);
  if (!child || !child->holdsChildren()) return child;
  std::unordered_map<const SoNode*, int> known;
  const int levels = levelsBelow(child, this, known);
  if (levels == meetsWanted) {
    SoDebugError::postWarning("VrmlBaseGroup::acceptableChild",
                              "A node was not added to a group that stands below it");
    return nullptr;
  }
  if (level + levels > maxLevels) {
    SoDebugError::postWarning("VrmlBaseGroup::acceptableChild",
                              "A node was not added: nodes would be nested more than %d levels deep",
                              maxLevels);
    return nullptr;
  }
  if (auto* group = dynamic_cast<VrmlBaseGroup*>(child)) group->sinkTo(level + 1);
  return child;
}

void VrmlBaseGroup::sinkTo(int newLevel) {
  if (level >= newLevel) return;
  level = newLevel;
  for (int i = 0; i < childList->getLength(); ++i)
    if (auto* group = dynamic_cast<VrmlBaseGroup*>((*childList)[i])) group->sinkTo(newLevel + 1);
}

// Orders.

void VrmlBaseGroup::recalcTraverseOrder() { computedOrders.reset(); }

const VrmlBaseGroup::Orders& VrmlBaseGroup::orders() const {
  if (computedOrders) return *computedOrders;
  auto found = std::make_unique<Orders>();
  std::vector<int> others, sensors;
  for (int i = 0; i < childList->getLength(); ++i) {
    const SoNode& child = *(*childList)[i];
    (actsOnSiblings(child) ? found->render : others).push_back(i);
    (isSensor(child) ? sensors : found->event).push_back(i);
  }
  found->numRenderFirst = found->render.size();
  found->render.insert(found->render.end(), others.begin(), others.end());
  found->numSensors = sensors.size();
  found->event.insert(found->event.end(), sensors.begin(), sensors.end());
  computedOrders = std::move(found);
  return *computedOrders;
}

// Whether a child has come to act on its siblings since the orders were found: an instance whose body has come.
bool VrmlBaseGroup::isMisplaced(const SoBase* child) const {
  if (!actsOnSiblings(*static_cast<const SoNode*>(child))) return false;
  const std::span<const int> first = getRenderOrder(true);
  return std::ranges::none_of(first, [&](int i) { return (*childList)[i] == child; });
}

const std::vector<int>& VrmlBaseGroup::getRenderOrder() const { return orders().render; }
std::span<const int> VrmlBaseGroup::getRenderOrder(bool actsOnSiblings) const {
  const Orders& o = orders();
  const std::span<const int> all(o.render);
  return actsOnSiblings ? all.first(o.numRenderFirst) : all.subspan(o.numRenderFirst);
}

const std::vector<int>& VrmlBaseGroup::getEventOrder() const { return orders().event; }

int VrmlBaseGroup::hasEnabledGeometricSensors() const {
  const Orders& o = orders();
  return std::any_of(o.event.end() - static_cast<std::ptrdiff_t>(o.numSensors), o.event.end(),
                     [this](int i) { return static_cast<VrmlNode*>((*childList)[i])->isSensorEnabled(); });
}

std::uint32_t VrmlBaseGroup::getKidType() {
  if (kidType != tessel::KidType::notComputed) return kidType;
  kidType = 0;
  for (int i = 0; i < childList->getLength(); ++i) {
    VrmlNode* child = tessel::asVrmlNode((*childList)[i]);
    kidType |= child ? child->getKidType() : tessel::KidType::foreign;
  }
  return kidType;
}

bool VrmlBaseGroup::readBody(tessel::WorldReader& reader) {
  level = reader.depth();
  if (!NodeClass::readBody(reader)) return false;
  recalcTraverseOrder();
  return true;
}

// Traversal.

void VrmlBaseGroup::doAction(SoAction* action) {
  int numIndices = 0;
  const int* indices = nullptr;
  if (action->getPathCode(numIndices, indices) == SoAction::IN_PATH)
    childList->traverse(action, indices[numIndices - 1]);
  else
    childList->traverse(action);
}

void VrmlBaseGroup::callback(SoCallbackAction* action) { VrmlBaseGroup::doAction(action); }
void VrmlBaseGroup::pick(SoPickAction* action) { VrmlBaseGroup::doAction(action); }
void VrmlBaseGroup::collisionDetect(VrmlCollideAction* action) { VrmlBaseGroup::doAction(action); }

void VrmlBaseGroup::count(VrmlCountAction* action) { VrmlBaseGroup::doAction(action); }

void VrmlBaseGroup::search(SoSearchAction* action) {
  VrmlNode::search(action);
  if (!action->isFound()) VrmlBaseGroup::doAction(action);
}

void VrmlBaseGroup::getMatrix(SoGetMatrixAction* action) {
  if (action->getCurPathCode() == SoAction::IN_PATH) VrmlBaseGroup::doAction(action);
}

void VrmlBaseGroup::doPreTraverse(VrmlPreTraverseAction* action) {
  if (!hasKidType(action->kidTypeMask)) return;
  const tessel::StateScope scope(action->getState());
  VrmlBaseGroup::doAction(action);
}

void VrmlBaseGroup::getBoundingBox(SoGetBoundingBoxAction* action) {
  int numIndices = 0;
  const int* indices = nullptr;
  SbVec3f sum(0, 0, 0);
  const int centers = action->getPathCode(numIndices, indices) == SoAction::IN_PATH
                          ? extendByChildren(action, {indices + numIndices - 1, 1}, sum)
                          : extendByChildren(action, orders().render, sum);
  if (centers > 0) action->setCenter(sum / static_cast<float>(centers), FALSE);
}

int VrmlBaseGroup::extendByChildren(SoGetBoundingBoxAction* action, std::span<const int> which,
                                    SbVec3f& sumOfCenters) {
  int centers = 0;
  for (const int i : which) {
    childList->traverse(action, i);
    if (!action->isCenterSet()) continue;
    sumOfCenters += action->getCenter();
    ++centers;
    action->resetCenter();
  }
  return centers;
}

// Rendering.

void VrmlBaseGroup::GLRender(SoGLRenderAction* action) {
  switch (action->getCurPathCode()) {
    case SoAction::NO_PATH:
    case SoAction::BELOW_PATH:
      GLRenderBelowPath(action);
      break;
    case SoAction::IN_PATH:
      GLRenderInPath(action);
      break;
    case SoAction::OFF_PATH:
      break;
  }
}

void VrmlBaseGroup::GLRenderBelowPath(SoGLRenderAction* action) { renderChildren(action, orders().render); }

void VrmlBaseGroup::renderChildren(SoGLRenderAction* action, std::span<const int> which) {
  action->pushCurPath();
  for (const int i : which) {
    SoNode* child = (*childList)[i];
    action->popPushCurPath(i, child);
    if (action->abortNow())
      SoCacheElement::invalidate(action->getState());
    else
      child->GLRenderBelowPath(action);
    if (action->hasTerminated()) break;
  }
  action->popCurPath();
}

void VrmlBaseGroup::GLRenderInPath(SoGLRenderAction* action) {
  int numIndices = 0;
  const int* indices = nullptr;
  const SoAction::PathCode code = action->getPathCode(numIndices, indices);
  if (code != SoAction::IN_PATH) {
    GLRenderBelowPath(action);
    return;
  }
  const std::span<const int> onPath(indices, static_cast<std::size_t>(numIndices));
  auto render = [&](int i, void (SoNode::*how)(SoGLRenderAction*)) {
    SoNode* child = (*childList)[i];
    action->pushCurPath(i, child);
    if (action->abortNow())
      SoCacheElement::invalidate(action->getState());
    else
      (child->*how)(action);
    action->popCurPath(code);
    return !action->hasTerminated();
  };
  const Orders& o = orders();
  for (std::size_t n = 0; n < o.numRenderFirst; ++n)
    if (std::ranges::find(onPath, o.render[n]) == onPath.end() &&
        !render(o.render[n], &SoNode::GLRenderOffPath))
      return;
  for (const int i : onPath)
    if (!render(i, &SoNode::GLRenderInPath)) return;
}

void VrmlBaseGroup::GLRenderOffPath(SoGLRenderAction*) {}

// Events. VRML lets several sibling sensors be active at once, the toolkit knows one grabber: the group takes
// the grab in the place of the sensors in it.

void VrmlBaseGroup::handleEvent(SoHandleEventAction* action) {
  switch (action->getCurPathCode()) {
    case SoAction::OFF_PATH:
      return;
    case SoAction::IN_PATH:
      VrmlBaseGroup::doAction(action);
      return;
    default:
      break;
  }
  sensorHandled = 0;
  const tessel::SoRef<VrmlBaseGroup> alive(this);  // an event may take the group out of the world
  if (action->getGrabber() != this || !grabPath)
    dispatchToChildren(action);
  else if (grabs.empty())
    action->setGrabber(nullptr);  // its sensors have gone: the event takes its way through the world
  else
    dispatchToGrabbingSensors(action);
}

void VrmlBaseGroup::incrementGrabs(VrmlNode* sensor) {
  if (std::ranges::find(grabs, sensor, &tessel::SoRef<VrmlNode>::get) == grabs.end())
    grabs.emplace_back(sensor);
}

void VrmlBaseGroup::decrementGrabs(VrmlNode* sensor) {
  std::erase_if(grabs, [sensor](const auto& grab) { return grab.get() == sensor; });
}

// A sensor that has left the group gets no release any more.
void VrmlBaseGroup::dropLostGrabs() {
  std::vector<tessel::SoRef<VrmlNode>> lost;
  for (const auto& grab : grabs)
    if (findChild(grab.get()) < 0) lost.push_back(grab);
  for (const auto& sensor : lost) {
    decrementGrabs(sensor.get());
    sensor->grabEventsCleanup();
  }
}

void VrmlBaseGroup::dispatchToChildren(SoHandleEventAction* action) {
  bool handledBySensor = false;
  grabs.clear();
  action->pushCurPath();
  const std::vector<int> order = orders().event;  // a child may change the children
  const std::size_t firstSensor = order.size() - orders().numSensors;
  for (std::size_t n = 0; n < order.size() && order[n] < childList->getLength(); ++n) {
    const tessel::SoRef<SoNode> child((*childList)[order[n]]);
    action->popPushCurPath(order[n], child.get());
    action->traverse(child.get());
    if (n >= firstSensor && action->getGrabber() == child.get()) {
      auto* sensor = static_cast<VrmlNode*>(child.get());
      sensor->ignoreGrabRelease();
      incrementGrabs(sensor);
    }
    if (!action->hasTerminated()) continue;
    if (n < firstSensor) {
      action->popCurPath();
      return;
    }
    handledBySensor = true;
    HandledMark::clear(action);
  }
  if (handledBySensor) {
    action->setHandled();
    sensorHandled = 1;
  }
  action->popCurPath();
  if (grabs.empty()) return;
  grabbing = true;
  action->setGrabber(this);
  grabPath.reset(action->getCurPath()->copy());
  grabViewVolume = SoViewVolumeElement::get(action->getState());
}

void VrmlBaseGroup::dispatchToGrabbingSensors(SoHandleEventAction* action) {
  // The path may be the root alone: follow the one of the press down to this group. A change of the world may
  // have cut it since.
  const tessel::SoRef<SoPath> pathOfPress = grabPath;
  const auto* whole = static_cast<const SoFullPath*>(pathOfPress.get());
  if (whole->getTail() != this) {
    action->setGrabber(nullptr);
    action->setHandled();
    return;
  }
  const int depth = static_cast<const SoFullPath*>(action->getCurPath())->getLength();
  int pushed = 0;
  for (int i = depth; i < whole->getLength(); ++i, ++pushed)
    action->pushCurPath(whole->getIndex(i), whole->getNode(i));
  action->getState()->push();
  SoViewVolumeElement::set(action->getState(), this, grabViewVolume);

  bool handledBySensor = false;
  dispatchingGrab = true;
  action->pushCurPath();
  const std::vector<int> order = orders().event;
  for (std::size_t n = order.size() - orders().numSensors;
       n < order.size() && order[n] < childList->getLength(); ++n) {
    const tessel::SoRef<VrmlNode> sensor(static_cast<VrmlNode*>((*childList)[order[n]]));
    action->popPushCurPath(order[n], sensor.get());
    action->traverse(sensor.get());
    if (SoNode* grabber = action->getGrabber(); grabber != this) {
      if (grabber == sensor.get()) {
        sensor->ignoreGrabRelease();
        incrementGrabs(sensor.get());
      } else if (!grabber) {
        sensor->grabEventsCleanup();
        decrementGrabs(sensor.get());
      }
      action->setGrabber(this);
    }
    if (!action->hasTerminated()) continue;
    handledBySensor = true;
    HandledMark::clear(action);
  }
  action->popCurPath();
  dispatchingGrab = false;

  action->getState()->pop();
  for (; pushed > 0; --pushed) action->popCurPath();
  if (handledBySensor) {
    action->setHandled();
    sensorHandled = 1;
  }
  if (!grabs.empty()) return;
  grabbing = false;
  action->setGrabber(nullptr);
  action->setHandled();
}

void VrmlBaseGroup::grabEventsSetup() { ref(); }

void VrmlBaseGroup::grabEventsCleanup() {
  if (!dispatchingGrab) {
    grabbing = false;
    grabPath.reset();
    grabs.clear();
    const Orders o = orders();  // what the sensors send may change the children
    for (std::size_t n = o.event.size() - o.numSensors;
         n < o.event.size() && o.event[n] < childList->getLength(); ++n)
      (*childList)[o.event[n]]->grabEventsCleanup();
  }
  unref();
}

// Notification.

// Of children that came or went, here or below.
static bool isStructural(const SoNotList& list) {
  if (const SoField* field = list.getLastField())
    return field->getTypeId() == VrmlMFChildren::getClassTypeId();
  const SoNotRec* first = list.getFirstRecAtNode();
  const VrmlNode* source = first ? tessel::asVrmlNode(first->getBase()) : nullptr;
  return source && source->holdsChildren();
}

void VrmlBaseGroup::structureChanged(const SoNotList& list) {
  const SoNotRec* record = list.getLastRec();
  const bool isHere = record && record->getType() == SoNotRec::CONTAINER;
  if (!isHere && !(record && record->getType() == SoNotRec::PARENT)) return;
  kidType = tessel::KidType::notComputed;
  if (isHere) {
    recalcTraverseOrder();
    if (!grabs.empty() && isNotifyEnabled()) dropLostGrabs();
  } else if (computedOrders && isMisplaced(record->getBase())) {
    recalcTraverseOrder();
  }
}

void VrmlBaseGroup::notify(SoNotList* list) {
  if (isStructural(*list)) structureChanged(*list);
  VrmlNode::notify(list);
}

// Copying.

SoNode* VrmlBaseGroup::addToCopyDict() const {
  if (SoFieldContainer* copied = DeepCopy::checkCopy(this)) return static_cast<SoNode*>(copied);
  SoNode* copy = NodeClass::addToCopyDict();
  for (int i = 0; i < childList->getLength(); ++i) DeepCopy::addBelow(*(*childList)[i]);
  return copy;
}

void VrmlBaseGroup::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  NodeClass::copyContents(from, copyConnections);
  level = static_cast<const VrmlBaseGroup*>(from)->level;
  const SoChildList& theirs = *static_cast<const VrmlBaseGroup*>(from)->childList;
  changeChildren([&](SoChildList& list) {
    list.truncate(0);
    for (int i = 0; i < theirs.getLength(); ++i) {
      const SoFieldContainer* copy = DeepCopy::findCopy(theirs[i], copyConnections);
      list.append(copy ? static_cast<SoNode*>(const_cast<SoFieldContainer*>(copy)) : theirs[i]);
    }
  });
}

template class tessel::NodeClass<VrmlBaseGroup, VrmlNode>;
