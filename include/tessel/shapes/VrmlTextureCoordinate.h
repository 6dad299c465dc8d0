// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoMFVec2f.h>

/// The texture coordinates of a geometry.
class TESSEL_API VrmlTextureCoordinate : public tessel::NodeClass<VrmlTextureCoordinate, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "TextureCoordinate";
  static std::span<const tessel::FieldSpec> fields();

  SoMFVec2f point;  ///< exposedField: (s, t) pairs; empty

  static void initClass();

  VrmlTextureCoordinate();

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void pick(SoPickAction* action) override;

protected:
  ~VrmlTextureCoordinate() override;
};
