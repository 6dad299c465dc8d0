// SPDX-License-Identifier: BSD-3-Clause
#include "script/Scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string>

#include "script/CLocale.h"

namespace tessel::script {
namespace {

struct Word {
  std::string_view text;
  Sign sign;
};

// By their first characters; longer signs stand before those that they begin with.
constexpr Word signs[] = {
    {">>>=", Sign::assignShiftRightSigned},
    {">>>", Sign::shiftRightSigned},
    {">>=", Sign::assignShiftRight},
    {">=", Sign::greaterEqual},
    {">>", Sign::shiftRight},
    {">", Sign::greater},
    {"<<=", Sign::assignShiftLeft},
    {"<=", Sign::lessEqual},
    {"<<", Sign::shiftLeft},
    {"<", Sign::less},
    {"==", Sign::equal},
    {"=", Sign::assign},
    {"!=", Sign::notEqual},
    {"!", Sign::logicalNot},
    {"&&", Sign::logicalAnd},
    {"&=", Sign::assignAnd},
    {"&", Sign::bitAnd},
    {"||", Sign::logicalOr},
    {"|=", Sign::assignOr},
    {"|", Sign::bitOr},
    {"+=", Sign::assignPlus},
    {"++", Sign::increment},
    {"+", Sign::plus},
    {"-=", Sign::assignMinus},
    {"--", Sign::decrement},
    {"-", Sign::minus},
    {"*=", Sign::assignTimes},
    {"*", Sign::times},
    {"/=", Sign::assignDivide},
    {"/", Sign::divide},
    {"%=", Sign::assignRemainder},
    {"%", Sign::remainder},
    {"^=", Sign::assignXor},
    {"^", Sign::bitXor},
    {",", Sign::comma},
    {".", Sign::dot},
    {"[", Sign::openBracket},
    {"]", Sign::closeBracket},
    {"?", Sign::question},
    {":", Sign::colon},
    {"~", Sign::complement},
    {"(", Sign::openParenthesis},
    {")", Sign::closeParenthesis},
    {"{", Sign::openBrace},
    {"}", Sign::closeBrace},
    {";", Sign::semicolon},
};

// Where the signs begin that begin with a character.
constexpr auto signsFrom = [] {
  std::array<std::uint8_t, 256> first{};
  first.fill(std::size(signs));
  for (std::size_t i = std::size(signs); i-- > 0;)
    first[static_cast<unsigned char>(signs[i].text[0])] = static_cast<std::uint8_t>(i);
  return first;
}();

// In alphabetical order. Words that the language keeps for itself are wrong wherever they stand; the two truth
// values are numbers.
constexpr Word words[] = {{"Browser", Sign::browserWord},
                          {"FALSE", Sign::number},
                          {"Math", Sign::mathWord},
                          {"TRUE", Sign::number},
                          {"abstract", Sign::wrong},
                          {"boolean", Sign::wrong},
                          {"break", Sign::breakWord},
                          {"byte", Sign::wrong},
                          {"case", Sign::wrong},
                          {"catch", Sign::wrong},
                          {"char", Sign::wrong},
                          {"class", Sign::wrong},
                          {"const", Sign::wrong},
                          {"continue", Sign::continueWord},
                          {"default", Sign::wrong},
                          {"do", Sign::wrong},
                          {"double", Sign::wrong},
                          {"else", Sign::elseWord},
                          {"extends", Sign::wrong},
                          {"false", Sign::number},
                          {"final", Sign::wrong},
                          {"finally", Sign::wrong},
                          {"float", Sign::wrong},
                          {"for", Sign::forWord},
                          {"function", Sign::functionWord},
                          {"goto", Sign::wrong},
                          {"if", Sign::ifWord},
                          {"implements", Sign::wrong},
                          {"import", Sign::wrong},
                          {"in", Sign::inWord},
                          {"instanceof", Sign::wrong},
                          {"int", Sign::wrong},
                          {"interface", Sign::wrong},
                          {"long", Sign::wrong},
                          {"native", Sign::wrong},
                          {"new", Sign::newWord},
                          {"null", Sign::wrong},
                          {"package", Sign::wrong},
                          {"parseFloat", Sign::parseFloatWord},
                          {"parseInt", Sign::parseIntWord},
                          {"private", Sign::wrong},
                          {"protected", Sign::wrong},
                          {"public", Sign::wrong},
                          {"return", Sign::returnWord},
                          {"short", Sign::wrong},
                          {"static", Sign::wrong},
                          {"super", Sign::wrong},
                          {"switch", Sign::wrong},
                          {"synchronized", Sign::wrong},
                          {"this", Sign::wrong},
                          {"throw", Sign::wrong},
                          {"throws", Sign::wrong},
                          {"transient", Sign::wrong},
                          {"true", Sign::number},
                          {"try", Sign::wrong},
                          {"var", Sign::wrong},
                          {"void", Sign::wrong},
                          {"while", Sign::whileWord},
                          {"with", Sign::withWord}};
static_assert(std::is_sorted(std::begin(words), std::end(words),
                             [](const Word& a, const Word& b) { return a.text < b.text; }));

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isOctal(char c) { return c >= '0' && c <= '7'; }
constexpr bool isHexadecimal(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
constexpr bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r'; }
constexpr bool isPrintable(char c) { return c >= ' ' && c <= '~'; }

// What does not fit ends at the limit.
double integerOf(std::string_view digits, int base) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (error == std::errc::result_out_of_range) value = std::numeric_limits<std::int64_t>::max();
  return static_cast<double>(value);
}

double decimalOf(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {  // nothing or without end: this one says which
    const CLocale pointsInNumbers;
    value = std::strtod(std::string(text).c_str(), nullptr);
  }
  return value;
}

}  // namespace

Token Scanner::next() {
  if (!skipBlanks()) return token(Sign::wrong, text.size() - position);
  if (position == text.size()) return token(Sign::end, 0);
  const char c = text[position];
  if (c == '"' || c == '\'') return string(c);
  if (isDigit(c) || (c == '.' && isDigit(at(position + 1)))) return number();
  if (isLetter(c)) return word();
  return sign();
}

// Blanks and comments. False at a comment without an end.
bool Scanner::skipBlanks() {
  while (position < text.size()) {
    const std::size_t start = position;
    if (isBlank(text[position])) {
      while (isBlank(at(position))) ++position;
    } else if (text.compare(position, 2, "//") == 0) {
      position = std::min(text.find('\n', position), text.size());
    } else if (text.compare(position, 2, "/*") == 0) {
      const std::size_t end = text.find("*/", position + 2);
      if (end == text.npos) return false;
      position = end + 2;
    } else {
      break;
    }
    countLines(start, position);
  }
  return true;
}

void Scanner::countLines(std::size_t from, std::size_t to) {
  for (std::size_t i = from; i < to; ++i) lines += text[i] == '\n' || text[i] == '\f';
}

Token Scanner::token(Sign sign, std::size_t length) {
  Token token{sign, text.substr(position, length), 0, lines};
  countLines(position, position + length);
  position += length;
  const bool isWord = sign == Sign::number || sign == Sign::identifier;
  if (isWord && length > tokenLimit) {
    tooLong = true;
    token.sign = Sign::wrong;
  }
  return token;
}

// The longest of the octal, hexadecimal and decimal forms; an octal form that is as long as the decimal one wins.
Token Scanner::number() {
  std::size_t octal = position + 1;
  while (isOctal(at(octal))) ++octal;
  std::size_t decimal = position;
  while (isDigit(at(decimal))) ++decimal;
  const bool leadsWithDigit = decimal > position;
  if (at(decimal) == '.') {
    ++decimal;
    while (isDigit(at(decimal))) ++decimal;
  }
  if (leadsWithDigit && (at(decimal) == 'e' || at(decimal) == 'E')) {
    std::size_t exponent = decimal + 1;
    if (at(exponent) == '+' || at(exponent) == '-') ++exponent;
    if (isDigit(at(exponent))) {
      decimal = exponent;
      while (isDigit(at(decimal))) ++decimal;
    }
  }

  const std::string_view rest = text.substr(position);
  if (rest[0] == '0') {
    if ((at(position + 1) == 'x' || at(position + 1) == 'X') && isHexadecimal(at(position + 2))) {
      std::size_t end = position + 2;
      while (isHexadecimal(at(end))) ++end;
      Token result = token(Sign::number, end - position);
      result.number = integerOf(rest.substr(2, result.text.size() - 2), 16);
      return result;
    }
    if (octal == decimal && octal > position + 1) {
      Token result = token(Sign::number, octal - position);
      result.number = integerOf(result.text, 8);
      return result;
    }
  }
  Token result = token(Sign::number, decimal - position);
  result.number = decimalOf(result.text);
  return result;
}

Token Scanner::string(char quote) {
  const std::size_t end = text.find(quote, position + 1);
  if (end == text.npos) return token(Sign::wrong, text.size() - position);
  Token result = token(Sign::string, end + 1 - position);
  result.text = result.text.substr(1, result.text.size() - 2);
  return result;
}

Token Scanner::word() {
  std::size_t end = position;
  while (isLetter(at(end)) || isDigit(at(end))) ++end;
  const std::string_view spelled = text.substr(position, end - position);
  const auto* found = std::lower_bound(std::begin(words), std::end(words), spelled,
                                       [](const Word& a, std::string_view b) { return a.text < b; });
  const bool isKnown = found != std::end(words) && found->text == spelled;
  Token result = token(isKnown ? found->sign : Sign::identifier, spelled.size());
  if (result.sign == Sign::number) result.number = spelled == "true" || spelled == "TRUE";
  return result;
}

Token Scanner::sign() {
  const std::string_view rest = text.substr(position);
  for (std::size_t i = signsFrom[static_cast<unsigned char>(rest[0])];
       i < std::size(signs) && signs[i].text[0] == rest[0]; ++i)
    if (rest.starts_with(signs[i].text)) return token(signs[i].sign, signs[i].text.size());
  return token(Sign::wrong, 1);
}

std::string_view Scanner::currentLine() const {
  std::size_t begin = position;
  while (begin > 0 && begin + lineLimit > position && isPrintable(text[begin - 1])) --begin;
  std::size_t end = position;
  while (end < position + lineLimit && isPrintable(at(end))) ++end;
  return text.substr(begin, end - begin);
}

}  // namespace tessel::script
