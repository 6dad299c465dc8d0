// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include <Inventor/SbVec3f.h>
#include <Inventor/SbVec4f.h>

#include "shapes/BoxTexCoords.h"
#include "shapes/MaterialNumbers.h"

class SoAction;
class SoMFInt32;
class SoMultiTextureCoordinateElement;
class SoPointDetail;
class SoPrimitiveVertex;
class VrmlIndexedFaceSet;
class VrmlNormal;
class VrmlTextureCoordinate;

namespace tessel {

class NormalGenerator;

/// Goes from face to face of a face set, and tells the vertices and their details as primitives have them.
///
/// Nothing is computed before a vertex is asked for: most faces of a pick never are.
class FaceWalk {
public:
  /// How a corner finds its color or normal, in the numbers of `bind`.
  enum Binding { overall, perFace, perFaceIndexed, perVertex, perVertexIndexed };

  /// @param normals  made at the first need, if the node has none of its own; kept by the caller
  FaceWalk(VrmlIndexedFaceSet& node, SoAction* action, std::unique_ptr<NormalGenerator>& normals);

  /// False if an index is out of range of the points, or there are none: then there is nothing to walk.
  bool isSound() const { return sound; }

  /// Goes to the next face of at least three corners; false behind the last.
  bool next();
  int face() const { return faceNumber; }
  int size() const { return corners; }
  /// The index of a corner's point.
  std::int32_t pointOf(int corner) const { return coordIndex[firstEntry + corner]; }
  const SbVec3f& pointAt(int corner) const { return points[pointOf(corner)]; }

  /// Fills a vertex, all but its detail.
  void fill(int corner, SoPrimitiveVertex& vertex) const;
  void fillDetail(int corner, SoPointDetail& detail) const;

  /// Whether texture coordinates are a function of point and normal.
  bool isTexFunction() const { return !texCoords; }
  SbVec4f texCoordsAt(const SbVec3f& point, const SbVec3f& normal) const;

  Binding materialBinding() const { return material; }
  Binding normalBinding() const { return normal; }

private:
  int indexOf(Binding binding, const SoMFInt32& list, int corner) const;
  int texCoordIndexOf(int corner) const;
  SbVec3f normalAt(int corner) const;

  VrmlIndexedFaceSet& node;
  SoAction* action;
  std::unique_ptr<NormalGenerator>& madeNormals;
  mutable std::unique_ptr<NormalGenerator> faceNormal;  // of one flat face
  mutable int faceNormalOf = -1;

  std::span<const SbVec3f> points;
  std::span<const std::int32_t> coordIndex;
  bool sound = false;
  const VrmlNormal* normals = nullptr;
  const VrmlTextureCoordinate* texCoords = nullptr;
  const SoMultiTextureCoordinateElement* texFunction = nullptr;
  mutable std::optional<BoxTexCoords> box;
  const SoMFInt32 &colorIndices, &normalIndices, &texCoordIndices;
  Binding material, normal;
  MaterialNumbers materials;

  int faceNumber = -1;
  int firstEntry = 0;  // in coordIndex
  int firstVert = 0;   // vertices of the faces before
  int corners = 0;
  int nextEntry = 0;
};

}  // namespace tessel
