// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace tessel::script {

/// The part of a script's own value in the memory that all of them may take together. It goes with the value.
class Room {
public:
  static constexpr std::size_t limit = std::size_t{1} << 28;  // bytes

  Room() = default;
  ~Room() { all -= taken; }
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;

  /// Whether this value may take so many bytes in place of what it has; a report if not.
  bool has(std::size_t bytes) const { return isLeft(all - taken + bytes); }
  /// Whether one more value may.
  static bool hasMore(std::size_t bytes) { return isLeft(all + bytes); }
  std::size_t size() const { return taken; }
  void take(std::size_t bytes) {
    all += bytes - taken;
    taken = bytes;
  }

private:
  static bool isLeft(std::size_t sum);

  static inline std::size_t all = 0;
  std::size_t taken = 0;
};

}  // namespace tessel::script
