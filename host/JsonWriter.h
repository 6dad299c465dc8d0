// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <concepts>
#include <ostream>
#include <string>
#include <string_view>

#include "Text.h"

namespace tessel::host {

/// Writes JSON with two blanks of indentation. The caller keeps begin and end in pairs; inside an object each
/// value follows its key.
class JsonWriter {
public:
  explicit JsonWriter(std::ostream& stream) : out(stream) {}

  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }

  void key(std::string_view name) {
    separate();
    out << '"' << jsonEscaped(name) << "\": ";
    afterKey = true;
  }
  void value(std::string_view text) {
    separate();
    out << '"' << jsonEscaped(text) << '"';
  }
  void value(const char* text) { value(std::string_view(text)); }
  void value(bool b) {
    separate();
    out << (b ? "true" : "false");
  }
  /// Infinity and nan, which JSON lacks, become null.
  void value(std::floating_point auto number) {
    separate();
    if (number - number == 0)
      out << number;
    else
      out << "null";
  }
  void value(std::integral auto number) {
    separate();
    out << number;
  }
  void member(std::string_view name, const auto& content) {
    key(name);
    value(content);
  }

private:
  void open(char bracket) {
    separate();
    out << bracket;
    ++depth;
    first = true;
  }
  void close(char bracket) {
    --depth;
    if (!first) newLine();
    out << bracket;
    first = false;
    if (depth == 0) out << '\n';
  }
  void separate() {
    if (afterKey) {
      afterKey = false;
      return;
    }
    if (!first) out << ',';
    if (depth > 0) newLine();
    first = false;
  }
  void newLine() { out << '\n' << std::string(2 * static_cast<std::size_t>(depth), ' '); }

  std::ostream& out;
  int depth = 0;
  bool first = true;
  bool afterKey = false;
};

}  // namespace tessel::host
