// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlBaseGroup.h>
#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlMFNode.h>

#include <Inventor/fields/SoSFVec3f.h>

class SbXfBox3f;
class SoSensor;

/// A group with a bounding box, view-frustum culling, display-list caches, and children that events change.
class TESSEL_API VrmlCullingGroup : public tessel::NodeClass<VrmlCullingGroup, VrmlBaseGroup> {
public:
  static constexpr const char* fileFormatName = "CullingGroup";
  static std::span<const tessel::FieldSpec> fields();

  VrmlMFChildren children;    ///< exposedField: the group's child list
  VrmlMFNode addChildren;     ///< eventIn: nodes to add that are not there yet; takes effect after the event
  VrmlMFNode removeChildren;  ///< eventIn: nodes to remove; after all additions
  SoSFVec3f bboxCenter;       ///< field: centre of the declared box, 0 0 0
  SoSFVec3f bboxSize;         ///< field: size of the declared box; -1 -1 -1: computed from the children

  static void initClass();

  /// How many display lists a group may keep, 2; groups that are drawn or measured for the first time from now on take
  /// a new number.
  static void setNumRenderCaches(int number);
  static int getNumRenderCaches();
  /// While 0 the events `addChildren` and `removeChildren` are swallowed; 1 at the start.
  static int doChildEvents;

  /// Whether the group's box lies outside the view volume of the state.
  virtual bool cullTest(SoGLRenderAction* action);
  virtual void reallyRenderBelowPath(SoGLRenderAction* action);
  /// Sees to a box of the group's own space, from the declared box or by a traversal.
  virtual void updateBoundingBox(SoAction* action);

  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void GLRenderBelowPath(SoGLRenderAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;
  void notify(SoNotList* list) override;

protected:
  VrmlCullingGroup();
  explicit VrmlCullingGroup(int expectedChildren);
  ~VrmlCullingGroup() override;

  void childrenChanged() override;

private:
  void init();
  bool hasDeclaredBox() const;
  void serviceAddChildren();
  void serviceRemoveChildren();
  static void scheduleSensor(VrmlCullingGroup* group);
  static void childSensorCB(void* data, SoSensor* sensor);

  struct Caches;
  Caches& caches();
  void extendByAllChildren(SoGetBoundingBoxAction* action);

  std::unique_ptr<Caches> allCaches;  // made when they are first needed
  bool wasCulled = false;
};
