// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFVec3f.h>

/// Inline: another world in the place of the node. Until it has come, the box stands for it.
class TESSEL_API VrmlInline : public tessel::NodeClass<VrmlInline, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Inline";
  static std::span<const tessel::FieldSpec> fields();

  SoMFString url;        ///< exposedField, one empty string: alternatives, the best first
  SoSFVec3f bboxCenter;  ///< field, 0 0 0: centre of the box
  SoSFVec3f bboxSize;    ///< field, 0 0 0: size of the box; found out from the world if not given

  VrmlInline();
  bool holdsChildren() const override { return true; }

protected:
  ~VrmlInline() override;
};
