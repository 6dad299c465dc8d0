// SPDX-License-Identifier: BSD-3-Clause
#include "platform/OutlineFonts.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <set>
#include <string>

#include "platform/OutlinePen.h"
#include "support/Messages.h"
#include "support/Paths.h"
#include "support/TestWorld.h"

namespace tessel {
namespace {

constexpr float fine = 1.0f / 4096;

/// The area inside, contours the other way round taken away.
double areaOf(const FontOutline& outline) {
  double sum = 0;
  std::size_t first = 0;
  for (const int size : outline.contours) {
    const auto count = static_cast<std::size_t>(size);
    for (std::size_t i = 0; i < count; ++i) {
      const SbVec2f &a = outline.points[first + i], &b = outline.points[first + (i + 1) % count];
      sum += (double{a[0]} * b[1] - double{a[1]} * b[0]) / 2;
    }
    first += count;
  }
  return std::abs(sum);
}

struct OutlineFontsTest : ::testing::Test {
  OutlineFontsTest() { test::startLibrary(); }

  FontOutline glyph(const char* font, char16_t code, float tolerance = fine) {
    if (!fonts) fonts = OutlineFonts::open();
    const auto opened = fonts->createFont(font, tolerance);
    FontOutline outline;
    EXPECT_TRUE(opened && opened->getUnicodeOutline(code, outline)) << font;
    return outline;
  }

