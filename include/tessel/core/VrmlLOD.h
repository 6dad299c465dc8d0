// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlBaseGroup.h>
#include <tessel/core/VrmlMFChildren.h>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoSFVec3f.h>

/// LOD: a group of which one child is there, the coarser the farther away the viewer is.
class TESSEL_API VrmlLOD : public tessel::NodeClass<VrmlLOD, VrmlBaseGroup> {
public:
  static constexpr const char* fileFormatName = "LOD";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f center;      ///< field, 0 0 0: the point whose distance from the viewer decides
  SoMFFloat range;       ///< field, empty: the distances where one level gives way to the next, ascending
  VrmlMFChildren level;  ///< exposedField: the group's child list, the finest level first

  VrmlLOD();
  explicit VrmlLOD(int expectedChildren);

  void doAction(SoAction* action) override;
  void callback(SoCallbackAction* action) override;
  void GLRenderBelowPath(SoGLRenderAction* action) override;

protected:
  ~VrmlLOD() override;
  void childrenChanged() override;

private:
  void init();
};
