// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoMFVec3f.h>

/// The normals of a geometry.
class TESSEL_API VrmlNormal : public tessel::NodeClass<VrmlNormal, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Normal";
  static std::span<const tessel::FieldSpec> fields();

  SoMFVec3f vector;  ///< exposedField: unit vectors in object space; empty

  static void initClass();

  VrmlNormal();

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void pick(SoPickAction* action) override;

protected:
  ~VrmlNormal() override;
};
