// SPDX-License-Identifier: BSD-3-Clause
#include "script/StringFormat.h"

#include <algorithm>
#include <cstdio>

#include "core/Effort.h"
#include "script/VsError.h"
#include "script/VsSFString.h"

namespace tessel::script {
namespace {

constexpr std::string_view closingCharacters = "diouxXfeEgGcCsSpn%";
constexpr std::string_view innerCharacters = "0123456789.$-+#*hlL";
constexpr int maxWidth = 1000;

// What stands between % and the closing character. No more of it reaches printf than the flags and two numbers
// within bounds; what would make it look for more arguments, or for others than it is given, is read over.
class Specification {
public:
  explicit Specification(std::string_view inner) {
    int* number = nullptr;
    for (const char c : inner) {
      if (c == '.') {
        precision = 0;
        number = &precision;
      } else if (c == '$') {  // so far it was the number of an argument
        width = 0;
        number = nullptr;
      } else if (c == 'h') {
        ++halvings;
      } else if (c == '-' || c == '+' || c == '#' || (c == '0' && !number)) {
        if (flags.find(c) == flags.npos) flags += c;
      } else if (c >= '0' && c <= '9') {
        if (!number) number = &width;
        *number = std::min(*number * 10 + (c - '0'), maxWidth);
      }
    }
  }

  std::int32_t cut(std::int32_t x) const {
    return halvings == 0 ? x : halvings == 1 ? static_cast<std::int16_t>(x) : static_cast<std::int8_t>(x);
  }

  template <class T> void print(std::string& text, char closing, T argument) const {
    const std::string format = "%" + flags + "*.*" + closing;
    char printed[2 * maxWidth + 400];
    std::snprintf(printed, sizeof printed, format.c_str(), width, precision, argument);
    text += printed;
  }

private:
  std::string flags;
  int width = 0;
  int precision = -1;  // none
  int halvings = 0;
};

void appendSubstitute(std::string& text, std::string_view inner, char closing, const Value& argument) {
  const bool isText = argument.type() == Type::sfString;
  switch (closing) {
    case 'd':
    case 'i':
      if (argument.isScalar()) {
        const Specification specification(inner);
        specification.print(text, 'd', specification.cut(argument.getInt()));
      }
      return;
    case 'e':
    case 'E':
    case 'f':
    case 'g':
    case 'G':
      if (argument.isScalar()) Specification(inner).print(text, closing, argument.getTime());
      return;
    case 'c':
    case 'C':
      if (isText || argument.isScalar()) {
        const std::string scalar = isText ? std::string() : VsSFString::getStringFromScalar(argument);
        const std::string_view characters = isText ? VsSFString::viewOf(argument) : scalar;
        Specification(inner).print(text, 'c', characters.empty() ? 0 : int{characters[0]});
      }
      return;
    case 's':
    case 'S':
      if (isText) {
        text += VsSFString::viewOf(argument);
      } else if (argument.isScalar()) {
        Specification(inner).print(text, 's', VsSFString::getStringFromScalar(argument).c_str());
      }
      return;
    case 'p':
    case 'n':
      return VsError::postRunningLine("Warning: %p and %n are currently ignored in SFString constructore");
    case '%':
      if (inner.empty()) text += '%';
      return;
    default:
      return;
  }
}

}  // namespace

std::string formatted(std::string_view format, Arguments arguments) {
  Effort::addEach(format.size());
  std::string text;
  auto next = arguments.begin();
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') {
      text += format[i];
      continue;
    }
    const std::size_t inner = i + 1;
    i = std::min(format.find_first_not_of(innerCharacters, inner), format.size());
    if (i == format.size()) break;
    if (closingCharacters.find(format[i]) == closingCharacters.npos) {
      text += format[i];
    } else if (next != arguments.end()) {
      appendSubstitute(text, format.substr(inner, i - inner), format[i], **next++);
      if (!VsSFString::mayHave(text.size())) return {};
    }
  }
  Effort::addEach(text.size());
  return VsSFString::mayHave(text.size()) ? text : std::string();
}

}  // namespace tessel::script
