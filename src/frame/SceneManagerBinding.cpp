// SPDX-License-Identifier: BSD-3-Clause
// The part of the scene manager that keeps the binding stacks.
#include <algorithm>
#include <unordered_set>
#include <utility>
#include <vector>

#include <Inventor/SoPath.h>
#include <Inventor/lists/SoPathList.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/frame/VrmlBackground.h>
#include <tessel/frame/VrmlNavigationInfo.h>
#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/frame/VrmlTransformedCamera.h>
#include <tessel/frame/VrmlViewpoint.h>
#include <tessel/frame/VrmlViewpointManager.h>
#include <tessel/toolkit/Scoped.h>

#include "frame/PathTail.h"

using tessel::SoRef;

namespace {

// Walks a scene, also branches that are not shown, and keeps the first path to each binding node. What stands
// in several places is entered once: a few lines of groups can hold one viewpoint a million times.
class BindingNodeSearch {
public:
  explicit BindingNodeSearch(SoNode* root) : root(root) {
    if (root) walk(root);
  }
  const SoPathList& getPaths() const { return paths; }

private:
  void walk(SoNode* node) {
    if (!seen.insert(node).second) return;
    if (node->isOfType(VrmlBindingNode::getClassTypeId())) {
      auto* path = new SoPath(root);
      for (const int index : indices) path->append(index);
      paths.append(path);
      return;
    }
    const SoChildList* children = node->getChildren();
    for (int i = 0; children && i < children->getLength(); ++i) {
      indices.push_back(i);
      walk((*children)[i]);
      indices.pop_back();
    }
  }

  SoNode* root;
  std::unordered_set<const SoNode*> seen;
  std::vector<int> indices;
  SoPathList paths;
};

SoPathList pathsToBindingNodes(SoNode* root) { return BindingNodeSearch(root).getPaths(); }

SoPath* pathEndingAt(const SoPathList& paths, const SoNode* node) {
  for (int i = 0; i < paths.getLength(); ++i)
    if (tessel::tailOf(paths[i]) == node) return paths[i];
  return nullptr;
}

VrmlBindingNode* firstOfType(const SoPathList& paths, SoType type) {
  for (int i = 0; i < paths.getLength(); ++i)
    if (SoNode* tail = tessel::tailOf(paths[i]); tail->isOfType(type))
      return static_cast<VrmlBindingNode*>(tail);
  return nullptr;
}

// The node that was on top is not in the scene any more.
void sayUnbound(const BindingStack& stack, VrmlBindingNode* node) {
  node->set_bind.setValue(FALSE);
  node->doUnbind();
  stack.tellBound(node, 0, nullptr);
}

}  // namespace

void VrmlSceneManager::addBindingStack(SoType type, BindingStack::BoundCallback* boundCallback,
                                       void* boundData, BindingStack::SceneCallback* sceneCallback,
                                       void* sceneData) {
  if (std::ranges::find(bindingStacks, type, &BindingStack::getType) != bindingStacks.end()) return;
  const auto base = std::ranges::find_if(
      bindingStacks, [&](const auto& stack) { return type.isDerivedFrom(stack->getType()); });
  auto stack = std::make_unique<BindingStack>(type, this, boundCallback, boundData, sceneCallback, sceneData);
  BindingStack& added = **bindingStacks.insert(base, std::move(stack));
  added.addDefault();
  if (added.getTopNode()) bindNode(added.getTopNode());
}

BindingStack* VrmlSceneManager::getBindingStack(SoType type) const {
  const auto found = std::ranges::find_if(
      bindingStacks, [&](const auto& stack) { return type.isDerivedFrom(stack->getType()); });
  return found == bindingStacks.end() ? nullptr : found->get();
}

VrmlBindingNode* VrmlSceneManager::getCurrentBinding(SoType type) const {
  const BindingStack* stack = getBindingStack(type);
  return stack ? stack->getTopNode() : nullptr;
}

void VrmlSceneManager::bindNode(VrmlBindingNode* node) {
  BindingStack* stack = getBindingStack(node->getTypeId());
  if (!stack) return;
  const SoRef<VrmlBindingNode> alive(node);
  const SoRef<VrmlBindingNode> top(stack->getTopNode());
  if (top && top.get() != node) {
    top->doUnbind();
    stack->tellBound(top.get(), 0, nullptr);
  }
  if (node != stack->getDefaultNode()) {
    stack->remove(node);
    stack->push(node);
  }
  node->doBind();
  stack->tellBound(node, 1, nullptr);
}

