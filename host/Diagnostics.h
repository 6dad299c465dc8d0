// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <Inventor/errors/SoError.h>

namespace tessel {
struct ScriptReport;
}

namespace tessel::host {

class JsonWriter;

enum class Severity { error, warning, note, script };

/// One complaint about a world.
struct Message {
  Severity severity = Severity::error;
  std::string file;    ///< as the reader names it; the world itself for complaints without a place
  int line = 0;        ///< 0 if the complaint has no line
  std::string text;    ///< on one line, printable
  std::string source;  ///< the class or function that complains, empty for read errors
  int count = 1;       ///< how often it came
};

/// Takes the toolkit's form of a read error apart ("Coin read error: TEXT, Occurred at line N in FILE").
/// `world` is the file where the text names none.
Message parseReadError(std::string_view posted, std::string_view world);

/// The same for a complaint of a live world ("Coin warning in CLASS::FUNCTION(): TEXT"); a warning of the
/// reader bears a place as read errors do.
Message parseLiveComplaint(std::string_view posted, Severity severity, std::string_view world);

/// `FILE:LINE: error: TEXT`, without the line where there is none.
std::string formatted(const Message& message);

/// Listens to the toolkit's read and debug errors, to what scripts give rise to, and to the library's plain texts, for
/// as long as it lives, and reports them on standard error as they come: equal ones once, with their count at the end
/// of the world. At most `maxDistinct` different ones of each severity a world, so that a hostile file can't fill
/// memory or terminal.
class Diagnostics {
public:
  enum class Output { quiet, normal, verbose, collectOnly };
  static constexpr std::size_t maxDistinct = 1000;

  explicit Diagnostics(Output output);
  ~Diagnostics();
  Diagnostics(const Diagnostics&) = delete;
  Diagnostics& operator=(const Diagnostics&) = delete;

  /// Messages from now on are about this world.
  void beginWorld(std::string name);
  /// Prints the counts of repeated messages; `messages()` stays until the next `beginWorld`.
  void endWorld();

  /// A complaint of the program's own about the current world.
  void report(Severity severity, std::string_view text);
  /// The same about a line of another file.
  void report(Severity severity, std::string_view file, int line, std::string_view text);
  /// Progress on long work; printed in verbose mode only.
  void progress(std::string_view text) const;
  /// What is wrong with the surroundings or the usage: `tessel: TEXT`, in every mode.
  void complain(std::string_view text) const;

  /// The current world's messages, in the order of their first appearance.
  const std::vector<Message>& messages() const { return list; }
  bool hasErrors() const { return distinct[static_cast<int>(Severity::error)] > 0; }

  /// The messages as a JSON array.
  void write(JsonWriter& json) const;

private:
  struct Handler {
    SoErrorCB* function;
    void* data;
  };
  using Key = std::tuple<Severity, std::string, int, std::string>;

  static void readErrorCB(const SoError* error, void* self);
  static void liveErrorCB(const SoError* error, void* self);
  static void plainReportCB(std::string_view text, void* self);
  static void scriptReportCB(const ScriptReport& report, void* self);
  void add(Message message);
  bool shown(Severity severity) const;

  Output output;
  Handler oldRead, oldLive;
  std::string world;
  std::vector<Message> list;
  std::map<Key, std::size_t> known;
  long dropped = 0;
  std::array<std::size_t, 4> distinct{};  // by severity
};

}  // namespace tessel::host
