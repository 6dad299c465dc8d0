// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/core/VrmlSFNode.h>

#include <memory>

namespace tessel {
class RenderCache;
class SyncedChildren;
}  // namespace tessel

/// Joins an appearance to a geometry: the only place from which a geometry draws, is picked or has a box.
class TESSEL_API VrmlShape : public tessel::NodeClass<VrmlShape, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Shape";
  static std::span<const tessel::FieldSpec> fields();

  VrmlSFNode appearance;  ///< exposedField: an Appearance; NULL: drawn unlit
  VrmlSFNode geometry;    ///< exposedField: a geometry; NULL

  static void initClass();

  VrmlShape();

  /// Brings the children (appearance, geometry) in line with the fields, if they are not. It happens by
  /// itself at the end of a notification. A node of the wrong type is replaced by NULL.
  void syncChildListToSFNodeFields();
  SoChildList* getChildren() const override;

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;
  void pick(SoPickAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void search(SoSearchAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;

  void notify(SoNotList* list) override;
  void notifyContainerOnly(const SoField* field) override;
  bool readBody(tessel::WorldReader& reader) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  ~VrmlShape() override;

private:
  void renderChildren(SoGLRenderAction* action);

  std::unique_ptr<tessel::SyncedChildren> children;
  std::unique_ptr<tessel::RenderCache> cache;  // made when the shape is first drawn
  bool isTransparent = false;                  // what the last draw found
};
