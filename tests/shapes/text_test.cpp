// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <limits>

#include <Inventor/elements/SoFontSizeElement.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoFont.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlFontStyle.h>
#include <tessel/shapes/VrmlText.h>

#include "shapes/FakeFonts.h"
#include "shapes/GlyphTessellator.h"
#include "shapes/Probe.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

/// A text of size 2 unless the style says otherwise.
std::string text(const std::string& fields, const std::string& style = "size 2") {
  return "Shape { geometry DEF TEXT Text { " + fields + " fontStyle DEF STYLE FontStyle { " + style +
         " } } }";
}

/// Low x, low y, high x, high y of a world; all 0 if it has no box.
SbVec4f extentOf(SoNode* scene) {
  const SbBox3f box = boxOf(scene);
  if (box.isEmpty()) return {0, 0, 0, 0};
  EXPECT_EQ(box.getMin()[2], 0);
  EXPECT_EQ(box.getMax()[2], 0);
  return {box.getMin()[0], box.getMin()[1], box.getMax()[0], box.getMax()[1]};
}

void expectExtent(SoNode* scene, const SbVec4f& expected, const std::string& of) {
  const SbVec4f actual = extentOf(scene);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-4) << of << ": side " << i;
}

int countOf(SoNode* scene) {
  VrmlCountAction action;
  action.apply(scene);
  return action.numTriangles;
}

/// Positive for what is counterclockwise as seen from positive z.
double areaOf(const std::vector<Triangle>& triangles) {
  double sum = 0;
  for (const auto& [a, b, c] : triangles) sum += (b.point - a.point).cross(c.point - a.point)[2] / 2.0;
  return sum;
}

}  // namespace

// Layout. A capital letter is as wide and as high as the size.

TEST(TextReading, AListOfFamiliesGivesTheFirst) {
  const TestWorld world(text("string \"ab\"", "family [ \"SANS\" \"TYPEWRITER\" ] size 3"));
  ASSERT_TRUE(world.root());
  EXPECT_EQ(world.get<VrmlFontStyle>("STYLE")->family.getValue(), "SANS");
  EXPECT_EQ(world.get<VrmlFontStyle>("STYLE")->size.getValue(), 3);
  EXPECT_EQ(world.messages.count("a list stands where one string is wanted"), 1);
  EXPECT_FALSE(TestWorld("FontStyle { family [ \"SANS\" ").root());
}

TEST(Text, EachMinorAlignmentInEachDirection) {
  const FakeFonts fonts;
  // Two strings, "AB" and "C", size 2, spacing 1.5. Where the first character of the first string has its lower left
  // corner, with a major alignment of BEGIN, by the minor one; and from there to the second string.
  const struct {
    const char* directions;
    SbVec2f first, begin, middle, end, toSecond;
  } rows[] = {
      {"", {0, 0}, {0, -2.25f}, {0, 0.75f}, {0, 3}, {0, -3}},
      {"topToBottom FALSE", {0, 0}, {0, 0.75f}, {0, -2.25f}, {0, -4.5f}, {0, 3}},
      {"leftToRight FALSE", {-2, 0}, {-2, -2.25f}, {-2, 0.75f}, {-2, 3}, {0, -3}},
      {"leftToRight FALSE topToBottom FALSE", {-2, 0}, {-2, 0.75f}, {-2, -2.25f}, {-2, -4.5f}, {0, 3}},
      {"horizontal FALSE", {0, -2}, {0, -2}, {-3, -2}, {-6, -2}, {3, 0}},
      {"horizontal FALSE topToBottom FALSE", {0, 0}, {0, 0}, {-3, 0}, {-6, 0}, {3, 0}},
      {"horizontal FALSE leftToRight FALSE", {0, -2}, {0, -2}, {1, -2}, {3, -2}, {-3, 0}},
      {"horizontal FALSE leftToRight FALSE topToBottom FALSE", {0, 0}, {0, 0}, {1, 0}, {3, 0}, {-3, 0}},
  };
  for (const auto& row : rows) {
    const std::pair<const char*, SbVec2f> minors[] = {{"", row.first},      {"FIRST", row.first},
                                                      {"BEGIN", row.begin}, {"MIDDLE", row.middle},
                                                      {"END", row.end},     {"end", row.first}};
    for (const auto& [minor, corner] : minors) {
      const std::string style =
          std::string("size 2 spacing 1.5 justify [ \"BEGIN\" \"") + minor + "\" ] " + row.directions;
      // Only "A", and only "C", are letters: the rest are spaces, which are half as wide.
      const TestWorld first(text("string [ \"A\", \" \" ]", style)),
          second(text("string [ \" \", \"C\" ]", style));
      const SbVec2f next = corner + row.toSecond;
      expectExtent(first.root(), {corner[0], corner[1], corner[0] + 2, corner[1] + 2}, style + " first");
      expectExtent(second.root(), {next[0], next[1], next[0] + 2, next[1] + 2}, style + " second");
    }
  }
}

