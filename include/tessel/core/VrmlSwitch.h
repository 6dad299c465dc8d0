// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlBaseGroup.h>
#include <tessel/core/VrmlMFChildren.h>

#include <Inventor/fields/SoSFInt32.h>

/// Switch: a group of which one child is there, or none. The others still collide.
class TESSEL_API VrmlSwitch : public tessel::NodeClass<VrmlSwitch, VrmlBaseGroup> {
public:
  static constexpr const char* fileFormatName = "Switch";
  static std::span<const tessel::FieldSpec> fields();

  SoSFInt32 whichChoice;  ///< exposedField, -1: index of the child to traverse; -1: none
  VrmlMFChildren choice;  ///< exposedField: the group's child list

  VrmlSwitch();
  explicit VrmlSwitch(int expectedChildren);

  /// Whether `callback` goes to all children whatever `whichChoice` says; 0 at the start.
  static int traverseAllForCallback;

  /// Traverses the chosen child. On a path `matchIndex` is the index in the path, which must be the choice or
  /// the only hint there is; -1 off a path.
  void doChild(SoAction* action, int matchIndex);

  void doAction(SoAction* action) override;
  void callback(SoCallbackAction* action) override;
  void pick(SoPickAction* action) override;
  void search(SoSearchAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void handleEvent(SoHandleEventAction* action) override;
  void doPreTraverse(VrmlPreTraverseAction* action) override;
  void GLRenderBelowPath(SoGLRenderAction* action) override;
  void GLRenderInPath(SoGLRenderAction* action) override;

protected:
  ~VrmlSwitch() override;
  void childrenChanged() override;

private:
  void init();
};
