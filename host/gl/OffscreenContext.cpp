// SPDX-License-Identifier: BSD-3-Clause
#include "OffscreenContext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>

namespace tessel::host {

std::unique_ptr<OffscreenContext> OffscreenContext::create(int width, int height, std::string& failure) {
  std::unique_ptr<OffscreenContext> made(new OffscreenContext(width, height));
  failure = made->open();
  if (!failure.empty()) made.reset();
  return made;
}

std::string OffscreenContext::open() {
  const auto getPlatformDisplay =
      reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
  if (getPlatformDisplay)
    display = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  if (!display || !eglInitialize(display, nullptr, nullptr)) {
    display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (!display || !eglInitialize(display, nullptr, nullptr))
      return "no OpenGL off screen: EGL does not start";
  }
  if (!eglBindAPI(EGL_OPENGL_API)) return "no OpenGL off screen: EGL offers no desktop OpenGL";

  const EGLint wanted[] = {EGL_SURFACE_TYPE,
                           EGL_PBUFFER_BIT,
                           EGL_RENDERABLE_TYPE,
                           EGL_OPENGL_BIT,
                           EGL_RED_SIZE,
                           8,
                           EGL_GREEN_SIZE,
                           8,
                           EGL_BLUE_SIZE,
                           8,
                           EGL_DEPTH_SIZE,
                           24,
                           EGL_STENCIL_SIZE,
                           8,
                           EGL_NONE};
  EGLConfig config;
  EGLint count = 0;
  if (!eglChooseConfig(display, wanted, &config, 1, &count) || count == 0)
    return "no OpenGL off screen: no configuration with 24 bits of depth";

  EGLint maxWidth = 0, maxHeight = 0;
  eglGetConfigAttrib(display, config, EGL_MAX_PBUFFER_WIDTH, &maxWidth);
  eglGetConfigAttrib(display, config, EGL_MAX_PBUFFER_HEIGHT, &maxHeight);
  if (width > maxWidth || height > maxHeight)
    return "a picture can have at most " + std::to_string(maxWidth) + 'x' + std::to_string(maxHeight) +
           " pixels here";

  const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
  surface = eglCreatePbufferSurface(display, config, size);
  context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
  if (!surface || !context || !eglMakeCurrent(display, surface, surface, context))
    return "no OpenGL off screen: the context can't be made";
  return {};
}

void OffscreenContext::makeCurrent() { eglMakeCurrent(display, surface, surface, context); }

OffscreenContext::~OffscreenContext() {
  if (!display) return;
  if (eglGetCurrentContext() == context)
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  if (context) eglDestroyContext(display, context);
  if (surface) eglDestroySurface(display, surface);
  // The display is not terminated: the process has one, and other contexts may live on it.
}

Image OffscreenContext::picture() const {
  Image image{
      width, height,
      std::vector<std::uint8_t>(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, image.rgb.data());
  return image;
}

}  // namespace tessel::host
