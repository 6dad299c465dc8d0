// SPDX-License-Identifier: BSD-3-Clause
#include "Diagnostics.h"

#include <charconv>
#include <cstdio>
#include <iostream>

#include <Inventor/errors/SoDebugError.h>
#include <Inventor/errors/SoReadError.h>

#include <tessel/script/ScriptReport.h>
#include <tessel/toolkit/PlainReport.h>

#include "JsonWriter.h"
#include "Text.h"

namespace tessel::host {
namespace {

constexpr const char* severityNames[] = {"error", "warning", "note", "script"};

const char* nameOf(Severity severity) { return severityNames[static_cast<int>(severity)]; }

/// Splits "TEXT, line end, Occurred at line N in FILE" into `message`.
void setTextAndPlace(Message& message, std::string_view posted, std::string_view world) {
  constexpr std::string_view mark = "Occurred at line";
  message.file = world;
  const std::size_t at = posted.rfind(mark);
  if (at != std::string_view::npos && at > 0 && (posted[at - 1] == '\t' || posted[at - 1] == '\n')) {
    std::string_view place = posted.substr(at + mark.size());
    place.remove_prefix(std::min(place.find_first_not_of(' '), place.size()));
    const auto [end, error] = std::from_chars(place.data(), place.data() + place.size(), message.line);
    if (error == std::errc())
      place.remove_prefix(static_cast<std::size_t>(end - place.data()));
    else
      message.line = 0;
    if (place.starts_with(" in ")) {
      const std::string_view file = place.substr(
          4, place.find('\n') == std::string_view::npos ? std::string_view::npos : place.find('\n') - 4);
      if (!file.empty()) message.file = file;
    }
    posted = posted.substr(0, at);
  }
  const std::size_t last = posted.find_last_not_of(" \t\r\n");
  message.text = printable(posted.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

/// Complaints of the toolkit that mean nothing to who looks at a world: it asks GLX about a context made by
/// EGL.
bool isNoise(const Message& message) { return message.source.starts_with("glxglue_isdirect"); }

}  // namespace

Message parseReadError(std::string_view posted, std::string_view world) {
  constexpr std::string_view prefix = "Coin read error: ";
  if (posted.starts_with(prefix)) posted.remove_prefix(prefix.size());
  Message message;
  setTextAndPlace(message, posted, world);
  return message;
}

Message parseLiveComplaint(std::string_view posted, Severity severity, std::string_view world) {
  Message message;
  message.severity = severity;
  // "Coin warning in SOURCE(): TEXT", with "error" and "info" alike.
  const std::size_t in = posted.find(" in "), colon = posted.find("(): ");
  if (posted.starts_with("Coin ") && in != std::string_view::npos && colon != std::string_view::npos &&
      in < colon) {
    message.source = printable(posted.substr(in + 4, colon - in - 4));
    posted.remove_prefix(colon + 4);
  }
  setTextAndPlace(message, posted, world);
  return message;
}

std::string formatted(const Message& message) {
  std::string out = printable(message.file);
  if (message.line > 0) out += ':' + std::to_string(message.line);
  return out + ": " + nameOf(message.severity) + ": " + message.text;
}

Diagnostics::Diagnostics(Output o)
    : output(o),
      oldRead{SoReadError::getHandlerCallback(), SoReadError::getHandlerData()},
      oldLive{SoDebugError::getHandlerCallback(), SoDebugError::getHandlerData()} {
  SoReadError::setHandlerCallback(readErrorCB, this);
  SoDebugError::setHandlerCallback(liveErrorCB, this);
  setPlainReportHandler(plainReportCB, this);
  setScriptReportHandler(scriptReportCB, this);
}

Diagnostics::~Diagnostics() {
  SoReadError::setHandlerCallback(oldRead.function, oldRead.data);
  SoDebugError::setHandlerCallback(oldLive.function, oldLive.data);
  setPlainReportHandler(nullptr, nullptr);
  setScriptReportHandler(nullptr, nullptr);
}

void Diagnostics::beginWorld(std::string name) {
  world = std::move(name);
  list.clear();
  known.clear();
  dropped = 0;
  distinct = {};
}

void Diagnostics::endWorld() {
  for (const Message& message : list)
    if (message.count > 1 && shown(message.severity))
      std::cerr << formatted(message) << " (" << message.count << " times)\n";
  if (dropped > 0 && shown(Severity::warning))
    std::cerr << printable(world) << ": note: " << counted(dropped, "further message") << " not shown\n";
}

void Diagnostics::report(Severity severity, std::string_view text) { report(severity, world, 0, text); }

void Diagnostics::report(Severity severity, std::string_view file, int line, std::string_view text) {
  Message message;
  message.severity = severity;
  message.file = file;
  message.line = line;
  message.text = printable(text);
  add(std::move(message));
}

void Diagnostics::progress(std::string_view text) const {
  if (output == Output::verbose) std::cerr << printable(world) << ": " << text << '\n';
}

void Diagnostics::complain(std::string_view text) const {
  std::cerr << "tessel: " << printable(text) << '\n';
}

void Diagnostics::write(JsonWriter& json) const {
  json.beginArray();
  for (const Message& message : list) {
    json.beginObject();
    json.member("severity", nameOf(message.severity));
    json.member("file", message.file);
    if (message.line > 0) json.member("line", message.line);
    json.member("text", message.text);
    if (!message.source.empty()) json.member("source", message.source);
    json.member("count", message.count);
    json.endObject();
  }
  json.endArray();
}

void Diagnostics::readErrorCB(const SoError* error, void* self) {
  auto& diagnostics = *static_cast<Diagnostics*>(self);
  diagnostics.add(parseReadError(error->getDebugString().getString(), diagnostics.world));
}

void Diagnostics::liveErrorCB(const SoError* error, void* self) {
  auto& diagnostics = *static_cast<Diagnostics*>(self);
  // Whatever is wrong with a live world leaves it running, so it is at most a warning about that world.
  const bool info = static_cast<const SoDebugError*>(error)->getSeverity() == SoDebugError::INFO;
  const Severity severity = info ? Severity::note : Severity::warning;
  diagnostics.add(parseLiveComplaint(error->getDebugString().getString(), severity, diagnostics.world));
}

void Diagnostics::plainReportCB(std::string_view text, void* self) {
  text = text.substr(0, text.find_last_not_of('\n') + 1);
  static_cast<Diagnostics*>(self)->report(Severity::warning, text);
}

void Diagnostics::scriptReportCB(const ScriptReport& report, void* self) {
  auto& diagnostics = *static_cast<Diagnostics*>(self);
  Message message;
  const bool unread = report.kind == ScriptReportKind::parse || report.kind == ScriptReportKind::longToken;
  message.severity = unread ? Severity::error : Severity::script;
  message.file = report.file.empty() ? std::string_view(diagnostics.world) : report.file;
  message.line = report.file.empty() ? 0 : report.line;
  message.text = printable(report.message);
  message.source = report.script.empty() ? "Script" : printable(report.script);
  diagnostics.add(std::move(message));
}

void Diagnostics::add(Message message) {
  if (isNoise(message)) return;
  const auto [at, isNew] =
      known.try_emplace(Key(message.severity, message.file, message.line, message.text), list.size());
  if (!isNew) {
    ++list[at->second].count;
    return;
  }
  if (std::size_t& n = distinct[static_cast<int>(message.severity)]; n < maxDistinct) {
    ++n;
  } else {
    known.erase(at);
    ++dropped;
    return;
  }
  if (shown(message.severity)) {
    std::cerr << formatted(message);
    if (output == Output::verbose && !message.source.empty()) std::cerr << " [" << message.source << ']';
    std::cerr << '\n';
  }
  list.push_back(std::move(message));
}

bool Diagnostics::shown(Severity severity) const {
  switch (output) {
    case Output::collectOnly:
      return false;
    case Output::quiet:
      return severity == Severity::error;
    case Output::normal:
      return severity != Severity::note;
    case Output::verbose:
      return true;
  }
  return true;
}

}  // namespace tessel::host
