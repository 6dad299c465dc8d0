// SPDX-License-Identifier: BSD-3-Clause
#include "Window.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include <GL/glx.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <poll.h>

namespace tessel::host {

/// The server's handles, released in the reverse of the order in which they are got.
struct Window::State {
  Display* display = nullptr;
  Colormap colormap = 0;
  ::Window window = 0;
  GLXContext context = nullptr;
  Atom deleteWindow = 0;
  int width = 0, height = 0;
  int held = 0;  // the button that was pressed first of those held, 0 for none

  ~State() {
    if (!display) return;
    glXMakeCurrent(display, 0, nullptr);
    if (context) glXDestroyContext(display, context);
    if (window) XDestroyWindow(display, window);
    if (colormap) XFreeColormap(display, colormap);
    XCloseDisplay(display);
  }

  std::string open(std::string_view title);
  bool translate(XEvent& event, WindowEvent& out);
  void setTitle(std::string_view title);
  void skipTo(XEvent& event, int type);
};

namespace {

/// The visual for drawing: smooth edges if the server has them.
XVisualInfo* chosenVisual(Display* display) {
  for (const int samples : {4, 0}) {
    int wanted[] = {GLX_RGBA,
                    GLX_DOUBLEBUFFER,
                    GLX_RED_SIZE,
                    8,
                    GLX_GREEN_SIZE,
                    8,
                    GLX_BLUE_SIZE,
                    8,
                    GLX_DEPTH_SIZE,
                    24,
                    GLX_SAMPLE_BUFFERS,
                    samples > 0,
                    GLX_SAMPLES,
                    samples,
                    0};
    if (XVisualInfo* visual = glXChooseVisual(display, DefaultScreen(display), wanted)) return visual;
  }
  return nullptr;
}

}  // namespace

std::string Window::State::open(std::string_view title) {
  display = XOpenDisplay(nullptr);
  if (!display) return "no display: is DISPLAY set?";
  if (!glXQueryExtension(display, nullptr, nullptr)) return "the display has no OpenGL";
  XVisualInfo* visual = chosenVisual(display);
  if (!visual) return "the display has no visual for OpenGL with 24 bits of depth";

  const ::Window root = RootWindow(display, visual->screen);
  XSetWindowAttributes attributes{};
  attributes.colormap = colormap = XCreateColormap(display, root, visual->visual, AllocNone);
  attributes.event_mask = ExposureMask | StructureNotifyMask | KeyPressMask | ButtonPressMask |
                          ButtonReleaseMask | PointerMotionMask;
  window = XCreateWindow(display, root, 0, 0, static_cast<unsigned>(width), static_cast<unsigned>(height), 0,
                         visual->depth, InputOutput, visual->visual, CWColormap | CWEventMask | CWBorderPixel,
                         &attributes);
  context = glXCreateContext(display, visual, nullptr, True);
  XFree(visual);
  if (!window || !context) return "the display gives no OpenGL window";

  deleteWindow = XInternAtom(display, "WM_DELETE_WINDOW", False);
  XSetWMProtocols(display, window, &deleteWindow, 1);
  setTitle(title);
  XMapWindow(display, window);
  if (!glXMakeCurrent(display, window, context)) return "OpenGL can't draw in the window";
  return {};
}

void Window::State::setTitle(std::string_view title) {
  const std::string text(title);
  XStoreName(display, window, text.c_str());
  XChangeProperty(display, window, XInternAtom(display, "_NET_WM_NAME", False),
                  XInternAtom(display, "UTF8_STRING", False), 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
}

/// Moves on to the last of a run of events of one type.
void Window::State::skipTo(XEvent& event, int type) {
  XEvent following;
  while (XPending(display) > 0) {
    XPeekEvent(display, &following);
    if (following.type != type) break;
    XNextEvent(display, &event);
  }
}

bool Window::State::translate(XEvent& event, WindowEvent& out) {
  out = {};
  const auto at = [&](int x, int y) {
    out.x = x;
    out.y = height - 1 - y;
  };
  switch (event.type) {
    case Expose:
      if (event.xexpose.count > 0) return false;
      out.kind = WindowEvent::Kind::expose;
      return true;
    case ConfigureNotify:
      skipTo(event, ConfigureNotify);
      if (event.xconfigure.width == width && event.xconfigure.height == height) return false;
      out.kind = WindowEvent::Kind::resize;
      out.x = width = std::max(1, event.xconfigure.width);
      out.y = height = std::max(1, event.xconfigure.height);
      return true;
    case KeyPress: {
      char text[8];
      KeySym symbol = NoSymbol;
      const int length = XLookupString(&event.xkey, text, sizeof text, &symbol, nullptr);
      out.kind = WindowEvent::Kind::key;
      if (symbol == XK_Escape)
        out.key = WindowEvent::Key::escape;
      else if (symbol == XK_Page_Up || symbol == XK_KP_Page_Up)
        out.key = WindowEvent::Key::pageUp;
      else if (symbol == XK_Page_Down || symbol == XK_KP_Page_Down)
        out.key = WindowEvent::Key::pageDown;
      else if (length == 1)
        out.character = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
      else
        return false;
      return true;
    }
    case ButtonPress:
    case ButtonRelease: {
      const bool press = event.type == ButtonPress;
      out.kind = press ? WindowEvent::Kind::press : WindowEvent::Kind::release;
      out.button = static_cast<int>(event.xbutton.button);
      at(event.xbutton.x, event.xbutton.y);
      if (press && held == 0 && out.button <= 3) held = out.button;
      if (!press && held == out.button) held = 0;
      return true;
    }
    case MotionNotify:
      skipTo(event, MotionNotify);
      out.kind = WindowEvent::Kind::motion;
      out.button = held;
      at(event.xmotion.x, event.xmotion.y);
      return true;
    case ClientMessage:
      if (static_cast<Atom>(event.xclient.data.l[0]) != deleteWindow) return false;
      out.kind = WindowEvent::Kind::close;
      return true;
    default:
      return false;
  }
}

Window::Window(std::unique_ptr<State> s) : state(std::move(s)) {}
Window::~Window() = default;

std::unique_ptr<Window> Window::create(int width, int height, std::string_view title, std::string& failure) {
  auto state = std::make_unique<State>();
  state->width = width;
  state->height = height;
  failure = state->open(title);
  if (!failure.empty()) return nullptr;
  return std::unique_ptr<Window>(new Window(std::move(state)));
}

int Window::width() const { return state->width; }
int Window::height() const { return state->height; }
void Window::setTitle(std::string_view title) { state->setTitle(title); }
void Window::swap() { glXSwapBuffers(state->display, state->window); }

bool Window::next(WindowEvent& event) {
  XEvent raw;
  while (XPending(state->display) > 0) {
    XNextEvent(state->display, &raw);
    if (state->translate(raw, event)) return true;
  }
  return false;
}

void Window::wait(double seconds, int other) {
  if (XPending(state->display) > 0) return;
  pollfd sources[] = {{ConnectionNumber(state->display), POLLIN, 0}, {other, POLLIN, 0}};
  poll(sources, 2, static_cast<int>(std::lround(std::max(0.0, seconds) * 1000)));
}

}  // namespace tessel::host
