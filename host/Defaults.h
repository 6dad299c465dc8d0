// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/toolkit/SoRef.h>

class SoGroup;
class SoNode;

namespace tessel::host {

/// What stands before every world: the best textures, and letters of one unit where a text has no FontStyle. The
/// toolkit's own defaults are four bits of a colour without mipmaps, and letters of twelve units.
SoRef<SoNode> defaults();

/// A world behind the defaults, for traversals that don't come from the scene's root.
SoRef<SoGroup> withDefaults(SoNode* world);

}  // namespace tessel::host
