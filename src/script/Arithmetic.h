// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

#include "script/Instruction.h"
#include "script/Number.h"

namespace tessel::script {

/// The arithmetic of an instruction on two numbers.
template <Op op> inline double arithmetic(double a, double b) {
  if constexpr (op == Op::add) {
    return a + b;
  } else if constexpr (op == Op::subtract) {
    return a - b;
  } else if constexpr (op == Op::multiply) {
    return a * b;
  } else if constexpr (op == Op::divide) {
    return a / b;
  } else if constexpr (op == Op::remainder) {
    // By 0 it is 0. The sign is the dividend's; 64 bits have room for the lowest number by -1.
    const std::int64_t divisor = number::truncated(b);
    return divisor == 0 ? 0 : static_cast<double>(std::int64_t{number::truncated(a)} % divisor);
  } else if constexpr (op == Op::bitAnd) {
    return number::bits(a) & number::bits(b);
  } else if constexpr (op == Op::bitOr) {
    return number::bits(a) | number::bits(b);
  } else if constexpr (op == Op::bitXor) {
    return number::bits(a) ^ number::bits(b);
  } else if constexpr (op == Op::shiftLeft) {
    return number::bits(a) << (number::bits(b) & 31);
  } else if constexpr (op == Op::shiftRight) {
    return number::bits(a) >> (number::bits(b) & 31);
  } else {
    // The top bit goes first, so only a shift by nothing shows it.
    std::uint32_t word = number::bits(a);
    if (b >= 1) word &= 0x7FFFFFFFU;
    return static_cast<std::int32_t>(word) >> (number::truncated(b) & 31);
  }
}

template <Op op> inline bool comparison(double a, double b) {
  if constexpr (op == Op::equal) {
    return a == b;
  } else if constexpr (op == Op::notEqual) {
    return a != b;
  } else if constexpr (op == Op::less) {
    return a < b;
  } else if constexpr (op == Op::lessEqual) {
    return a <= b;
  } else if constexpr (op == Op::greater) {
    return a > b;
  } else {
    return a >= b;
  }
}

}  // namespace tessel::script
