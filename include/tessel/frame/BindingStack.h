// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>
#include <tessel/events/VrmlNotifySensor.h>
#include <tessel/toolkit/SoRef.h>

#include <vector>

#include <Inventor/SoType.h>
#include <Inventor/lists/SoPathList.h>

class VrmlBindingNode;
class VrmlSceneManager;

/// The binding nodes of one kind, the current one on top. The stack holds references on its nodes.
///
/// A default node, which is in no file, stands at the bottom, so that there is always a current node.
class TESSEL_API BindingStack {
public:
  /// Told of each bind (`isBound` 1) and unbind (0). `other` is the node that was unbound and thereby brought
  /// `node` up, null otherwise.
  using BoundCallback = void(void* data, VrmlBindingNode* node, int isBound, VrmlBindingNode* other);
  /// Brings the stack in line with a changed scene in place of the scene manager's own way. `paths` lead to
  /// all binding nodes of the scene, of every kind; `newWorld` is 1 at the first call for a world.
  using SceneCallback = void(void* data, SoPathList& paths, int newWorld);

  /// An empty stack without a default. Either callback may be null.
  BindingStack(SoType nodeType, VrmlSceneManager* manager, BoundCallback* boundCallback,
               void* boundCallbackData, SceneCallback* sceneCallback, void* sceneCallbackData);
  ~BindingStack();
  BindingStack(const BindingStack&) = delete;
  BindingStack& operator=(const BindingStack&) = delete;

  SoType getType() const { return type; }
  /// The current node, null if the stack is empty.
  VrmlBindingNode* getTopNode() const;
  /// The stack's own default, null if it has none.
  VrmlBindingNode* getDefaultNode() const { return defaultNode.get(); }
  int getNumNodes() const { return static_cast<int>(nodes.size()); }

  void push(VrmlBindingNode* node);
  /// Releases the top.
  void pop();
  /// Releases a node wherever it stands; 0 if it is not in the stack.
  int remove(VrmlBindingNode* node);
  void clear();
  /// Removes every node but the default at which none of the paths ends.
  void updateStack(const SoPathList& paths);

  /// Makes a default node and pushes it. The scene manager hears what happens to it, as it does of the scene.
  void addDefault();
  void clearDefault();

  /// Calls the bound callback if there is one.
  void tellBound(VrmlBindingNode* node, int isBound, VrmlBindingNode* other) const;
  /// Calls the scene callback; false if there is none.
  bool tellScene(SoPathList& paths, int newWorld) const;

private:
  SoType type;
  BoundCallback* boundCB;
  void* boundData;
  SceneCallback* sceneCB;
  void* sceneData;
  std::vector<tessel::SoRef<VrmlBindingNode>> nodes;  // the top at the back
  tessel::SoRef<VrmlBindingNode> defaultNode;
  VrmlNotifySensor defaultSensor;
};
