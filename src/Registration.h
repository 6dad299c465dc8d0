// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace tessel {

/// Registers every class of the library with the toolkit, once, in the order in which they need each other.
void registerAll();

}  // namespace tessel
