// SPDX-License-Identifier: BSD-3-Clause
// Values written as text, and read back.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/core/VrmlNode.h>

#include "core/ValueReader.h"
#include "core/ValueWriter.h"
#include "core/WorldReader.h"
#include "support/TestWorld.h"

using tessel::SoRef;
using tessel::ValueStyle;
using tessel::ValueType;

namespace {

std::string textOf(const SoField& field, const ValueStyle& style = {}) {
  std::string text;
  tessel::writeValue(text, field, tessel::valueTypeOf(field), style);
  return text;
}

// A field with the value that a text says; none if it says none, or says more.
std::unique_ptr<SoField> fieldOf(ValueType type, const std::string& text) {
  tessel::SourceText source;
  source.bytes = text;
  tessel::WorldReader reader(std::move(source), {});
  const std::string name = "value";
  const tessel::ReadScope scope(reader.lexer(), name);
  std::unique_ptr<SoField> field(tessel::newField(type));
  if (!tessel::readValue(reader, *field, type) || reader.lexer().peek() >= 0) return nullptr;
  return field;
}

struct Written {
  ValueType type;
  const char* text;
  const char* written = nullptr;  // where it differs
};

class ValueWriter : public testing::Test {
protected:
  ValueWriter() { tessel::test::startLibrary(); }
};

class ValueText : public ValueWriter, public testing::WithParamInterface<Written> {};

TEST_P(ValueText, IsWrittenAsItIsRead) {
  const Written& row = GetParam();
  const auto field = fieldOf(row.type, row.text);
  ASSERT_TRUE(field) << row.text;
  EXPECT_EQ(textOf(*field), row.written ? row.written : row.text);
}

INSTANTIATE_TEST_SUITE_P(
    Values, ValueText,
    testing::Values(
        Written{ValueType::sfBool, "TRUE"}, Written{ValueType::sfBool, "FALSE"},
        Written{ValueType::sfInt32, "-2147483648"}, Written{ValueType::sfInt32, "0xFFFFFFFF", "-1"},
        Written{ValueType::sfFloat, "0.1"}, Written{ValueType::sfFloat, "16777216"},
        Written{ValueType::sfFloat, "-0.00001", "-0.00001"}, Written{ValueType::sfFloat, "1e-38"},
        Written{ValueType::sfFloat, "3.4028235e+38"}, Written{ValueType::sfFloat, "-0"},
        Written{ValueType::sfTime, "1000000000"}, Written{ValueType::sfTime, "1000000000.0333333"},
        Written{ValueType::sfTime, "-1"}, Written{ValueType::sfColor, "1 0.5 0"},
        Written{ValueType::sfVec2f, "0.25 -3"}, Written{ValueType::sfVec3f, "1 2 3"},
        Written{ValueType::sfMatrix, "1 0 0 0 0 1 0 0 0 0 1 0 0.5 0 0 1"},
        Written{ValueType::sfRotation, "0 1 0 1.57"}, Written{ValueType::sfRotation, "0 0 1 0"},
        Written{ValueType::sfRotation, "0 1 0 0", "0 0 1 0"},
        Written{ValueType::sfRotation, "0 -2 0 4.5", "0 -1 0 4.5"},
        Written{ValueType::sfRotation, "1 0 0 -0.5", "-1 0 0 0.5"},
        Written{ValueType::sfRotation, "1 1 1 2.0944", "0.57735 0.57735 0.57735 2.0944"},
        Written{ValueType::sfString, R"("")"}, Written{ValueType::sfString, R"("say \"no\", \\n, \\")"},
        Written{ValueType::sfString, R"("a\b")", R"("a\\b")"},
        Written{ValueType::sfString, "\"two\nlines, \tgr\xc3\xbc\xc3\x9f\""},
        Written{ValueType::sfImage, "0 0 0"}, Written{ValueType::sfImage, "2 1 3 0xFF0080 0x000001"},
        Written{ValueType::sfImage, "1 2 1 255 7", "1 2 1 0xFF 0x07"},
        Written{ValueType::sfImage, "1 1 4 0xFFFFFFFE"}, Written{ValueType::sfNode, "NULL"},
        Written{ValueType::mfNode, "[]"}, Written{ValueType::mfFloat, "[]"},
        Written{ValueType::mfInt32, "7", "[7]"}, Written{ValueType::mfInt32, "[1, -1]"},
        Written{ValueType::mfFloat, "[0 .5 1]", "[0, 0.5, 1]"},
        Written{ValueType::mfColor, "[1 0 0 0 1 0]", "[1 0 0, 0 1 0]"},
        Written{ValueType::mfVec2f, "[1 0, 0 1]"}, Written{ValueType::mfVec3f, "[1 0 0, 0 1 0.1]"},
        Written{ValueType::mfRotation, "[0 1 0 0.1, 1 0 0 3.14]"},
        Written{ValueType::mfTime, "[1.5, 1000000000]"}, Written{ValueType::mfString, R"(["a, b", "]"])"}));

std::mt19937& dice() {
  static std::mt19937 generator(7);
  return generator;
}

