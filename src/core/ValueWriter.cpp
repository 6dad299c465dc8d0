// SPDX-License-Identifier: BSD-3-Clause
#include "core/ValueWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <type_traits>

#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlNULL.h>

namespace tessel {

namespace {

template <class... Format> void appendChars(std::string& out, Format... format) {
  char text[64];
  out.append(text, std::to_chars(text, text + sizeof text, format...).ptr);
}

template <class Real> void writeReal(std::string& out, Real value, const ValueStyle& style) {
  if (!std::isfinite(value)) {
    if (style.oneLine) {
      out += std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
      return;
    }
    value = std::isnan(value) ? Real(0) : std::copysign(std::numeric_limits<Real>::max(), value);
  }
  // Times are of ten digits and fractions small: nobody reads them well as powers of ten.
  const Real size = std::abs(value);
  if (size == 0 || (size >= Real(1e-5) && size < Real(1e15)))
    appendChars(out, value, std::chars_format::fixed);
  else
    appendChars(out, value);
}

// The number that `digits` significant digits say.
float rounded(double value, int digits) {
  char text[64];
  const char* end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, digits - 1).ptr;
  float result = 0;
  std::from_chars(text, end, result);
  return result;
}

// As many digits as any float needs, and as many as leave an axis of length 1.
constexpr int allDigits = std::numeric_limits<float>::max_digits10, axisDigitsAtLeast = 6;

struct AxisAngle {
  double axis[3];
  double angle;

  SbVec3f axisOf(int digits) const {
    return {rounded(axis[0], digits), rounded(axis[1], digits), rounded(axis[2], digits)};
  }
  SbRotation read(int axisDigits, int angleDigits) const {
    return SbRotation(axisOf(axisDigits), rounded(angle, angleDigits));
  }
};

double lengthOf(const float* q) { return std::hypot(std::hypot(q[0], q[1]), std::hypot(q[2], q[3])); }

double distance(const SbRotation& a, const SbRotation& b) {
  const float *p = a.getValue(), *q = b.getValue();
  const double pLength = lengthOf(p), qLength = lengthOf(q);
  double most = 0;
  for (int i = 0; i < 4; ++i) most = std::max(most, std::abs(p[i] / pLength - q[i] / qLength));
  return most;
}

// The axis of a turn by nothing is lost, and no matter.
AxisAngle axisAngleOf(const SbRotation& rotation) {
  const float* q = rotation.getValue();
  const double sine = std::hypot(double(q[0]), double(q[1]), double(q[2]));
  if (!(sine > 0) || !std::isfinite(sine)) return {{0, 0, 1}, 0};
  const auto direction = [sine](float part) { return part == 0 ? 0 : part / sine; };  // no -0
  return {{direction(q[0]), direction(q[1]), direction(q[2])}, 2 * std::atan2(sine, double(q[3]))};
}

template <class Value> void writeOne(std::string& out, const Value& value, const ValueStyle& style) {
  if constexpr (std::is_same_v<Value, std::int32_t>) {
    writeNumber(out, value);
  } else if constexpr (std::is_arithmetic_v<Value>) {
    writeNumber(out, value, style);
  } else if constexpr (std::is_same_v<Value, SbTime>) {
    writeNumber(out, value.getValue(), style);
  } else if constexpr (std::is_same_v<Value, SbRotation>) {
    writeRotation(out, value, style);
  } else if constexpr (std::is_same_v<Value, SbString>) {
    writeString(out, {value.getString(), static_cast<std::size_t>(value.getLength())}, style);
  } else {
    const float* numbers = nullptr;
    std::size_t count = 0;
    if constexpr (std::is_same_v<Value, SbMatrix>) {
      numbers = value[0];
      count = 16;
    } else {
      numbers = value.getValue();
      count = sizeof(Value) / sizeof(float);
    }
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) out += ' ';
      writeNumber(out, numbers[i], style);
    }
  }
}

void writeNode(std::string& out, const SoNode* node, const ValueStyle& style) {
  if (!node || node->isOfType(VrmlNULL::getClassTypeId()))
    out += "NULL";
  else if (style.node)
    style.node(out, *node);
  else
    out += node->getTypeId().getName().getString();
}

template <class One> void writeList(std::string& out, int count, const ValueStyle& style, One one) {
  out += '[';
  for (int i = 0; i < count; ++i) {
    if (i > 0) out += style.separator;
    one(i);
  }
  out += ']';
}

template <class Field> void writeSingle(std::string& out, const SoField& field, const ValueStyle& style) {
  writeOne(out, static_cast<const Field&>(field).getValue(), style);
}

template <class Field> void writeMultiple(std::string& out, const SoField& f, const ValueStyle& style) {
  const Field& field = static_cast<const Field&>(f);
  const auto* values = field.getValues(0);
  writeList(out, field.getNum(), style, [&](int i) { writeOne(out, values[i], style); });
}

void writeBool(std::string& out, const SoField& field, const ValueStyle&) {
  out += static_cast<const SoSFBool&>(field).getValue() ? "TRUE" : "FALSE";
}

void writeEnum(std::string& out, const SoField& f, const ValueStyle&) {
  // The toolkit gives the names to a field that could be changed.
  SoSFEnum& field = const_cast<SoSFEnum&>(static_cast<const SoSFEnum&>(f));
  for (int i = 0; i < field.getNumEnums(); ++i) {
    SbName name;
    if (field.getEnum(i, name) != field.getValue()) continue;
    out += name.getString();
    return;
  }
}

