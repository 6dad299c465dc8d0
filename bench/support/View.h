// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/actions/VrmlRenderAction.h>
#include <tessel/toolkit/SoRef.h>

namespace bench {

/// Draws worlds as a frame loop does, into memory, through a camera that sees the whole of them.
class View {
public:
  /// Makes the one context of the process, if there is none yet.
  View();

  /// Puts a world in the place of the last one.
  void show(SoNode* world);
  /// Draws a frame and waits for it.
  void draw();

  /// The same triangles from one display list of one glDrawElements, with the same camera and one colour.
  class Flat {
  public:
    explicit Flat(View& view);
    ~Flat();
    Flat(const Flat&) = delete;
    Flat& operator=(const Flat&) = delete;
    void draw() const;
    std::size_t triangles() const { return numTriangles; }

  private:
    View& view;
    unsigned list = 0;
    std::size_t numTriangles = 0;
  };

private:
  void clear() const;

  tessel::SoRef<SoSeparator> root;
  SoPerspectiveCamera* camera;
  tessel::SoRef<SoNode> world;
  VrmlRenderAction render;
  VrmlPreTraverseAction preTraverse;
};

}  // namespace bench
