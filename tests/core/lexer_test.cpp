// SPDX-License-Identifier: BSD-3-Clause
#include "toolkit/Lexer.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

using tessel::Lexer;

namespace {

template <class T> std::pair<bool, T> read(std::string text) {
  Lexer lexer(text);
  T value{};
  const bool ok = lexer.number(value);
  return {ok, value};
}

TEST(Lexer, FractionsAreTheNearestValuesOfTheirText) {
  std::mt19937 random(7);
  for (int i = 0; i < 200000; ++i) {
    char text[64];
    const auto bits = static_cast<std::uint32_t>(random());
    const float value = std::bit_cast<float>(bits);
    if (!std::isfinite(value)) continue;
    const char* formats[] = {"%.9g", "%.6f", "%g", "%.12e", "%.20g"};
    std::snprintf(text, sizeof text, formats[i % 5], static_cast<double>(value));
    float expected = 0;
    std::from_chars(text, text + std::strlen(text), expected);
    const auto [ok, got] = read<float>(text);
    ASSERT_TRUE(ok) << text;
    ASSERT_EQ(got, expected) << text;
    double expectedDouble = 0;
    std::from_chars(text, text + std::strlen(text), expectedDouble);
    ASSERT_EQ(read<double>(text).second, expectedDouble) << text;
  }
}

TEST(Lexer, FractionsBetweenTwoFloatsRoundOnce) {
  std::mt19937 random(2);
  char text[64];
  for (int i = 0; i < 20000; ++i) {
    const float below = std::ldexp(static_cast<float>((1U << 23) + random() % (1U << 23)),
                                   static_cast<int>(random() % 60) - 50);
    const double between =
        (static_cast<double>(below) + static_cast<double>(std::nextafter(below, 2 * below))) / 2;
    std::snprintf(text, sizeof text, "%.*g", 14 + i % 4, between);
    float expected = 0;
    std::from_chars(text, text + std::strlen(text), expected);
    ASSERT_EQ(read<float>(text).second, expected) << text;
  }
  EXPECT_EQ(read<float>("16777217").second, 16777216.0F) << "half way goes to the even one";
  EXPECT_EQ(read<float>("16777219").second, 16777220.0F);
}

TEST(Lexer, FractionsHaveManySpellings) {
  EXPECT_EQ(read<float>("+5").second, 5.0F);
  EXPECT_EQ(read<float>("1.").second, 1.0F);
  EXPECT_EQ(read<float>("-.5e3").second, -500.0F);
  EXPECT_EQ(read<float>(" ,# remark\n 2e-2").second, 0.02F);
  EXPECT_EQ(read<float>("1e999").second, std::numeric_limits<float>::max());
  EXPECT_EQ(read<double>("-1e999").second, -std::numeric_limits<double>::max());
  EXPECT_EQ(read<float>("1e-999").second, 0.0F);
  EXPECT_EQ(read<float>(std::string(5000, '9')).second, std::numeric_limits<float>::max());
  EXPECT_EQ(read<float>("0." + std::string(5000, '0') + "1").second, 0.0F);
  for (const char* none : {"nan", "inf", "-", "+.", ".", "e5", "-x", ""})
    EXPECT_FALSE(read<float>(none).first) << none;
}

TEST(Lexer, WholeNumbersStayIn32Bits) {
  EXPECT_EQ(read<std::int32_t>("-2147483648").second, std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(read<std::int32_t>("0xFFFFFFFF").second, -1);
  EXPECT_EQ(read<std::uint32_t>("0xff00ff80").second, 0xff00ff80U);
  EXPECT_EQ(read<std::int32_t>("017").second, 17);
  for (const char* none : {"2147483648", "-2147483649", "99999999999999999999999", "0x1FFFFFFFF", "x", "-"})
    EXPECT_FALSE(read<std::int32_t>(none).first) << none;
  EXPECT_FALSE(read<std::uint32_t>("-1").first);
}

TEST(Lexer, NumbersThatTouchOrStopAtLettersLeaveTheRest) {
  Lexer lexer("1-2 1.5foo 3.5");
  std::int32_t i = 0;
  float f = 0;
  ASSERT_TRUE(lexer.number(i));
  EXPECT_EQ(i, 1);
  ASSERT_TRUE(lexer.number(i));
  EXPECT_EQ(i, -2);
  ASSERT_TRUE(lexer.number(f));
  EXPECT_EQ(lexer.strictName(), "foo");
  ASSERT_TRUE(lexer.number(i));
  EXPECT_EQ(i, 3);
  EXPECT_FALSE(lexer.number(i)) << "a fraction is no whole number";
}

TEST(Lexer, NamesAreStrictOrWide) {
  Lexer lexer("1abc a-b:c{ \"two words\" 1abc");
  EXPECT_EQ(lexer.strictName(), "");
  EXPECT_EQ(lexer.name(), "1abc");
  EXPECT_EQ(lexer.name(), "a-b:c");
  EXPECT_TRUE(lexer.take('{'));
  EXPECT_EQ(lexer.name(), "two words");

  const std::string longName = std::string(2000, 'n') + "}";
  Lexer longOne(longName);
  EXPECT_EQ(longOne.name().size(), 1023U);
  EXPECT_TRUE(longOne.take('}'));
  Lexer strict(longName);
  EXPECT_EQ(strict.strictName().size(), 255U);
  EXPECT_TRUE(strict.take('}'));
}

TEST(Lexer, StringsKnowTwoEscapes) {
  Lexer lexer(R"("a \"b\" \\ \n # no remark" "open)");
  std::string text;
  ASSERT_TRUE(lexer.quoted(text));
  EXPECT_EQ(text, R"(a "b" \ \n # no remark)");
  EXPECT_FALSE(lexer.quoted(text));
}

TEST(Lexer, LinesEndInThreeWays) {
  for (const char* text : {"a\nb # x\nc", "a\rb # x\rc", "a\r\nb # x\r\nc"}) {
    Lexer lexer(text);
    for (int line = 1; line <= 3; ++line) {
      lexer.name();
      EXPECT_EQ(lexer.line(), line) << text;
    }
    EXPECT_FALSE(lexer.endedInComment());
  }
  Lexer cut("a # b");
  cut.name();
  EXPECT_EQ(cut.peek(), -1);
  EXPECT_TRUE(cut.endedInComment());
}

}  // namespace
