// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/FaceWalk.h"

#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoAction.h>
#include <Inventor/details/SoPointDetail.h>
#include <Inventor/elements/SoMultiTextureCoordinateElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>
#include <tessel/shapes/VrmlNormal.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>

#include "shapes/FaceIndices.h"
#include "shapes/NormalGenerator.h"
#include "shapes/RealNode.h"

namespace tessel {

namespace {

/// A list that was not given stands for the coordinates' own.
const SoMFInt32& givenOr(const SoMFInt32& list, const SoMFInt32& coordIndex) {
  return list.getNum() == 1 && list[0] == -1 ? coordIndex : list;
}

FaceWalk::Binding bind(bool perVertex, const SoMFInt32& indices) {
  if (perVertex) return FaceWalk::perVertexIndexed;
  return indices.getNum() == 0 || indices[0] < 0 ? FaceWalk::perFace : FaceWalk::perFaceIndexed;
}

FaceWalk::Binding materialBindingOf(const VrmlIndexedFaceSet& node) {
  if (!realNode<VrmlColor>(node.color)) return FaceWalk::overall;
  return bind(node.colorPerVertex.getValue(), node.colorIndex);
}

/// The element of texture coordinates, if the action has it and they are a function.
const SoMultiTextureCoordinateElement* texFunctionOf(SoAction* action) {
  SoState* state = action->getState();
  if (!state->isElementEnabled(SoMultiTextureCoordinateElement::getClassStackIndex())) return nullptr;
  if (SoMultiTextureCoordinateElement::getType(state, 0) != SoMultiTextureCoordinateElement::FUNCTION)
    return nullptr;
  return SoMultiTextureCoordinateElement::getInstance(state);
}

}  // namespace

FaceWalk::FaceWalk(VrmlIndexedFaceSet& n, SoAction* a, std::unique_ptr<NormalGenerator>& kept)
    : node(n),
      action(a),
      madeNormals(kept),
      normals(realNode<VrmlNormal>(node.normal)),
      texCoords(realNode<VrmlTextureCoordinate>(node.texCoord)),
      texFunction(texFunctionOf(action)),
      colorIndices(givenOr(node.colorIndex, node.coordIndex)),
      normalIndices(givenOr(node.normalIndex, node.coordIndex)),
      texCoordIndices(givenOr(node.texCoordIndex, node.coordIndex)),
      material(materialBindingOf(node)),
      materials(action->getState()) {
  coordIndex = {node.coordIndex.getValues(0), static_cast<std::size_t>(node.coordIndex.getNum())};
  if (const auto* coord = realNode<VrmlCoordinate>(node.coord))
    points = {coord->point.getValues(0), static_cast<std::size_t>(coord->point.getNum())};
  sound = largestIndex(coordIndex) < static_cast<std::int64_t>(points.size());
  if (normals && normals->vector.getNum() == 0) normals = nullptr;
  if (texFunction || (texCoords && texCoords->point.getNum() == 0)) texCoords = nullptr;
  normal = normals ? bind(node.normalPerVertex.getValue(), node.normalIndex) : perVertex;
}

bool FaceWalk::next() {
  const auto end = static_cast<int>(coordIndex.size());
  firstVert += corners;
  while (nextEntry < end) {
    firstEntry = nextEntry;
    while (nextEntry < end && coordIndex[nextEntry] >= 0) ++nextEntry;
    corners = nextEntry - firstEntry;
    ++nextEntry;
    ++faceNumber;
    if (corners >= 3) return true;
  }
  corners = 0;
  return false;
}

int FaceWalk::indexOf(Binding binding, const SoMFInt32& list, int corner) const {
  const auto entry = [&list](int i) { return i < list.getNum() ? list[i] : 0; };
  switch (binding) {
    case perFace:
      return faceNumber;
    case perFaceIndexed:
      return entry(faceNumber);
    case perVertex:
      return firstVert + corner;
    case perVertexIndexed:
      return entry(firstEntry + corner);
    default:
      return 0;
  }
}

int FaceWalk::texCoordIndexOf(int corner) const {
  return texCoords ? indexOf(perVertexIndexed, texCoordIndices, corner) : 0;
}

SbVec3f FaceWalk::normalAt(int corner) const {
  if (normals) {
    const int index = indexOf(normal, normalIndices, corner);
    return index >= 0 && index < normals->vector.getNum() ? normals->vector[index] : SbVec3f(0, 0, 1);
  }
  const bool ccw = node.ccw.getValue();
  const float crease = node.creaseAngle.getValue();
  if (!(crease > 0)) {
    if (!faceNormal) faceNormal = std::make_unique<NormalGenerator>();
    if (faceNormalOf != faceNumber)
      faceNormal->generate(points, coordIndex.subspan(firstEntry, corners), ccw, 0);
    faceNormalOf = faceNumber;
    return faceNormal->normals()[0];
  }
  if (!madeNormals) {
    madeNormals = std::make_unique<NormalGenerator>();
    madeNormals->generate(points, coordIndex, ccw, crease);
  }
  return madeNormals->normals()[madeNormals->indexOf(faceNumber, pointOf(corner), firstEntry + corner)];
}

SbVec4f FaceWalk::texCoordsAt(const SbVec3f& point, const SbVec3f& direction) const {
  if (texFunction) return texFunction->get(point, direction);
  if (!box) {
    SbBox3f bounds;
    SbVec3f center;
    node.computeBBox(action, bounds, center);
    box.emplace(bounds);
  }
  return box->at(point);
}

void FaceWalk::fill(int corner, SoPrimitiveVertex& vertex) const {
  vertex.setPoint(pointAt(corner));
  vertex.setMaterialIndex(materials(indexOf(material, colorIndices, corner)));
  vertex.setNormal(normalAt(corner));
  if (texCoords) {
    const int index = texCoordIndexOf(corner);
    const bool there = index >= 0 && index < texCoords->point.getNum();
    vertex.setTextureCoords(there ? texCoords->point[index] : SbVec2f(0, 0));
  } else {
    vertex.setTextureCoords(texCoordsAt(vertex.getPoint(), vertex.getNormal()));
  }
}

void FaceWalk::fillDetail(int corner, SoPointDetail& detail) const {
  detail.setCoordinateIndex(pointOf(corner));
  detail.setMaterialIndex(indexOf(material, colorIndices, corner));
  detail.setNormalIndex(indexOf(normal, normalIndices, corner));
  detail.setTextureCoordIndex(texCoordIndexOf(corner));
}

}  // namespace tessel
