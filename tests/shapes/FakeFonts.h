// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/OutlineFonts.h"
#include "shapes/VrmlOutlineFontCache.h"

namespace tessel::test {

/// Fonts of letters whose forms are easy to reckon with, in the place of the machine's for as long as it lives.
///
/// A capital letter is a square from (0, 0) to (1, 1) and advances by 1; a small one is half as wide, and advances so;
/// a space advances by 1/2. `X` is a square whose two sides cross, with 4 points; `O` one with a square hole. Codes
/// above 127 have no glyph. A font whose name begins with "No" can't be opened.
class FakeFonts {
public:
  struct Log {
    std::vector<std::string> opened;  ///< the names asked for
    std::map<char16_t, int> fetched;  ///< how often each code was asked for
  };

  FakeFonts() { VrmlOutlineFontCache::setService(std::make_shared<Service>(log)); }
  ~FakeFonts() { VrmlOutlineFontCache::setService(nullptr); }
  FakeFonts(const FakeFonts&) = delete;
  FakeFonts& operator=(const FakeFonts&) = delete;

  std::shared_ptr<Log> log = std::make_shared<Log>();

private:
  class Font : public OutlineFont {
  public:
    explicit Font(std::shared_ptr<Log> l) : log(std::move(l)) {}
    bool getUnicodeOutline(char16_t code, FontOutline& outline) override {
      ++log->fetched[code];
      outline = {};
      if (code > 127) return false;
      const float width = code >= 'A' && code <= 'Z' ? 1.0f : 0.5f;
      outline.advance.setValue(width, 0);
      if (code == ' ') return true;
      outline.points = {{0, 0}, {width, 0}, {width, 1}, {0, 1}};
      if (code == 'X') std::swap(outline.points[2], outline.points[3]);
      outline.contours = {4};
      if (code == 'O') {
        for (const SbVec2f hole :
             {SbVec2f(0.25f, 0.25f), SbVec2f(0.25f, 0.75f), SbVec2f(0.75f, 0.75f), SbVec2f(0.75f, 0.25f)})
          outline.points.push_back(hole);
        outline.contours.push_back(4);
      }
      return true;
    }

  private:
    std::shared_ptr<Log> log;
  };

  class Service : public OutlineFonts {
  public:
    explicit Service(std::shared_ptr<Log> l) : log(std::move(l)) {}
    std::unique_ptr<OutlineFont> createFont(std::string_view name, float) override {
      log->opened.emplace_back(name);
      if (name.starts_with("No")) return nullptr;
      return std::make_unique<Font>(log);
    }

  private:
    std::shared_ptr<Log> log;
  };
};

}  // namespace tessel::test
