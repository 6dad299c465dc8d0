// SPDX-License-Identifier: BSD-3-Clause
#include "Timeline.h"

#include <chrono>

#include <Inventor/SoDB.h>
#include <Inventor/sensors/SoSensorManager.h>
#include <tessel/core/VrmlDB.h>

#include "Diagnostics.h"
#include "Stage.h"
#include "fetch/Fetcher.h"

namespace tessel::host {

void Timeline::setInput(const InputFile& i, NodeNames& n, Diagnostics& d) {
  input = &i;
  names = &n;
  diagnostics = &d;
  nextLine = 0;
}

void Timeline::advance() {
  constexpr auto answerTime = std::chrono::milliseconds(50);  // what is left waits for the next frame
  fetcher.answer(answerTime);
  SoSensorManager& sensors = *SoDB::getSensorManager();
  sensors.processTimerQueue();
  sensors.processDelayQueue(TRUE);
}

void Timeline::advanceTo(double seconds, double start) {
  fetcher.answer();
  takeInput(seconds);
  VrmlDB::setClock(SbTime(start + seconds));
  // The timer queue is left alone: it goes by the wall clock, and no two runs would be the same.
  SoDB::getSensorManager()->processDelayQueue(TRUE);
}

void Timeline::draw() { stage.draw(); }

void Timeline::takeInput(double seconds) {
  constexpr double rounding = 1e-9;  // a frame's time is a quotient, a line's a decimal fraction
  for (; input && nextLine < input->lines.size(); ++nextLine) {
    const InputLine& line = input->lines[nextLine];
    if (line.seconds > seconds + rounding) return;
    switch (line.action) {
      case InputLine::Action::set:
        inputFailed |= !sendEvent(*names, line.target, line.value, input->name.c_str(), line.line);
        break;
      case InputLine::Action::viewpoint:
        if (stage.showViewpoint(line.target)) break;
        diagnostics->report(Severity::error, input->name, line.line, "there is no viewpoint " + line.target);
        inputFailed = true;
        break;
    }
  }
}

}  // namespace tessel::host
