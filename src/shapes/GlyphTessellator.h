// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <Inventor/SbBox2f.h>

#include "platform/OutlineFonts.h"

class GLUtesselator;

namespace tessel {

/// A filled glyph at the size 1, counterclockwise as seen from positive z.
struct GlyphMesh {
  std::vector<SbVec2f> points;
  std::vector<std::uint32_t> triangles;  ///< three numbers of points each
};

/// The box around all points of an outline; empty if it has none.
SbBox2f boxOf(const FontOutline& outline);

/// Fills outlines. What lies inside two contours of one direction is inside, as fonts mean it.
class GlyphTessellator {
public:
  GlyphTessellator();
  ~GlyphTessellator();
  GlyphTessellator(const GlyphTessellator&) = delete;
  GlyphTessellator& operator=(const GlyphTessellator&) = delete;

  /// An outline that cannot be filled gives its box; one without an extent, or with a coordinate that is no finite
  /// number, gives nothing.
  GlyphMesh fill(const FontOutline& outline);

private:
  bool tessellate(const FontOutline& outline);
  static void vertexCB(void* number, void* self);
  static void combineCB(double position[3], void* corners[4], float weights[4], void** out, void* self);
  static void errorCB(unsigned error, void* self);

  struct Release {
    void operator()(GLUtesselator* object) const;
  };
  std::unique_ptr<GLUtesselator, Release> glu;
  GlyphMesh mesh;  // in work
  bool failed = false;
};

}  // namespace tessel
