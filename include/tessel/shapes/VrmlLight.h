// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/SbVec3f.h>
#include <Inventor/SbVec4f.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFColor.h>
#include <Inventor/fields/SoSFFloat.h>

/// Base of the lights. One for which GL has no number left does not shine.
class TESSEL_API VrmlLight : public tessel::NodeClass<VrmlLight, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Light";
  static std::span<const tessel::FieldSpec> fields();

  static void initClass();

  SoSFBool on;                 ///< exposedField: whether it shines, TRUE
  SoSFFloat intensity;         ///< exposedField: factor of all light, 1
  SoSFColor color;             ///< exposedField: 1 1 1
  SoSFFloat ambientIntensity;  ///< exposedField: share of `intensity` that is ambient, 0

  /// A light that shines on the whole world is drawn once a frame, after the camera, and not where it stands.
  void setRenderEnabled(int enabled) { renderEnabled = enabled != 0; }

  void GLRender(SoGLRenderAction* action) override;
  void GLRenderOffPath(SoGLRenderAction* action) override;

protected:
  VrmlLight();
  ~VrmlLight() override;

  /// Tells GL where a light stands and how it spreads: everything but its colors.
  virtual void sendSource(unsigned light) const = 0;

  /// The angle of GL for a light that shines in all directions.
  static constexpr float noCutoff = 180;
  /// Sends position (or, with w 0, direction) and spot values in GL's terms.
  static void sendPlace(unsigned light, const SbVec4f& place, float spotExponent = 0,
                        float spotCutoff = noCutoff);
  static void sendAttenuation(unsigned light, const SbVec3f& attenuation);

private:
  bool renderEnabled = true;
};
