// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string_view>

#include "script/Token.h"

namespace tessel::script {

/// Cuts the text of a script into tokens. The text must outlive the scanner and its tokens.
class Scanner {
public:
  /// No word or number may be longer.
  static constexpr int tokenLimit = 2048;
  /// So much of a line is shown on each side.
  static constexpr std::size_t lineLimit = 2048;

  explicit Scanner(std::string_view text) : text(text) {}

  Token next();

  /// A token was longer than the limit; it was given as `wrong`.
  bool sawLongToken() const { return tooLong; }
  /// Line ends read so far.
  int line() const { return lines; }
  /// The printable characters around the end of the last token, `lineLimit` to each side at most.
  std::string_view currentLine() const;

private:
  char at(std::size_t i) const { return i < text.size() ? text[i] : '\0'; }
  bool skipBlanks();
  void countLines(std::size_t from, std::size_t to);
  Token number();
  Token string(char quote);
  Token word();
  Token sign();
  Token token(Sign sign, std::size_t length);

  std::string_view text;
  std::size_t position = 0;
  int lines = 0;
  bool tooLong = false;
};

}  // namespace tessel::script
