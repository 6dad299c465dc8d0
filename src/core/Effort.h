// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessel {

/// What operations cost scripts beyond the step that they are part of. Whoever writes or searches many bytes, or tells
/// many nodes, adds it; the interpreter of scripts turns it into steps.
class Effort {
public:
  static void add(std::size_t bytes) { pending += bytes; }
  /// Characters or entries that are looked at one by one: each costs as much as so many bytes that are copied.
  static void addEach(std::size_t count) { add(32 * count); }
  /// A change of a toolkit field, of which everybody hears who listens.
  static void addChange() { add(4 * bytesForStep); }
  /// A node that hears of a change, its own or that of another.
  static void addHearer() { add(2 * bytesForStep); }
  /// A look for what a name means.
  static void addLookUp() { add(2 * bytesForStep); }
  static bool isOwed() { return pending >= bytesForStep; }
  /// The steps that are owed, which are settled by this.
  static std::int64_t settle() {
    const std::size_t steps = pending / bytesForStep;
    pending %= bytesForStep;
    return static_cast<std::int64_t>(steps);
  }

private:
  static constexpr std::size_t bytesForStep = 1024;
  static inline std::size_t pending = 0;
};

}  // namespace tessel
