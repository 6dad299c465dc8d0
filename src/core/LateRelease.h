// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class VrmlNode;

namespace tessel {

/// Keeps a node to the end of the notification that is under way. The toolkit goes through lists of who is to be told,
/// and a node that died meanwhile would leave a gap in them, or take away the list.
void releaseAfterNotification(VrmlNode& node);

}  // namespace tessel
