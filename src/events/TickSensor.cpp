// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/TickSensor.h>

#include <utility>
#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/sensors/SoFieldSensor.h>

#include <tessel/toolkit/Scoped.h>

namespace tessel {

/// The attached sensors, and the toolkit's sensor that they share.
class TickRounds {
public:
  TickRounds() : clock(runCB, this) { clock.setPriority(1); }

  void add(TickSensor& sensor) {
    if (!clock.getAttachedField()) clock.attach(SoDB::getGlobalField("realTime"));
    sensor.place = sensors.size();
    sensors.push_back(&sensor);
  }

  void remove(TickSensor& sensor) {
    sensors[std::exchange(sensor.place, TickSensor::none)] = nullptr;
    ++numGaps;
    if (!running) tidy();
  }

private:
  static void runCB(void* self, SoSensor*) { static_cast<TickRounds*>(self)->run(); }

  void run() {
    {
      const ScopedValue<bool> now(running, true);
      const std::size_t end = sensors.size();  // what comes in addition waits for the next round
      for (std::size_t i = 0; i < end; ++i)
        if (TickSensor* sensor = sensors[i]) sensor->call(sensor->callData);
    }
    tidy();
  }

  // Closes the gaps when there are many, so that each sensor that goes pays for a few moves only.
  void tidy() {
    if (numGaps * 2 <= sensors.size()) return;
    std::size_t kept = 0;
    for (TickSensor* sensor : sensors) {
      if (!sensor) continue;
      sensor->place = kept;
      sensors[kept++] = sensor;
    }
    sensors.resize(kept);
    numGaps = 0;
    if (sensors.empty()) clock.detach();
  }

  std::vector<TickSensor*> sensors;  // in the order of attachment; null: detached since
  std::size_t numGaps = 0;
  bool running = false;
  SoFieldSensor clock;
};

namespace {

TickRounds& rounds() {
  static TickRounds all;
  return all;
}

}  // namespace

void TickSensor::attach() {
  detach();
  rounds().add(*this);
}

void TickSensor::detach() {
  if (isAttached()) rounds().remove(*this);
}

}  // namespace tessel
