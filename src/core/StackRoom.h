// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace tessel {

/// Whether more than half of the calling thread's stack is in use: then no further call may go as deep as the input
/// asks for.
bool stackIsShort();

}  // namespace tessel