TEST(Text, EachMajorAlignmentInEachDirection) {
  const FakeFonts fonts;
  // "AbC" of size 2: 5 long across the page, 6 along it, where each letter takes the size.
  const struct {
    const char* style;
    SbVec4f begin, middle, end;
  } rows[] = {
      {"", {0, 0, 5, 2}, {-2.5f, 0, 2.5f, 2}, {-5, 0, 0, 2}},
      {"leftToRight FALSE", {-5, 0, 0, 2}, {-2.5f, 0, 2.5f, 2}, {0, 0, 5, 2}},
      {"horizontal FALSE", {0, -6, 2, 0}, {0, -3, 2, 3}, {0, 0, 2, 6}},
      {"horizontal FALSE topToBottom FALSE", {0, 0, 2, 6}, {0, -3, 2, 3}, {0, -6, 2, 0}},
  };
  for (const auto& row : rows) {
    const std::pair<const char*, SbVec4f> majors[] = {{"\"BEGIN\"", row.begin},   {"\"FIRST\"", row.begin},
                                                      {"\"MIDDLE\"", row.middle}, {"\"END\"", row.end},
                                                      {"\"End\"", row.begin},     {"", row.begin}};
    for (const auto& [major, extent] : majors) {
      const std::string style = std::string("size 2 justify [ ") + major + " ] " + row.style;
      expectExtent(TestWorld(text("string \"AbC\"", style)).root(), extent, style);
    }
  }
}

TEST(Text, CentresThreeStringsOnBothAxes) {
  const FakeFonts fonts;
  const TestWorld world(text("string [ \"A\", \"ABC\", \"AB\" ]", "justify [ \"MIDDLE\", \"MIDDLE\" ]"));
  // From 0.75 above the first base line to the last base line; the letters here are 1 high.
  expectExtent(world.root(), {-1.5f, -1.375f, 1.5f, 1.625f}, "centred");
}

TEST(Text, FitsLengthsByGapsBetweenCharacters) {
  const FakeFonts fonts;
  const struct {
    const char *fields, *style;
    float low, high;
  } rows[] = {
      {"string \"ABC\" length 12", "size 2", 0, 12},
      {"string \"ABC\" length 3", "size 2", 0, 3},
      {"string \"ABC\" maxExtent 4", "size 2", 0, 4},
      {"string \"ABC\" maxExtent 7", "size 2", 0, 6},
      {"string \"ABC\" length 12 maxExtent 8", "size 2", 0, 8},
      {"string \"ABC\" length 3 maxExtent 8", "size 2", 0, 3},
      {"string \"ABC\" length -12 maxExtent -1", "size 2", 0, 6},
      {"string \"ABC\" length [ ]", "size 2", 0, 6},
      {"string \"A\" length 12", "size 2", 0, 2},
      {"string \"ABC\" length 12", "size 2 leftToRight FALSE", -12, 0},
      {"string \"ABC\" length 12", "size 2 justify \"END\"", -12, 0},
      {"string \"A\" length 12", "size 2 justify \"MIDDLE\"", -6, -4},
  };
  for (const auto& row : rows) {
    const SbVec4f extent = extentOf(TestWorld(text(row.fields, row.style)).root());
    EXPECT_NEAR(extent[0], row.low, 1e-4) << row.fields << ' ' << row.style;
    EXPECT_NEAR(extent[2], row.high, 1e-4) << row.fields << ' ' << row.style;
  }
  // The second string has its own length; vertical strings are fitted along y.
  expectExtent(TestWorld(text("string [ \"A\", \"AB\" ] length [ 0, 9 ]")).root(), {0, -2, 9, 2}, "second");
  expectExtent(TestWorld(text("string \"AB\" length 9", "size 2 horizontal FALSE")).root(), {0, -9, 2, 0},
               "down");
}

