// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <span>
#include <vector>

#include <Inventor/SbRotation.h>
#include <Inventor/SbVec3f.h>

namespace tessel {

/// The rotation that an outline has at each point of a spine, at least one. Its y axis follows the spine, its z axis
/// stands on the plane in which the spine bends. A spine that doesn't bend has one frame for all its points.
void calcRideAlongSpineRotations(std::span<const SbVec3f> spine, std::vector<SbRotation>& rotations);

}  // namespace tessel
