// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include <Inventor/SbMatrix.h>
#include <Inventor/SoPath.h>

#include <tessel/shapes/VrmlShape.h>
#include <tessel/toolkit/SoRef.h>

#include "actions/DelayedRecording.h"
#include "actions/RenderCache.h"

class SbViewportRegion;
class SoFullPath;
class SoGLRenderAction;
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
  bool add(SoGLRenderAction* action);
  /// Orders them from far to near; the depth of an object is that of the farthest point of its box.
  void sort();
  void clear();

  // A display list of a branch goes with a recording of what the branch delayed.

  /// Begins to record what is added.
  void beginRecording(SoGLRenderAction* action, DelayedRecording& recording, const SoCache* list);
  void endRecording() { recording = nullptr; }
  /// Adds what was recorded, for the branch that is the tail of the action's current path.
  void replay(SoGLRenderAction* action, const DelayedRecording& recorded);

  // Drawing goes by runs of neighbours that stand in the same place of the tree.

  /// Begins with the next run and gives the path to one of its shapes; null after the last.
  SoPath* nextRun();
  /// Draws the run in the action's state, which must be that of its path. False if that has been done.
  bool drawRun(SoGLRenderAction* action);

private:
  /// A part of the tree in which only matrices differ.
  struct Place {
    SoRef<SoPath> path;  ///< to a shape there
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
  /// A shape as it was drawn in a run: while these stay equal, so does the run.
  struct Drawn {
    SbUniqueId node;
    SbMatrix matrix;
    bool operator==(const Drawn& other) const { return node == other.node && matrix == other.matrix; }
  };
  /// A run and the display list of it.
  struct Run {
    std::vector<Drawn> drawn;
    std::unique_ptr<RenderCache> cache;
  };

  void addShape(SoState* state, VrmlShape* node, const SbMatrix& matrix, const SbBox3f& box,
                std::size_t place);
  std::size_t placeOf(const SoFullPath& path, int length, std::span<const int> below, int scope);
  std::size_t recordedPlace(const SoFullPath& path, int length, std::span<const int> below,
                            std::size_t place);
  SbBox3f boxOf(VrmlShape* shape, const SbViewportRegion& region);
  void drawShapes(SoGLRenderAction* action);

  std::vector<Place> places;
  std::vector<Shape> shapes;
  DelayedRecording* recording = nullptr;
  std::size_t runBegin = 0, runEnd = 0, runNumber = 0;
  bool runDrawn = true;
  std::vector<Run> runs;  // kept from frame to frame
  std::unique_ptr<SoGetBoundingBoxAction> measure;
};

}  // namespace tessel
