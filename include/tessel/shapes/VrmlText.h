// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlSFNode.h>
#include <tessel/shapes/VrmlGeometry.h>

#include <memory>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFFloat.h>

namespace tessel {
struct TextDrawing;
}

/// Text: lines of flat, filled characters in the plane z = 0.
///
/// Each character has its own texture coordinates: (0, 0) at its origin, 1 for the size of the font. A text without a
/// FontStyle has the toolkit's size of fonts (SoFontSizeElement). A string that is no UTF-8 stays empty, and so do all behind it.
class TESSEL_API VrmlText : public tessel::NodeClass<VrmlText, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Text";
  static std::span<const tessel::FieldSpec> fields();

  VrmlSFNode fontStyle;  ///< exposedField, null: a FontStyle; null: its defaults, but the toolkit's size
  SoMFString string;     ///< exposedField, one empty string: the lines, in UTF-8
  SoSFFloat maxExtent;   ///< field, 0: longer lines are compressed to this; 0: never
  SoMFFloat length;      ///< field, one 0: each line is stretched to its length; 0: as it is

  VrmlText();

  int getContainerFlags() const override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;
  /// A SoTextDetail with the numbers of the string and of the character in it.
  SoDetail* createTriangleDetail(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                 const SoPrimitiveVertex* v2, const SoPrimitiveVertex* v3,
                                 SoPickedPoint* point) override;

  bool readBody(tessel::WorldReader& reader) override;
  void notify(SoNotList* list) override;
  void GLRender(SoGLRenderAction* action) override;
  /// Counts the points of the outlines, as the last look at the text found them; 0 before the first.
  void count(VrmlCountAction* action) override;

protected:
  ~VrmlText() override;

private:
  bool setupFontCache(SoAction* action);
  bool prepare(SoGLRenderAction* action);
  void draw(SoGLRenderAction* action);

  std::unique_ptr<tessel::TextDrawing> drawing;
};
