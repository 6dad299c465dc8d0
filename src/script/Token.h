// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string_view>

namespace tessel::script {

enum class Sign : std::uint8_t {
  end,
  number,
  string,
  identifier,
  // operators
  comma,
  greater,
  greaterEqual,
  equal,
  less,
  lessEqual,
  notEqual,
  shiftRight,
  shiftLeft,
  shiftRightSigned,
  logicalAnd,
  logicalOr,
  assign,
  bitOr,
  bitAnd,
  bitXor,
  plus,
  minus,
  times,
  divide,
  remainder,
  logicalNot,
  dot,
  openBracket,
  closeBracket,
  assignPlus,
  assignMinus,
  assignTimes,
  assignDivide,
  assignRemainder,
  assignShiftLeft,
  assignShiftRight,
  assignShiftRightSigned,
  assignAnd,
  assignXor,
  assignOr,
  question,
  colon,
  complement,
  increment,
  decrement,
  // characters that are tokens
  openParenthesis,
  closeParenthesis,
  openBrace,
  closeBrace,
  semicolon,
  // keywords
  breakWord,
  continueWord,
  elseWord,
  forWord,
  functionWord,
  ifWord,
  inWord,
  newWord,
  returnWord,
  whileWord,
  withWord,
  mathWord,
  browserWord,
  parseIntWord,
  parseFloatWord,
  wrong  ///< a reserved word, any other character, a string or comment without an end
};

struct Token {
  Sign sign = Sign::end;
  std::string_view text;  ///< of an identifier; between the quotes of a string
  double number = 0;
  int line = 0;  ///< line ends before the token
};

}  // namespace tessel::script
