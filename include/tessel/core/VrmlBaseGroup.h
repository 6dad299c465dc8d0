// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/SoRef.h>

#include <span>
#include <vector>

#include <Inventor/SbViewVolume.h>
#include <Inventor/misc/SoChildList.h>

class SoPath;

/// Base of everything that has children: the child list, the two orders of traversal, and the grab that a
/// group holds in the name of the sibling sensors in it.
class TESSEL_API VrmlBaseGroup : public tessel::NodeClass<VrmlBaseGroup, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "BaseGroup";
  static std::span<const tessel::FieldSpec> fields();

  // Without a child or with a negative index these change nothing.

  /// Appends a child; the group holds it.
  virtual void addChild(VrmlNode* child);
  /// Inserts a child, or appends it if `index` is not below the count.
  virtual void insertChild(VrmlNode* child, int index);
  virtual SoNode* getChild(int index) const;
  /// The index of a child by identity, -1 if it is not there.
  virtual int findChild(const VrmlNode* child) const;
  virtual int getNumChildren() const;
  virtual void removeChild(int index);
  virtual void removeAllChildren();
  virtual void replaceChild(int index, VrmlNode* child);
  virtual void replaceChild(VrmlNode* oldChild, VrmlNode* newChild);
  /// Whether a sensor among the children is enabled.
  virtual int hasEnabledGeometricSensors() const;

  SoChildList* getChildren() const override;
  bool holdsChildren() const override { return true; }
  std::uint32_t getKidType() override;

  /// The order in which children are drawn: those that act on their siblings first.
  const std::vector<int>& getRenderOrder() const;
  /// The order in which children get events: sensors last.
  const std::vector<int>& getEventOrder() const;

  void doAction(SoAction* action) override;
  void callback(SoCallbackAction* action) override;
  void pick(SoPickAction* action) override;
  void search(SoSearchAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void handleEvent(SoHandleEventAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void GLRenderBelowPath(SoGLRenderAction* action) override;
  void GLRenderInPath(SoGLRenderAction* action) override;
  void GLRenderOffPath(SoGLRenderAction* action) override;
  void grabEventsSetup() override;
  void grabEventsCleanup() override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;
  void doPreTraverse(VrmlPreTraverseAction* action) override;
  void notify(SoNotList* list) override;
  bool readBody(tessel::WorldReader& reader) override;
  SoNode* addToCopyDict() const override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

  /// How many levels of nodes events may build; what would be deeper is left out with a warning.
  static int maxLevels;

  /// What an event may make a child: a VrmlNode under which this group does not stand. Null for anything else; a node
  /// that would make the group its own descendant, or the world deeper than `maxLevels`, is warned of.
  VrmlNode* acceptableChild(SoNode* node);

  /// The children are as a change behind the group's back left them: find the orders anew.
  void recalcTraverseOrder();
  /// A sensor in the group holds a grab from now on; it stays alive until it lets go or leaves the group.
  void incrementGrabs(VrmlNode* sensor);
  void decrementGrabs(VrmlNode* sensor);

protected:
  VrmlBaseGroup();
  /// A group that expects so many children.
  explicit VrmlBaseGroup(int expectedChildren);
  ~VrmlBaseGroup() override;

  std::unique_ptr<SoChildList> childList;

  /// The part of the order of rendering that does not act on siblings, or that does.
  std::span<const int> getRenderOrder(bool actsOnSiblings) const;
  /// Draws the children with these indices.
  void renderChildren(SoGLRenderAction* action, std::span<const int> which);
  /// Extends the action's box by those of the children with these indices. Adds up their centers instead of
  /// leaving one set, and gives the number of those that had one.
  int extendByChildren(SoGetBoundingBoxAction* action, std::span<const int> which, SbVec3f& sumOfCenters);

  /// Reports a change of the child list, which was made in silence: through the `children` field where a
  /// class has one.
  virtual void childrenChanged();

private:
  struct Orders;
  const Orders& orders() const;
  bool isMisplaced(const SoBase* child) const;
  void structureChanged(const SoNotList& list);
  template <class Change> void changeChildren(Change change);
  void sinkTo(int newLevel);
  void dispatchToChildren(SoHandleEventAction* action);
  void dispatchToGrabbingSensors(SoHandleEventAction* action);
  void dropLostGrabs();

  mutable std::unique_ptr<Orders> computedOrders;
  int sensorHandled = 0;
  int level = 1;                               // at which it was read or put, at least, the root's being 1
  std::vector<tessel::SoRef<VrmlNode>> grabs;  // the sensors that hold one
  bool grabbing = false;
  bool dispatchingGrab = false;
  tessel::SoRef<SoPath> grabPath;
  SbViewVolume grabViewVolume;
};
