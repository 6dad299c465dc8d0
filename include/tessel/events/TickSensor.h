// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace tessel {

/// Calls back at each change of the toolkit's real-time field, from the delay queue, while it is attached.
///
/// It behaves as a field sensor of priority 1 on that field: sensors are called in the order in which they were
/// attached, one that is attached during a round waits for the next, one that is detached before its turn is not
/// called. But all of them share one sensor of the toolkit, whose queue is made for a few: attaching and detaching
/// cost the same among many. Not copied, not moved: its address is what is listed.
class TickSensor {
public:
  using Callback = void(void* data);

  TickSensor(Callback* callback, void* data) : call(callback), callData(data) {}
  ~TickSensor() { detach(); }
  TickSensor(const TickSensor&) = delete;
  TickSensor& operator=(const TickSensor&) = delete;

  /// Enters the sensor behind all others, also if it was attached already.
  void attach();
  void detach();
  bool isAttached() const { return place != none; }

private:
  friend class TickRounds;
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  Callback* call;
  void* callData;
  std::size_t place = none;  // in the list of all
};

}  // namespace tessel
