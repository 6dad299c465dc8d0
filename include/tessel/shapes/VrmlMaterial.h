// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/SbColor.h>
#include <Inventor/elements/SoLazyElement.h>
#include <Inventor/fields/SoSFColor.h>
#include <Inventor/fields/SoSFFloat.h>

/// Colors of a surface in light. A material that only emits is drawn without lighting. It acts only inside
/// an Appearance. All values lie between 0 and 1.
class TESSEL_API VrmlMaterial : public tessel::NodeClass<VrmlMaterial, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Material";
  static std::span<const tessel::FieldSpec> fields();

  static void initClass();

  SoSFFloat ambientIntensity;  ///< exposedField: share of `diffuseColor` that ambient light shows, 0.2
  SoSFColor diffuseColor;      ///< exposedField: color in direct light, 0.8 0.8 0.8
  SoSFColor specularColor;     ///< exposedField: color of highlights, 0 0 0
  SoSFColor emissiveColor;     ///< exposedField: color that needs no light, 0 0 0
  SoSFFloat shininess;         ///< exposedField: sharpness of highlights, 0.2
  SoSFFloat transparency;      ///< exposedField: 0 opaque, 1 invisible, 0

  VrmlMaterial();

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;

protected:
  ~VrmlMaterial() override;

private:
  SoColorPacker colorPacker;
  float transparencyInState = 0;  // the state keeps a pointer to it
  bool emissiveOnly = false;
};