void VrmlSceneManager::unbindNode(VrmlBindingNode* node) {
  BindingStack* stack = getBindingStack(node->getTypeId());
  if (!stack) return;
  const SoRef<VrmlBindingNode> alive(node);
  if (node != stack->getTopNode()) {
    stack->remove(node);
    return;
  }
  if (stack->getNumNodes() == 1) return;
  stack->pop();
  node->doUnbind();
  stack->tellBound(node, 0, nullptr);
  const SoRef<VrmlBindingNode> newTop(stack->getTopNode());
  newTop->doBind();
  stack->tellBound(newTop.get(), 1, node);
}

// --- worlds that come for Inlines --------------------------------------------------------------------------

namespace {
int arrivalsOpen = 0;
std::vector<VrmlSceneManager*> managersWaiting;  // for the last Arrivals to go
}  // namespace

VrmlSceneManager::Arrivals::Arrivals() { ++arrivalsOpen; }

VrmlSceneManager::Arrivals::~Arrivals() {
  if (--arrivalsOpen > 0) return;
  while (!managersWaiting.empty()) {
    VrmlSceneManager* manager = managersWaiting.back();
    managersWaiting.pop_back();
    if (manager->bindingsDirty) manager->worldArrived();
  }
}

void VrmlSceneManager::worldArrived() {
  bindingsDirty = true;
  if (this == activeSceneManager) return;  // the next frame looks
  if (arrivalsOpen == 0)
    updateBindingNodes();
  else if (std::ranges::find(managersWaiting, this) == managersWaiting.end())
    managersWaiting.push_back(this);
}

void VrmlSceneManager::forgetArrivals() { std::erase(managersWaiting, this); }

void VrmlSceneManager::updateBindingNodes() {
  bindingsDirty = false;
  SoPathList paths = pathsToBindingNodes(root.get());
  const tessel::ScopedValue<const SoPathList*> known(pathsOfUpdate, &paths);
  for (const std::unique_ptr<BindingStack>& stack : bindingStacks) {
    if (!root) {
      stack->clear();
      stack->addDefault();
      if (stack->getTopNode()) bindNode(stack->getTopNode());
    }
    if (!stack->tellScene(paths, newWorld)) updateStack(*stack, paths);
  }
  // The bound background may stand elsewhere now.
  backgroundBound(getCurrentBinding(VrmlBackground::getClassTypeId()));
  newWorld = false;
}

void VrmlSceneManager::updateStack(BindingStack& stack, const SoPathList& paths) {
  const SoRef<VrmlBindingNode> oldTop(stack.getTopNode());
  const bool wasDefault = oldTop.get() == stack.getDefaultNode();
  stack.updateStack(paths);
  if (oldTop && !wasDefault && oldTop.get() != stack.getTopNode()) sayUnbound(stack, oldTop.get());

  VrmlBindingNode* const top = stack.getTopNode();
  if (!newWorld || (!wasDefault && top != stack.getDefaultNode())) return;
  if (VrmlBindingNode* first = firstOfType(paths, stack.getType()))
    first->set_bind.setValue(TRUE);
  else if (wasDefault && top != stack.getDefaultNode())
    bindNode(top);
}

// --- viewpoints --------------------------------------------------------------------------------------------

VrmlViewpoint* VrmlSceneManager::boundViewpoint() const {
  return static_cast<VrmlViewpoint*>(getCurrentBinding(VrmlViewpoint::getClassTypeId()));
}

void VrmlSceneManager::setViewpointManager(std::unique_ptr<VrmlViewpointManager> manager) {
  if (!manager) return;
  viewpointManager = std::move(manager);
  viewpointManager->setSceneManager(this);
  bindingsDirty = true;
}

void VrmlSceneManager::bindToNamedViewpoint(const char* name) {
  VrmlViewpoint* viewpoint = viewpointManager->getNamedViewpoint(name);
  if (!viewpoint) return;
  viewpointManager->jumpToViewpoint(viewpoint);
  currentViewpointName = viewpoint->description.getValue();
}