TEST(Text, OddSizesHarmNobody) {
  const FakeFonts fonts;
  const TestWorld world(text("string [ \"AB\", \"C\" ]"));
  auto* style = world.get<VrmlFontStyle>("STYLE");
  auto* node = world.get<VrmlText>("TEXT");
  for (const float size : {0.0f, notANumber, infinite, -infinite}) {
    style->size = size;
    EXPECT_TRUE(boxOf(world.root()).isEmpty()) << size;
    EXPECT_TRUE(trianglesOf(world.root()).empty()) << size;
    EXPECT_TRUE(hitsOf(world.root(), {1, 0.5f, 5}, {0, 0, -1}).empty()) << size;
  }
  style->size = 3e38f;  // there is room for one letter of each string, none for the second
  EXPECT_EQ(trianglesOf(world.root()).size(), 2u * 2);
  style->size = -2;  // turned by half about the origin
  expectExtent(world.root(), {-4, -2, 0, 2}, "negative");
  style->size = 2;
  for (const float odd : {notANumber, infinite}) {
    style->spacing = odd;
    expectExtent(world.root(), {0, 0, 4, 2}, "spacing: only the first string has a place");
    style->spacing = 1;
    node->length = odd;
    node->maxExtent = -odd;
    EXPECT_LE(extentOf(world.root())[2], 4.0f) << odd;
    node->length = 0;
  }
}

// Strings

TEST(Text, EmptyStringsHaveNoBox) {
  const FakeFonts fonts;
  for (const char* strings : {"[ ]", "\"\"", "[ \"\", \"  \" ]", "\"\xC3\xA9\xE2\x82\xAC\""})
    EXPECT_TRUE(boxOf(TestWorld(text(std::string("string ") + strings)).root()).isEmpty()) << strings;
}

TEST(Text, AStringThatIsNoUtf8EndsTheText) {
  const FakeFonts fonts;
  const char* bad[] = {"\xFF",    "A\xC3", "\xC3(", "\xC0\x80", "\xED\xA0\x80", "AB\xF0\x9F\x98\x80",
                       "\xE2\x82"};
  for (const char* string : bad) {
    const TestWorld world(text(std::string("string [ \"A\", \"") + string + "\", \"ABCDE\" ]"));
    ASSERT_TRUE(world.root()) << string;
    expectExtent(world.root(), {0, 0, 2, 2}, string);
  }
}

TEST(Text, CharactersBeyondAsciiCountAsOne) {
  const FakeFonts fonts;
  const TestWorld world(
      text("string \"A\xC3\xA9\xE2\x82\xAC"
           "B\""));
  boxOf(world.root());
  EXPECT_EQ(fonts.log->fetched[u'\u00E9'], 1);
  EXPECT_EQ(fonts.log->fetched[u'\u20AC'], 1);
  EXPECT_EQ(fonts.log->fetched.size(), 4u);
  // What has no glyph takes no room in a row, and a whole size in a column.
  expectExtent(world.root(), {0, 0, 4, 2}, "row");
  world.get<VrmlFontStyle>("STYLE")->horizontal = FALSE;
  expectExtent(world.root(), {0, -8, 2, 0}, "column");
}

