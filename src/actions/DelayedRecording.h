// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbMatrix.h>

#include <tessel/shapes/VrmlShape.h>
#include <tessel/toolkit/SoRef.h>

class SoCache;

namespace tessel {

/// The transparent shapes of a branch, as a display list of it goes without them.
class DelayedRecording {
public:
  bool empty() const { return shapes.empty(); }

private:
  friend class DelayedShapes;

  /// A part of the branch in which only matrices differ.
  struct Place {
    std::vector<int> below;  ///< indices of children from the branch's top to a shape there
    bool outer;              ///< drawn like what stands around the branch
    int scope;               ///< the draw scope while it was recorded
  };
  struct Shape {
    SoRef<VrmlShape> node;
    SbMatrix matrix;  ///< from object space to the world, where the branch stood
    SbBox3f box;
    std::size_t place;
  };

  const SoCache* list = nullptr;  // the display list that goes with it
  SbMatrix base;                  // from the branch's space to the world
  int depth = 0;                  // length of the path to the branch's top
  int scope = 0;                  // the draw scope around the branch
  std::vector<Place> places;
  std::vector<Shape> shapes;
};

}  // namespace tessel
