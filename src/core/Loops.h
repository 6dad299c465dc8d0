// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class VrmlNode;

namespace tessel {

/// A loop: a Script that holds a node which it hangs from, directly or through others, so that both would live for
/// ever. References that close a loop are discounted (VrmlNode::discountReference), so the count of the upper node
/// falls to zero when nobody else holds it; the node then comes here.

/// Keeps the node until the next `releaseLoops`, which comes by itself with the toolkit's next delay queue.
void releaseLater(VrmlNode& node);

/// Frees those nodes of `releaseLater` that only loops hold: the Scripts in them lose the values of their node
/// fields. Not to be called from within a change of nodes.
void releaseLoops();

}  // namespace tessel
