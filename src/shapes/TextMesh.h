// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "shapes/BufferContent.h"
#include "shapes/TextLayout.h"

namespace tessel {

/// The triangles of a whole text on their way into buffers: for each character those of its glyph, at its place.
class TextMesh {
public:
  /// More than these are not drawn at once: they would take a gigabyte on their way.
  static constexpr std::size_t mostTriangles = 10'000'000;

  /// @param layout  must stay as long as the mesh
  TextMesh(const TextLayout& layout, const VertexFormat& format);

  /// Whether characters at the end were left out.
  bool isCut() const { return cut; }
  std::size_t triangleCount() const { return indices.size() / 3; }
  /// All of it for buffers, as long as this mesh stays.
  BufferContent content() const;

private:
  struct Placed {
    std::size_t firstVertex;
    SbVec2f origin;
    const GlyphMesh* mesh;
  };
  void writeVertices(std::size_t first, std::size_t count, std::byte* out) const;

  VertexFormat format;
  float size;
  std::vector<Placed> characters;
  std::vector<std::uint32_t> indices;
  std::size_t vertexCount = 0;
  bool cut = false;
};

}  // namespace tessel
