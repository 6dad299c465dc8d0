// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/elements/SoLazyElement.h>
#include <Inventor/fields/SoMFColor.h>

/// The colors of a geometry, in place of its material's diffuse color.
class TESSEL_API VrmlColor : public tessel::NodeClass<VrmlColor, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Color";
  static std::span<const tessel::FieldSpec> fields();

  SoMFColor color;  ///< exposedField: red, green and blue, each from 0 to 1; one of 0.8 0.8 0.8

  VrmlColor();

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;

protected:
  ~VrmlColor() override;

private:
  SoColorPacker colorPacker;
};