TEST(Text, AHundredThousandCharacters) {
  const FakeFonts fonts;
  std::string characters;
  for (int i = 0; i < 100000; ++i) characters += static_cast<char>('A' + i % 20);
  const TestWorld world(text("string \"" + characters + "\"", "size 0.1"));
  EXPECT_NEAR(extentOf(world.root())[2], 10000, 0.01);  // not what a sum of floats would give
  EXPECT_EQ(trianglesOf(world.root()).size(), 8u * 5000 + 2u * 95000);
  EXPECT_EQ(fonts.log->fetched.size(), 20u);
  const auto hits = hitsOf(world.root(), {7654.35f, 0.05f, 5}, {0, 0, -1});
  ASSERT_EQ(hits.size(), 1u);
  EXPECT_EQ(hits[0].character, 76543);
}

// Fonts

TEST(Text, EachGlyphIsFetchedOnceForAllTextsOfAFont) {
  const FakeFonts fonts;
  const TestWorld world(text("string \"ABBA\"") + text("string \"BAB\"", "size 5") +
                        text("string \"AB\"", "family \"SANS\""));
  for (int i = 0; i < 3; ++i) trianglesOf(world.root());
  EXPECT_EQ(fonts.log->opened, (std::vector<std::string>{"Utopia-Regular", "Helvetica"}));
  EXPECT_EQ(fonts.log->fetched[u'A'], 2);
  EXPECT_EQ(fonts.log->fetched[u'B'], 2);
}

TEST(Text, FontsGoWithTheLastText) {
  const FakeFonts fonts;
  for (int i = 0; i < 2; ++i) boxOf(TestWorld(text("string \"A\"")).root());
  EXPECT_EQ(fonts.log->opened.size(), 2u);
}

TEST(Text, FamilyAndStyleNameTheFont) {
  const struct {
    const char *fields, *name;
  } rows[] = {
      {"", "Utopia-Regular"},
      {"family \"\" style \"\"", "Utopia-Regular"},
      {"style \"BOLD ITALIC\"", "Utopia-BoldItalic"},
      {"family \"sans\"", "Helvetica"},
      {"family \"SANS\" style \"Bold\"", "Helvetica-Bold"},
      {"family \"SANS\" style \"ITALIC\"", "Helvetica-Oblique"},
      {"family \"Typewriter\" style \"bold italic\"", "Courier-BoldOblique"},
      {"family \"TYPEWRITER\"", "Courier"},
      {"family \"Comic\" style \"BOLD\"", "Utopia-Regular"},
      {"family \"SANS\" style \"SLANTED\"", "Utopia-Regular"},
      {"family \"SANS\" style \"BOLDITALIC\"", "Utopia-Regular"},
  };
  for (const auto& row : rows) {
    const TestWorld world(text("", row.fields));
    EXPECT_STREQ(world.get<VrmlFontStyle>("STYLE")->getFontName().getString(), row.name) << row.fields;
  }
}

TEST(Text, AFontOfTheToolkitIsAListOfNames) {
  const FakeFonts fonts;
  const TestWorld world("Shape { geometry Text { string \"A\" } }");
  const float toolkits = SoFontSizeElement::getDefault();
  expectExtent(world.root(), {0, 0, toolkits, toolkits}, "the toolkit's size");
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  auto* font = new SoFont;
  font->size = 3;
  root->addChild(font);
  root->addChild(world.root());
  const struct {
    const char* name;
    std::vector<std::string> opened;
    float width;
  } rows[] = {{"One;Two", {"One", "Two"}, 3},
              {"Nothing;;Two", {"Nothing", "", "Two"}, 3},
              {"Nothing;None", {"Nothing", "None", "Utopia-Regular"}, 3}};
  for (const auto& row : rows) {
    fonts.log->opened.clear();
    font->name = row.name;
    expectExtent(root.get(), {0, 0, row.width, row.width}, row.name);
    EXPECT_EQ(fonts.log->opened, row.opened);
  }
  // One that overrides wins over a FontStyle.
  font->name = "Mine";
  font->setOverride(TRUE);
  const TestWorld styled(text("string \"A\""));
  root->replaceChild(1, styled.root());
  fonts.log->opened.clear();
  expectExtent(root.get(), {0, 0, 3, 3}, "override");
  EXPECT_EQ(fonts.log->opened, std::vector<std::string>{"Mine"});
}

