// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include <Inventor/SbMatrix.h>
#include <Inventor/SoPath.h>

#include <tessel/shapes/VrmlShape.h>
#include <tessel/toolkit/SoRef.h>

class SoGLRenderAction;
class SbViewportRegion;
class SoFullPath;
class SoGetBoundingBoxAction;
class SoState;

namespace tessel {

/// The transparent shapes of a pass that wait to be drawn.
class DelayedShapes {
public:
  DelayedShapes();
  ~DelayedShapes();

  bool empty() const { return shapes.empty(); }
  /// Records the shape of the action's current path. False if there is none in it.
  bool add(SoGLRenderAction* action, bool withDepth);
  /// Orders them from far to near.
  void sort();
  void clear();

  // Drawing goes by runs of neighbours that stand in the same place of the tree.

  /// Begins with the next run and gives the path to one of its shapes; null after the last.
  SoPath* nextRun();
  /// Draws the run in the action's state, which must be that of its path. False if that has been done.
  bool drawRun(SoGLRenderAction* action);

private:
  /// A part of the tree in which only matrices differ.
  struct Place {
    SoRef<SoPath> path;  ///< to the first shape met there
    int rootDepth;       ///< index in `path` of the first node of a world
    int scope;           ///< the draw scope there
    bool shared;         ///< whether other shapes may be drawn there
  };
  struct Shape {
    SoRef<VrmlShape> node;
    SbMatrix matrix;  ///< from object space to the world
    float depth;
    std::size_t place;
  };
  std::size_t placeOf(const SoFullPath& path, int length, SoState* state);
  float depthOf(VrmlShape* shape, const SbMatrix& toEye, const SbViewportRegion& region);

  std::vector<Place> places;
  std::vector<Shape> shapes;
  std::size_t runBegin = 0, runEnd = 0;
  bool runDrawn = true;
  std::unique_ptr<SoGetBoundingBoxAction> measure;
};

}  // namespace tessel
