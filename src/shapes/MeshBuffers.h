// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "shapes/BufferContent.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class SoState;

namespace tessel {

/// A mesh where GL draws it from: in buffer objects, one pair for each context, or in memory.
///
/// Memory is for small meshes, which end up in display lists, and for contexts without buffer objects.
/// Buffers are freed when their context is current the next time.
class MeshBuffers {
public:
  MeshBuffers() = default;
  ~MeshBuffers();
  MeshBuffers(const MeshBuffers&) = delete;
  MeshBuffers& operator=(const MeshBuffers&) = delete;

  /// The mesh has changed: nothing is ready until it is filled again. Buffers are kept to be reused.
  void invalidate();
  /// Whether the mesh can be drawn in the context of a render traversal.
  bool isReady(SoState* state) const;
  /// Takes the mesh for that context, or for all contexts where it goes into memory.
  /// @param large  whether it is worth buffer objects
  void fill(SoState* state, const BufferContent& mesh, bool large);
  /// Draws its vertices, in the order of the indices, as primitives of GL such as GL_TRIANGLES. Expects it ready.
  /// Leaves GL's current color undefined if the mesh has colors, and its normal.
  void draw(SoState* state, unsigned primitive) const;
  /// Whether a context can draw a mesh with ends of strips.
  static bool canEndStrips(SoState* state);
  /// The smallest form of normals that a context can draw.
  static VertexFormat::NormalForm smallestNormals(SoState* state);
  /// Frees what is in memory.
  void releaseMemory();

  const VertexFormat& format() const { return form; }

private:
  struct InContext {
    std::uint32_t context;
    unsigned vertices = 0;  // names of buffer objects
    unsigned indices = 0;
    bool current = false;
  };
  const InContext* find(std::uint32_t context) const;
  bool split(const BufferContent& mesh);
  void fillBuffers(InContext& in, const BufferContent& mesh) const;
  void fillMemory(const BufferContent& mesh);

  VertexFormat form;
  std::size_t vertexCount = 0;
  std::size_t indexCount = 0;
  bool shortIndices = false;  // two bytes each, not four
  // The parts of a mesh of more vertices than short indices reach, each with a vertex of its own to count from.
  struct Parts {
    std::vector<int> counts;
    std::vector<const void*> offsets;
    std::vector<int> bases;
  } parts;
  bool isInOrder = false, hasStripEnds = false;
  std::vector<InContext> contexts;
  bool inMemory = false;
  std::vector<std::byte> vertexMemory, indexMemory;
};

}  // namespace tessel
