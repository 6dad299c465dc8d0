// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cmath>
#include <cstdint>

#include <Inventor/SbVec3f.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/misc/SoState.h>

#include "shapes/MeshBuffers.h"
#include "shapes/VrmlVertexPropertyCache.h"

namespace tessel {

/// What a large line or point set keeps to draw from, and what it was made for.
class UnlitBuffers {
public:
  /// All that the content takes from the state.
  struct Key {
    int colors = 0;  ///< what the colors belong to
    std::uint8_t alpha = 255;
    float thinning = 0;
    int count = 0;  ///< of vertices
    bool operator==(const Key&) const = default;
  };

  /// What the state's transparency adds to the node's own colors.
  static std::uint8_t alphaOf(const VrmlVertexPropertyCache& properties) {
    return properties.transpIsInVP
               ? static_cast<std::uint8_t>(std::lround(VrmlVertexPropertyCache::colorAlpha * 255))
               : 255;
  }

  /// Whether a draw may come from buffers: a display list above records vertices, not buffers.
  static bool serve(SoState* state) { return !SoCacheElement::anyOpen(state); }

  /// Draws, after it took what `content` gives if it has nothing for `key`.
  template <class Content> void draw(SoState* state, const Key& key, unsigned primitive, Content&& content) {
    if (madeFor != key) buffers.invalidate();
    if (!buffers.isReady(state)) {
      content([&](const BufferContent& mesh) { buffers.fill(state, mesh, true); });
      madeFor = key;
    }
    buffers.draw(state, primitive);
  }

  /// The values changed.
  void invalidate() { buffers.invalidate(); }

  /// Content of `count` vertices. Vertex i is point `pointOf(i)` in the color `colorOf(i)`; both stay in range.
  template <class PointOf, class ColorOf>
  static BufferContent vertices(const VrmlVertexPropertyCache& properties, int count, bool colored,
                                PointOf pointOf, ColorOf colorOf) {
    const auto* points = static_cast<const SbVec3f*>(properties.vertexPtr);
    const auto* colors = static_cast<const SbColor*>(properties.colorPtr);
    BufferContent result;
    result.format.colors = colored;
    result.vertexCount = static_cast<std::size_t>(count);
    result.writeVertices = [=, format = result.format, alpha = alphaOf(properties)](
                               std::size_t first, std::size_t n, std::byte* out) {
      for (std::size_t i = first; i < first + n; ++i, out += format.stride()) {
        storeVertexPart(out, points[pointOf(i)]);
        if (colored) storeVertexPart(out + format.colorAt(), colorBytes(colors[colorOf(i)], alpha));
      }
    };
    return result;
  }

private:
  MeshBuffers buffers;
  Key madeFor;
};

}  // namespace tessel
