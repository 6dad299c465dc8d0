// SPDX-License-Identifier: BSD-3-Clause
#include "Text.h"

#include <cstdio>

namespace tessel::host {
namespace {

/// Length of the well-formed UTF-8 sequence at the start of `text`, 0 if there is none.
std::size_t utf8Length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xc2 ? 0
                             : lead < 0xe0 ? 2
                             : lead < 0xf0 ? 3
                             : lead < 0xf5 ? 4
                                           : 0;
  if (length == 0 || length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xc0) != 0x80) return 0;
  // Overlong forms, surrogates and what lies beyond the last plane show in the second byte.
  const bool malformed = (lead == 0xe0 && byte(1) < 0xa0) || (lead == 0xed && byte(1) > 0x9f) ||
                         (lead == 0xf0 && byte(1) < 0x90) || (lead == 0xf4 && byte(1) > 0x8f);
  return malformed ? 0 : length;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n' || c == '\t' || c == '\r') {
      if (out.empty() || out.back() != ' ') out += ' ';
    } else if (byte < 32 || byte == 127) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\x%02x", byte);
      out += escape;
    } else {
      out += c;
    }
  }
  return out;
}

std::string jsonEscaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    const std::size_t length = utf8Length(text.substr(i));
    if (length == 0) {
      out += "\xef\xbf\xbd";
    } else if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (static_cast<unsigned char>(c) < 32) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", c);
      out += escape;
    } else {
      out += text.substr(i, length);
    }
    i += length ? length : 1;
  }
  return out;
}

std::string counted(long long count, std::string_view noun) {
  std::string out = std::to_string(count) + ' ' + std::string(noun);
  if (count != 1) out += 's';
  return out;
}

}  // namespace tessel::host
