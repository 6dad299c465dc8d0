// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbBox3f.h>
#include <Inventor/SbVec4f.h>

class SoNode;
class SoState;

namespace tessel {

/// Texture coordinates of a geometry that has none of its own: s runs along the longest side of its box
/// from 0 to 1, t along the second longest on the same scale. Of equal sides the earlier of x, y, z wins.
class BoxTexCoords {
public:
  explicit BoxTexCoords(const SbBox3f& box);

  /// (s, t, 0, 1) at a point in object space.
  SbVec4f at(const SbVec3f& point) const;
  /// Lets GL generate them for what is drawn until the state is popped. This object must live till then.
  void generate(SoState* state, SoNode* node) const;

private:
  static void sendPlanes(void* self);
  static const SbVec4f& evaluate(void* self, const SbVec3f& point, const SbVec3f& normal);

  SbVec4f planeS, planeT;
};

}  // namespace tessel
