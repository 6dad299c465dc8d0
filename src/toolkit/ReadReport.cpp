// SPDX-License-Identifier: BSD-3-Clause
#include "toolkit/ReadReport.h"

#include <cstdio>
#include <string_view>

#include <Inventor/SbString.h>
#include <Inventor/SoInput.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/errors/SoReadError.h>

#include "toolkit/Lexer.h"

namespace tessel {

namespace {

std::string occurredAt(const std::string& fileName, int line) {
  char number[32];
  std::snprintf(number, sizeof number, "%3d", line);
  return std::string("\n\tOccurred at line ") + number + " in " + fileName;
}

// Carries our location into the toolkit's read errors, which ask an input for it and put it on a line of its own.
// They ask for its version too: without a text of its own it would look for a header in standard input, and wait there.
class LocatedInput : public SoInput {
public:
  explicit LocatedInput(const std::string& text)
      : location(text.starts_with('\n') ? text.c_str() + 1 : text.c_str()) {
    static constexpr std::string_view header = "#Inventor V2.1 ascii\n";
    setBuffer(header.data(), header.size());
  }
  void getLocationString(SbString& text) const override { text = location; }

private:
  SbString location;
};

void post(const std::string& location, const std::string& text) {
  const LocatedInput where(location);
  SoReadError::post(&where, "%s", text.c_str());
}

}  // namespace

ReadScope* ReadScope::innermost = nullptr;

ReadScope::ReadScope(Lexer& l, const std::string& f) : lexer(l), fileName(f), outer(innermost) {
  innermost = this;
}
ReadScope::~ReadScope() { innermost = outer; }

std::string readLocation() {
  const ReadScope* scope = ReadScope::innermost;
  return scope ? occurredAt(scope->fileName, scope->lexer.line()) : std::string();
}

void postReadError(const std::string& fileName, int line, const std::string& text) {
  post(occurredAt(fileName, line), text);
}

void postReadError(const std::string& text) { post(readLocation(), text); }

void postReadWarning(const char* where, const std::string& fileName, int line, const std::string& text) {
  SoDebugError::postWarning(where, "%s%s", text.c_str(), occurredAt(fileName, line).c_str());
}

void postReadWarning(const char* where, const std::string& text) {
  SoDebugError::postWarning(where, "%s%s", text.c_str(), readLocation().c_str());
}

}  // namespace tessel
