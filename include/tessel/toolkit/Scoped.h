// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <utility>

#include <Inventor/SbBasic.h>

namespace tessel {

/// Gives a variable another value for a scope.
template <class T> class [[nodiscard]] ScopedValue {
public:
  ScopedValue(T& variable, T value) : target(variable), before(std::exchange(variable, std::move(value))) {}
  ~ScopedValue() { target = std::move(before); }
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;

private:
  T& target;
  T before;
};

/// Silences the notification of a field or a node for a scope.
template <class T> class [[nodiscard]] NotifyOff {
public:
  explicit NotifyOff(T& object) : target(object), before(object.enableNotify(FALSE)) {}
  ~NotifyOff() { target.enableNotify(before); }
  NotifyOff(const NotifyOff&) = delete;
  NotifyOff& operator=(const NotifyOff&) = delete;

private:
  T& target;
  SbBool before;
};

/// Pushes a traversal state for a scope.
template <class State> class [[nodiscard]] StateScope {
public:
  explicit StateScope(State* s) : state(s) { state->push(); }
  ~StateScope() { state->pop(); }
  StateScope(const StateScope&) = delete;
  StateScope& operator=(const StateScope&) = delete;

private:
  State* state;
};

}  // namespace tessel
