// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

class SoError;

namespace tessel::test {

/// Listens to what the toolkit and the library report (read errors, warnings, errors of the live world) from its
/// construction to its end, and keeps it from standard error. Several may be nested: the innermost hears.
/// Expects a started toolkit.
class Messages {
public:
  Messages();
  ~Messages();
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;

  /// The reports in their order, each with the toolkit's prefix and, for read errors, the line that tells where.
  const std::vector<std::string>& all() const { return heard; }
  bool empty() const { return heard.empty(); }
  /// All of them, a line break between two.
  std::string text() const;
  /// How many hold `part`.
  int count(const std::string& part) const;
  void clear() { heard.clear(); }

private:
  /// The handler of one of the toolkit's three sinks.
  struct Handler {
    void (*call)(const SoError*, void*);
    void* data;
  };
  static void hear(const SoError* said, void* self);

  std::vector<std::string> heard;
  Handler error, debugError, readError;  // what they were before
};

}  // namespace tessel::test