  std::shared_ptr<OutlineFonts> fonts;
};

// Twelve names, twelve faces: the widths and areas of two letters tell them apart.
TEST_F(OutlineFontsTest, EachNameOfTheTableHasAFaceOfItsOwn) {
  std::set<std::pair<long, long>> faces;
  for (const std::string family : {"Utopia", "Helvetica", "Courier"}) {
    const bool serif = family == "Utopia";
    const std::string slanted = serif ? "Italic" : "Oblique";
    for (const std::string& name : {serif ? family + "-Regular" : family, family + "-Bold",
                                    family + '-' + slanted, family + "-Bold" + slanted}) {
      const FontOutline a = glyph(name.c_str(), u'a'), g = glyph(name.c_str(), u'G');
      EXPECT_NEAR(a.advance[0], 0.5, 0.15) << name;
      faces.insert({std::lround(areaOf(a) * 1e5), std::lround(areaOf(g) * 1e5)});
    }
    EXPECT_GT(areaOf(glyph((family + "-Bold").c_str(), u'l')),
              1.2 * areaOf(glyph(serif ? "Utopia-Regular" : family.c_str(), u'l')));
  }
  EXPECT_EQ(faces.size(), 12u);
}

TEST_F(OutlineFontsTest, TypewriterLettersAreOfOneWidth) {
  EXPECT_EQ(glyph("Courier", u'i').advance[0], glyph("Courier", u'M').advance[0]);
  EXPECT_LT(glyph("Helvetica", u'i').advance[0], 0.5f * glyph("Helvetica", u'M').advance[0]);
}

TEST_F(OutlineFontsTest, TheHoleOfALetterIsAContourTheOtherWayRound) {
  const FontOutline o = glyph("Helvetica", u'O');
  ASSERT_EQ(o.contours.size(), 2u);
  FontOutline outer{{o.points.begin(), o.points.begin() + o.contours[0]}, {o.contours[0]}};
  FontOutline inner{{o.points.begin() + o.contours[0], o.points.end()}, {o.contours[1]}};
  EXPECT_NEAR(areaOf(o), std::abs(areaOf(outer) - areaOf(inner)), 1e-6);
}

TEST_F(OutlineFontsTest, AFinerToleranceComesNearerToTheCurve) {
  const double exact = areaOf(glyph("Helvetica", u'O', 1e-6f));
  double before = 1;
  std::size_t points = 0;
  for (const float tolerance : {0.05f, 0.005f, 0.0005f}) {
    const FontOutline o = glyph("Helvetica", u'O', tolerance);
    const double off = std::abs(areaOf(o) - exact);
    EXPECT_LT(off, before);
    EXPECT_LT(off, 5 * tolerance);  // some five sizes of circumference, outer and inner
    EXPECT_GT(o.points.size(), points);
    before = off;
    points = o.points.size();
  }
}

TEST_F(OutlineFontsTest, ASpaceAdvancesAndShowsNothing) {
  const FontOutline space = glyph("Helvetica", u' ');
  EXPECT_GT(space.advance[0], 0.2f);
  EXPECT_TRUE(space.contours.empty());
}

TEST_F(OutlineFontsTest, WhatNoFontHasGivesNothing) {
  fonts = OutlineFonts::open();
  const auto font = fonts->createFont("Helvetica", fine);
  FontOutline outline{{{1, 1}}, {1}, {1, 0}};
  for (const char16_t code : {u'\uFFFE', u'\xD800', u'\0', u'\n'}) {
    EXPECT_FALSE(font->getUnicodeOutline(code, outline)) << int{code};
    EXPECT_TRUE(outline.points.empty() && outline.contours.empty());
    EXPECT_EQ(outline.advance[0], 0);
  }
}

TEST_F(OutlineFontsTest, AnUnknownNameGetsSomeFont) {
  EXPECT_GT(areaOf(glyph("No-Such Font at all", u'A')), 0.05);
}

TEST_F(OutlineFontsTest, AFontOutlivesWhatOpenedIt) {
  fonts = OutlineFonts::open();
  const auto font = fonts->createFont("Courier", fine);
  fonts.reset();
  FontOutline outline;
  EXPECT_TRUE(font->getUnicodeOutline(u'A', outline));
}

/// A system without fonts, for as long as it lives.
class BareSystem {
public:
  explicit BareSystem(const std::string& configuration) {
    const auto file = test::scratchDir() / "fonts.conf";
    std::ofstream(file) << "<fontconfig>" << configuration << "</fontconfig>";
    setenv("FONTCONFIG_FILE", file.c_str(), 1);
  }
  ~BareSystem() { unsetenv("FONTCONFIG_FILE"); }
};

TEST_F(OutlineFontsTest, ASystemWithoutFontsIsToldOnce) {
  const BareSystem bare("");
  const test::Messages messages;
  fonts = OutlineFonts::open();
  ASSERT_NE(fonts, nullptr);
  for (const char* name : {"Helvetica", "Courier"}) EXPECT_EQ(fonts->createFont(name, fine), nullptr);
  EXPECT_EQ(messages.all().size(), 1u) << messages.text();
  EXPECT_EQ(messages.count("no outline font on this system: text is not drawn"), 1) << messages.text();
}

TEST_F(OutlineFontsTest, AFileThatIsNoFontIsPassedOver) {
  const auto folder = test::scratchDir() / "fonts";
  std::filesystem::create_directory(folder);
  std::ofstream(folder / "broken.otf") << "OTTO and then nothing";
  const BareSystem bare("<dir>" + folder.string() + "</dir>");
  const test::Messages messages;
  fonts = OutlineFonts::open();
  ASSERT_NE(fonts, nullptr);
  EXPECT_EQ(fonts->createFont("Helvetica", fine), nullptr);
}

// The pen

TEST(OutlinePen, StaysWithinItsToleranceOfACurve) {
  // A quarter of the unit circle, which a cubic meets within 0.0003.
  const float k = 0.5523f;
  for (const float tolerance : {0.1f, 0.01f, 0.001f}) {
    FontOutline outline;
    OutlinePen pen(outline, tolerance);
    pen.moveTo({0, 0});
    pen.lineTo({1, 0});
    pen.curveTo({1, k}, {k, 1}, {0, 1});
    pen.endContour();
    ASSERT_EQ(outline.contours.size(), 1u);
    for (std::size_t i = 2; i < outline.points.size(); ++i) {
      const SbVec2f middle = (outline.points[i - 1] + outline.points[i]) / 2;
      EXPECT_NEAR(middle.length(), 1, tolerance + 0.0003f);
    }
    EXPECT_LT(outline.points.size(), 3 + 2 / std::sqrt(tolerance));
  }
}

TEST(OutlinePen, DropsWhatEnclosesNothing) {
  FontOutline outline;
  OutlinePen pen(outline, fine);
  pen.moveTo({0, 0});
  pen.moveTo({1, 1});
  pen.lineTo({2, 2});
  pen.lineTo({2, 2});
  pen.lineTo({1, 1});
  pen.moveTo({0, 0});
  pen.lineTo({1, 0});
  pen.curveTo({1, 0}, {1, 0});
  pen.lineTo({1, 1});
  pen.lineTo({0, 0});
  pen.endContour();
  pen.endContour();
  EXPECT_EQ(outline.contours, std::vector<int>{3});
  EXPECT_EQ(outline.points.size(), 3u);
}

}  // namespace
}  // namespace tessel
