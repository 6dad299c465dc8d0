// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include <Inventor/SbBox3f.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoSeparator.h>
#include <tessel/frame/VrmlNavigationInfo.h>
#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/frame/VrmlTransformedCamera.h>
#include <tessel/frame/VrmlViewpointManager.h>
#include <tessel/toolkit/SoRef.h>

#include "DepthRange.h"
#include "Navigation.h"

namespace tessel::host {

/// A world on show: it stands under a camera and a headlight in a scene manager, and the camera follows the
/// bound Viewpoint. Draws into the GL context that is current.
class Stage {
public:
  Stage(int width, int height);
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  /// Replaces the world. The viewer then stands at its first Viewpoint, or at 0 0 10.
  void setWorld(SoNode* world);
  void resize(int width, int height);
  /// Called when the picture is out of date.
  void onChange(std::function<void()> callback) { changed = std::move(callback); }

  /// Draws a frame.
  void draw();
  /// In the place of `draw` where there is no GL: bindings and camera follow the world.
  void skipDrawing();

  /// Jumps to a Viewpoint: an exact DEF name, else a description, or `#N` counting from 1 in file order;
  /// `all` frames the whole world. False if there is none such.
  bool showViewpoint(std::string_view wanted);
  /// Jumps to the next Viewpoint with a description, or the one before.
  void showNextViewpoint() { jumpTo(manager->getViewpointManager()->getNextViewpoint()); }
  void showPreviousViewpoint() { jumpTo(manager->getViewpointManager()->getPrevViewpoint()); }
  /// The number of the bound Viewpoint as `showViewpoint` counts, 0 if it isn't in the file.
  int currentViewpoint() const;

  /// Where the viewer stands, in the frame of the bound Viewpoint.
  Pose pose() const;
  void setPose(const Pose& pose);
  /// The centre of the world, in the same frame; the origin if there is nothing to see.
  SbVec3f pivot();
  /// Sets what navigation must know of the world as it is now, less its pivot.
  void describeTo(Navigation& navigation);
  const VrmlNavigationInfo& navigationInfo() const;

  bool headlightAllowed = true;  ///< whether the headlight shines when the world asks for it

private:
  static void cameraCB(void* self, const SbMatrix& matrix, int mode, VrmlViewpoint* viewpoint);
  static void redrawCB(void* self, SoSceneManager* manager);
  void moveCamera(const SbMatrix& matrix, int mode, const VrmlViewpoint& viewpoint);
  void jumpTo(VrmlViewpoint* viewpoint);
  void frameAll();
  int viewpointsInFile() const;
  void followBindings();
  const SbBox3f& worldBox();
  SbBox3f boxInCameraSpace();
  /// How long a unit of the bound Viewpoint's frame is in world space.
  float frameScale() const;

  SoRef<VrmlTransformedCamera> camera;
  SoRef<SoDirectionalLight> headlight;
  SoRef<SoNode> world;
  std::unique_ptr<VrmlSceneManager> manager;
  std::function<void()> changed;

  // Of the bound Viewpoint when the camera was last brought in line with it.
  SbVec3f lastPosition{0, 0, 10};
  SbRotation lastOrientation = SbRotation::identity();

  SbBox3f box;
  SbUniqueId boxId = 0;  // the world's node id when `box` was computed
};

}  // namespace tessel::host
