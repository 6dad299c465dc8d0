// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace tessel::script {

/// Numbers as scripts know them: whole seconds within 32 bits and whole microseconds, kept as a double. Whatever is
/// beyond the range ends at its limit; what is not a number is 0.
namespace number {

constexpr double lowest = std::numeric_limits<std::int32_t>::min();
constexpr double highest = std::numeric_limits<std::int32_t>::max();

/// Towards zero, within 32 bits.
inline std::int32_t truncated(double x) {
  if (x >= lowest && x <= highest) return static_cast<std::int32_t>(x);
  return x > 0   ? std::numeric_limits<std::int32_t>::max()
         : x < 0 ? std::numeric_limits<std::int32_t>::min()
                 : 0;
}

/// The same for what has a fraction, or is beyond the range.
inline double roundedFraction(double x) {
  const double seconds = truncated(x);
  if (!(x > lowest && x < highest)) return seconds;
  const double micro = (x - seconds) * 1e6;
  const auto microseconds = static_cast<std::int32_t>(micro + (micro < 0 ? -0.5 : 0.5));
  return seconds + microseconds / 1e6;
}

/// Rounds the fraction to microseconds, away from zero at a half, as the toolkit's time does.
inline double rounded(double x) {
  // A sum with this number has no fraction. Most numbers are whole, and then no result waits for a conversion.
  constexpr double withoutFractions = 6755399441055744.0;  // 1.5 * 2^52
  if ((x + withoutFractions) - withoutFractions == x && std::fabs(x) <= highest) [[likely]]
    return x + 0.0;  // -0 is 0
  return roundedFraction(x);
}

/// As a word of bits: truncated; negative numbers and those of 2^32 and more are all ones.
inline std::uint32_t bits(double x) {
  if (!(x > -1.0 && x < 4294967296.0)) return x == x ? 0xFFFFFFFFU : 0;
  return static_cast<std::uint32_t>(x);
}

}  // namespace number
}  // namespace tessel::script
