// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

class VrmlNode;

namespace tessel {

/// A loop: a Script that holds a node which it hangs from, directly or through others, so that both would live for
/// ever. References that close a loop are discounted (VrmlNode::discountReference), so the count of the upper node
/// falls to zero when nobody else holds it; the node then comes here.
///
/// A loop that an event has closed is found by looking: from time to time, at all that a Script holds which was
/// given a node.

/// Keeps the node until the next `releaseLoops`, which comes by itself with the toolkit's next delay queue.
void releaseLater(VrmlNode& node);

/// Frees those nodes of `releaseLater` that only loops hold: the Scripts in them lose the values of their node
/// fields. Not to be called from within a change of nodes.
void releaseLoops();

/// An event has given this node, a Script, a node to hold. It must call `forgetSuspect` before it goes.
void suspectLoop(VrmlNode& script);
void forgetSuspect(VrmlNode& script);

/// `releaseLoops`, then a look at the suspects, if it is paid for: reading `bytes` pays for a number of nodes, so
/// that all looks together take less time than all reads.
void releaseLoopsBeforeRead(std::size_t bytes);

}  // namespace tessel
