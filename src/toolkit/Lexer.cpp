// SPDX-License-Identifier: BSD-3-Clause
#include "toolkit/Lexer.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace tessel {

namespace {

constexpr std::size_t maxStrictName = 255;
constexpr std::size_t maxName = 1023;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// A number taken apart: value = mantissa * 10^exponent, exact while `digits` is at most 19.
struct Decimal {
  std::uint64_t mantissa = 0;
  int digits = 0;  // significant digits taken into the mantissa
  int exponent = 0;
  bool negative = false;
  bool exact = true;
};

// Takes digits as far as they fit the mantissa. `exponentStep` is 1 behind the point.
const char* takeDigits(const char* p, const char* end, int exponentStep, Decimal& d) {
  for (; p != end && isDigit(*p); ++p) {
    if (d.digits < 19) {
      d.mantissa = d.mantissa * 10 + static_cast<unsigned>(*p - '0');
      if (d.mantissa != 0) ++d.digits;
      d.exponent -= exponentStep;
    } else {
      d.exact = d.exact && *p == '0';
      d.exponent += 1 - exponentStep;
    }
  }
  return p;
}

// Scans a decimal number; null if none stands at `p`, else the position behind it.
const char* scanDecimal(const char* p, const char* end, Decimal& d) {
  if (p != end && (*p == '+' || *p == '-')) d.negative = *p++ == '-';
  // Nearly every number has so few digits that none needs a look at how many there were.
  const char* const first = p;
  std::uint64_t mantissa = 0;
  for (; p != end && isDigit(*p); ++p) mantissa = mantissa * 10 + static_cast<unsigned>(*p - '0');
  const char* const point = p;
  const bool hasPoint = p != end && *p == '.';
  if (hasPoint)
    for (++p; p != end && isDigit(*p); ++p) mantissa = mantissa * 10 + static_cast<unsigned>(*p - '0');
  const auto digits = p - first - (hasPoint ? 1 : 0);
  if (digits == 0) return nullptr;
  if (digits <= 19) {
    d.mantissa = mantissa;
    d.digits = static_cast<int>(digits);
    d.exponent = hasPoint ? static_cast<int>(point + 1 - p) : 0;
  } else {
    takeDigits(first, end, 0, d);
    if (hasPoint) takeDigits(point + 1, end, 1, d);
  }
  if (p != end && (*p == 'e' || *p == 'E')) {
    const char* q = p + 1;
    bool negative = false;
    if (q != end && (*q == '+' || *q == '-')) negative = *q++ == '-';
    if (q != end && isDigit(*q)) {
      int exponent = 0;
      for (; q != end && isDigit(*q); ++q) exponent = std::min(exponent * 10 + (*q - '0'), 100000);
      d.exponent += negative ? -exponent : exponent;
      p = q;
    }
  }
  return p;
}

constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Both factors are exact in the type, so that one rounding gives the nearest value (Clinger, "How to read
// floating point numbers accurately", 1990). False if they are not.
bool fastValue(const Decimal& d, double& out) {
  if (!d.exact || d.mantissa > (std::uint64_t{1} << 53) || d.exponent < -22 || d.exponent > 22) return false;
  const double m = static_cast<double>(d.mantissa);
  out = d.exponent < 0 ? m / powers[-d.exponent] : m * powers[d.exponent];
  return true;
}

// The nearest double rounds to the nearest float unless it lies half way between two, to its own precision.
bool fastValue(const Decimal& d, float& out) {
  double nearest = 0;
  if (!fastValue(d, nearest)) return false;
  constexpr std::uint64_t cutBits = 29, half = std::uint64_t{1} << (cutBits - 1);
  const std::uint64_t rest = std::bit_cast<std::uint64_t>(nearest) & (2 * half - 1);
  if (rest + 1 - half <= 2) return false;
  out = static_cast<float>(nearest);
  return true;
}

template <class T> T valueOf(const Decimal& d, const char* from, const char* to) {
  T value = 0;
  if (d.mantissa == 0) return d.negative ? -value : value;
  if (fastValue(d, value)) return d.negative ? -value : value;
  if (*from == '+' || *from == '-') ++from;
  const auto [p, error] = std::from_chars(from, to, value);
  if (error == std::errc::result_out_of_range)
    value = d.exponent + d.digits > 0 ? std::numeric_limits<T>::max() : T(0);
  return d.negative ? -value : value;
}

}  // namespace

const std::array<std::uint8_t, 256> Lexer::classes = [] {
  std::array<std::uint8_t, 256> table{};
  for (int c = 33; c < 256; ++c) table[static_cast<std::size_t>(c)] = identifierChar;
  for (unsigned char c : {'{', '}', '[', ']', '\'', '"', '#', '\\', '+', '.', ',', '&'}) table[c] = 0;
  for (unsigned char c : {' ', '\t', '\n', '\v', '\f', '\r', ',', '#'}) table[c] |= blank | wordEnd;
  for (unsigned char c : {'{', '}', '[', ']', '"'}) table[c] |= wordEnd;
  for (int c = 'a'; c <= 'z'; ++c) table[static_cast<std::size_t>(c)] |= strictStart | strictChar;
  for (int c = 'A'; c <= 'Z'; ++c) table[static_cast<std::size_t>(c)] |= strictStart | strictChar;
  for (int c = '0'; c <= '9'; ++c) table[static_cast<std::size_t>(c)] |= strictChar;
  table['_'] |= strictStart | strictChar;
  return table;
}();

Lexer::Lexer(std::string_view text, int firstLine, std::size_t start)
    : cursor(text.data() + start),
      end(text.data() + text.size()),
      tokenStart(cursor),
      countedTo(text.data()),
      lineNumber(firstLine),
      hasCR(text.find('\r') != std::string_view::npos) {}

const char* Lexer::lineEnd(const char* from) const {
  const auto left = static_cast<std::size_t>(end - from);
  const auto* lf = static_cast<const char*>(std::memchr(from, '\n', left));
  const char* stop = lf ? lf : end;
  if (hasCR)
    if (const auto* cr =
            static_cast<const char*>(std::memchr(from, '\r', static_cast<std::size_t>(stop - from))))
      return cr;
  return stop;
}

// Goes to the end of the line; false if the text ends first.
bool Lexer::skipRemark() {
  cursor = lineEnd(cursor);
  if (cursor == end) commentCut = true;
  return cursor != end;
}

std::string_view Lexer::strictName() {
  skipSpace();
  const char* p = cursor;
  if (p == end || !(classOf(*p) & strictStart)) return {};
  while (p != end && (classOf(*p) & strictChar)) ++p;
  const std::string_view all(cursor, static_cast<std::size_t>(p - cursor));
  cursor = p;
  return all.substr(0, maxStrictName);
}

std::string_view Lexer::identifier() {
  skipSpace();
  const char* p = cursor;
  while (p != end && (classOf(*p) & identifierChar)) ++p;
  const std::string_view all(cursor, static_cast<std::size_t>(p - cursor));
  cursor = p;
  return all.substr(0, maxName);
}

std::string_view Lexer::name() {
  if (peek() != '"') return identifier();
  if (!quoted(quotedName)) return {};
  return std::string_view(quotedName).substr(0, maxName);
}

std::string_view Lexer::referenceName() {
  const std::string_view plain = name();
  const char* p = cursor;
  if (plain.empty() || plain.data() + plain.size() != p || end - p < 2 || *p != '+' || !isDigit(p[1]))
    return plain;
  for (++p; p != end && isDigit(*p);) ++p;
  cursor = p;
  return {plain.data(), static_cast<std::size_t>(p - plain.data())};
}

bool Lexer::quoted(std::string& out) {
  if (peek() != '"') return false;
  const char* p = cursor + 1;
  out.clear();
  for (;;) {
    const char* from = p;
    while (p != end && *p != '"' && *p != '\\') ++p;
    out.append(from, p);
    if (p == end) return false;
    if (*p == '"') break;
    ++p;  // behind the backslash
    if (p != end && (*p == '"' || *p == '\\'))
      out.push_back(*p++);
    else
      out.push_back('\\');
  }
  cursor = p + 1;
  return true;
}

std::string_view Lexer::word() {
  skipSpace();
  const char* p = cursor;
  while (p != end && !(classOf(*p) & wordEnd)) ++p;
  const std::string_view all(cursor, static_cast<std::size_t>(p - cursor));
  cursor = p;
  return all;
}

bool Lexer::number(float& out) {
  skipSpace();
  Decimal d;
  const char* p = scanDecimal(cursor, end, d);
  if (!p) return false;
  out = valueOf<float>(d, cursor, p);
  cursor = p;
  return true;
}

bool Lexer::number(double& out) {
  skipSpace();
  Decimal d;
  const char* p = scanDecimal(cursor, end, d);
  if (!p) return false;
  out = valueOf<double>(d, cursor, p);
  cursor = p;
  return true;
}

template <class T> bool Lexer::integer(T& out) {
  skipSpace();
  const char* p = cursor;
  bool negative = false;
  if (p != end && (*p == '+' || *p == '-')) negative = *p++ == '-';
  std::uint64_t value = 0;
  if (end - p > 2 && *p == '0' && (p[1] == 'x' || p[1] == 'X')) {
    std::uint32_t bits = 0;
    const auto [q, error] = std::from_chars(p + 2, end, bits, 16);
    if (error != std::errc()) return false;
    out = static_cast<T>(negative ? 0U - bits : bits);
    cursor = q;
    return true;
  }
  const char* first = p;
  for (; p != end && isDigit(*p); ++p) {
    value = value * 10 + static_cast<unsigned>(*p - '0');
    if (value > std::numeric_limits<std::uint32_t>::max()) return false;
  }
  if (p == first) return false;
  const auto signedValue = negative ? -static_cast<std::int64_t>(value) : static_cast<std::int64_t>(value);
  if (signedValue < std::numeric_limits<T>::min() || signedValue > std::numeric_limits<T>::max())
    return false;
  out = static_cast<T>(signedValue);
  cursor = p;
  return true;
}

bool Lexer::number(std::int32_t& out) { return integer(out); }
bool Lexer::number(std::uint32_t& out) { return integer(out); }

// Written for the vectoriser: a token begins where a blank is followed by none. Words of remarks count too,
// so it is an upper bound.
std::size_t Lexer::countToBracket() const {
  const auto* bracket = static_cast<const char*>(std::memchr(cursor, ']', bytesLeft()));
  const auto length = static_cast<std::size_t>((bracket ? bracket : end) - cursor);
  if (length == 0) return 0;
  const auto isBlank = [](char c) {
    return static_cast<unsigned>((c >= 0) & (c <= ' ')) | static_cast<unsigned>(c == ',');
  };
  std::size_t count = 1 - isBlank(cursor[0]);
  constexpr std::size_t blockLength = 128;  // so that a block's count fits a byte
  std::size_t i = 1;
  for (; i + blockLength <= length; i += blockLength) {
    unsigned char inBlock = 0;
    for (std::size_t k = i; k < i + blockLength; ++k)
      inBlock = static_cast<unsigned char>(inBlock + (isBlank(cursor[k - 1]) & (1U - isBlank(cursor[k]))));
    count += inBlock;
  }
  for (; i < length; ++i) count += isBlank(cursor[i - 1]) & (1U - isBlank(cursor[i]));
  return count;
}

int Lexer::linesBetween(const char* from, const char* to) const {
  if (!hasCR) return static_cast<int>(std::count(from, to, '\n'));
  int lines = 0;
  for (const char* p = from; p != to; ++p)
    if (*p == '\n' || (*p == '\r' && (p + 1 == end || p[1] != '\n'))) ++lines;
  return lines;
}

int Lexer::line() {
  if (tokenStart < countedTo)  // a message about something further up: rare
    return lineNumber - linesBetween(tokenStart, countedTo);
  lineNumber += linesBetween(countedTo, tokenStart);
  countedTo = tokenStart;
  return lineNumber;
}

}  // namespace tessel
