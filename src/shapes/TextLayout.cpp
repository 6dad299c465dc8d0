// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/TextLayout.h"

#include <cmath>
#include <string_view>
#include <utility>

#include <tessel/shapes/VrmlFontStyle.h>

namespace tessel {
namespace {

/// The part of a line that stands above the base line.
constexpr float ascent = 0.75f;

bool isFinite(const SbVec2f& p) { return std::isfinite(p[0]) && std::isfinite(p[1]); }

}  // namespace

TextLayout::Style TextLayout::Style::of(const VrmlFontStyle& node) {
  Style style;
  style.horizontal = node.horizontal.getValue();
  style.leftToRight = node.leftToRight.getValue();
  style.topToBottom = node.topToBottom.getValue();
  style.spacing = node.spacing.getValue();
  const auto justify = [&](int i) {
    return i < node.justify.getNum() ? std::string_view(node.justify[i].getString()) : std::string_view();
  };
  const std::string_view first = justify(0), second = justify(1);
  if (first == "MIDDLE") style.major = Major::middle;
  if (first == "END") style.major = Major::end;
  if (second == "BEGIN") style.minor = Minor::begin;
  if (second == "MIDDLE") style.minor = Minor::middle;
  if (second == "END") style.minor = Minor::end;
  return style;
}

TextLayout::TextLayout(std::vector<std::u16string> text, float fontSize, const Style& s, const Fit& fit,
                       VrmlOutlineFontCache& cache)
    : strings(std::move(text)), size(fontSize), style(s), font(&cache) {
  for (std::size_t i = 0; i < strings.size(); ++i) {
    const double natural = std::abs(getStringAdvance(i));
    double span = natural;
    if (i < fit.lengths.size() && fit.lengths[i] > 0) span = fit.lengths[i];
    if (fit.maxExtent > 0 && fit.maxExtent < span) span = fit.maxExtent;
    const std::size_t gaps = strings[i].size() > 1 ? strings[i].size() - 1 : 0;
    const double gap = gaps > 0 && span != natural ? (span - natural) / static_cast<double>(gaps) : 0;
    lines.push_back({getLineStartOffset(i, span), gap});
  }
  eachCharacter([this](const Character& c) {
    const SbBox2f box = boxOf(c);
    extent.extendBy(box.getMin());
    extent.extendBy(box.getMax());
  });
}

SbBox2f TextLayout::boxOf(const Character& c) const {
  SbBox2f box;
  box.extendBy(c.origin + c.glyph.box.getMin() * size);
  box.extendBy(c.origin + c.glyph.box.getMax() * size);
  return box;
}

int TextLayout::outlinePoints() const {
  int points = 0;
  for (const std::u16string& string : strings)
    for (const char16_t code : string) points += font->glyph(code).outlinePoints;
  return points;
}

double TextLayout::getStringAdvance(std::size_t string) const {
  double sum = 0;
  for (const char16_t code : strings[string]) sum += advance(font->glyph(code));
  return sum;
}

SbVec2f TextLayout::getLineStartOffset(std::size_t string, double span) const {
  SbVec2f start(0, 0);
  if (style.major == Style::Major::middle) start = -alongAxis(span / 2);
  if (style.major == Style::Major::end) start = -alongAxis(span);

  const float line = size * style.spacing;  // from one string to the next
  const auto count = static_cast<float>(strings.size());
  const float before =
      string > 0 ? line * static_cast<float>(string) : 0;  // of no use to the first: any spacing
  if (style.horizontal) {
    const bool down = style.topToBottom;
    const float behindFirst = line * (count - 1);
    switch (style.minor) {
      case Style::Minor::first:
        break;
      case Style::Minor::begin:
        start[1] += down ? -ascent * line : (1 - ascent) * line;
        break;
      case Style::Minor::middle:
        start[1] += down ? 0.5f * (behindFirst + ascent * size) - ascent * size
                         : -0.5f * (behindFirst + ascent * size);
        break;
      case Style::Minor::end:
        start[1] += down ? behindFirst : -(behindFirst + ascent * size);
        break;
    }
    start[1] += down ? -before : before;
  } else {
    const bool rightwards = style.leftToRight;
    switch (style.minor) {
      case Style::Minor::first:
      case Style::Minor::begin:
        break;
      case Style::Minor::middle:
        start[0] += rightwards ? -0.5f * line * count : 0.5f * line * count - size;
        break;
      case Style::Minor::end:
        start[0] += rightwards ? -line * count : line * (count - 1);
        break;
    }
    start[0] += rightwards ? before : -before;
  }
  return start;
}

bool TextLayout::isVisible(const VrmlOutlineFontCache::Glyph& glyph, const SbVec2f& origin) const {
  return !glyph.box.isEmpty() && isFinite(origin + glyph.box.getMin() * size) &&
         isFinite(origin + glyph.box.getMax() * size);
}

}  // namespace tessel
