// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

#include <Inventor/nodes/SoSeparator.h>

#include <tessel/events/VrmlNotifySensor.h>
#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/frame/VrmlTransformedCamera.h>
#include <tessel/frame/VrmlViewpoint.h>
#include <tessel/frame/VrmlViewpointManager.h>

#include "support/TestWorld.h"

namespace tessel::test {

/// A world in a scene manager below a camera, and what its host hears from the arrival of the world on.
class Stage {
public:
  explicit Stage(const char* text);
  ~Stage();

  struct CameraCall {
    int mode;
    SbVec3f origin;  ///< of the viewpoint's coordinates, in world space
    const VrmlViewpoint* viewpoint;
  };

  /// Hands the world over, or another tree below the same camera.
  void show(SoNode* tree);
  template <class T> T* get(const char* name) const { return world.get<T>(name); }
  /// Sends `set_bind` to the node of that name.
  void bind(const char* name, bool on = true) const { get<VrmlBindingNode>(name)->set_bind.setValue(on); }
  /// The name of the current node of a type, "-" if that is a nameless one such as the default.
  template <class T> std::string bound() const {
    return nameOf(manager.getCurrentBinding(T::getClassTypeId()));
  }
  /// What `isBound` has sent since the last call, as "A:1 B:0"; an event that repeats the last one is left
  /// out.
  std::string takeBindEvents();
  std::vector<CameraCall> takeCameraCalls() { return std::exchange(cameraCalls, {}); }
  static std::string nameOf(const SoNode* node);

  TestWorld world;
  SoRef<VrmlTransformedCamera> camera;
  SoRef<SoSeparator> root;
  VrmlSceneManager manager;

private:
  static void listen(void* data, SoSensor* sensor);

  std::vector<CameraCall> cameraCalls;
  std::vector<std::string> bindEvents;
  VrmlNotifySensor ear;
};

}  // namespace tessel::test
