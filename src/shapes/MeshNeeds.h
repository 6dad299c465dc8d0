// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

class SoState;

namespace tessel {

class MeshBuffers;

/// What a mesh is made for. It serves as long as it has what the state needs.
struct MeshNeeds {
  bool normals = false;
  bool texCoords = false;
  bool colors = false;       ///< the node's own, if it has any
  std::uint8_t alpha = 255;  ///< of its own colors

  /// What a render traversal asks of a node that has colors of its own, or none.
  static MeshNeeds of(SoState* state, bool hasColors);

  bool serve(const MeshNeeds& needed) const {
    return normals >= needed.normals && texCoords >= needed.texCoords && colors == needed.colors &&
           alpha == needed.alpha;
  }
};

/// Whether a traversal wants texture coordinates of a node, not of a function.
bool needsTexCoords(SoState* state);

/// Sends the look of the state, and draws triangles with it. The buffers' texture coordinates must be switched on before.
/// @param isFlat  each triangle has the color of its last corner
void drawTriangles(SoState* state, MeshBuffers& buffers, bool isFlat = false);

}  // namespace tessel
