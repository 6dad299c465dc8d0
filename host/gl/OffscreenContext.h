// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <string>

#include "../Image.h"

namespace tessel::host {

/// An OpenGL context with a drawing surface in memory: needs no display and no server. Current from its
/// creation.
class OffscreenContext {
public:
  /// Null if it can't be had; `failure` then says why.
  static std::unique_ptr<OffscreenContext> create(int width, int height, std::string& failure);
  ~OffscreenContext();
  OffscreenContext(const OffscreenContext&) = delete;
  OffscreenContext& operator=(const OffscreenContext&) = delete;

  /// Draws into this one again, after another was made current.
  void makeCurrent();

  /// What has been drawn so far, into the current context.
  Image picture() const;

private:
  OffscreenContext(int w, int h) : width(w), height(h) {}
  std::string open();

  // EGL's handles are pointers; its header stays out of here, for it drags the window system's in.
  void* display = nullptr;
  void* surface = nullptr;
  void* context = nullptr;
  int width, height;
};

}  // namespace tessel::host
