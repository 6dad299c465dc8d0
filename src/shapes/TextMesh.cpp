// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/TextMesh.h"

#include <algorithm>

#include <Inventor/SbVec3f.h>

namespace tessel {

TextMesh::TextMesh(const TextLayout& layout, const VertexFormat& f) : format(f), size(layout.fontSize()) {
  layout.eachCharacter([this](const TextLayout::Character& c) {
    const GlyphMesh& mesh = c.glyph.mesh;
    if (mesh.triangles.empty()) return;
    cut = cut || indices.size() + mesh.triangles.size() > 3 * mostTriangles;
    if (cut) return;
    characters.push_back({vertexCount, c.origin, &mesh});
    const auto base = static_cast<std::uint32_t>(vertexCount);
    for (const std::uint32_t number : mesh.triangles) indices.push_back(base + number);
    vertexCount += mesh.points.size();
  });
}

BufferContent TextMesh::content() const {
  BufferContent content;
  content.format = format;
  content.vertexCount = vertexCount;
  content.indices = indices;
  content.primitiveSize = 3;
  content.writeVertices = [this](std::size_t first, std::size_t count, std::byte* out) {
    writeVertices(first, count, out);
  };
  return content;
}

void TextMesh::writeVertices(std::size_t first, std::size_t count, std::byte* out) const {
  const SbVec3f normal(0, 0, 1);
  auto at = std::ranges::upper_bound(characters, first, {}, &Placed::firstVertex) - 1;
  for (std::size_t vertex = first; vertex < first + count; ++vertex, out += format.stride()) {
    while (vertex - at->firstVertex == at->mesh->points.size()) ++at;
    const SbVec2f& local = at->mesh->points[vertex - at->firstVertex];
    const SbVec2f place = at->origin + local * size;
    storeVertexPart(out, SbVec3f(place[0], place[1], 0));
    if (format.normals) storeNormal(out + format.normalAt(), format.normalForm, normal);
    if (format.texCoords) storeVertexPart(out + format.texCoordAt(), local);
  }
}

}  // namespace tessel
