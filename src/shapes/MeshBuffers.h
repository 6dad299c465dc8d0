// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "shapes/FaceMesh.h"

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
  void fill(SoState* state, const FaceMesh& mesh, bool large);
  /// Draws. Expects it ready. Leaves GL's current color undefined if the mesh has colors, and its normal.
  void draw(SoState* state) const;
  /// Frees what is in memory.
  void releaseMemory();

  const FaceMesh::Format& format() const { return form; }

private:
  struct InContext {
    std::uint32_t context;
    unsigned vertices = 0;  // names of buffer objects
    unsigned indices = 0;
    bool current = false;
  };
  const InContext* find(std::uint32_t context) const;
  void fillBuffers(InContext& in, const FaceMesh& mesh) const;
  void fillMemory(const FaceMesh& mesh);

  FaceMesh::Format form;
  std::size_t indexCount = 0;
  bool shortIndices = false;  // two bytes each, not four
  std::vector<InContext> contexts;
  bool inMemory = false;
  std::vector<std::byte> vertexMemory, indexMemory;
};

}  // namespace tessel
