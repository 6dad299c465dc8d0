// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>
#include <tessel/events/VrmlNotifySensor.h>
#include <tessel/frame/BindingStack.h>
#include <tessel/toolkit/SoRef.h>

#include <cstdint>
#include <memory>
#include <vector>

#include <Inventor/SbString.h>
#include <Inventor/SoPath.h>
#include <Inventor/SoSceneManager.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/sensors/SoAlarmSensor.h>
#include <Inventor/sensors/SoFieldSensor.h>
#include <Inventor/sensors/SoOneShotSensor.h>

class SoField;
class SoGetMatrixAction;
class VrmlAnchor;
class VrmlNavigationInfo;
class VrmlPreTraverseAction;
class VrmlRenderAction;
class VrmlViewpoint;
class VrmlViewpointManager;
class VrmlVisibilityList;

/// Drives the frames of one world: watches the clock and the scene, keeps the binding stacks, and draws.
///
/// A host makes one per window, gives it the tree of VrmlDB::read (below a camera of the host's), sets a
/// render callback with SoSceneManager::setRenderCallback, and calls `render` there with its GL context
/// current. A redraw is asked for when something in the scene changed, never by the clock alone. Each manager
/// has a cache context of its own; managers whose GL contexts share objects may be given the same one through
/// getGLRenderAction()->setCacheContext. A manager is active from its construction.
class TESSEL_API VrmlSceneManager : public SoSceneManager {
public:
  /// An anchor reports the pointer: its URL, or an empty one when the pointer leaves.
  using AnchorHighlightCallback = void(const SbString& url, void* data, VrmlAnchor* anchor);
  /// An anchor asks to load a URL.
  using AnchorFetchCallback = void(const SbString& url, const SbString& parameter, void* data,
                                   VrmlAnchor* anchor);
  /// A field of a NavigationInfo changed, or, with a null field, one was bound.
  using NavigationInfoCallback = void(void* data, VrmlNavigationInfo* info, SoField* field);

  VrmlSceneManager();
  /// Gives up its world; no callback of the host is called any more.
  ~VrmlSceneManager() override;
  VrmlSceneManager(const VrmlSceneManager&) = delete;
  VrmlSceneManager& operator=(const VrmlSceneManager&) = delete;

  // The host's callbacks are called inside the notification that causes them.
  void setAnchorHighlightCallback(AnchorHighlightCallback* callback, void* data);
  void setAnchorFetchCallback(AnchorFetchCallback* callback, void* data);
  void setNavigationInfoChangedCallback(NavigationInfoCallback* callback, void* data);

  /// Takes a world, or none, which it references. The first binding nodes of the world are bound. The scene
  /// camera is dropped: set it again after this.
  void setSceneGraph(SoNode* sceneRoot) override;
  SoNode* getSceneGraph() const override { return root.get(); }
  void activate() override;
  void deactivate() override;
  /// Hands an event to the scene; TRUE if a node took it.
  SbBool processEvent(const SoEvent* event) override;

  /// Draws a frame into the current GL context.
  void render(SbBool clearWindow = TRUE, SbBool clearZbuffer = TRUE) override;
  /// The same by another action. One that is no VrmlRenderAction knows neither Background and Fog nor lights
  /// that shine on the whole world.
  void render(SoGLRenderAction* action, SbBool initMatrices = TRUE, SbBool clearWindow = TRUE,
              SbBool clearZbuffer = TRUE) override;
  /// Asks for a redraw at the manager's redraw priority, if it is active and has a render callback.
  void scheduleRedraw();
  /// Whether a redraw was asked for and is yet to come.
  bool isRedrawScheduled() const;

  /// Adds a stack for a type of binding node, with its default bound; does nothing if there is one for just
  /// this type. A stack for a derived type serves before one for its base.
  void addBindingStack(SoType type, BindingStack::BoundCallback* boundCallback, void* boundData,
                       BindingStack::SceneCallback* sceneCallback, void* sceneData);
  /// The stack for nodes of a type, null if there is none.
  BindingStack* getBindingStack(SoType type) const;
  /// The current node of a type, null if there is no stack for it.
  VrmlBindingNode* getCurrentBinding(SoType type) const;
  /// Makes a node the current one of its kind.
  void bindNode(VrmlBindingNode* node);
  /// Takes a node off its stack. The last one stays.
  void unbindNode(VrmlBindingNode* node);
  /// Brings the stacks in line with the scene, now rather than in the next frame.
  void updateBindingNodes();
  /// For hosts that bring many worlds for Inlines at once: while one lives, scenes are not looked through at each
  /// arrival, but once when the last one goes.
  class TESSEL_API Arrivals {
  public:
    Arrivals();
    ~Arrivals();
    Arrivals(const Arrivals&) = delete;
    Arrivals& operator=(const Arrivals&) = delete;
  };

