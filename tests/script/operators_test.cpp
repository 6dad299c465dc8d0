// SPDX-License-Identifier: BSD-3-Clause
// Every operator on every pair of types, by the rules that tell its result.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "script/ScriptRun.h"

using namespace tessel::test;

namespace {

enum class Kind { number, text, vector };

struct Operand {
  const char* source;
  const char* type;
  Kind kind;
  double number;
  const char* text;   // in a sum of texts
  const char* whole;  // in a comparison of texts
};

// Numbers in the order in which the later type is the result's.
constexpr Operand operands[] = {
    {"(1 < 2)", "SFBool", Kind::number, 1, "true", "1"},
    {"parseInt('7')", "SFInt32", Kind::number, 7, "7", "7"},
    {"parseFloat('2.5')", "SFFloat", Kind::number, 2.5, "2.5", "2"},
    {"3.75", "SFTime", Kind::number, 3.75, "3.75", "3"},
    {"'2.5'", "SFString", Kind::text, 0, "2.5", "2.5"},
    {"new SFVec2f(1, 2)", "SFVec2f", Kind::vector, 0, "", ""},
    {"new SFVec3f(1, 2, 3)", "SFVec3f", Kind::vector, 0, "", ""},
    {"new SFColor(1, 0, 0)", "SFColor", Kind::vector, 0, "", ""},
    {"new SFRotation(1, 0, 0, 1)", "SFRotation", Kind::vector, 0, "", ""},
};

template <class Result> struct Operator {
  const char* sign;
  Result (*of)(double, double);
};

std::uint32_t bits(double x) { return static_cast<std::uint32_t>(x); }

constexpr Operator<double> arithmetic[] = {
    {"+", [](double a, double b) { return a + b; }},
    {"-", [](double a, double b) { return a - b; }},
    {"*", [](double a, double b) { return a * b; }},
    {"/", [](double a, double b) { return a / b; }},
    {"%", [](double a, double b) { return static_cast<double>(bits(a) % bits(b)); }},
    {"&", [](double a, double b) { return static_cast<double>(bits(a) & bits(b)); }},
    {"|", [](double a, double b) { return static_cast<double>(bits(a) | bits(b)); }},
    {"^", [](double a, double b) { return static_cast<double>(bits(a) ^ bits(b)); }},
    {"<<", [](double a, double b) { return static_cast<double>(bits(a) << bits(b)); }},
    {">>", [](double a, double b) { return static_cast<double>(bits(a) >> bits(b)); }},
    {">>>", [](double a, double b) { return static_cast<double>(bits(a) >> bits(b)); }},
};

constexpr Operator<bool> comparisons[] = {
    {"==", [](double a, double b) { return a == b; }}, {"!=", [](double a, double b) { return a != b; }},
    {"<", [](double a, double b) { return a < b; }},   {"<=", [](double a, double b) { return a <= b; }},
    {">", [](double a, double b) { return a > b; }},   {">=", [](double a, double b) { return a >= b; }},
};

constexpr const char* badArithOp = "Attempt to apply invalid arithmetic operator to a string";
constexpr const char* arithType = "Attempt to apply arithmetic operator to values of the wrong type";
constexpr const char* logicType = "Attempt to apply logical operator to values of the wrong type";

struct Outcome {
  std::string value;
  std::string report;
};

Outcome outcomeOf(const std::string& expression) {
  const ScriptReports reports;
  Outcome outcome{resultOf("function test() { a = 1; return " + expression + "; }"), {}};
  for (const std::string& message : reports.messages()) outcome.report += message;
  return outcome;
}

void expectReport(const std::string& expression, const char* report) {
  const Outcome outcome = outcomeOf(expression);
  EXPECT_EQ(outcome.value, "none") << expression;
  EXPECT_EQ(outcome.report, report) << expression;
}

void expectValue(const std::string& expression, const std::string& value) {
  const Outcome outcome = outcomeOf(expression);
  EXPECT_EQ(outcome.value, value) << expression;
  EXPECT_EQ(outcome.report, "") << expression;
}

// As near as the coarser of the types tells it.
void expectNumber(const std::string& expression, const std::string& type, double number) {
  const Outcome outcome = outcomeOf(expression);
  EXPECT_EQ(outcome.report, "") << expression;
  if (type == "SFBool") number = number != 0;
  if (type == "SFInt32") number = static_cast<std::int32_t>(number);
  ASSERT_TRUE(outcome.value.starts_with(type + " ")) << expression << " is " << outcome.value;
  const std::string digits = outcome.value.substr(type.size() + 1);
  const double heard = digits == "true" ? 1 : std::atof(digits.c_str());
  EXPECT_NEAR(heard, number, 1e-6) << expression;
}

const char* asText(bool truth) { return truth ? "SFBool true" : "SFBool false"; }

template <class Check> void forPairs(Check check) {
  for (const Operand& a : operands)
    for (const Operand& b : operands) check(a, b, std::max(a.kind, b.kind));
}

std::string join(const Operand& a, const char* sign, const Operand& b) {
  return std::string(a.source) + ' ' + sign + ' ' + b.source;
}

TEST(ScriptOperators, CalculateWithNumbersAndJoinTexts) {
  for (const auto& op : arithmetic) {
    forPairs([&](const Operand& a, const Operand& b, Kind kind) {
      const std::string expression = join(a, op.sign, b);
      if (kind == Kind::number) {
        expectNumber(expression, std::max(&a, &b)->type, op.of(a.number, b.number));
      } else if (kind == Kind::vector) {
        expectReport(expression, arithType);
      } else if (op.sign != std::string("+")) {
        expectReport(expression, badArithOp);
      } else {
        expectValue(expression, std::string("SFString ") + a.text + b.text);
      }
    });
  }
}

TEST(ScriptOperators, CompareNumbersAndTextsAndNothingElse) {
  for (const auto& op : comparisons) {
    forPairs([&](const Operand& a, const Operand& b, Kind kind) {
      const std::string expression = join(a, op.sign, b);
      if (kind == Kind::vector) return expectReport(expression, logicType);
      const int order = std::string(a.whole).compare(b.whole);
      expectValue(expression, asText(kind == Kind::number ? op.of(a.number, b.number) : op.of(order, 0)));
    });
  }
}

// Each operand is true here, or no number; the second one of || is never looked at.
TEST(ScriptOperators, TakeNumbersForTruths) {
  forPairs([&](const Operand& a, const Operand& b, Kind kind) {
    if (kind == Kind::number) {
      expectValue(join(a, "&&", b), "SFBool true");
    } else {
      expectReport(join(a, "&&", b), logicType);
    }
    if (a.kind == Kind::number) {
      expectValue(join(a, "||", b), "SFBool true");
    } else {
      expectReport(join(a, "||", b), logicType);
    }
  });
}

TEST(ScriptOperators, ChangeOneNumber) {
  for (const Operand& a : operands) {
    const std::string source = a.source;
    const std::string variable = "(a = " + source + ", ";
    if (a.kind == Kind::number) {
      expectNumber("-" + source, a.type, -a.number);
      expectNumber("~" + source, a.type, ~static_cast<std::int32_t>(a.number));
      expectValue("!" + source, "SFBool false");
      expectNumber(variable + "a++, a)", a.type, a.number + 1);
      expectNumber(variable + "--a)", a.type, a.number - 1);
      expectNumber(variable + "a--)", a.type, a.number);
      expectValue(source + " ? 1 : 2", "SFTime 1");
    } else {
      const char* unary = "Attempt to apply unary arithmetic operator to a non-numeric value";
      expectReport("-" + source, unary);
      expectReport("~" + source, unary);
      expectReport("!" + source, "Attempt to apply unary logical operator to a non-numeric value");
      expectReport(variable + "++a)", "Attempt to apply increment/decrement operator to a non-numeric value");
      expectReport("new SFVec2f(1, 2)[" + source + "]", "Array index must be a scalar value");
      expectValue(source + " ? 1 : 2", "SFTime 2");
    }
    if (a.kind != Kind::vector)
      expectReport(source + "[0]", "Attempt to get element of a value that is not an array");
  }
}

}  // namespace
