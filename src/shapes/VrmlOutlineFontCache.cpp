// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/VrmlOutlineFontCache.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include <Inventor/elements/SoComplexityTypeElement.h>

using tessel::OutlineFont;
using tessel::OutlineFonts;

namespace {

constexpr std::string_view fallbackFont = "Utopia-Regular";
constexpr std::string_view toolkitsDefault = "defaultFont";
/// Of the quality 1, in sizes of the font. At 20, which a middle complexity asks for, a round letter has some twenty
/// edges.
constexpr float toleranceOfOne = 1.0f / 4096;
/// Finer outlines than this are not made, whatever a complexity asks for.
constexpr float finest = 0.25f;

/// What all texts share.
struct Shared {
  std::optional<std::shared_ptr<OutlineFonts>> service;  // null within: it can't be opened
  std::vector<std::weak_ptr<VrmlOutlineFontCache>> caches;
  tessel::GlyphTessellator tessellator;
};
Shared& shared() {
  static Shared s;
  return s;
}

}  // namespace

float VrmlOutlineFontCache::outlineQuality(float c, int type, float pixels) {
  switch (type) {
    case SoComplexityTypeElement::OBJECT_SPACE:
      return c > 0.5f ? (2 - 2 * c) * 19 + 1 : (1 - 2 * c) * 230 + 20;
    case SoComplexityTypeElement::SCREEN_SPACE:
      return 250 / (pixels * 0.25f * c * c + 1);
    default:
      return 20;
  }
}

std::shared_ptr<VrmlOutlineFontCache> VrmlOutlineFontCache::getFont(const Key& key) {
  auto& s = shared();
  if (!s.service) s.service = OutlineFonts::open();
  if (!*s.service) return nullptr;
  for (const auto& held : s.caches)
    if (auto cache = held.lock(); cache && cache->key() == key) return cache;
  std::erase_if(s.caches, [](const auto& held) { return held.expired(); });
  auto cache = std::make_shared<VrmlOutlineFontCache>(key, **s.service);
  s.caches.push_back(cache);
  return cache;
}

void VrmlOutlineFontCache::setService(std::shared_ptr<OutlineFonts> fonts) {
  auto& s = shared();
  s.service.reset();
  if (fonts) s.service = std::move(fonts);
  s.caches.clear();
}

VrmlOutlineFontCache::VrmlOutlineFontCache(const Key& key, OutlineFonts& service) : wanted(key) {
  const float tolerance = std::max(key.quality, finest) * toleranceOfOne;
  const auto open = [&](std::string_view name) {
    if (auto font = service.createFont(name, tolerance)) fonts.push_back(std::move(font));
  };
  std::string_view names = key.font.getString();
  if (names == toolkitsDefault) names = fallbackFont;
  while (!names.empty()) {
    const std::size_t length = std::min(names.find(';'), names.size());
    open(names.substr(0, length));
    names.remove_prefix(std::min(length + 1, names.size()));
  }
  if (fonts.empty() && key.font != SbName(fallbackFont.data())) open(fallbackFont);
}

const VrmlOutlineFontCache::Glyph& VrmlOutlineFontCache::glyph(char16_t code) {
  const auto [at, isNew] = glyphs.try_emplace(code);
  Glyph& glyph = at->second;
  if (!isNew) return glyph;
  tessel::FontOutline outline;
  if (std::ranges::any_of(fonts, [&](auto& font) { return font->getUnicodeOutline(code, outline); }))
    glyph = {outline.advance, boxOf(outline), shared().tessellator.fill(outline),
             static_cast<int>(outline.points.size())};
  return glyph;
}