TEST(Text, WithoutAnyFontThereIsNothing) {
  struct None : tessel::OutlineFonts {
    std::unique_ptr<tessel::OutlineFont> createFont(std::string_view, float) override { return nullptr; }
  };
  const FakeFonts restore;
  VrmlOutlineFontCache::setService(std::make_shared<None>());
  const TestWorld world(text("string [ \"ABC\" ]", "justify [ \"END\", \"END\" ]"));
  EXPECT_TRUE(boxOf(world.root()).isEmpty());
  EXPECT_TRUE(trianglesOf(world.root()).empty());
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

TEST(Text, ComplexitySetsTheQuality) {
  using Font = VrmlOutlineFontCache;
  EXPECT_FLOAT_EQ(Font::outlineQuality(1, SoComplexity::OBJECT_SPACE, 0), 1);
  EXPECT_FLOAT_EQ(Font::outlineQuality(0.75f, SoComplexity::OBJECT_SPACE, 0), 10.5f);
  EXPECT_FLOAT_EQ(Font::outlineQuality(0.5f, SoComplexity::OBJECT_SPACE, 0), 20);
  EXPECT_FLOAT_EQ(Font::outlineQuality(0, SoComplexity::OBJECT_SPACE, 0), 250);
  EXPECT_FLOAT_EQ(Font::outlineQuality(0.5f, SoComplexity::SCREEN_SPACE, 400), 250 / 26.0f);
  EXPECT_FLOAT_EQ(Font::outlineQuality(1, SoComplexity::BOUNDING_BOX, 0), 20);
  const TestWorld world(text("string \"OS8\""));  // with the machine's fonts
  EXPECT_LT(2 * trianglesOf(world.root(), 0.1f).size(), trianglesOf(world.root(), 1).size());
}

// Primitives

TEST(Text, HolesStayOpenAndBadGlyphsAreBoxes) {
  const FakeFonts fonts;
  EXPECT_NEAR(areaOf(trianglesOf(TestWorld(text("string \"O\"")).root())), 4 * 0.75, 1e-5);
  EXPECT_NEAR(areaOf(trianglesOf(TestWorld(text("string \"A\"", "size -2")).root())), 4, 1e-5);

  tessel::GlyphTessellator tessellator;
  const auto area = [](const tessel::GlyphMesh& mesh) {
    double sum = 0;
    for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
      const SbVec2f a = mesh.points[mesh.triangles[i]], b = mesh.points[mesh.triangles[i + 1]] - a,
                    c = mesh.points[mesh.triangles[i + 2]] - a;
      const double twice = double{b[0]} * c[1] - double{b[1]} * c[0];
      EXPECT_GE(twice, 0);
      sum += twice / 2;
    }
    return sum;
  };
  // Sides that cross; two squares of one direction that overlap; clockwise alone.
  EXPECT_NEAR(area(tessellator.fill({{{0, 0}, {1, 0}, {0, 1}, {1, 1}}, {4}})), 0.5, 1e-6);
  EXPECT_NEAR(
      area(tessellator.fill({{{0, 0}, {2, 0}, {2, 2}, {0, 2}, {1, 1}, {3, 1}, {3, 3}, {1, 3}}, {4, 4}})), 7,
      1e-6);
  EXPECT_NEAR(area(tessellator.fill({{{0, 0}, {0, 1}, {1, 1}, {1, 0}}, {4}})), 1, 1e-6);
  for (const float odd : {notANumber, infinite})
    EXPECT_TRUE(tessellator.fill({{{0, 0}, {odd, 0}, {1, 1}}, {3}}).triangles.empty());
  EXPECT_TRUE(tessellator.fill({{{0, 0}, {1, 0}, {2, 0}}, {3}}).triangles.empty());
  // And the next glyph is right again.
  EXPECT_NEAR(area(tessellator.fill({{{0, 0}, {1, 0}, {1, 1}}, {3}})), 0.5, 1e-6);
}