  VrmlViewpointManager* getViewpointManager() const { return viewpointManager.get(); }
  /// Puts a host's own manager of viewpoints in place; null leaves the one that is there.
  void setViewpointManager(std::unique_ptr<VrmlViewpointManager> manager);
  /// Jumps to the viewpoint of that name in the file; an unknown name does nothing.
  void bindToNamedViewpoint(const char* name);
  /// The description of the viewpoint last jumped to by name or by the arrival of a world.
  const SbString& getCurrentViewpointName() const { return currentViewpointName; }

  /// The camera that the host moves; it is read when a viewpoint is unbound. Null for none.
  void setSceneCamera(SoCamera* camera) { sceneCamera.reset(camera); }
  SoCamera* getSceneCamera() const { return sceneCamera.get(); }
  /// Switches the sounds of the world off or on. Its lights go on shining.
  void setMute(int flag);
  int isMuted() const { return mute; }

  /// The manager whose render traversal is under way, null outside.
  static VrmlSceneManager* getActiveSceneManager() { return activeSceneManager; }
  /// The action of that traversal, null outside.
  SoGLRenderAction* getRunningAction() const { return runningAction; }
  /// To be called when a camera has been set up in GL: the active manager draws what belongs behind the scene
  /// and sets the lights.
  static void cameraPostRender(SoGLRenderAction* action);
  /// The callback of the sensors on the scene and on the default nodes; `data` is the manager.
  static void notifyHandlerCB(void* data, SoSensor* sensor);

private:
  void clearPlainly(bool clearColor, bool clearDepth) const;
  void traverseForFrame(SoGLRenderAction* action);
  void updateBackgroundRotation();
  void doPostCameraRenderStuff(SoGLRenderAction* action);
  void doBackground(SoGLRenderAction* action);
  void doFog(SoGLRenderAction* action);
  void preTraverse(std::uint32_t kidTypes, int silence);
  void checkSoundTraversal();
  bool viewpointMayMove() const;
  void checkViewpointMoved();
  void fieldChanged(SoField* field);
  void bindingFieldChanged(VrmlBindingNode* node, SoField* field);
  void structureChanged(SoNode* node);
  void worldArrived();
  void forgetArrivals();
  bool serveAnchor(VrmlAnchor* anchor) const;

  void updateStack(BindingStack& stack, const SoPathList& paths);
  void viewpointSceneChanged(const SoPathList& paths, int isNewWorld);
  void viewpointBindingChanged(VrmlViewpoint* viewpoint, int isBound, VrmlViewpoint* other);
  void keepOffsets(VrmlViewpoint* viewpoint) const;
  void backgroundBound(const VrmlBindingNode* node);
  VrmlViewpoint* boundViewpoint() const;

  static void redrawCB(void* data, SoSensor* sensor);
  static void moveCB(void* data, SoSensor* sensor);
  static void realTimeWatcherCB(void* data, SoSensor* sensor);
  static void clockCB(void* data, SoSensor* sensor);
  static void viewpointBindingChangedCB(void* data, VrmlBindingNode* node, int isBound,
                                        VrmlBindingNode* other);
  static void viewpointSceneChangedCB(void* data, SoPathList& paths, int newWorld);
  static void navInfoBindingChangedCB(void* data, VrmlBindingNode* node, int isBound, VrmlBindingNode* other);
  static void bgBindingChangedCB(void* data, VrmlBindingNode* node, int isBound, VrmlBindingNode* other);

  static VrmlSceneManager* activeSceneManager;

  SoGLRenderAction* runningAction = nullptr;
  tessel::SoRef<SoNode> root;
  std::unique_ptr<VrmlRenderAction> renderAction;
  std::unique_ptr<VrmlPreTraverseAction> preTraverseAction;
  std::unique_ptr<SoGetMatrixAction> getMatrixAction;
  std::unique_ptr<VrmlVisibilityList> visibilitySensors;
  std::unique_ptr<VrmlViewpointManager> viewpointManager;
  std::vector<std::unique_ptr<BindingStack>> bindingStacks;  // one for a derived type before one for its base
  const SoPathList* pathsOfUpdate = nullptr;                 // during updateBindingNodes
  tessel::SoRef<SoPath> backgroundPath;
  SbUniqueId viewpointChange = 0;   // when the Transforms above the bound viewpoint were last looked at
  SbUniqueId backgroundChange = 0;  // the same for the bound background
  tessel::SoRef<SoCamera> sceneCamera;
  SbString currentViewpointName;

  VrmlNotifySensor notifySensor;
  SoOneShotSensor redrawSensor;
  SoOneShotSensor moveSensor;
  SoFieldSensor realTimeWatcher;
  SoAlarmSensor clockSensor;

  AnchorHighlightCallback* anchorHighlightCB = nullptr;
  void* anchorHighlightData = nullptr;
  AnchorFetchCallback* anchorFetchCB = nullptr;
  void* anchorFetchData = nullptr;
  NavigationInfoCallback* navInfoChangedCB = nullptr;
  void* navInfoChangedData = nullptr;

  bool bindingsDirty = false;
  bool cameraDone = false;
  bool updateOnActivate = false;
  bool renderBackground = false;
  bool backgroundMoved = false;
  bool newWorld = false;
  int mute = 0;
};
