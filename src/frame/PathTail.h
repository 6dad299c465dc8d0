// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SoFullPath.h>

namespace tessel {

/// The last node of a path; the path's own getTail ends at the first group that is not the toolkit's.
inline SoNode* tailOf(const SoPath* path) { return static_cast<const SoFullPath*>(path)->getTail(); }

}  // namespace tessel
