// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlGroup.h>

#include <Inventor/fields/SoSFColor.h>
#include <Inventor/fields/SoSFEnum.h>

/// LocateHighlight: a group whose children are drawn in a highlight colour while the pointer is over them.
class TESSEL_API VrmlLocateHighlight : public tessel::NodeClass<VrmlLocateHighlight, VrmlGroup> {
public:
  static constexpr const char* fileFormatName = "LocateHighlight";
  static std::span<const tessel::FieldSpec> fields();

  SoSFEnum mode;    ///< field, AUTO: when to highlight
  SoSFEnum style;   ///< field, EMISSIVE: which colours of the children to replace
  SoSFColor color;  ///< field, 0.3 0.3 0.3: the highlight colour

  enum Modes { AUTO = 0, ON = 1, OFF = 2 };
  enum Styles { EMISSIVE = 0, EMISSIVE_DIFFUSE = 1 };

  VrmlLocateHighlight();

protected:
  ~VrmlLocateHighlight() override;
};
