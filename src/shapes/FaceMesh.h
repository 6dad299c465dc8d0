// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "shapes/BufferContent.h"
#include "shapes/EarClipper.h"
#include "shapes/FaceIndices.h"
#include "shapes/PolygonTessellator.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include <Inventor/SbColor.h>
#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec3f.h>

namespace tessel {

/// The values of a face set and what each corner takes of them. All indices are within the values.
struct FaceMeshSource {
  std::span<const std::int32_t> coordIndex;
  FaceRuns runs;
  bool convex = true;  ///< false: faces of more than three corners may have any form
  std::span<const SbVec3f> points;

  // What is not to be drawn is empty.
  std::span<const SbVec3f> normals;
  std::span<const SbColor> colors;
  std::span<const SbVec2f> texCoords;
  CornerIndices normal, color, texCoord;
  std::uint8_t alpha = 255;  ///< goes with each color
  /// How small normals may be made. A display list takes whole numbers for floats by a rule that has no 0, so that
  /// a face along a light would catch its highlight. Only normals of whole faces become bytes: across a face a
  /// rounding would show in a highlight.
  VertexFormat::NormalForm smallestNormals = VertexFormat::NormalForm::bytes;
};

/// The faces of a face set as indexed triangles.
///
/// A vertex is what corners have in common that agree in all their values. It holds numbers into the arrays of
/// the source; `writeVertices` gathers the values, so that a mesh is small until it is in GL's memory.
/// Cost is linear in the source; an object that is used again reuses its memory.
class FaceMesh {
public:
  /// How a value that holds for a face reaches GL.
  enum class Layout : std::uint8_t {
    smooth,  ///< each corner of the face has it: right with every light
    flat,  ///< the last corner of each triangle has it, to be drawn with GL_FLAT: vertices are shared between
           ///< faces, so that there are up to three times fewer
  };

  /// Whether the flat layout can show a source: something is per face, and nothing that takes part in the
  /// color varies inside a face.
  static bool canBeFlat(const FaceMeshSource& source);

  /// Takes other values for the faces and index lists that the mesh was built from, and keeps its triangles.
  /// False, with nothing changed, if they don't fit or positions shape the triangles.
  bool refresh(const FaceMeshSource& source);
  /// Makes the triangles. Faces of fewer than three corners have none.
  void build(const FaceMeshSource& source, Layout layout);

  VertexFormat format() const { return form; }
  std::size_t vertexCount() const { return vertexPoint.size(); }
  /// Three numbers of vertices a triangle.
  std::span<const std::uint32_t> triangles() const { return triangleList; }

  /// Writes `count` vertices from number `first` on, in `format`. The values of the source must still be there.
  void writeVertices(std::size_t first, std::size_t count, std::byte* out) const;
  /// All of it for buffers, as long as this mesh and its source stay.
  BufferContent content() const;

private:
  /// What a vertex is looked up by, apart from its point.
  enum class Key : std::uint8_t { none, face, corner };
  static constexpr int numKeys = 3;
  using RunFn = void (FaceMesh::*)(std::int32_t at, std::int32_t face, std::int32_t count);
  template <int corners, std::size_t... cases> static constexpr auto makeRuns(std::index_sequence<cases...>);
  template <int corners> void addRun(std::int32_t at, std::int32_t face, std::int32_t count);
  template <int corners, Key color, Key normal, bool texCoord>
  void addFaces(std::int32_t at, std::int32_t face, std::int32_t count);
  template <Key color, Key normal, bool texCoord>
  std::int32_t vertexAt(std::int32_t point, std::int32_t ofColor, std::int32_t ofNormal,
                        std::int32_t ofTexCoord);

  bool isInReach(std::int32_t vertex);
  Key keyOf(const CornerIndices& attribute) const;
  using NormalForm = VertexFormat::NormalForm;
  NormalForm chooseNormalForm() const;
  template <class Use> void withNormalForm(Use&& use) const;
  std::int32_t copyVertex(std::int32_t vertex);
  void addTriangle(std::int32_t face, std::int32_t a, std::int32_t b, std::int32_t c);
  void addFan(std::int32_t face);
  void addPieces(std::int32_t face, std::int32_t at);
  void tessellate(std::int32_t face);

  std::int32_t colorOf(std::int32_t vertex) const;
  std::int32_t normalOf(std::int32_t vertex) const;
  std::int32_t texCoordOf(std::int32_t vertex) const;

  /// A vertex where edges of a face cross.
  struct Made {
    std::int32_t vertex;
    SbVec3f point, normal;
    SbVec2f texCoord;
    std::int32_t color;
  };
  static bool madeBefore(const Made& m, std::int32_t vertex) { return m.vertex < vertex; }

  FaceMeshSource source;
  VertexFormat form;
  bool flat = false;

  std::vector<std::uint32_t> triangleList;
  // Of each vertex: its point and, as far as they are keys, its other values.
  std::vector<std::int32_t> vertexPoint, vertexColor, vertexNormal, vertexTexCoord;
  std::vector<std::int32_t> vertexFace;   // flat: the face whose values it has, -1 if none
  std::vector<std::int32_t> nextVertex;   // the one before it of the same point, -1 if none
  std::vector<std::int32_t> firstVertex;  // of each point from the lowest used one on: the last made
  std::int32_t lowestPoint = 0;
  std::int32_t farCopies = 0;  // vertices made again because the first ones are out of reach
  std::vector<Made> made;

  // The face in work.
  std::vector<std::int32_t> outline;  // its vertices
  std::vector<SbVec3f> outlinePoints;
  std::vector<std::int32_t> pieces;
  std::int32_t copied = -1, copyOf = -1, copyFace = -1;  // flat: the vertex it had to copy
  EarClipper clipper;
  PolygonTessellator tessellator;
};

}  // namespace tessel
