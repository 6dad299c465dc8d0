// SPDX-License-Identifier: BSD-3-Clause
// What does text cost: a still page beside a display list of the same triangles, many labels, a page that changes?
//
// Run it with GALLIUM_NOOP=1 too: then the software driver does nothing, and only the library's own work is left.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string>

#include <tessel/shapes/VrmlText.h>

#include "DisplayList.h"
#include "Frame.h"
#include "shapes/VrmlOutlineFontCache.h"
#include "support/Bench.h"

namespace {

/// Counts how often each character is fetched from the machine's fonts. It is filled right then, and only then.
class CountedFonts : public tessel::OutlineFonts {
public:
  using Counts = std::map<std::pair<std::string, char16_t>, int>;

  /// Puts itself in the place of the machine's fonts; gives the counts.
  static std::shared_ptr<Counts> install() {
    auto counts = std::make_shared<Counts>();
    VrmlOutlineFontCache::setService(std::make_shared<CountedFonts>(counts));
    return counts;
  }
  explicit CountedFonts(std::shared_ptr<Counts> c)
      : fonts(tessel::OutlineFonts::open()), counts(std::move(c)) {
    if (!fonts) std::abort();
  }

  std::unique_ptr<tessel::OutlineFont> createFont(std::string_view name, float tolerance) override {
    auto font = fonts->createFont(name, tolerance);
    if (!font) std::abort();
    return std::make_unique<Font>(std::move(font), std::string(name), counts);
  }

private:
  class Font : public tessel::OutlineFont {
  public:
    Font(std::unique_ptr<tessel::OutlineFont> f, std::string n, std::shared_ptr<Counts> c)
        : font(std::move(f)), name(std::move(n)), counts(std::move(c)) {}
    bool getUnicodeOutline(char16_t code, tessel::FontOutline& outline) override {
      ++(*counts)[{name, code}];
      return font->getUnicodeOutline(code, outline);
    }

  private:
    std::unique_ptr<tessel::OutlineFont> font;
    std::string name;
    std::shared_ptr<Counts> counts;
  };

  std::shared_ptr<tessel::OutlineFonts> fonts;
  std::shared_ptr<Counts> counts;
};

constexpr int pageLines = 50, pageColumns = 100;

std::string lineOf(int number) {
  std::string line;
  for (int i = 0; i < pageColumns; ++i) {
    const int letter = (i * i * 7 + number * 31 + i * number) % 64;
    line += letter < 26   ? static_cast<char>('a' + letter)
            : letter < 52 ? static_cast<char>('A' + letter - 26)
            : letter < 62 ? static_cast<char>('0' + letter - 52)
                          : '.';
  }
  return line;
}

std::string shape(const std::string& strings, const char* name = "") {
  return "Shape { appearance Appearance { material Material { } } geometry " + std::string(name) +
         " Text { string [ " + strings + " ] fontStyle FontStyle { } } }\n";
}

std::string page() {
  std::string strings;
  for (int i = 0; i < pageLines; ++i) strings += '"' + lineOf(i) + "\"\n";
  return shape(strings, "DEF PAGE");
}

/// The same characters, five to a text.
std::string labels() {
  std::string world;
  for (int i = 0; i < pageLines; ++i) {
    const std::string line = lineOf(i);
    for (int k = 0; k < pageColumns; k += 5)
      world += "Transform { translation " + std::to_string(0.6 * k) + ' ' + std::to_string(-i) +
               " 0 children " + shape('"' + line.substr(static_cast<std::size_t>(k), 5) + '"') + "}\n";
  }
  return world;
}

void still(benchmark::State& state, std::string (*world)()) {
  bench::start();
  const auto counts = CountedFonts::install();
  Frame frame(world());
  const DisplayList rival(frame);
  bench::Duel duel(state, 1.3);
  for (auto _ : state) {
    duel.rival([&] {
      frame.clear();
      rival.draw();
      return 0;
    });
    duel.library([&] {
      frame.draw();
      return 0;
    });
  }
  int fetched = 0;
  for (const auto& [glyph, times] : *counts) fetched += times;
  state.counters["triangles"] = static_cast<double>(rival.triangles());
  state.counters["glyphs"] = static_cast<double>(counts->size());
  state.counters["filled"] = fetched;  // how many glyphs were, in all frames
}

// One string of the page is another in each frame. The rival draws the still page.
void changing(benchmark::State& state) {
  bench::start();
  Frame frame(page());
  auto* text = static_cast<VrmlText*>(SoNode::getByName("PAGE"));
  const DisplayList rival(frame);
  bench::Duel duel(state, 3);
  int step = 0;
  for (auto _ : state) {
    duel.rival([&] {
      frame.clear();
      rival.draw();
      return 0;
    });
    text->string.set1Value(step % pageLines, lineOf(step + 1).c_str());
    ++step;
    duel.library([&] {
      frame.draw();
      return 0;
    });
  }
}

BENCHMARK_CAPTURE(still, page, page)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(still, labels, labels)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(changing)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
