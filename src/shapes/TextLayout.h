// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <Inventor/SbBox2f.h>
#include <Inventor/SbVec2f.h>

#include "shapes/VrmlOutlineFontCache.h"

class VrmlFontStyle;

namespace tessel {

/// Where each character of a text stands.
///
/// The characters of a string stand along x if the style is horizontal, else along y; the strings follow each other
/// along the other axis. Lengths are in object space.
class TextLayout {
public:
  /// What a FontStyle says of it.
  struct Style {
    enum class Major { begin, middle, end };
    enum class Minor { first, begin, middle, end };

    bool horizontal = true, leftToRight = true, topToBottom = true;
    float spacing = 1;  ///< of the strings, in sizes of the font
    Major major = Major::begin;
    Minor minor = Minor::first;

    static Style of(const VrmlFontStyle& node);
  };
  /// What its strings are fitted to by gaps between the characters.
  struct Fit {
    std::vector<float> lengths;  ///< of each string; not above 0, or none: as it is
    float maxExtent = 0;         ///< of all; not above 0: any
  };
  /// A character that has something to show.
  struct Character {
    std::size_t string, index;  ///< which one of which string
    SbVec2f origin;             ///< where its glyph has (0, 0)
    const VrmlOutlineFontCache::Glyph& glyph;
  };

  TextLayout() = default;
  /// @param font  must stay as long as the layout
  TextLayout(std::vector<std::u16string> strings, float fontSize, const Style& style, const Fit& fit,
             VrmlOutlineFontCache& font);

  float fontSize() const { return size; }
  /// Around all characters; empty if there are none to be seen.
  const SbBox2f& box() const { return extent; }
  /// Around one of them.
  SbBox2f boxOf(const Character& character) const;
  /// All points of the outlines of all characters.
  int outlinePoints() const;
  /// Calls `use` with each character in its turn. One whose place is no finite number, or has no size, is left out.
  template <class Use> void eachCharacter(Use use) const {
    if (size == 0) return;
    for (std::size_t i = 0; i < strings.size(); ++i) {
      double along = 0;
      for (std::size_t k = 0; k < strings[i].size(); ++k) {
        const auto& glyph = font->glyph(strings[i][k]);
        const double step = advance(glyph);
        if (!forward()) along += step;
        const SbVec2f origin = lines[i].start + alongAxis(along);
        if (isVisible(glyph, origin)) use(Character{i, k, origin, glyph});
        if (forward()) along += step;
        along += lines[i].gap;
      }
    }
  }

private:
  struct Line {
    SbVec2f start;
    double gap;  // behind each character
  };

  bool forward() const { return style.horizontal ? style.leftToRight : !style.topToBottom; }
  double advance(const VrmlOutlineFontCache::Glyph& glyph) const {
    return style.horizontal ? double{glyph.advance[0]} * size : size;
  }
  SbVec2f alongAxis(double distance) const {
    const auto signedDistance = static_cast<float>(forward() ? distance : -distance);
    return style.horizontal ? SbVec2f(signedDistance, 0) : SbVec2f(0, signedDistance);
  }
  bool isVisible(const VrmlOutlineFontCache::Glyph& glyph, const SbVec2f& origin) const;
  double getStringAdvance(std::size_t string) const;
  SbVec2f getLineStartOffset(std::size_t string, double span) const;

  std::vector<std::u16string> strings;
  float size = 0;
  Style style;
  VrmlOutlineFontCache* font = nullptr;
  std::vector<Line> lines;
  SbBox2f extent;
};

}  // namespace tessel
