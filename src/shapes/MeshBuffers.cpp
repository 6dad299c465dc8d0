// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/MeshBuffers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include <Inventor/C/glue/gl.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/system/gl.h>

namespace tessel {

namespace {

constexpr std::size_t largestShortMesh = BufferContent::shortReach;
// A mesh that would fall into parts of fewer indices on average keeps four-byte indices.
constexpr std::size_t smallestPart = 4096;

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

using RestartFunction = void (*)(GLuint index);

// Null if there is none. It is the same for all contexts.
RestartFunction restartFunction(std::uint32_t context) {
  static const auto function =
      reinterpret_cast<RestartFunction>(cc_glglue_getprocaddress(glueOf(context), "glPrimitiveRestartIndex"));
  return function;
}

using PartsFunction = void (*)(GLenum, const GLsizei*, GLenum, const void* const*, GLsizei, const GLint*);

// Null if there is none. It is the same for all contexts that have it.
PartsFunction partsFunction(std::uint32_t context) {
  static const auto function = reinterpret_cast<PartsFunction>(
      cc_glglue_getprocaddress(glueOf(context), "glMultiDrawElementsBaseVertex"));
  return cc_glglue_glversion_matches_at_least(glueOf(context), 3, 2, 0) ? function : nullptr;
}

// A place in the bound buffer, or in memory.
const std::byte* place(const std::byte* base, std::size_t offset) {
  return reinterpret_cast<const std::byte*>(reinterpret_cast<std::uintptr_t>(base) + offset);
}

void copyShort(std::span<const std::uint32_t> from, std::uint32_t base, std::byte* to) {
  for (const std::uint32_t index : from) {
    const auto value = static_cast<std::uint16_t>(index - base);
    std::memcpy(to, &value, sizeof value);
    to += sizeof value;
  }
}

}  // namespace

bool MeshBuffers::canEndStrips(SoState* state) {
  const std::uint32_t context = contextOf(state);
  return cc_glglue_glversion_matches_at_least(glueOf(context), 3, 1, 0) && restartFunction(context);
}

VertexFormat::NormalForm MeshBuffers::smallestNormals(SoState* state) {
  // Older versions have no 0 in bytes, which would show; in shorts it does not.
  const cc_glglue* const glue = glueOf(contextOf(state));
  return cc_glglue_glversion_matches_at_least(glue, 4, 2, 0) ? VertexFormat::NormalForm::bytes
                                                             : VertexFormat::NormalForm::shorts;
}

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

void MeshBuffers::fill(SoState* state, const BufferContent& mesh, bool large) {
  const std::uint32_t context = contextOf(state);
  const bool sameForm = std::exchange(form, mesh.format) == mesh.format;
  vertexCount = mesh.vertexCount;
  indexCount = mesh.indices.size();
  const bool wereShort = std::exchange(shortIndices, vertexCount <= largestShortMesh);
  parts = {};
  isInOrder = mesh.isInOrder;
  hasStripEnds = mesh.hasStripEnds;
  if (!large || SoGLCacheContextElement::getIsRemoteRendering(state) ||
      !cc_glglue_has_vertex_buffer_object(glueOf(context)))
    return fillMemory(mesh);

  releaseMemory();
  auto* in = const_cast<InContext*>(find(context));
  if (!in) in = &contexts.emplace_back(InContext{context});
  if (!shortIndices && mesh.primitiveSize > 0 && partsFunction(context)) shortIndices = split(mesh);
  if (shortIndices != wereShort || !sameForm)  // a context that can do less, or needs more, came in
    for (InContext& other : contexts) other.current = false;
  fillBuffers(*in, mesh);
}

void MeshBuffers::releaseMemory() {
  inMemory = false;
  vertexMemory = {};
  indexMemory = {};
}

void MeshBuffers::fillMemory(const BufferContent& mesh) {
  vertexMemory.resize(vertexCount * form.stride());
  mesh.writeVertices(0, vertexCount, vertexMemory.data());
  const auto indices = mesh.indices;
  indexMemory.resize(indices.size() * (shortIndices ? 2 : 4));
  if (shortIndices)
    copyShort(indices, 0, indexMemory.data());
  else if (!indices.empty())
    std::memcpy(indexMemory.data(), indices.data(), indexMemory.size());
  inMemory = true;
}

// Cuts a mesh into runs of primitives whose vertices lie within reach of each other, as neighbours mostly do.
bool MeshBuffers::split(const BufferContent& mesh) {
  const auto& indices = mesh.indices;
  const auto size = static_cast<std::size_t>(mesh.primitiveSize);
  const std::size_t mostParts = indices.size() / smallestPart;
  std::size_t begin = 0;
  std::uint32_t low = 0, high = 0;
  const auto close = [&](std::size_t end) {
    parts.counts.push_back(static_cast<int>(end - begin));
    parts.offsets.push_back(place(nullptr, begin * 2));
    parts.bases.push_back(static_cast<int>(low));
    begin = end;
  };
  for (std::size_t i = 0; i + size <= indices.size(); i += size) {
    const auto [least, most] = std::ranges::minmax(indices.subspan(i, size));
    if (i > begin) {
      if (std::max(high, most) - std::min(low, least) < largestShortMesh) {
        low = std::min(low, least);
        high = std::max(high, most);
        continue;
      }
      close(i);
    }
    low = least;
    high = most;
    if (high - low >= largestShortMesh || parts.counts.size() >= mostParts) {
      parts = {};
      return false;
    }
  }
  close(indices.size());
  return true;
}

void MeshBuffers::fillBuffers(InContext& in, const BufferContent& mesh) const {
  const cc_glglue* const glue = glueOf(in.context);
  if (!in.vertices) {
    cc_glglue_glGenBuffers(glue, 1, &in.vertices);
    cc_glglue_glGenBuffers(glue, 1, &in.indices);
  }
  // Piece by piece, so that no second copy of the whole is ever in memory.
  std::array<std::byte, 32768> piece;

  const std::size_t stride = form.stride(), perPiece = piece.size() / stride;
  cc_glglue_glBindBuffer(glue, GL_ARRAY_BUFFER, in.vertices);
  cc_glglue_glBufferData(glue, GL_ARRAY_BUFFER, static_cast<intptr_t>(vertexCount * stride), nullptr,
                         GL_STATIC_DRAW);
  for (std::size_t first = 0; first < vertexCount; first += perPiece) {
    const std::size_t count = std::min(perPiece, vertexCount - first);
    mesh.writeVertices(first, count, piece.data());
    cc_glglue_glBufferSubData(glue, GL_ARRAY_BUFFER, static_cast<intptr_t>(first * stride),
                              static_cast<intptr_t>(count * stride), piece.data());
  }
  cc_glglue_glBindBuffer(glue, GL_ARRAY_BUFFER, 0);

  const auto indices = mesh.indices;
  cc_glglue_glBindBuffer(glue, GL_ELEMENT_ARRAY_BUFFER, in.indices);
  if (!shortIndices) {
    cc_glglue_glBufferData(glue, GL_ELEMENT_ARRAY_BUFFER, static_cast<intptr_t>(indices.size_bytes()),
                           indices.data(), GL_STATIC_DRAW);
  } else {
    cc_glglue_glBufferData(glue, GL_ELEMENT_ARRAY_BUFFER, static_cast<intptr_t>(indices.size() * 2), nullptr,
                           GL_STATIC_DRAW);
    const std::size_t half = piece.size() / 2;
    const auto copy = [&](std::size_t first, std::size_t end, std::uint32_t base) {
      for (; first < end; first += half) {
        const auto some = indices.subspan(first, std::min(half, end - first));
        copyShort(some, base, piece.data());
        cc_glglue_glBufferSubData(glue, GL_ELEMENT_ARRAY_BUFFER, static_cast<intptr_t>(first * 2),
                                  static_cast<intptr_t>(some.size() * 2), piece.data());
      }
    };
    std::size_t first = 0;
    for (std::size_t part = 0; part < parts.counts.size(); ++part) {
      const std::size_t end = first + static_cast<std::size_t>(parts.counts[part]);
      copy(first, end, static_cast<std::uint32_t>(parts.bases[part]));
      first = end;
    }
    if (parts.counts.empty()) copy(0, indices.size(), 0);
  }
  cc_glglue_glBindBuffer(glue, GL_ELEMENT_ARRAY_BUFFER, 0);
  in.current = true;
}

void MeshBuffers::draw(SoState* state, unsigned primitive) const {
  if ((isInOrder ? vertexCount : indexCount) == 0) return;
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
    constexpr GLenum types[] = {GL_FLOAT, GL_SHORT, GL_BYTE};
    glNormalPointer(types[static_cast<int>(form.normalForm)], stride, place(vertices, form.normalAt()));
  }
  if (form.colors) {
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(4, GL_UNSIGNED_BYTE, stride, place(vertices, form.colorAt()));
  }
  if (form.texCoords) {
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(2, GL_FLOAT, stride, place(vertices, form.texCoordAt()));
  }
  if (hasStripEnds) {
    glEnable(GL_PRIMITIVE_RESTART);
    restartFunction(context)(shortIndices ? std::uint16_t(BufferContent::endOfStrip)
                                          : BufferContent::endOfStrip);
  }
  if (isInOrder)
    glDrawArrays(primitive, 0, static_cast<GLsizei>(vertexCount));
  else if (!parts.counts.empty())
    partsFunction(context)(primitive, parts.counts.data(), GL_UNSIGNED_SHORT, parts.offsets.data(),
                           static_cast<GLsizei>(parts.counts.size()), parts.bases.data());
  else
    glDrawElements(primitive, static_cast<GLsizei>(indexCount),
                   shortIndices ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT, indices);
  if (hasStripEnds) glDisable(GL_PRIMITIVE_RESTART);

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