void writeImage(std::string& out, const SoField& field, const ValueStyle&) {
  SbVec2s size;
  int components = 0;
  const unsigned char* bytes = static_cast<const SoSFImage&>(field).getValue(size, components);
  const int pixels = bytes ? int{size[0]} * size[1] : 0;
  if (pixels == 0) {
    out += "0 0 0";
    return;
  }
  char text[16];
  std::snprintf(text, sizeof text, "%d %d %d", size[0], size[1], components);
  out += text;
  for (int i = 0; i < pixels; ++i) {
    out += " 0x";
    for (int c = 0; c < components; ++c) {
      std::snprintf(text, sizeof text, "%02X", *bytes++);
      out += text;
    }
  }
}

void writeSFNode(std::string& out, const SoField& field, const ValueStyle& style) {
  writeNode(out, static_cast<const SoSFNode&>(field).getValue(), style);
}

void writeMFNode(std::string& out, const SoField& f, const ValueStyle& style) {
  const SoMFNode& field = static_cast<const SoMFNode&>(f);
  writeList(out, field.getNum(), style, [&](int i) { writeNode(out, field[i], style); });
}

void writeChildren(std::string& out, const SoField& field, const ValueStyle& style) {
  const SoChildList* list = static_cast<const VrmlMFChildren&>(field).getValue();
  writeList(out, list ? list->getLength() : 0, style, [&](int i) { writeNode(out, (*list)[i], style); });
}

constexpr auto writers = [] {
  using Writer = void (*)(std::string&, const SoField&, const ValueStyle&);
  std::array<Writer, static_cast<std::size_t>(ValueType::count)> table{};
  auto set = [&](ValueType type, Writer writer) { table[static_cast<std::size_t>(type)] = writer; };
  set(ValueType::sfBool, writeBool);
  set(ValueType::sfColor, writeSingle<SoSFColor>);
  set(ValueType::sfEnum, writeEnum);
  set(ValueType::sfFloat, writeSingle<SoSFFloat>);
  set(ValueType::sfImage, writeImage);
  set(ValueType::sfInt32, writeSingle<SoSFInt32>);
  set(ValueType::sfMatrix, writeSingle<SoSFMatrix>);
  set(ValueType::sfNode, writeSFNode);
  set(ValueType::sfRotation, writeSingle<SoSFRotation>);
  set(ValueType::sfString, writeSingle<SoSFString>);
  set(ValueType::sfTime, writeSingle<SoSFTime>);
  set(ValueType::sfVec2f, writeSingle<SoSFVec2f>);
  set(ValueType::sfVec3f, writeSingle<SoSFVec3f>);
  set(ValueType::mfColor, writeMultiple<SoMFColor>);
  set(ValueType::mfFloat, writeMultiple<SoMFFloat>);
  set(ValueType::mfInt32, writeMultiple<SoMFInt32>);
  set(ValueType::mfNode, writeMFNode);
  set(ValueType::mfRotation, writeMultiple<SoMFRotation>);
  set(ValueType::mfString, writeMultiple<SoMFString>);
  set(ValueType::mfTime, writeMultiple<SoMFTime>);
  set(ValueType::mfVec2f, writeMultiple<SoMFVec2f>);
  set(ValueType::mfVec3f, writeMultiple<SoMFVec3f>);
  set(ValueType::children, writeChildren);
  return table;
}();
static_assert(std::ranges::find(writers, nullptr) == writers.end(), "one writer per type");

}  // namespace

void writeValue(std::string& out, const SoField& field, ValueType type, const ValueStyle& style) {
  writers[static_cast<std::size_t>(type)](out, field, style);
}

void writeNumber(std::string& out, float value, const ValueStyle& style) { writeReal(out, value, style); }
void writeNumber(std::string& out, double value, const ValueStyle& style) { writeReal(out, value, style); }
void writeNumber(std::string& out, std::int32_t value) { appendChars(out, value); }

// A rotation is kept as a quaternion, so axis and angle are found anew, and would come out with last digits that
// nobody wrote. The fewest digits are taken from which the reader comes as near as from all.
void writeRotation(std::string& out, const SbRotation& value, const ValueStyle& style) {
  const AxisAngle exact = axisAngleOf(value);
  const double nearest = distance(exact.read(allDigits, allDigits), value);
  const auto fewest = [nearest](int digits, auto distanceAt) {
    while (digits < allDigits && !(distanceAt(digits) <= nearest)) ++digits;
    return digits;
  };
  const int angleDigits = fewest(1, [&](int n) { return distance(exact.read(allDigits, n), value); });
  const int axisDigits =
      fewest(axisDigitsAtLeast, [&](int n) { return distance(exact.read(n, angleDigits), value); });
  writeOne(out, exact.axisOf(axisDigits), style);
  out += ' ';
  writeNumber(out, rounded(exact.angle, angleDigits), style);
}

void writeString(std::string& out, std::string_view text, const ValueStyle& style) {
  out += '"';
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (!style.oneLine || (code >= 0x20 && code != 0x7f)) {
      out += c;
    } else if (c == '\n' || c == '\t' || c == '\r') {
      out += c == '\n' ? "\\n" : c == '\t' ? "\\t" : "\\r";
    } else {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\x%02x", code);
      out += escape;
    }
  }
  out += '"';
}

}  // namespace tessel
