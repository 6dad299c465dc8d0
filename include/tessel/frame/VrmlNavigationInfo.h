// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/frame/VrmlBindingNode.h>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFFloat.h>

/// NavigationInfo: what a host's navigation goes by; no behaviour of its own.
class TESSEL_API VrmlNavigationInfo : public tessel::NodeClass<VrmlNavigationInfo, VrmlBindingNode> {
public:
  static constexpr const char* fileFormatName = "NavigationInfo";
  static std::span<const tessel::FieldSpec> fields();

  SoMFFloat avatarSize;       ///< exposedField, 0.25 1.6 0.75: radius, eye height, height of a step; metres
  SoSFBool headlight;         ///< exposedField, TRUE
  SoSFFloat speed;            ///< exposedField, 1: metres a second
  SoMFString type;            ///< exposedField, "WALK": kinds of navigation, the best first
  SoSFFloat visibilityLimit;  ///< exposedField, 0: how far the viewer sees, in metres; 0 without limit

  VrmlNavigationInfo();
  int isSpatial() const override { return 0; }

protected:
  ~VrmlNavigationInfo() override;
};
