// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tessel {

/// A cursor over the text of a world: it knows white space, names, strings and numbers, and nothing of nodes.
///
/// White space is what isspace tells of, the comma, and comments. Nothing is copied but strings; the text
/// must outlive the lexer. A failed read leaves the cursor at the token that did not fit, which is the one
/// whose line a message gives.
class Lexer {
public:
  /// A cursor at `start`, in a text that begins with the line of that number.
  explicit Lexer(std::string_view text, int firstLine = 1, std::size_t start = 0);

  /// Skips white space and comments.
  void skipSpace() {
    for (; cursor != end && (classOf(*cursor) & blank); ++cursor)
      if (*cursor == '#' && !skipRemark()) break;
    tokenStart = cursor;
  }
  /// The next character that is no white space, -1 at the end. It is not taken.
  int peek() {
    skipSpace();
    return cursor == end ? -1 : static_cast<unsigned char>(*cursor);
  }
  /// Takes the next character if it is `c`.
  bool take(char c) {
    if (peek() != static_cast<unsigned char>(c)) return false;
    ++cursor;
    return true;
  }

  /// A name of letters, digits and underscores that begins with no digit; empty if none stands here.
  /// At most 255 characters are given, the rest is passed over.
  std::string_view strictName();
  /// A name of identifier characters, or a quoted string taken as a name; empty if none stands here.
  /// At most 1023 characters are given, the rest is passed over.
  std::string_view name();
  /// The name behind DEF or USE: `name`, or one that a plain toolkit wrote with its instance number, `Box+3`.
  std::string_view referenceName();
  /// Identifier characters only, as `name` without quotes.
  std::string_view identifier();
  /// A string in quotes. In it `\"` is a quote and `\\` a backslash, any other backslash stands for itself.
  bool quoted(std::string& out);
  /// What stands here up to white space, a brace or a bracket, for messages and unquoted words; may be empty.
  std::string_view word();

  /// Numbers with an optional sign. Beyond the range of the type a fraction saturates, too small is 0.
  /// "nan" and "inf" are no numbers.
  bool number(float& out);
  bool number(double& out);
  /// Decimal or 0x and hexadecimal digits; false if it does not fit 32 bits. Hexadecimal digits are a bit
  /// pattern, so 0xffffffff is -1.
  bool number(std::int32_t& out);
  bool number(std::uint32_t& out);

  /// How many tokens that may be numbers stand before the next `]`, at most; the cursor stays.
  std::size_t countToBracket() const;

  /// Puts the cursor back to where the last token began.
  void putBack() { cursor = tokenStart; }
  const char* position() const { return cursor; }
  std::size_t bytesLeft() const { return static_cast<std::size_t>(end - cursor); }
  bool atEnd() const { return cursor == end; }
  /// Ends the input here.
  void stop() { cursor = end; }

  /// The line of the last token, counted from the first line of the file. Lines end with LF, CR LF or CR.
  int line();
  /// True once the text has ended inside a comment.
  bool endedInComment() const { return commentCut; }

  static bool isIdentifierChar(char c) { return (classOf(c) & identifierChar) != 0; }

private:
  enum CharClass : std::uint8_t {
    blank = 1,           // white space, comma, '#'
    identifierChar = 2,  // may stand in a DEF name
    strictStart = 4,     // may begin a field or type name
    strictChar = 8,      // may stand in one
    wordEnd = 16,        // ends an unquoted word
  };
  static const std::array<std::uint8_t, 256> classes;
  static std::uint8_t classOf(char c) { return classes[static_cast<unsigned char>(c)]; }

  bool skipRemark();
  const char* lineEnd(const char* from) const;
  int linesBetween(const char* from, const char* to) const;
  template <class T> bool integer(T& out);

  const char* cursor;
  const char* end;
  const char* tokenStart;
  const char* countedTo;  // `lineNumber` is the line here
  int lineNumber;
  bool hasCR;
  bool commentCut = false;
  std::string quotedName;
};

}  // namespace tessel
