// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/core/VrmlSFNode.h>

#include <memory>

namespace tessel {
class SyncedChildren;
}

/// How the geometry of a Shape looks. It acts only inside one, and what it sets stays for the geometry.
class TESSEL_API VrmlAppearance : public tessel::NodeClass<VrmlAppearance, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Appearance";
  static std::span<const tessel::FieldSpec> fields();

  static void initClass();

  VrmlSFNode material;          ///< exposedField: a Material; NULL: unlit
  VrmlSFNode texture;           ///< exposedField: a texture; NULL
  VrmlSFNode textureTransform;  ///< exposedField: a TextureTransform; NULL

  VrmlAppearance();

  /// Brings the children (material, texture, texture transform) in line with the fields, if they are not. It
  /// happens by itself at the end of a notification. A node of the wrong type is replaced by NULL.
  void syncChildListToSFNodeFields();
  SoChildList* getChildren() const override;

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;
  void pick(SoPickAction* action) override;
  void search(SoSearchAction* action) override;

  void notify(SoNotList* list) override;
  void notifyContainerOnly(const SoField* field) override;
  bool readBody(tessel::WorldReader& reader) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  ~VrmlAppearance() override;

private:
  std::unique_ptr<tessel::SyncedChildren> children;
};
