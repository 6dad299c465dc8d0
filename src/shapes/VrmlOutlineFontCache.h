// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include <Inventor/SbBox2f.h>
#include <Inventor/SbName.h>

#include "platform/OutlineFonts.h"
#include "shapes/GlyphTessellator.h"

/// The glyphs of one font in one quality, at the size 1, for all texts that match.
///
/// Each glyph is fetched and filled once, when a text first needs it. A cache lives as long as a text holds it.
class VrmlOutlineFontCache {
public:
  /// What a text asks for. Texts that ask for the same share a cache.
  struct Key {
    SbName font;        ///< one name, or several with `;` between them
    float quality = 0;  ///< how far outlines may be from their curves; smaller is finer
    bool operator==(const Key&) const = default;
  };

  struct Glyph {
    SbVec2f advance{0, 0};
    SbBox2f box;
    tessel::GlyphMesh mesh;
    int outlinePoints = 0;  ///< of all contours together
  };

  /// The quality that a complexity asks for; `type` is one of SoComplexityTypeElement, `pixels` the larger half extent
  /// on the screen of a box that reaches as far as the size of the font in each direction.
  static float outlineQuality(float complexity, int type, float pixels);
  /// The cache for a key, made if no text holds one. Null if there is no service of fonts. Without a font each glyph
  /// is empty.
  static std::shared_ptr<VrmlOutlineFontCache> getFont(const Key& key);
  /// Puts other fonts in the place of the machine's; null for those of the machine. Texts that hold a cache keep it.
  static void setService(std::shared_ptr<tessel::OutlineFonts> fonts);

  VrmlOutlineFontCache(const Key& key, tessel::OutlineFonts& service);
  VrmlOutlineFontCache(const VrmlOutlineFontCache&) = delete;
  VrmlOutlineFontCache& operator=(const VrmlOutlineFontCache&) = delete;

  const Key& key() const { return wanted; }
  /// A glyph by its UCS-2 code; empty if no font has it. It stays where it is as long as the cache lives.
  const Glyph& glyph(char16_t code);

private:
  const Key wanted;
  std::vector<std::unique_ptr<tessel::OutlineFont>> fonts;
  std::unordered_map<char16_t, Glyph> glyphs;
};
