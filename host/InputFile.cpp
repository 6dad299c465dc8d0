// SPDX-License-Identifier: BSD-3-Clause
#include "InputFile.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "Diagnostics.h"
#include "WorldFile.h"

namespace tessel::host {
namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

/// Takes the first word off a text.
std::string_view takeWord(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_of(blanks), text.size());
  const std::string_view word = text.substr(0, end);
  text = trimmed(text.substr(end));
  return word;
}

std::string quoted(std::string_view word) { return std::string(1, '"').append(word).append(1, '"'); }

/// Reads a line that is not empty; gives what is wrong with it, or nothing.
std::string parse(std::string_view text, InputLine& out) {
  const std::string_view time = takeWord(text);
  const auto [end, error] = std::from_chars(time.data(), time.data() + time.size(), out.seconds);
  if (error != std::errc() || end != time.data() + time.size() || !std::isfinite(out.seconds) ||
      out.seconds < 0)
    return quoted(time) + " is no time in seconds";
  const std::string action(takeWord(text));
  if (action == "set") {
    out.action = InputLine::Action::set;
    out.target = takeWord(text);
    out.value = text;
    if (out.target.find('.') == std::string::npos) return "\"set\" wants NODE.FIELD and a value";
    return {};
  }
  if (action == "viewpoint") {
    out.action = InputLine::Action::viewpoint;
    out.target = text;
    return text.empty() ? "\"viewpoint\" wants a name" : "";
  }
  for (const char* later : {"move", "press", "release", "go"})
    if (action == later) return quoted(action) + " is not there yet";
  return quoted(action) + " is nothing that can be done";
}

}  // namespace

InputFile InputFile::read(const std::string& path, Diagnostics& diagnostics) {
  InputFile input;
  const WorldFile file = readWorldFile(path);
  input.name = file.name;
  if (!file.readable()) {
    diagnostics.report(Severity::error, input.name, 0, file.failure);
    input.status = ExitStatus::surroundings;
    return input;
  }
  std::string_view rest = file.bytes;
  for (int number = 1; !rest.empty(); ++number) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view text = trimmed(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (text.empty() || text.front() == '#') continue;
    InputLine line;
    line.line = number;
    if (const std::string wrong = parse(text, line); wrong.empty()) {
      input.lines.push_back(std::move(line));
    } else {
      diagnostics.report(Severity::error, input.name, number, wrong);
      input.status = ExitStatus::wrongUsage;
    }
  }
  std::ranges::stable_sort(input.lines, {}, &InputLine::seconds);
  return input;
}

}  // namespace tessel::host
