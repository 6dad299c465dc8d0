// SPDX-License-Identifier: BSD-3-Clause
#include "host/Screen.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <thread>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/Paths.h"

namespace tessel::host {
namespace {

using namespace std::chrono_literals;

/// Asks again and again until the answer is yes or ten seconds are over.
template <class Question> bool within10Seconds(Question question) {
  const auto end = std::chrono::steady_clock::now() + 10s;
  do {
    if (question()) return true;
    std::this_thread::sleep_for(20ms);
  } while (std::chrono::steady_clock::now() < end);
  return false;
}

void stop(pid_t& process) {
  if (process <= 0) return;
  kill(process, SIGTERM);
  waitpid(process, nullptr, 0);
  process = 0;
}

}  // namespace

struct Screen::State {
  pid_t server = 0, program = 0;
  std::string name;
  Display* display = nullptr;
  Window window = 0;

  ~State() {
    stop(program);
    if (display) XCloseDisplay(display);
    stop(server);
  }

  bool startServer() {
    int number[2];
    if (pipe(number) != 0) return false;
    server = fork();
    if (server == 0) {
      const std::string descriptor = std::to_string(number[1]);
      const int silence = open("/dev/null", O_WRONLY);
      dup2(silence, STDERR_FILENO);
      execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "1024x768x24", "-nolisten",
             "tcp", nullptr);
      _exit(127);
    }
    close(number[1]);
    name = ':';
    char c;
    while (read(number[0], &c, 1) == 1 && c != '\n') name += c;
    close(number[0]);
    if (name.size() == 1) return false;
    display = XOpenDisplay(name.c_str());
    return display;
  }

  Window shownWindow() const {
    Window root, parent, *children = nullptr;
    unsigned count = 0;
    Window found = 0;
    if (XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count) && children) {
      for (unsigned i = 0; i < count; ++i) {
        XWindowAttributes attributes;
        if (XGetWindowAttributes(display, children[i], &attributes) && attributes.map_state == IsViewable)
          found = children[i];
      }
      XFree(children);
    }
    return found;
  }

  template <class Event> void send(Event& event, long mask) {
    event.display = display;
    event.window = window;
    event.root = DefaultRootWindow(display);
    event.same_screen = True;
    XSendEvent(display, window, False, mask, reinterpret_cast<XEvent*>(&event));
    XSync(display, False);
  }
};

Screen::Screen(std::unique_ptr<State> s) : state(std::move(s)) {}
Screen::~Screen() = default;

std::unique_ptr<Screen> Screen::start() {
  auto state = std::make_unique<State>();
  if (!state->startServer()) return nullptr;
  return std::unique_ptr<Screen>(new Screen(std::move(state)));
}

bool Screen::view(const std::vector<std::string>& arguments) {
  const std::string program = test::builtProgram("tessel").string(), folder = test::scratchDir().string();
  state->program = fork();
  if (state->program == 0) {
    setenv("DISPLAY", state->name.c_str(), 1);
    std::vector<char*> words{const_cast<char*>("tessel"), const_cast<char*>("view")};
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    if (chdir(folder.c_str()) != 0) _exit(126);
    dup2(open("stderr", O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    execv(program.c_str(), words.data());
    _exit(127);
  }
  return within10Seconds([&] { return (state->window = state->shownWindow()) != 0; });
}

std::string Screen::title() const {
  char* name = nullptr;
  if (!XFetchName(state->display, state->window, &name) || !name) return {};
  const std::string title = name;
  XFree(name);
  return title;
}

void Screen::key(const char* name) {
  XKeyEvent event{};
  event.type = KeyPress;
  event.keycode = XKeysymToKeycode(state->display, XStringToKeysym(name));
  state->send(event, KeyPressMask);
}

void Screen::drag(int button, int fromX, int fromY, int toX, int toY) {
  XButtonEvent press{};
  press.type = ButtonPress;
  press.button = static_cast<unsigned>(button);
  press.x = fromX;
  press.y = fromY;
  state->send(press, ButtonPressMask);
  XMotionEvent motion{};
  motion.type = MotionNotify;
  motion.x = toX;
  motion.y = toY;
  state->send(motion, PointerMotionMask);
  press.type = ButtonRelease;
  press.x = toX;
  press.y = toY;
  state->send(press, ButtonReleaseMask);
}

bool Screen::shows(double x, double y, const std::array<int, 3>& color) {
  return within10Seconds([&] {
    XWindowAttributes window;
    if (!XGetWindowAttributes(state->display, state->window, &window)) return false;
    XImage* image = XGetImage(state->display, state->window, static_cast<int>(x * window.width),
                              static_cast<int>(y * window.height), 1, 1, AllPlanes, ZPixmap);
    if (!image) return false;
    const unsigned long pixel = XGetPixel(image, 0, 0);
    XDestroyImage(image);
    return (pixel & 0xffffff) == static_cast<unsigned long>(color[0] << 16 | color[1] << 8 | color[2]);
  });
}

int Screen::ended() {
  int status = 0;
  if (!within10Seconds([&] { return waitpid(state->program, &status, WNOHANG) == state->program; }))
    return -1;
  state->program = 0;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

double Screen::processorTime() const {
  std::ifstream file("/proc/" + std::to_string(state->program) + "/stat");
  std::string word;
  std::getline(file, word, ')');  // number and name
  long user = 0, system = 0;
  for (int field = 3; field <= 13; ++field) file >> word;
  file >> user >> system;
  return static_cast<double>(user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

}  // namespace tessel::host
