// SPDX-License-Identifier: BSD-3-Clause

// Outline fonts by FreeType, found by fontconfig.

#include "platform/OutlineFonts.h"

#include <algorithm>
#include <string>
#include <utility>

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <Inventor/errors/SoDebugError.h>

#include "platform/OutlinePen.h"

namespace tessel {
namespace {

template <auto destroy> struct Destroy {
  template <class T> void operator()(T* object) const { destroy(object); }
};
template <class T, auto destroy> using Handle = std::unique_ptr<T, Destroy<destroy>>;
using Config = Handle<FcConfig, FcConfigDestroy>;
using Pattern = Handle<FcPattern, FcPatternDestroy>;
using Matches = Handle<FcFontSet, FcFontSetDestroy>;
using Face = Handle<FT_FaceRec, FT_Done_Face>;
using Library = std::shared_ptr<FT_LibraryRec_>;

/// The families that stand in for those of old.
struct Substitute {
  std::string_view family;
  const char *first, *generic;
};
constexpr Substitute substitutes[] = {
    {"Utopia", "Nimbus Roman", "serif"},
    {"Helvetica", "Nimbus Sans", "sans-serif"},
    {"Courier", "Nimbus Mono PS", "monospace"},
};

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

const FcChar8* fcText(const char* text) { return reinterpret_cast<const FcChar8*>(text); }

/// What to ask for: "Helvetica-BoldOblique" is a family and, behind the last hyphen, a style.
Pattern patternOf(std::string_view name) {
  const std::size_t hyphen = name.rfind('-');
  const std::string family(name.substr(0, hyphen));
  const std::string_view style = hyphen == name.npos ? std::string_view() : name.substr(hyphen);
  Pattern pattern(FcPatternCreate());
  const auto* known = std::ranges::find(substitutes, family, &Substitute::family);
  if (known != std::end(substitutes)) FcPatternAddString(pattern.get(), FC_FAMILY, fcText(known->first));
  FcPatternAddString(pattern.get(), FC_FAMILY, fcText(family.c_str()));
  if (known != std::end(substitutes)) FcPatternAddString(pattern.get(), FC_FAMILY, fcText(known->generic));
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, contains(style, "Bold") ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcPatternAddInteger(
      pattern.get(), FC_SLANT,
      contains(style, "Oblique") || contains(style, "Italic") ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
  return pattern;
}

/// The functions that FT_Outline_Decompose calls, with a pen that works in font units.
struct Decompose {
  OutlinePen pen;
  float scale;  // from font units to the size 1

  SbVec2f at(const FT_Vector* p) const {
    return {static_cast<float>(p->x) * scale, static_cast<float>(p->y) * scale};
  }
  static Decompose& of(void* self) { return *static_cast<Decompose*>(self); }
  static int move(const FT_Vector* to, void* self) { return of(self).pen.moveTo(of(self).at(to)), 0; }
  static int line(const FT_Vector* to, void* self) { return of(self).pen.lineTo(of(self).at(to)), 0; }
  static int conic(const FT_Vector* control, const FT_Vector* to, void* self) {
    return of(self).pen.curveTo(of(self).at(control), of(self).at(to)), 0;
  }
  static int cubic(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* self) {
    return of(self).pen.curveTo(of(self).at(control1), of(self).at(control2), of(self).at(to)), 0;
  }
};

/// The fonts that match a name, the best first: a glyph comes from the first one that has it.
class FreeTypeFont : public OutlineFont {
public:
  FreeTypeFont(Library l, Matches m, float t) : library(std::move(l)), matches(std::move(m)), tolerance(t) {
    faces.resize(static_cast<std::size_t>(matches->nfont));
  }

  bool getUnicodeOutline(char16_t code, FontOutline& outline) override {
    outline = {};
    for (std::size_t i = 0; i < faces.size(); ++i)
      if (mayHave(i, code) && outlineFrom(faceAt(i), code, outline)) return true;
    return false;
  }

  /// Whether any of them can be opened.
  bool isUsable() {
    for (std::size_t i = 0; i < faces.size(); ++i)
      if (faceAt(i)) return true;
    return false;
  }

private:
  struct Slot {
    Face face;
    bool tried = false;
  };

  bool mayHave(std::size_t i, char16_t code) const {
    FcCharSet* codes = nullptr;
    return FcPatternGetCharSet(matches->fonts[i], FC_CHARSET, 0, &codes) != FcResultMatch ||
           FcCharSetHasChar(codes, code);
  }

  FT_Face faceAt(std::size_t i) {
    Slot& slot = faces[i];
    if (!std::exchange(slot.tried, true)) {
      FcChar8* file = nullptr;
      int number = 0;
      FcPatternGetInteger(matches->fonts[i], FC_INDEX, 0, &number);
      FT_Face face = nullptr;
      if (FcPatternGetString(matches->fonts[i], FC_FILE, 0, &file) == FcResultMatch &&
          FT_New_Face(library.get(), reinterpret_cast<const char*>(file), number, &face) == 0)
        slot.face.reset(face);
      if (slot.face && (!FT_IS_SCALABLE(face) || face->units_per_EM == 0)) slot.face.reset();
    }
    return slot.face.get();
  }

  bool outlineFrom(FT_Face face, char16_t code, FontOutline& outline) const {
    const FT_UInt glyph = face ? FT_Get_Char_Index(face, code) : 0;
    if (glyph == 0 || FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
      return false;
    const float scale = 1.0f / static_cast<float>(face->units_per_EM);
    constexpr FT_Outline_Funcs functions = {
        Decompose::move, Decompose::line, Decompose::conic, Decompose::cubic, 0, 0};
    Decompose decompose{{outline, tolerance}, scale};
    if (FT_Outline_Decompose(&face->glyph->outline, &functions, &decompose) != 0) {
      outline = {};
      return false;
    }
    decompose.pen.endContour();
    outline.advance.setValue(static_cast<float>(face->glyph->advance.x) * scale, 0);
    return true;
  }

  Library library;  // outlives the faces
  Matches matches;
  std::vector<Slot> faces;
  float tolerance;
};

class FreeTypeFonts : public OutlineFonts {
public:
  FreeTypeFonts(Library l, Config c) : library(std::move(l)), config(std::move(c)) {}

  std::unique_ptr<OutlineFont> createFont(std::string_view name, float tolerance) override {
    const Pattern pattern = patternOf(name);
    FcConfigSubstitute(config.get(), pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    // Trimmed: only fonts that have glyphs which those before them lack.
    if (Matches matches{FcFontSort(config.get(), pattern.get(), FcTrue, nullptr, &result)}) {
      auto font = std::make_unique<FreeTypeFont>(library, std::move(matches), tolerance);
      if (font->isUsable()) return font;
    }
    if (!std::exchange(warned, true))
      SoDebugError::postWarning("OutlineFonts::createFont",
                                "no outline font on this system: text is not drawn");
    return nullptr;
  }

private:
  Library library;
  Config config;
  bool warned = false;
};

}  // namespace

std::shared_ptr<OutlineFonts> OutlineFonts::open() {
  FT_Library library = nullptr;
  // A configuration of our own: a host's use of fontconfig is not touched.
  Config config(FcInitLoadConfigAndFonts());
  if (!config || FT_Init_FreeType(&library) != 0) return nullptr;
  return std::make_shared<FreeTypeFonts>(Library(library, FT_Done_FreeType), std::move(config));
}

}  // namespace tessel
