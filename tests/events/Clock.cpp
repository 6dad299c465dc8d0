// SPDX-License-Identifier: BSD-3-Clause
#include "events/Clock.h"

#include <Inventor/SoDB.h>
#include <Inventor/sensors/SoSensorManager.h>

#include <tessel/core/VrmlDB.h>

#include "support/TestWorld.h"

namespace tessel::test {

Clock::Clock() {
  startLibrary();
  VrmlDB::takeClock(time(0));
  VrmlDB::setFrameTime();
}

void Clock::to(double seconds) {
  VrmlDB::setClock(time(seconds));
  VrmlDB::setFrameTime();
  SoDB::getSensorManager()->processDelayQueue(FALSE);
}

void Clock::tickAt(double seconds) {
  VrmlDB::setClock(time(seconds));
  SoDB::getSensorManager()->processDelayQueue(FALSE);
}

}  // namespace tessel::test
