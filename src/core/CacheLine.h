// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace tessel {

/// Bytes that the processor fetches from memory at once. What an event needs of an object that there are thousands of
/// stands together in as few of them as it can.
constexpr std::size_t cacheLine = 64;

}  // namespace tessel
