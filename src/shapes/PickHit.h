// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cmath>

#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec4f.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>

namespace tessel {

/// Adds a point in the pick's object space to the pick. Null if the pick does not want it, as what lies behind the
/// eye, or it is none.
inline SoPickedPoint* addIntersection(SoRayPickAction* action, const SbVec3f& point, bool front = true) {
  if (!std::isfinite(point.sqrLength()) || !action->isBetweenPlanes(point)) return nullptr;
  return action->addIntersection(point, front);
}

/// The same, with what is known of the point.
inline SoPickedPoint* addHit(SoRayPickAction* action, const SbVec3f& point, const SbVec3f& normal,
                             const SbVec2f& texCoords) {
  SoPickedPoint* picked = addIntersection(action, point);
  if (!picked) return nullptr;
  picked->setObjectNormal(normal);
  picked->setObjectTextureCoords(SbVec4f(texCoords[0], texCoords[1], 0, 1));
  return picked;
}

/// A new detail of a class that tells a part.
template <class Detail> Detail* partDetail(int part) {
  auto* detail = new Detail;
  detail->setPart(part);
  return detail;
}

}  // namespace tessel
