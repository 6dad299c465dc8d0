// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/system/gl.h>

#include <tessel/shapes/VrmlGeometry.h>

#include "Frame.h"

/// The rival: the same triangles with the same values in a display list of one glDrawElements, vertices shared.
class DisplayList {
public:
  explicit DisplayList(const Frame& f) : frame(f) {
    SoCallbackAction collect;
    collect.addTriangleCallback(
        VrmlGeometry::getClassTypeId(),
        [](void* self, SoCallbackAction* action, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
           const SoPrimitiveVertex* c) {
          static_cast<DisplayList*>(self)->add(action, {a, b, c});
        },
        this);
    collect.apply(frame.getWorld());
    numbers.clear();
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY}) glEnableClientState(array);
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), &vertices[0].point);
    glNormalPointer(GL_FLOAT, sizeof(Vertex), &vertices[0].normal);
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(Vertex), &vertices[0].color);
    list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(index.size()), GL_UNSIGNED_INT, index.data());
    glEndList();
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY}) glDisableClientState(array);
  }
  ~DisplayList() { glDeleteLists(list, 1); }

  void draw() const {
    frame.loadMatrices();
    glEnable(GL_LIGHTING);
    glEnable(GL_COLOR_MATERIAL);
    glCallList(list);
    glFinish();
  }

  std::size_t triangles() const { return index.size() / 3; }

private:
  struct Vertex {
    SbVec3f point, normal;
    std::uint32_t color;
  };
  struct SameBytes {
    static std::string_view bytes(const Vertex& v) { return {reinterpret_cast<const char*>(&v), sizeof v}; }
    std::size_t operator()(const Vertex& v) const { return std::hash<std::string_view>()(bytes(v)); }
    bool operator()(const Vertex& a, const Vertex& b) const { return bytes(a) == bytes(b); }
  };

  void add(SoCallbackAction* action, std::array<const SoPrimitiveVertex*, 3> corners) {
    for (const SoPrimitiveVertex* corner : corners) {
      SbColor ambient, diffuse, specular, emission;
      float shininess, transparency;
      action->getMaterial(ambient, diffuse, specular, emission, shininess, transparency,
                          corner->getMaterialIndex());
      const Vertex vertex{corner->getPoint(), corner->getNormal(),
                          __builtin_bswap32(diffuse.getPackedValue())};
      const auto [at, isNew] = numbers.try_emplace(vertex, static_cast<GLuint>(vertices.size()));
      if (isNew) vertices.push_back(vertex);
      index.push_back(at->second);
    }
  }

  const Frame& frame;
  std::unordered_map<Vertex, GLuint, SameBytes, SameBytes> numbers;
  std::vector<Vertex> vertices;
  std::vector<GLuint> index;
  GLuint list = 0;
};
