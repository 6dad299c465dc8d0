// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlSFNode.h>
#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFFloat.h>

/// Text: lines of flat, filled characters in the plane z = 0.
class TESSEL_API VrmlText : public tessel::NodeClass<VrmlText, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Text";
  static std::span<const tessel::FieldSpec> fields();

  VrmlSFNode fontStyle;  ///< exposedField, null: a FontStyle; null: the defaults of one
  SoMFString string;     ///< exposedField, one empty string: the lines, in UTF-8
  SoSFFloat maxExtent;   ///< field, 0: longer lines are compressed to this; 0: never
  SoMFFloat length;      ///< field, one 0: each line is stretched to its length; 0: as it is

  VrmlText();

  int getContainerFlags() const override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;

protected:
  ~VrmlText() override;
};
