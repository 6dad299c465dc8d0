// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/MeshBuffers.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <Inventor/C/glue/gl.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/system/gl.h>

namespace tessel {

namespace {

constexpr std::size_t largestShortMesh = 65536;  // vertices that two-byte indices reach

const cc_glglue* glueOf(std::uint32_t context) { return cc_glglue_instance(static_cast<int>(context)); }

// The closure is the name of a buffer object.
void deleteBufferCB(void* closure, std::uint32_t context) {
  const auto buffer = static_cast<GLuint>(reinterpret_cast<std::uintptr_t>(closure));
  cc_glglue_glDeleteBuffers(glueOf(context), 1, &buffer);
}

void scheduleDelete(std::uint32_t context, GLuint buffer) {
  if (buffer)
    SoGLCacheContextElement::scheduleDeleteCallback(context, deleteBufferCB,
                                                    reinterpret_cast<void*>(std::uintptr_t(buffer)));
}

std::uint32_t contextOf(SoState* state) {
  return static_cast<std::uint32_t>(SoGLCacheContextElement::get(state));
}

// A place in the bound buffer, or in memory.
const std::byte* place(const std::byte* base, std::size_t offset) {
  return reinterpret_cast<const std::byte*>(reinterpret_cast<std::uintptr_t>(base) + offset);
}

void copyShort(std::span<const std::uint32_t> from, std::byte* to) {
  for (const std::uint32_t index : from) {
    const auto value = static_cast<std::uint16_t>(index);
    std::memcpy(to, &value, sizeof value);
    to += sizeof value;
  }
}

}  // namespace

MeshBuffers::~MeshBuffers() {
  for (const InContext& in : contexts) {
    scheduleDelete(in.context, in.vertices);
    scheduleDelete(in.context, in.indices);
  }
}

void MeshBuffers::invalidate() {
  for (InContext& in : contexts) in.current = false;
  inMemory = false;
}

const MeshBuffers::InContext* MeshBuffers::find(std::uint32_t context) const {
  for (const InContext& in : contexts)
    if (in.context == context) return &in;
  return nullptr;
}

bool MeshBuffers::isReady(SoState* state) const {
  if (inMemory) return true;
  const InContext* in = find(contextOf(state));
  return in && in->current;
}

void MeshBuffers::fill(SoState* state, const FaceMesh& mesh, bool large) {
  const std::uint32_t context = contextOf(state);
  form = mesh.format();
  indexCount = mesh.triangles().size();
  shortIndices = mesh.vertexCount() <= largestShortMesh;
  if (!large || SoGLCacheContextElement::getIsRemoteRendering(state) ||
      !cc_glglue_has_vertex_buffer_object(glueOf(context)))
    return fillMemory(mesh);

  releaseMemory();
  auto* in = const_cast<InContext*>(find(context));
  if (!in) in = &contexts.emplace_back(InContext{context});
  fillBuffers(*in, mesh);
}

void MeshBuffers::releaseMemory() {
  inMemory = false;
  vertexMemory = {};
  indexMemory = {};
}

void MeshBuffers::fillMemory(const FaceMesh& mesh) {
  vertexMemory.resize(mesh.vertexCount() * form.stride());
  mesh.writeVertices(0, mesh.vertexCount(), vertexMemory.data());
  const auto indices = mesh.triangles();
  indexMemory.resize(indices.size() * (shortIndices ? 2 : 4));
  if (shortIndices)
    copyShort(indices, indexMemory.data());
  else if (!indices.empty())
    std::memcpy(indexMemory.data(), indices.data(), indexMemory.size());
  inMemory = true;
}

void MeshBuffers::fillBuffers(InContext& in, const FaceMesh& mesh) const {
  const cc_glglue* const glue = glueOf(in.context);
  if (!in.vertices) {
    cc_glglue_glGenBuffers(glue, 1, &in.vertices);
    cc_glglue_glGenBuffers(glue, 1, &in.indices);
  }
  // Piece by piece, so that no second copy of the whole is ever in memory.
  std::array<std::byte, 32768> piece;

  const std::size_t stride = form.stride(), perPiece = piece.size() / stride;
  cc_glglue_glBindBuffer(glue, GL_ARRAY_BUFFER, in.vertices);
  cc_glglue_glBufferData(glue, GL_ARRAY_BUFFER, static_cast<intptr_t>(mesh.vertexCount() * stride), nullptr,
                         GL_STATIC_DRAW);
  for (std::size_t first = 0; first < mesh.vertexCount(); first += perPiece) {
    const std::size_t count = std::min(perPiece, mesh.vertexCount() - first);
    mesh.writeVertices(first, count, piece.data());
    cc_glglue_glBufferSubData(glue, GL_ARRAY_BUFFER, static_cast<intptr_t>(first * stride),
                              static_cast<intptr_t>(count * stride), piece.data());
  }
  cc_glglue_glBindBuffer(glue, GL_ARRAY_BUFFER, 0);

  const auto indices = mesh.triangles();
  cc_glglue_glBindBuffer(glue, GL_ELEMENT_ARRAY_BUFFER, in.indices);
  if (!shortIndices) {
    cc_glglue_glBufferData(glue, GL_ELEMENT_ARRAY_BUFFER, static_cast<intptr_t>(indices.size_bytes()),
                           indices.data(), GL_STATIC_DRAW);
  } else {
    cc_glglue_glBufferData(glue, GL_ELEMENT_ARRAY_BUFFER, static_cast<intptr_t>(indices.size() * 2), nullptr,
                           GL_STATIC_DRAW);
    const std::size_t half = piece.size() / 2;
    for (std::size_t first = 0; first < indices.size(); first += half) {
      const auto part = indices.subspan(first, std::min(half, indices.size() - first));
      copyShort(part, piece.data());
      cc_glglue_glBufferSubData(glue, GL_ELEMENT_ARRAY_BUFFER, static_cast<intptr_t>(first * 2),
                                static_cast<intptr_t>(part.size() * 2), piece.data());
    }
  }
  cc_glglue_glBindBuffer(glue, GL_ELEMENT_ARRAY_BUFFER, 0);
  in.current = true;
}

void MeshBuffers::draw(SoState* state) const {
  if (indexCount == 0) return;
  const std::uint32_t context = contextOf(state);
  const cc_glglue* glue = nullptr;
  const std::byte *vertices = nullptr, *indices = nullptr;  // offsets, where buffers are bound
  if (inMemory) {
    vertices = vertexMemory.data();
    indices = indexMemory.data();
  } else {
    const InContext* in = find(context);
    glue = glueOf(context);
    cc_glglue_glBindBuffer(glue, GL_ARRAY_BUFFER, in->vertices);
    cc_glglue_glBindBuffer(glue, GL_ELEMENT_ARRAY_BUFFER, in->indices);
  }

  const auto stride = static_cast<GLsizei>(form.stride());
  glEnableClientState(GL_VERTEX_ARRAY);
  glVertexPointer(3, GL_FLOAT, stride, vertices);
  if (form.normals) {
    glEnableClientState(GL_NORMAL_ARRAY);
    glNormalPointer(GL_FLOAT, stride, place(vertices, form.normalAt()));
  }
  if (form.colors) {
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(4, GL_UNSIGNED_BYTE, stride, place(vertices, form.colorAt()));
  }
  if (form.texCoords) {
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(2, GL_FLOAT, stride, place(vertices, form.texCoordAt()));
  }
  glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indexCount),
                 shortIndices ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT, indices);

  glDisableClientState(GL_VERTEX_ARRAY);
  if (form.normals) glDisableClientState(GL_NORMAL_ARRAY);
  if (form.colors) glDisableClientState(GL_COLOR_ARRAY);
  if (form.texCoords) glDisableClientState(GL_TEXTURE_COORD_ARRAY);
  if (glue) {
    cc_glglue_glBindBuffer(glue, GL_ARRAY_BUFFER, 0);
    cc_glglue_glBindBuffer(glue, GL_ELEMENT_ARRAY_BUFFER, 0);
  }
}

}  // namespace tessel
