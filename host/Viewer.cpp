// SPDX-License-Identifier: BSD-3-Clause
#include "Viewer.h"

#include <algorithm>
#include <string_view>

#include <Inventor/SoDB.h>
#include <Inventor/sensors/SoSensorManager.h>

#include "Diagnostics.h"
#include "Text.h"
#include "fetch/Fetcher.h"
#include "fetch/Url.h"

namespace tessel::host {
namespace {

using namespace std::chrono_literals;

constexpr auto lookInterval = 300ms;  // between looks at the file
constexpr auto frameInterval = 16ms;  // a display shows no more
constexpr float wheelNotch = 0.05f;   // as if dragged over that part of the window

/// The way of moving that the world asks for: the first of its types that there is.
Navigation::Mode wantedMode(const VrmlNavigationInfo& info) {
  for (int i = 0; i < info.type.getNum(); ++i) {
    const std::string_view type = info.type[i].getString();
    if (type == "EXAMINE") return Navigation::Mode::examine;
    if (type == "FLY" || type == "WALK") return Navigation::Mode::fly;
  }
  return Navigation::Mode::examine;
}

}  // namespace

Viewer::Viewer(Window& w, std::string p, const World& world, const ReadOptions& o, Fetcher& f, Diagnostics& d)
    : window(w),
      path(std::move(p)),
      options(o),
      fetcher(f),
      diagnostics(d),
      stage(w.width(), w.height()),
      watch(path),
      nextLook(Clock::now() + lookInterval),
      nextFrame(Clock::now()) {
  stage.onChange([this] { dirty = true; });
  show(world);
}

void Viewer::show(const World& world) {
  stage.setWorld(world.root.get());
  title = titleOf(world.root.get(), path) + " - tessel";
  missing = -1;
  pivotOf = -1;
  setMode(wantedMode(stage.navigationInfo()));
  dirty = true;
}

/// The title, with how many files are still to come.
void Viewer::showTitle() {
  if (missing == fetcher.pending()) return;
  missing = fetcher.pending();
  window.setTitle(missing > 0 ? title + " (" + counted(missing, "file") + " to come)" : title);
}

void Viewer::run() {
  WindowEvent event;
  while (!closed) {
    while (!closed && window.next(event)) handle(event);
    timeline.advance();
    showTitle();
    checkFile();
    if (closed) break;
    if (dirty && Clock::now() >= nextFrame) {
      dirty = false;
      nextFrame = Clock::now() + frameInterval;
      timeline.draw();
      window.swap();
    }
    window.wait(secondsToSleep(), fetcher.descriptor());
  }
}

double Viewer::secondsToSleep() const {
  using Seconds = std::chrono::duration<double>;
  const auto now = Clock::now();
  if (fetcher.hasAnswers()) return 0;
  double sleep = Seconds(nextLook - now).count();
  if (dirty) sleep = std::min(sleep, Seconds(nextFrame - now).count());
  SbTime due;
  if (SoDB::getSensorManager()->isTimerSensorPending(due))
    sleep = std::min(sleep, (due - SbTime::getTimeOfDay()).getValue());
  return std::max(sleep, 0.0);
}

void Viewer::handle(const WindowEvent& event) {
  using Kind = WindowEvent::Kind;
  switch (event.kind) {
    case Kind::expose:
      dirty = true;
      break;
    case Kind::resize:
      stage.resize(event.x, event.y);
      dirty = true;
      break;
    case Kind::close:
      closed = true;
      break;
    case Kind::key:
      handleKey(event);
      break;
    case Kind::press:
      lastX = event.x;
      lastY = event.y;
      if (event.button == 4) turnWheel(1);
      if (event.button == 5) turnWheel(-1);
      break;
    case Kind::release:
      break;
    case Kind::motion:
      drag(event);
      break;
  }
}

void Viewer::handleKey(const WindowEvent& event) {
  using Key = WindowEvent::Key;
  if (event.key == Key::escape || event.character == 'q') closed = true;
  if (event.key == Key::pageDown) stage.showNextViewpoint();
  if (event.key == Key::pageUp) stage.showPreviousViewpoint();
  if (event.character == 'e') setMode(Navigation::Mode::examine);
  if (event.character == 'f') setMode(Navigation::Mode::fly);
  if (event.character == 'r') reload(true);
  if (event.character == 'h') {
    stage.headlightAllowed = !stage.headlightAllowed;
    dirty = true;
  }
}

/// Brings navigation in line with the world. The pivot is its centre until the user pans.
void Viewer::prepareNavigation() {
  stage.describeTo(navigation);
  if (pivotOf == stage.currentViewpoint()) return;
  pivotOf = stage.currentViewpoint();
  navigation.pivot = stage.pivot();
}

void Viewer::turnWheel(float notches) {
  prepareNavigation();
  stage.setPose(navigation.advanced(stage.pose(), notches * wheelNotch));
}

void Viewer::drag(const WindowEvent& event) {
  const SbVec2f way = wayTo(event);
  lastX = event.x;
  lastY = event.y;
  if (event.button == 0) return;
  prepareNavigation();
  const Pose pose = stage.pose();
  switch (event.button) {
    case 1:
      stage.setPose(navigation.turned(pose, way));
      break;
    case 2:
      stage.setPose(navigation.panned(pose, way));
      navigation.pivot += stage.pose().position - pose.position;
      break;
    case 3:
      stage.setPose(navigation.advanced(pose, way[1]));
      break;
  }
}

SbVec2f Viewer::wayTo(const WindowEvent& event) const {
  const auto side = static_cast<float>(std::min(window.width(), window.height()));
  return SbVec2f(static_cast<float>(event.x - lastX) / side, static_cast<float>(event.y - lastY) / side);
}

void Viewer::setMode(Navigation::Mode mode) {
  navigation.mode = mode;
  diagnostics.progress(mode == Navigation::Mode::examine ? "examining" : "flying");
}

void Viewer::checkFile() {
  if (Clock::now() < nextLook) return;
  nextLook = Clock::now() + lookInterval;
  if (path != "-" && !isNetworkUrl(path) && watch.changed()) reload(false);
}

void Viewer::reload(bool asked) {
  if (path == "-") {
    if (asked) diagnostics.complain("standard input can't be read again");
    return;
  }
  diagnostics.endWorld();
  diagnostics.beginWorld(path);
  const World world = fetcher.open(path, options);
  if (!world.good() || !world.root) {
    diagnostics.report(Severity::warning, "the world that was read before stays");
    return;
  }
  // Who edits a world wants to go on looking from where they are.
  const int viewpoint = stage.currentViewpoint();
  const Navigation::Mode mode = navigation.mode;
  const Pose pose = stage.pose();
  show(world);
  const bool same =
      viewpoint == 0 ? stage.currentViewpoint() == 0 : stage.showViewpoint('#' + std::to_string(viewpoint));
  if (!same) return;
  stage.setPose(pose);
  setMode(mode);
}

}  // namespace tessel::host
