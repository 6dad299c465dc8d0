// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>
#include <tessel/toolkit/SoRef.h>

#include <memory>
#include <unordered_set>
#include <vector>

#include <Inventor/SbMatrix.h>

class SoGetMatrixAction;
class VrmlSceneManager;
class VrmlViewpoint;

/// The viewpoints of a world, and the host's way to move from one to the other.
///
/// The list holds all viewpoints of the scene in the order of the file, then the default; it is made anew
/// when the scene changes. A host may derive from this class and give the scene manager one of its own.
class TESSEL_API VrmlViewpointManager {
public:
  /// What a call of the host's camera callback means.
  enum Mode {
    keepPlace = 0,  ///< bound without a jump: the viewer stays where it is, in the new frame
    jumpThere = 1,  ///< bound with a jump
    moved = 2,      ///< the bound viewpoint, or a Transform above it, moved
  };
  /// `matrix` takes the viewpoint's coordinates to world space. Called within the notification that causes
  /// it, or at its end.
  using CameraCallback = void(void* data, const SbMatrix& matrix, int mode, VrmlViewpoint* viewpoint);

  VrmlViewpointManager();
  virtual ~VrmlViewpointManager();
  VrmlViewpointManager(const VrmlViewpointManager&) = delete;
  VrmlViewpointManager& operator=(const VrmlViewpointManager&) = delete;

  void setSceneManager(VrmlSceneManager* manager) { sceneManager = manager; }
  void setCameraCallback(CameraCallback* callback, void* data);

  /// Appends a viewpoint unless it is on the list, which holds a reference.
  void addViewpoint(VrmlViewpoint* viewpoint);
  /// Takes a viewpoint off the list and its path away.
  void removeViewpoint(VrmlViewpoint* viewpoint);
  void clearViewpoints();
  int getNumViewpoints() const { return static_cast<int>(viewpoints.size()); }
  /// An entry of the list, null out of range.
  VrmlViewpoint* getViewpoint(int index) const;

  /// The bound viewpoint.
  VrmlViewpoint* getCurrViewpoint() const;
  /// The next viewpoint with a description behind the bound one, round the list; the bound one if there is
  /// none.
  virtual VrmlViewpoint* getNextViewpoint();
  virtual VrmlViewpoint* getPrevViewpoint();
  /// The first viewpoint with that name in the file, exactly, or else less its instance suffix; null if none.
  virtual VrmlViewpoint* getNamedViewpoint(const char* name) const;
  /// Binds a viewpoint and moves the viewer there, whatever its `jump` says. 0 if it is not on the list.
  virtual int jumpToViewpoint(VrmlViewpoint* viewpoint);

  /// Finds the index of a viewpoint, which becomes the current one; -1 if it is not on the list.
  void checkCurrViewpoint(VrmlViewpoint* viewpoint);
  int getCurrentIndex() const { return currentIndex; }
  /// Works out the matrix of a viewpoint and calls the host: with mode `jumpThere` if `jump` is set, else
  /// with `moved` if `changeOfBinding` is set, else with `keepPlace`.
  virtual void updateSceneCamera(VrmlViewpoint* viewpoint, int changeOfBinding, int jump);
  /// Works out the matrix of a viewpoint and tells nobody; the identity for none.
  void takeMatrix(const VrmlViewpoint* viewpoint);
  /// The matrix of the current viewpoint to world space.
  const SbMatrix& getMatrix() const { return matrix; }

private:
  int indexOf(const VrmlViewpoint* viewpoint) const;
  VrmlViewpoint* described(int direction);

  std::vector<tessel::SoRef<VrmlViewpoint>> viewpoints;
  std::unordered_set<const VrmlViewpoint*> listed;
  int currentIndex = -1;
  SbMatrix matrix = SbMatrix::identity();
  std::unique_ptr<SoGetMatrixAction> getMatrixAction;
  CameraCallback* cameraCB = nullptr;
  void* cameraData = nullptr;
  VrmlSceneManager* sceneManager = nullptr;
};
