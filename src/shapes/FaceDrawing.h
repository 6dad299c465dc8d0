// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>

#include "shapes/FaceIndices.h"
#include "shapes/MeshBuffers.h"

namespace tessel {

/// What a face set keeps from one frame to the next in order to draw.
struct FaceDrawing {
  /// A set with more indices keeps out of display lists: it has buffers of its own.
  static constexpr int autoCacheLimit = 1000;

  /// What a mesh is made for. It serves as long as it has what the state needs.
  struct Needs {
    bool normals = false;
    bool texCoords = false;
    bool colors = false;       ///< the node's own, if it has any
    std::uint8_t alpha = 255;  ///< of its own colors

    bool serve(const Needs& needed) const {
      return normals >= needed.normals && texCoords >= needed.texCoords && colors == needed.colors &&
             alpha == needed.alpha;
    }
  };

  enum class Status : std::uint8_t { changed, ready, failed };

  Status status = Status::changed;
  std::optional<FaceRuns> runs;  ///< empty until counted
  Needs madeFor;
  bool isFlat = false;      ///< the mesh has the flat layout
  bool refuseFlat = false;  ///< it was met under lights for which that is not right
  bool isAnimated = false;  ///< it was made again after a change
  MeshBuffers buffers;

  void changed() {
    if (status == Status::ready) isAnimated = true;
    status = Status::changed;
    refuseFlat = false;
    buffers.invalidate();
  }
};

}  // namespace tessel
