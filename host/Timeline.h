// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

#include <tessel/output/NodeNames.h>

#include "InputFile.h"

namespace tessel::host {

class Diagnostics;
class Fetcher;
class Stage;

/// The course of a world on show. A frame is, in this order: answers to what the world has asked for, input lines
/// that are due, the clock, the queues of the toolkit, and, where it is shown, drawing.
class Timeline {
public:
  Timeline(Stage& s, Fetcher& f) : stage(s), fetcher(f) {}

  /// Input for the virtual clock, by the names of the world's nodes. All must outlive the timeline.
  void setInput(const InputFile& input, NodeNames& names, Diagnostics& diagnostics);

  /// Begins a frame on the wall clock, which the toolkit's timers drive.
  void advance();
  /// Begins a frame on the virtual clock, so many seconds after its start.
  void advanceTo(double seconds, double start);
  /// Ends a frame: draws it.
  void draw();

  /// Whether all input lines that were due have made sense.
  bool inputMadeSense() const { return !inputFailed; }

private:
  void takeInput(double seconds);

  Stage& stage;
  Fetcher& fetcher;
  const InputFile* input = nullptr;
  NodeNames* names = nullptr;
  Diagnostics* diagnostics = nullptr;
  std::size_t nextLine = 0;
  bool inputFailed = false;
};

}  // namespace tessel::host
