// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include <Inventor/SbBox3f.h>

namespace tessel::host {

/// A slice of the view volume, as distances from the eye along the view direction; 0 < nearest < farthest.
struct DepthRange {
  float nearest, farthest;
};

/// What decides how deep the view volume must be. All lengths in one unit, the world's.
struct DepthNeeds {
  SbBox3f world;              ///< all there is to see, in camera space (the eye looks along -z); may be empty
  float visibilityLimit = 0;  ///< nothing beyond is shown, 0 for no limit
  float avatarRadius = 0.25f;  ///< how near a visitor comes to things
  float uncertainty = 0;       ///< how exactly the floats tell a place near the eye
};

/// Slices of the view volume, from far to near, that together hold everything visible.
///
/// A depth buffer of 24 bits tells surfaces apart while farthest is at most some 100,000 times nearest. Most
/// worlds need one slice: it starts at the world's own front if the eye stands outside, else half an avatar's
/// radius away (less in a world that is small beside its avatar, so that a molecule isn't clipped). Where
/// that gives too deep a slice, as in a landscape of a thousand kilometres with a house in front, it is
/// divided; each slice is drawn with a depth buffer of its own. Far from the origin, as on a map of seven digits, the floats of
/// the projection blur the depth by `uncertainty` / nearest of the distance, however fine the buffer is; there,
/// too, what is close is drawn apart from the rest. Never empty.
std::vector<DepthRange> depthSlices(const DepthNeeds& needs);

}  // namespace tessel::host
