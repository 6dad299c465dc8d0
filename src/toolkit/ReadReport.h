// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace tessel {

class Lexer;

/// Names the text that is being read for as long as the object lives, so that reports find file and line.
/// Reads nest: the innermost counts.
class [[nodiscard]] ReadScope {
public:
  ReadScope(Lexer& lexer, const std::string& fileName);
  ~ReadScope();
  ReadScope(const ReadScope&) = delete;
  ReadScope& operator=(const ReadScope&) = delete;

private:
  friend std::string readLocation();
  Lexer& lexer;
  const std::string& fileName;
  ReadScope* outer;
  static ReadScope* innermost;
};

/// "\n\tOccurred at line %3d in FILE" for the token at hand of the read in progress; empty outside a read.
/// The toolkit's own read errors end in the same words.
std::string readLocation();

/// Posts a read error for a line of a file through SoReadError.
void postReadError(const std::string& fileName, int line, const std::string& text);
/// The same for the token at hand of the read in progress.
void postReadError(const std::string& text);
/// Posts a warning that carries the location of the read in progress, through SoDebugError.
void postReadWarning(const char* where, const std::string& text);
/// The same for a line of a file.
void postReadWarning(const char* where, const std::string& fileName, int line, const std::string& text);

}  // namespace tessel
