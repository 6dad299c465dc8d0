// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/frame/VrmlBindingNode.h>

#include <Inventor/fields/SoSFColor.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFString.h>

class SoState;

/// Fog: colour mixed in with the distance from the viewer.
class TESSEL_API VrmlFog : public tessel::NodeClass<VrmlFog, VrmlBindingNode> {
public:
  static constexpr const char* fileFormatName = "Fog";
  static std::span<const tessel::FieldSpec> fields();

  SoSFColor color;            ///< exposedField, 1 1 1
  SoSFString fogType;         ///< exposedField, "LINEAR", or "EXPONENTIAL"
  SoSFFloat visibilityRange;  ///< exposedField, 0: metres to where all is fog; 0 for no fog

  /// A host's switch, 1 at the start: with 0 there is no fog, whatever is bound.
  static int enabled;

  VrmlFog();

  /// Sets GL's fog for what is drawn from now on.
  void drawIt(SoState* state);

  enum class Kind { none, linear, exponential };
  /// What the fields ask for: no fog with a range of 0 or an unknown type.
  Kind getKind() const;
  /// The density of exponential fog.
  float computeDensity() const;

  void notify(SoNotList* list) override;

protected:
  ~VrmlFog() override;
};