TEST(Text, AHitTellsTheStringAndTheCharacter) {
  const FakeFonts fonts;
  const TestWorld world(text("string [ \"AB\", \"aOb\" ]"));
  const auto hits = hitsOf(world.root(), {3.2f, 0.5f, 5}, {0, 0, -1});
  ASSERT_EQ(hits.size(), 1u);
  EXPECT_EQ(hits[0].line, 0);
  EXPECT_EQ(hits[0].character, 1);
  EXPECT_TRUE(hits[0].normal.equals(SbVec3f(0, 0, 1), 1e-6f));
  // Texture coordinates begin anew at each character, 1 a size.
  EXPECT_NEAR(hits[0].texCoords[0], 0.6, 1e-5);
  EXPECT_NEAR(hits[0].texCoords[1], 0.25, 1e-5);
  const auto below = hitsOf(world.root(), {1.3f, -1.9f, 5}, {0, 0, -1});
  ASSERT_EQ(below.size(), 1u);
  EXPECT_EQ(below[0].line, 1);
  EXPECT_EQ(below[0].character, 1);
  EXPECT_TRUE(hitsOf(world.root(), {2, -1, 5}, {0, 0, -1}).empty()) << "the hole of the O";
  EXPECT_TRUE(hitsOf(world.root(), {5, 0.5f, 5}, {0, 0, -1}).empty()) << "beside";
  EXPECT_TRUE(hitsOf(world.root(), {-5, 0.5f, 0}, {1, 0, 0}).empty()) << "along the plane";
  EXPECT_EQ(hitsOf(world.root(), {0.5f, 0.5f, -5}, {0, 0, 1}).size(), 1u) << "from behind";
}

TEST(Text, CountsThePointsOfItsOutlinesOnceItHasThem) {
  const FakeFonts fonts;
  const TestWorld world(text("string [ \"AB\", \" O\" ]"));
  EXPECT_EQ(countOf(world.root()), 0);
  boxOf(world.root());
  EXPECT_EQ(countOf(world.root()), 4 + 4 + 8);
  world.get<VrmlText>("TEXT")->string = "A";
  boxOf(world.root());
  EXPECT_EQ(countOf(world.root()), 4);
}

TEST(Text, FollowsItsFieldsAndItsStyle) {
  const FakeFonts fonts;
  const TestWorld world(text("string \"A\""));
  expectExtent(world.root(), {0, 0, 2, 2}, "before");
  auto* node = world.get<VrmlText>("TEXT");
  node->string = "AB";
  expectExtent(world.root(), {0, 0, 4, 2}, "string");
  node->length = 8;
  expectExtent(world.root(), {0, 0, 8, 2}, "length");
  node->maxExtent = 6;
  expectExtent(world.root(), {0, 0, 6, 2}, "maxExtent");
  world.get<VrmlFontStyle>("STYLE")->size = 1;
  expectExtent(world.root(), {0, 0, 6, 1}, "size");
  world.get<VrmlFontStyle>("STYLE")->justify = "END";
  expectExtent(world.root(), {-6, 0, 0, 1}, "justify");
  node->fontStyle = new VrmlFontStyle;
  expectExtent(world.root(), {0, 0, 6, 1}, "fontStyle");
}

TEST(Text, TakesAFontStyleAndNothingElse) {
  const FakeFonts fonts;
  const std::string proto =
      "PROTO Style [ field SFFloat height 1 ] { FontStyle { size IS height } } "
      "PROTO Other [ ] { Box { } } ";
  const TestWorld instance(proto + "Shape { geometry Text { string \"A\" fontStyle Style { height 3 } } }");
  ASSERT_TRUE(instance.root()) << instance.messages.text();
  expectExtent(instance.root(), {0, 0, 3, 3}, "an instance");
  for (const char* other : {"Box { }", "Other { }", "Group { }"})
    EXPECT_EQ(TestWorld(proto + "Shape { geometry Text { fontStyle " + other + " } }").status,
              tessel::ReadStatus::failed)
        << other;
}

TEST(Text, OutsideAShapeItIsNothing) {
  const FakeFonts fonts;
  const TestWorld world("Group { children Text { string \"A\" } }");
  if (world.root()) {
    EXPECT_TRUE(boxOf(world.root()).isEmpty());
    EXPECT_TRUE(trianglesOf(world.root()).empty());
  }
}
