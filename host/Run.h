// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <tessel/output/EventTrace.h>
#include <tessel/output/NodeNames.h>

#include "InputFile.h"
#include "Stage.h"
#include "Timeline.h"
#include "World.h"

namespace CLI {
class App;
}

namespace tessel::host {

class Diagnostics;
class Fetcher;

/// How the user wants a world to run on the virtual clock.
struct RunOptions {
  double seconds = 0;  ///< how long
  double framesPerSecond = 30;
  double start =
      1000000000;     ///< what the clock shows in frame 0, so that every run begins at the same moment
  std::string input;  ///< file of input lines, empty for none

  void addTo(CLI::App& app);
  /// The number of the last frame; the first is 0.
  std::int64_t lastFrame() const;
};

/// One world on the virtual clock: the same world and input give the same events and pictures every time.
class Run {
public:
  /// Options, input and fetcher must outlive the run. A trace, if there is to be one, goes to standard output.
  Run(const RunOptions& options, const InputFile& input, const std::vector<std::string>& trace, int width,
      int height, Fetcher& fetcher, Diagnostics& diagnostics);

  /// Reads the world, and puts everything in its state before the first frame. What is wrong has been reported
  /// then.
  ExitStatus load(const std::string& path, const ReadOptions& readOptions);
  /// Does a frame; its picture is in the GL context that is current, if `drawn`.
  void frame(std::int64_t number, bool drawn);
  /// To be called behind the last frame: what the run comes to.
  ExitStatus finish();

private:
  // Nodes that hold one another go when the sensors run once more; the first member is the last to go.
  struct LastNodes {
    ~LastNodes();
  } lastNodes;

public:
  Stage stage;

private:
  void print(std::string_view node, std::string_view field, std::string_view value) const;

  const RunOptions& options;
  const InputFile& input;
  Fetcher& fetcher;
  Diagnostics& diagnostics;
  NodeNames names;
  std::unique_ptr<EventTrace> trace;
  Timeline timeline;
  double seconds = 0;  // of the frame at hand, since the start
  bool changed = true;
};

}  // namespace tessel::host
