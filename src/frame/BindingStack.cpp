// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/BindingStack.h>

#include <algorithm>
#include <unordered_set>

#include <tessel/frame/VrmlBindingNode.h>
#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/toolkit/Scoped.h>

#include "frame/PathTail.h"

using tessel::SoRef;

BindingStack::BindingStack(SoType nodeType, VrmlSceneManager* manager, BoundCallback* boundCallback,
                           void* boundCallbackData, SceneCallback* sceneCallback, void* sceneCallbackData)
    : type(nodeType),
      boundCB(boundCallback),
      boundData(boundCallbackData),
      sceneCB(sceneCallback),
      sceneData(sceneCallbackData),
      defaultSensor(&VrmlSceneManager::notifyHandlerCB, manager) {}

BindingStack::~BindingStack() { clear(); }

VrmlBindingNode* BindingStack::getTopNode() const { return nodes.empty() ? nullptr : nodes.back().get(); }

void BindingStack::push(VrmlBindingNode* node) { nodes.emplace_back(node); }

void BindingStack::pop() {
  const SoRef<VrmlBindingNode> top = std::move(nodes.back());
  nodes.pop_back();
  if (top.get() == defaultNode.get()) clearDefault();
}

int BindingStack::remove(VrmlBindingNode* node) {
  const auto found = std::ranges::find(nodes, node, &SoRef<VrmlBindingNode>::get);
  if (found == nodes.end()) return 0;
  const SoRef<VrmlBindingNode> removed = std::move(*found);
  nodes.erase(found);
  if (removed.get() == defaultNode.get()) clearDefault();
  return 1;
}

void BindingStack::clear() {
  while (!nodes.empty()) pop();
  clearDefault();
}

void BindingStack::updateStack(const SoPathList& paths) {
  std::unordered_set<const SoNode*> present;
  for (int i = 0; i < paths.getLength(); ++i) present.insert(tessel::tailOf(paths[i]));
  std::vector<SoRef<VrmlBindingNode>> gone;  // released when the stack is whole again
  std::erase_if(nodes, [&](SoRef<VrmlBindingNode>& node) {
    if (node.get() == defaultNode.get() || present.contains(node.get())) return false;
    gone.push_back(node);
    return true;
  });
}

void BindingStack::addDefault() {
  clearDefault();
  if (!type.canCreateInstance()) return;
  defaultNode.reset(static_cast<VrmlBindingNode*>(type.createInstance()));
  push(defaultNode.get());
  {
    const tessel::NotifyOff off(*defaultNode);
    defaultNode->set_bind.setValue(TRUE);
  }
  defaultSensor.attach(defaultNode.get());
}

void BindingStack::clearDefault() {
  defaultSensor.detach();
  defaultNode.reset();
}

void BindingStack::tellBound(VrmlBindingNode* node, int isBound, VrmlBindingNode* other) const {
  if (boundCB) boundCB(boundData, node, isBound, other);
}

bool BindingStack::tellScene(SoPathList& paths, int newWorld) const {
  if (sceneCB) sceneCB(sceneData, paths, newWorld);
  return sceneCB != nullptr;
}
