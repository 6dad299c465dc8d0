// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace tessel::host {

/// A display of its own for a test, with `tessel view` running on it.
class Screen {
public:
  /// Starts a virtual X server. Null if this machine has none.
  static std::unique_ptr<Screen> start();
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  /// Starts `tessel view` with these arguments in the test's own folder and waits for its window.
  bool view(const std::vector<std::string>& arguments);
  /// The window's title.
  std::string title() const;

  /// Sends a key to the window, by its X11 name.
  void key(const char* name);
  /// Drags the mouse with a button held, in pixels from the upper left.
  void drag(int button, int fromX, int fromY, int toX, int toY);

  /// Waits until the pixel at a place in parts of the window has this colour; gives up after ten seconds.
  bool shows(double x, double y, const std::array<int, 3>& color);
  /// Waits for the program's end and gives its exit status; -1 if it goes on for ten seconds.
  int ended();
  /// The processor time that the program has used up to now, in seconds.
  double processorTime() const;

private:
  struct State;
  explicit Screen(std::unique_ptr<State> state);
  std::unique_ptr<State> state;
};

}  // namespace tessel::host
