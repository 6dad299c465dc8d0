// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbTime.h>

namespace tessel::test {

/// The clock of a test: seconds since its start, which is far enough from 0 for the usual doubts about doubles.
/// It takes the toolkit's clock over at its construction.
class Clock {
public:
  static constexpr double start = 1'000'000'000;

  Clock();
  /// Moves the frame time, then lets the sensors tick.
  void to(double seconds);
  /// Moves the real-time field alone and lets the sensors tick: who sets the frame time is another sensor.
  void tickAt(double seconds);
  static SbTime time(double seconds) { return SbTime(start + seconds); }
};

}  // namespace tessel::test
