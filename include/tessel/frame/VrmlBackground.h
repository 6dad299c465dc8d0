// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/frame/VrmlBindingNode.h>

#include <Inventor/SbMatrix.h>
#include <Inventor/fields/SoMFColor.h>
#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFString.h>

class SoGLRenderAction;

/// Background: sky and ground behind everything, in bands of colour and with images on a cube.
///
/// It is not drawn where it stands: the scene manager has the bound one drawn when the camera is set, in the
/// place of clearing the window.
class TESSEL_API VrmlBackground : public tessel::NodeClass<VrmlBackground, VrmlBindingNode> {
public:
  static constexpr const char* fileFormatName = "Background";
  static std::span<const tessel::FieldSpec> fields();

  SoMFFloat groundAngle;  ///< exposedField, empty: radians from straight down, of all colours but the first
  SoMFColor groundColor;  ///< exposedField, empty: the first straight down
  SoMFString backUrl;     ///< exposedField, one empty string, like the other five: alternatives of an image
  SoMFString bottomUrl;
  SoMFString frontUrl;
  SoMFString leftUrl;
  SoMFString rightUrl;
  SoMFString topUrl;
  SoMFFloat skyAngle;  ///< exposedField, empty: radians from straight up, of all colours but the first
  SoMFColor skyColor;  ///< exposedField, 0 0 0: the first straight up

  /// A host's switch, 1 at the start: with 0 no background is drawn, whatever is bound.
  static int enabled;

  VrmlBackground();

  /// Draws the background around the eye. The window's colours and depths are the background's afterwards.
  void drawIt(SoGLRenderAction* action);
  /// The rotation that the node's place in the scene gives.
  void setRotationMatrix(const SbMatrix& matrix) { rotationMatrix = matrix; }
  const SbMatrix& getRotationMatrix() const { return rotationMatrix; }

protected:
  ~VrmlBackground() override;

private:
  SbMatrix rotationMatrix = SbMatrix::identity();
};