// A float of any bits but those of what is no number.
float anyFloat() {
  const float value = std::bit_cast<float>(static_cast<std::uint32_t>(dice()()));
  return std::isfinite(value) ? value : 0.5F;
}

TEST_F(ValueWriter, NumbersReadBackToTheLastBit) {
  SoMFFloat floats;
  SoMFTime times;
  for (int i = 0; i < 20'000; ++i) {
    floats.set1Value(i, anyFloat());
    times.set1Value(i, SbTime(std::ldexp(static_cast<double>(dice()()) * 4294967296.0 + dice()(), -32)));
  }
  for (const SoMField* field : {static_cast<SoMField*>(&floats), static_cast<SoMField*>(&times)}) {
    const auto back = fieldOf(tessel::valueTypeOf(*field), textOf(*field));
    ASSERT_TRUE(back);
    if (field == &floats) {
      const auto& read = static_cast<SoMFFloat&>(*back);
      ASSERT_EQ(read.getNum(), floats.getNum());
      for (int i = 0; i < read.getNum(); ++i)
        ASSERT_EQ(std::bit_cast<std::uint32_t>(read[i]), std::bit_cast<std::uint32_t>(floats[i]));
    } else {
      const auto& read = static_cast<SoMFTime&>(*back);
      ASSERT_EQ(read.getNum(), times.getNum());
      for (int i = 0; i < read.getNum(); ++i) ASSERT_EQ(read[i].getValue(), times[i].getValue());
    }
  }
}

TEST_F(ValueWriter, RotationsReadBackAsTheSameTurn) {
  std::uniform_real_distribution<float> part(-1, 1);
  for (int i = 0; i < 2'000; ++i) {
    SoSFRotation turn;
    turn.setValue(SbRotation(part(dice()), part(dice()), part(dice()), part(dice())));
    const std::string text = textOf(turn);
    const auto back = fieldOf(ValueType::sfRotation, text);
    ASSERT_TRUE(back) << text;
    const float *a = turn.getValue().getValue(), *b = static_cast<SoSFRotation&>(*back).getValue().getValue();
    for (int c = 0; c < 4; ++c) ASSERT_NEAR(a[c], b[c], 4e-7) << text;
  }
}

// What somebody wrote comes out again, not its neighbour seven digits on.
TEST_F(ValueWriter, RotationsKeepTheDigitsOfTheirAngle) {
  for (int i = 1; i < 628; ++i) {
    const float angle = std::stof(std::to_string(i) + "e-2");
    SoSFRotation turn;
    turn.setValue(SbVec3f(0, 1, 0), angle);
    std::string plain = "0 1 0 ";
    tessel::writeNumber(plain, angle);
    EXPECT_EQ(textOf(turn), plain);
  }
}

TEST_F(ValueWriter, StringsOfAnyBytesReadBack) {
  std::uniform_int_distribution<int> byte(1, 255), length(0, 40), odd(0, 3);
  SoMFString strings;
  for (int i = 0; i < 500; ++i) {
    std::string text;
    for (int n = length(dice()); n > 0; --n)
      text += odd(dice()) == 0 ? "\"\\\n]"[byte(dice()) % 4] : static_cast<char>(byte(dice()));
    strings.set1Value(i, text.c_str());
  }
  const auto back = fieldOf(ValueType::mfString, textOf(strings));
  ASSERT_TRUE(back);
  EXPECT_TRUE(*back == strings);
}

TEST_F(ValueWriter, OnOneLineControlCharactersAndWhatIsNoNumberAreShown) {
  const ValueStyle line{.oneLine = true};
  SoSFString text;
  text.setValue("a\nb\tc\r\x1b[2J \"\\n\" \xc3\xbc");
  EXPECT_EQ(textOf(text, line), R"("a\nb\tc\r\x1b[2J \"\\n\" ü")");
  SoMFFloat numbers;
  const float infinity = std::numeric_limits<float>::infinity();
  const float odd[] = {infinity, -infinity, -std::numeric_limits<float>::quiet_NaN()};
  numbers.setValues(0, 3, odd);
  EXPECT_EQ(textOf(numbers, line), "[inf, -inf, nan]");
  EXPECT_EQ(textOf(numbers), "[3.4028235e+38, -3.4028235e+38, 0]");
}

TEST_F(ValueWriter, NodesGoByTheNameThatTheCallerGives) {
  const SoRef<VrmlGroup> group(new VrmlGroup);
  group->addChild(new VrmlGroup);
  group->addChild(new VrmlNULL);
  const ValueStyle style{
      .oneLine = false, .separator = "; ", .node = [](std::string& out, const SoNode& node) {
        out.append("<").append(node.getTypeId().getName().getString()).append(">");
      }};
  EXPECT_EQ(textOf(group->children, style), "[<VrmlGroup>; NULL]");
  VrmlSFNode one;
  EXPECT_EQ(textOf(one, style), "NULL");
  one.setValue(group.get());
  EXPECT_EQ(textOf(one, style), "<VrmlGroup>");
}

}  // namespace
