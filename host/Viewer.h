// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>
#include <string>

#include "FileWatch.h"
#include "Navigation.h"
#include "Stage.h"
#include "Timeline.h"
#include "World.h"
#include "gl/Window.h"

namespace tessel::host {

class Diagnostics;
class Fetcher;

/// A world in a window, with mouse and keyboard. Draws only when something changed.
class Viewer {
public:
  /// `path` is where the world came from and is read again from; `-` can't be.
  Viewer(Window& window, std::string path, const World& world, const ReadOptions& options, Fetcher& fetcher,
         Diagnostics& diagnostics);

  /// Runs until the window is closed.
  void run();

private:
  using Clock = std::chrono::steady_clock;

  void handle(const WindowEvent& event);
  void handleKey(const WindowEvent& event);
  void drag(const WindowEvent& event);
  void turnWheel(float notches);
  void prepareNavigation();
  void show(const World& world);
  void reload(bool asked);
  void checkFile();
  void showTitle();
  void setMode(Navigation::Mode mode);
  /// A way in pixels in parts of the window's smaller side.
  SbVec2f wayTo(const WindowEvent& event) const;
  double secondsToSleep() const;

  Window& window;
  std::string path;
  ReadOptions options;
  Fetcher& fetcher;
  Diagnostics& diagnostics;
  Stage stage;
  Timeline timeline{stage, fetcher};
  Navigation navigation;
  FileWatch watch;
  Clock::time_point nextLook;   // at the file
  Clock::time_point nextFrame;  // not before
  std::string title;            // of the world
  int missing = 0;              // files, as the window's title tells
  int pivotOf = -1;             // the viewpoint in whose frame the pivot is, -1 for a new world
  int lastX = 0, lastY = 0;
  bool dirty = true;
  bool closed = false;
};

}  // namespace tessel::host
