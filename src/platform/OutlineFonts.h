// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <Inventor/SbVec2f.h>

namespace tessel {

/// A glyph as its font describes it, in the plane, at the size 1: straight pieces around its filled parts.
struct FontOutline {
  std::vector<SbVec2f> points;  ///< of all contours, one after the other; each closes with its first point
  std::vector<int> contours;    ///< how many of the points each contour has
  SbVec2f advance{0, 0};        ///< from this glyph's origin to that of the next one
};

/// An open font.
class OutlineFont {
public:
  virtual ~OutlineFont();
  /// Fills `outline` with the glyph of a UCS-2 code. False, with `outline` empty, if the font has none.
  virtual bool getUnicodeOutline(char16_t code, FontOutline& outline) = 0;
};

/// Where a platform keeps its outline fonts.
///
/// Everything runs on one thread. A font may outlive the object that opened it.
class OutlineFonts {
public:
  virtual ~OutlineFonts();

  /// Opens the fonts of this machine; null if there is no way to them.
  static std::shared_ptr<OutlineFonts> open();

  /// Opens the font of a name such as "Helvetica-Bold", or what stands in for it here. Null if there is not even that,
  /// which is warned of once.
  /// @param tolerance  how far the straight pieces may be from the curve, in sizes of the font  [> 0]
  virtual std::unique_ptr<OutlineFont> createFont(std::string_view name, float tolerance) = 0;
};

}  // namespace tessel
