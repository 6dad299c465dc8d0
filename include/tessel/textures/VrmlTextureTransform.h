// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFVec2f.h>

/// TextureTransform: moves the texture coordinates: first scaled, then turned about the centre, then moved.
class TESSEL_API VrmlTextureTransform : public tessel::NodeClass<VrmlTextureTransform, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "TextureTransform";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec2f translation;  ///< exposedField, 0 0
  SoSFFloat rotation;     ///< exposedField, 0: in radians
  SoSFVec2f scale;        ///< exposedField, 1 1
  SoSFVec2f center;       ///< exposedField, 0 0: fixed by scale and rotation

  static void initClass();

  VrmlTextureTransform();

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void pick(SoPickAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;

protected:
  ~VrmlTextureTransform() override;
};
