// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tessel::host {

/// What happened in the window.
struct WindowEvent {
  enum class Kind { expose, resize, key, press, release, motion, close };
  enum class Key { none, escape, pageUp, pageDown };
  Kind kind = Kind::expose;
  int x = 0, y = 0;  ///< pointer in pixels from the lower left; the new size for `resize`
  int button = 0;    ///< 1 left, 2 middle, 3 right, 4 and 5 the wheel; for `motion` the one held, 0 for none
  char character = 0;   ///< of `key`, in lower case, 0 if it has none
  Key key = Key::none;  ///< keys without a character
};

/// An X11 window with a double-buffered OpenGL context, current from its creation.
class Window {
public:
  /// Null if there is no display or no OpenGL on it; `failure` then says why.
  static std::unique_ptr<Window> create(int width, int height, std::string_view title, std::string& failure);
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  int width() const;
  int height() const;
  void setTitle(std::string_view title);
  /// Shows what has been drawn.
  void swap();

  /// The next event that has arrived, in order; consecutive motions and resizes come as one. False if none
  /// waits.
  bool next(WindowEvent& event);
  /// Sleeps until an event arrives or `other`, a descriptor, is readable, at most so many seconds.
  void wait(double seconds, int other = -1);

private:
  struct State;
  explicit Window(std::unique_ptr<State> state);
  std::unique_ptr<State> state;
};

}  // namespace tessel::host
