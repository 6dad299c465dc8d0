// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFString.h>

/// WorldInfo: title and remarks of a world; it does nothing.
class TESSEL_API VrmlWorldInfo : public tessel::NodeClass<VrmlWorldInfo, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "WorldInfo";
  static std::span<const tessel::FieldSpec> fields();

  SoSFString title;  ///< field, empty
  SoMFString info;   ///< field, one empty string

  VrmlWorldInfo();
  int isSpatial() const override { return 0; }

protected:
  ~VrmlWorldInfo() override;
};