void VrmlSceneManager::viewpointSceneChangedCB(void* data, SoPathList& paths, int newWorld) {
  static_cast<VrmlSceneManager*>(data)->viewpointSceneChanged(paths, newWorld);
}

void VrmlSceneManager::viewpointSceneChanged(const SoPathList& paths, int isNewWorld) {
  BindingStack& stack = *getBindingStack(VrmlViewpoint::getClassTypeId());
  const SoRef<VrmlBindingNode> oldTop(stack.getTopNode());
  const bool wasDefault = oldTop.get() == stack.getDefaultNode();

  viewpointManager->clearViewpoints();
  SoRef<VrmlViewpoint> first;
  for (int i = 0; i < paths.getLength(); ++i) {
    SoNode* tail = tessel::tailOf(paths[i]);
    if (!tail->isOfType(VrmlViewpoint::getClassTypeId())) continue;
    auto* viewpoint = static_cast<VrmlViewpoint*>(tail);
    if (!first) first.reset(viewpoint);
    viewpoint->setPath(paths[i]);
    viewpointManager->addViewpoint(viewpoint);
  }
  if (auto* lastChoice = static_cast<VrmlViewpoint*>(stack.getDefaultNode())) {
    lastChoice->setPath(new SoPath(lastChoice));
    viewpointManager->addViewpoint(lastChoice);
  }

  stack.updateStack(paths);
  viewpointManager->takeMatrix(boundViewpoint());
  if (oldTop && !wasDefault && oldTop.get() != stack.getTopNode()) sayUnbound(stack, oldTop.get());
  if (!isNewWorld || (!wasDefault && stack.getTopNode() != stack.getDefaultNode())) return;
  const SoRef<VrmlViewpoint> start(first ? first.get() : boundViewpoint());
  if (!start) return;
  viewpointManager->jumpToViewpoint(start.get());
  currentViewpointName = start->description.getValue();
}

void VrmlSceneManager::viewpointBindingChangedCB(void* data, VrmlBindingNode* node, int isBound,
                                                 VrmlBindingNode* other) {
  static_cast<VrmlSceneManager*>(data)->viewpointBindingChanged(static_cast<VrmlViewpoint*>(node), isBound,
                                                                static_cast<VrmlViewpoint*>(other));
}

void VrmlSceneManager::viewpointBindingChanged(VrmlViewpoint* viewpoint, int isBound, VrmlViewpoint* other) {
  if (!isBound) {
    keepOffsets(viewpoint);
    return;
  }
  if (!other) viewpoint->setOffsets(SbVec3f(0, 0, 0), SbRotation::identity());
  const int jump = (other ? other : viewpoint)->jump.getValue();
  viewpointManager->updateSceneCamera(boundViewpoint(), jump, jump);
}

void VrmlSceneManager::keepOffsets(VrmlViewpoint* viewpoint) const {
  if (!sceneCamera) return;
  if (sceneCamera->isOfType(VrmlTransformedCamera::getClassTypeId()))
    viewpoint->setOffsets(sceneCamera->position.getValue() - viewpoint->position.getValue(),
                          sceneCamera->orientation.getValue() * viewpoint->orientation.getValue().inverse());
  else
    viewpoint->setOffsets(SbVec3f(0, 0, 0), SbRotation::identity());
}

// --- NavigationInfo and Background -------------------------------------------------------------------------

void VrmlSceneManager::navInfoBindingChangedCB(void* data, VrmlBindingNode* node, int isBound,
                                               VrmlBindingNode*) {
  const auto* manager = static_cast<const VrmlSceneManager*>(data);
  if (isBound && manager->navInfoChangedCB)
    manager->navInfoChangedCB(manager->navInfoChangedData, static_cast<VrmlNavigationInfo*>(node), nullptr);
}

void VrmlSceneManager::bgBindingChangedCB(void* data, VrmlBindingNode* node, int isBound, VrmlBindingNode*) {
  if (isBound) static_cast<VrmlSceneManager*>(data)->backgroundBound(node);
}

void VrmlSceneManager::backgroundBound(const VrmlBindingNode* node) {
  backgroundMoved = true;
  backgroundPath.reset(pathEndingAt(pathsOfUpdate ? *pathsOfUpdate : pathsToBindingNodes(root.get()), node));
}
