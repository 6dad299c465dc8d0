// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbColor.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/SbVec4f.h>
#include <Inventor/nodes/SoNode.h>

#include "support/Drawing.h"

namespace tessel::test {

/// The bounding box of a scene.
SbBox3f boxOf(SoNode* scene);

/// A point that a ray met.
struct Hit {
  SbVec3f point, normal;
  SbVec4f texCoords;
  int part = -1;        ///< of the detail; -1 if that tells none
  int line = -1;        ///< of a line's detail, or a text's
  int coordinate = -1;  ///< of a point's detail
  int character = -1;   ///< of a text's detail
};
/// All of them, the nearest first.
std::vector<Hit> hitsOf(SoNode* scene, const SbVec3f& from, const SbVec3f& along);

struct Corner {
  SbVec3f point, normal;
  SbColor diffuse;
  float s = 0, t = 0;
  int part = -1;
};
using Triangle = std::array<Corner, 3>;
/// What the callback action is handed, at a complexity in object space.
std::vector<Triangle> trianglesOf(SoNode* scene, float complexity = 0.5f);
/// The volume inside a closed surface; negative if its triangles are clockwise from outside.
double volumeOf(const std::vector<Triangle>& triangles);

/// Whether each edge of a surface is met by as many triangles one way as the other: nothing gapes.
bool isClosed(const std::vector<Triangle>& triangles);

/// A drawing with a light that shines straight on.
class LitDrawing : public Drawing {
public:
  explicit LitDrawing(SoNode* scene);
};
/// How many pixels a scene lights.
int countLit(SoNode* scene);

}  // namespace tessel::test
