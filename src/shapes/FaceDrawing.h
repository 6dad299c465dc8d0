// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <memory>

#include "shapes/FaceMesh.h"
#include "shapes/MeshBuffers.h"
#include "shapes/MeshNeeds.h"
#include "shapes/NormalGenerator.h"

namespace tessel {

/// What meshes are made with.
struct FaceWorkshop {
  FaceMesh mesh;
  NormalGenerator normals;
};

/// What a face set keeps from one frame to the next in order to draw.
struct FaceDrawing {
  /// A set with more indices keeps out of display lists: it has buffers of its own.
  static constexpr int autoCacheLimit = 1000;
  /// A mesh that was made so often after changes counts as animated.
  static constexpr int remadeOften = 2;

  enum class Status : std::uint8_t { changed, ready, failed };

  Status status = Status::changed;
  MeshNeeds madeFor;
  bool isFlat = false;      ///< the mesh has the flat layout
  bool refuseFlat = false;  ///< it was met under lights for which that is not right
  MeshBuffers buffers;

  /// A set that is drawn again and again with other points keeps what it was made with.
  std::unique_ptr<FaceWorkshop> workshop;
  int timesRemade = 0;
  bool facesChanged = true;  ///< since the mesh was made: not only its points

  void changed(bool onlyPoints) {
    if (status == Status::ready) ++timesRemade;
    status = Status::changed;
    if (!onlyPoints) {
      facesChanged = true;
      refuseFlat = false;
    }
    buffers.invalidate();
  }
};

}  // namespace tessel
