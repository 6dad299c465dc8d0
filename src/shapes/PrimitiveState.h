// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlGeometry.h>

#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/details/SoPointDetail.h>

#include "shapes/PolygonTessellator.h"

class SoMaterialBundle;

namespace tessel {

/// What primitive generation works on. There is one for the library, since one traversal runs at a time.
struct PrimitiveState {
  PrimitiveState();

  SoMaterialBundle* matlBundle = nullptr;  ///< of the draw in progress
  bool sendTexCoords = false;              ///< whether drawing sends texture coordinates

  VrmlGeometry* shape = nullptr;  ///< that opened the shape
  SoAction* action = nullptr;
  VrmlGeometry::TriangleShape type = VrmlGeometry::TRIANGLES;
  int vertNum = 0;               ///< vertices seen of the current triangle, strip or fan
  SoPrimitiveVertex verts[2];    ///< the first two corners of the next triangle
  SoPointDetail vertDetails[2];  ///< and their details
  SoFaceDetail* faceDetail = nullptr;
  int nestLevel = 0;  ///< shapes open
  PolygonTessellator polygon;

  static PrimitiveState& get();
};

}  // namespace tessel
