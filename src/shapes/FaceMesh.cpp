// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/FaceMesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <unordered_map>

namespace tessel {

namespace {

using By = CornerIndices::By;

// How many vertices of a point are compared before another one is made: a point with thousands of different
// normals would make the search quadratic, and there is nothing to share at it.
constexpr int searchLimit = 8;

bool fitOne(std::span<const SbVec3f> normals) {
  return std::ranges::all_of(normals, [](const SbVec3f& n) {
    return std::max({std::abs(n[0]), std::abs(n[1]), std::abs(n[2])}) <= 1;
  });
}

}  // namespace

bool FaceMesh::canBeFlat(const FaceMeshSource& source) {
  const auto varies = [](bool used, By by) { return used && (by == By::corner || by == By::point); };
  const bool normals = !source.normals.empty(), colors = !source.colors.empty();
  if (varies(normals, source.normal.by) || varies(colors, source.color.by)) return false;
  return (normals && source.normal.by == By::face) || (colors && source.color.by == By::face);
}

FaceMesh::Key FaceMesh::keyOf(const CornerIndices& attribute) const {
  if (attribute.by == By::corner) return Key::corner;
  return attribute.by == By::face && !flat ? Key::face : Key::none;
}

FaceMesh::NormalForm FaceMesh::chooseNormalForm() const {
  if (!fitOne(source.normals)) return NormalForm::floats;
  return flat ? source.smallestNormals : std::min(source.smallestNormals, NormalForm::shorts);
}

void FaceMesh::build(const FaceMeshSource& from, Layout layout) {
  source = from;
  flat = layout == Layout::flat;
  form.normals = !source.normals.empty();
  form.normalForm = chooseNormalForm();
  form.colors = !source.colors.empty();
  form.texCoords = !source.texCoords.empty();
  if (!form.normals) source.normal = {};
  if (!form.colors) source.color = {};
  if (!form.texCoords) source.texCoord = {};
  for (auto* list : {&vertexPoint, &vertexColor, &vertexNormal, &vertexTexCoord, &vertexFace, &nextVertex})
    list->clear();
  triangleList.clear();
  made.clear();
  copyFace = -1;
  farCopies = 0;

  std::int32_t highest = -1;
  lowestPoint = static_cast<std::int32_t>(source.points.size());
  for (const std::int32_t point : source.coordIndex) {
    highest = std::max(highest, point);
    if (point >= 0) lowestPoint = std::min(lowestPoint, point);
  }
  if (highest < 0) return;
  firstVertex.assign(static_cast<std::size_t>(highest - lowestPoint) + 1, -1);

  const FaceRuns& runs = source.runs;
  triangleList.reserve(3 *
                       (static_cast<std::size_t>(runs.triangles) + 2 * static_cast<std::size_t>(runs.quads)));
  addRun<3>(0, 0, runs.triangles);
  addRun<4>(4 * runs.triangles, runs.triangles, runs.quads);
  addRun<0>(4 * runs.triangles + 5 * runs.quads, runs.triangles + runs.quads, runs.faces);
}

bool FaceMesh::refresh(const FaceMeshSource& from) {
  const auto sameBinding = [](const CornerIndices& was, const CornerIndices& is) { return was.by == is.by; };
  const bool cutByPosition = !from.convex && from.runs.quads + from.runs.faces > 0;
  if (vertexPoint.empty() || cutByPosition || from.runs.total() != source.runs.total() ||
      form.normals != !from.normals.empty() || form.colors != !from.colors.empty() ||
      form.texCoords != !from.texCoords.empty() || !sameBinding(source.normal, from.normal) ||
      !sameBinding(source.color, from.color) || !sameBinding(source.texCoord, from.texCoord))
    return false;

  const FaceMeshSource before = std::exchange(source, from);
  const auto end = static_cast<std::int32_t>(vertexPoint.size());
  const auto fit = [end](bool used, std::size_t count, auto&& indexOf) {
    if (used)
      for (std::int32_t v = 0; v < end; ++v)
        if (static_cast<std::size_t>(indexOf(v)) >= count) return false;
    return true;
  };
  if (!fit(true, source.points.size(), [this](std::int32_t v) { return vertexPoint[v]; }) ||
      !fit(form.normals, source.normals.size(), [this](std::int32_t v) { return normalOf(v); }) ||
      !fit(form.colors, source.colors.size(), [this](std::int32_t v) { return colorOf(v); }) ||
      !fit(form.texCoords, source.texCoords.size(), [this](std::int32_t v) { return texCoordOf(v); })) {
    source = before;
    return false;
  }
  form.normalForm = chooseNormalForm();
  return true;
}

// One function for each size of face (3, 4, any) and each way in which color, normal and texture coordinate are
// bound, so that the loops ask nothing a corner.
template <int corners, std::size_t... cases>
constexpr auto FaceMesh::makeRuns(std::index_sequence<cases...>) {
  return std::array<RunFn, sizeof...(cases)>{
      &FaceMesh::addFaces<corners, static_cast<Key>(cases / (numKeys * 2)),
                          static_cast<Key>(cases / 2 % numKeys), (cases & 1) != 0>...};
}

template <int corners> void FaceMesh::addRun(std::int32_t at, std::int32_t face, std::int32_t count) {
  static constexpr auto table = makeRuns<corners>(std::make_index_sequence<numKeys * numKeys * 2>{});
  const auto number = static_cast<std::size_t>(keyOf(source.color)) * numKeys * 2 +
                      static_cast<std::size_t>(keyOf(source.normal)) * 2 +
                      (keyOf(source.texCoord) == Key::corner ? 1 : 0);
  if (count > 0) (this->*table[number])(at, face, count);
}

template <int corners, FaceMesh::Key color, FaceMesh::Key normal, bool texCoord>
void FaceMesh::addFaces(std::int32_t at, std::int32_t face, std::int32_t count) {
  const std::int32_t* const index = source.coordIndex.data();
  const auto end = static_cast<std::int32_t>(source.coordIndex.size());
  for (const std::int32_t last = face + count; face < last; ++face) {
    std::int32_t ofColor = 0, ofNormal = 0, ofTexCoord = 0;
    if constexpr (color == Key::face) ofColor = source.color(face, 0, 0);
    if constexpr (normal == Key::face) ofNormal = source.normal(face, 0, 0);
    const auto cornerVertex = [&](std::int32_t i) {
      if constexpr (color == Key::corner) ofColor = source.color(0, 0, i);
      if constexpr (normal == Key::corner) ofNormal = source.normal(0, 0, i);
      if constexpr (texCoord) ofTexCoord = source.texCoord(0, 0, i);
      return vertexAt<color, normal, texCoord>(index[i], ofColor, ofNormal, ofTexCoord);
    };
    if constexpr (corners == 3) {
      const std::int32_t a = cornerVertex(at), b = cornerVertex(at + 1), c = cornerVertex(at + 2);
      addTriangle(face, a, b, c);
      at += 4;
    } else {
      outline.clear();
      const std::int32_t first = at;
      if constexpr (corners > 0)
        for (; at < first + corners; ++at) outline.push_back(cornerVertex(at));
      else
        for (; at < end && index[at] >= 0; ++at) outline.push_back(cornerVertex(at));
      if (source.convex || outline.size() <= 3)
        addFan(face);
      else
        addPieces(face, first);
      ++at;
    }
  }
}

// Whether a vertex that was made long ago may be used again. Buffers hold two bytes an index where the vertices of a
// triangle were made close to each other, so a seam gets its vertices anew; a mesh in no order does not.
bool FaceMesh::isInReach(std::int32_t vertex) {
  constexpr std::int32_t ofOneTriangle = 8;  // those made between its first corner and its last
  const auto count = static_cast<std::int32_t>(vertexPoint.size());
  if (count - vertex < BufferContent::shortReach - ofOneTriangle || farCopies > count / 8) return true;
  ++farCopies;
  return false;
}

template <FaceMesh::Key color, FaceMesh::Key normal, bool texCoord>
std::int32_t FaceMesh::vertexAt(std::int32_t point, std::int32_t ofColor, std::int32_t ofNormal,
                                std::int32_t ofTexCoord) {
  constexpr bool byPointAlone = color == Key::none && normal == Key::none && !texCoord;
  std::int32_t& first = firstVertex[point - lowestPoint];
  if constexpr (byPointAlone) {
    if (first >= 0 && isInReach(first)) return first;
  } else {
    int tries = searchLimit;
    for (std::int32_t v = first; v >= 0 && tries > 0; v = nextVertex[v], --tries) {
      if constexpr (color != Key::none)
        if (vertexColor[v] != ofColor) continue;
      if constexpr (normal != Key::none)
        if (vertexNormal[v] != ofNormal) continue;
      if constexpr (texCoord)
        if (vertexTexCoord[v] != ofTexCoord) continue;
      if (!isInReach(v)) break;
      return v;
    }
    nextVertex.push_back(first);
    if constexpr (color != Key::none) vertexColor.push_back(ofColor);
    if constexpr (normal != Key::none) vertexNormal.push_back(ofNormal);
    if constexpr (texCoord) vertexTexCoord.push_back(ofTexCoord);
  }
  first = static_cast<std::int32_t>(vertexPoint.size());
  vertexPoint.push_back(point);
  if (flat) vertexFace.push_back(-1);
  return first;
}

// A vertex that no look-up finds.
std::int32_t FaceMesh::copyVertex(std::int32_t vertex) {
  const auto copy = static_cast<std::int32_t>(vertexPoint.size());
  for (auto* list : {&vertexPoint, &vertexColor, &vertexNormal, &vertexTexCoord, &vertexFace, &nextVertex})
    if (!list->empty()) list->push_back((*list)[vertex]);
  const auto it = std::lower_bound(made.begin(), made.end(), vertex, madeBefore);
  if (it != made.end() && it->vertex == vertex) {
    made.push_back(*it);
    made.back().vertex = copy;
  }
  return copy;
}

void FaceMesh::addTriangle(std::int32_t face, std::int32_t a, std::int32_t b, std::int32_t c) {
  if (flat) {
    // The last corner must be one that has the values of this face: one that has them already, else one that
    // no other face has taken, else a copy.
    if (copyFace == face)
      for (std::int32_t* corner : {&a, &b, &c})
        if (*corner == copyOf) *corner = copied;
    const auto turnTo = [&](std::int32_t owner) {
      for (int turns = 0; turns < 3; ++turns) {
        if (vertexFace[c] == owner) return true;
        c = std::exchange(b, std::exchange(a, c));
      }
      return false;
    };
    if (!turnTo(face)) {
      // The first corner is preferred, then the third: the next triangle of a fan has them too.
      a = std::exchange(b, std::exchange(c, a));
      if (!turnTo(-1)) {
        copyFace = face;
        copyOf = c;
        c = copied = copyVertex(c);
      }
      vertexFace[c] = face;
    }
  }
  for (const std::int32_t corner : {a, b, c}) triangleList.push_back(static_cast<std::uint32_t>(corner));
}

void FaceMesh::addFan(std::int32_t face) {
  for (std::size_t i = 2; i < outline.size(); ++i) addTriangle(face, outline[0], outline[i - 1], outline[i]);
}

void FaceMesh::addPieces(std::int32_t face, std::int32_t at) {
  // A repeated point can upset a tessellator.
  std::size_t kept = 0;
  outlinePoints.clear();
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const std::int32_t point = source.coordIndex[at + static_cast<std::int32_t>(i)];
    if (i > 0 && point == source.coordIndex[at + static_cast<std::int32_t>(i) - 1]) continue;
    outlinePoints.push_back(source.points[point]);
    outline[kept++] = outline[i];
  }
  outline.resize(kept);

  pieces.clear();
  if (!clipper.cut(outlinePoints, pieces)) return tessellate(face);
  for (std::size_t i = 0; i < pieces.size(); i += 3)
    addTriangle(face, outline[pieces[i]], outline[pieces[i + 1]], outline[pieces[i + 2]]);
}

void FaceMesh::tessellate(std::int32_t face) {
  for (std::size_t i = 0; i < outline.size(); ++i) {
    SoPrimitiveVertex vertex;
    vertex.setPoint(outlinePoints[i]);
    if (form.normals) vertex.setNormal(source.normals[normalOf(outline[i])]);
    if (form.texCoords) vertex.setTextureCoords(source.texCoords[texCoordOf(outline[i])]);
    vertex.setMaterialIndex(static_cast<int>(i));  // tells the corners apart
    tessellator.add(vertex);
  }
  struct Result {
    FaceMesh& mesh;
    std::int32_t face;
    std::unordered_map<const SoPrimitiveVertex*, std::int32_t> crossings;

    std::int32_t vertexFor(const SoPrimitiveVertex* v) {
      const auto corner = static_cast<std::size_t>(v->getMaterialIndex());
      if (v->getPoint() == mesh.outlinePoints[corner]) return mesh.outline[corner];
      const auto [at, isNew] = crossings.try_emplace(v, 0);
      if (!isNew) return at->second;
      const std::int32_t like = mesh.outline[corner];
      const SbVec4f& t = v->getTextureCoords();
      at->second = mesh.copyVertex(like);
      if (mesh.flat) mesh.vertexFace[at->second] = -1;
      mesh.made.push_back(
          {at->second, v->getPoint(), v->getNormal(), SbVec2f(t[0], t[1]), mesh.colorOf(like)});
      return at->second;
    }
  } result{*this, face, {}};
  const auto triangle = [](void* closure, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
                           const SoPrimitiveVertex* c) {
    auto& to = *static_cast<Result*>(closure);
    const std::int32_t first = to.vertexFor(a), second = to.vertexFor(b), third = to.vertexFor(c);
    to.mesh.addTriangle(to.face, first, second, third);
  };
  tessellator.finish(triangle, &result);
}

// The numbers of a vertex's values. A vertex of the flat layout that no face took is never the last corner of a
// triangle: any value will do.

std::int32_t FaceMesh::colorOf(std::int32_t vertex) const {
  if (keyOf(source.color) != Key::none) return vertexColor[vertex];
  return source.color(flat ? std::max(vertexFace[vertex], 0) : 0, vertexPoint[vertex], 0);
}

std::int32_t FaceMesh::normalOf(std::int32_t vertex) const {
  if (keyOf(source.normal) != Key::none) return vertexNormal[vertex];
  return source.normal(flat ? std::max(vertexFace[vertex], 0) : 0, vertexPoint[vertex], 0);
}

std::int32_t FaceMesh::texCoordOf(std::int32_t vertex) const {
  if (keyOf(source.texCoord) != Key::none) return vertexTexCoord[vertex];
  return source.texCoord(0, vertexPoint[vertex], 0);
}

/// Calls `use` with the function that makes of a normal what a vertex holds.
template <class Use> void FaceMesh::withNormalForm(Use&& use) const {
  switch (form.normalForm) {
    case NormalForm::floats:
      return use([](const SbVec3f& n) { return n; });
    case NormalForm::shorts:
      return use(normalShorts);
    case NormalForm::bytes:
      return use(normalBytes);
  }
}

void FaceMesh::writeVertices(std::size_t first, std::size_t count, std::byte* out) const {
  const std::size_t stride = form.stride();
  const auto begin = static_cast<std::int32_t>(first), end = static_cast<std::int32_t>(first + count);
  const auto each = [&](std::size_t offset, auto&& valueOf) {
    std::byte* at = out + offset;
    for (std::int32_t v = begin; v < end; ++v, at += stride) storeVertexPart(at, valueOf(v));
  };
  // The choice of an attribute's list is made once, not a vertex.
  const auto attribute = [&](std::size_t offset, const CornerIndices& of,
                             const std::vector<std::int32_t>& keys, auto&& value) {
    if (keyOf(of) != Key::none)
      each(offset, [&](std::int32_t v) { return value(keys[v]); });
    else if (of.by == By::face && !of.array)
      each(offset, [&](std::int32_t v) { return value(std::max(vertexFace[v], 0)); });
    else if (of.by == By::face)
      each(offset, [&](std::int32_t v) { return value(of(std::max(vertexFace[v], 0), 0, 0)); });
    else if (of.by == By::point && !of.array)
      each(offset, [&](std::int32_t v) { return value(vertexPoint[v]); });
    else
      each(offset, [&](std::int32_t v) { return value(of(0, vertexPoint[v], 0)); });
  };
  const auto color = [&](std::int32_t i) { return colorBytes(source.colors[i], source.alpha); };
  each(0, [&](std::int32_t v) { return source.points[vertexPoint[v]]; });
  const auto normals = [&](auto&& convert) {
    attribute(form.normalAt(), source.normal, vertexNormal,
              [&](std::int32_t i) { return convert(source.normals[i]); });
  };
  if (form.normals) withNormalForm(normals);
  if (form.colors) attribute(form.colorAt(), source.color, vertexColor, color);
  if (form.texCoords)
    attribute(form.texCoordAt(), source.texCoord, vertexTexCoord,
              [&](std::int32_t i) { return source.texCoords[i]; });

  // Vertices where edges cross have values of their own, save what is their face's.
  auto it = std::lower_bound(made.begin(), made.end(), begin, madeBefore);
  for (; it != made.end() && it->vertex < end; ++it) {
    std::byte* at = out + static_cast<std::size_t>(it->vertex - begin) * stride;
    storeVertexPart(at, it->point);
    if (form.normals && source.normal.by != By::face) {
      withNormalForm([&](auto&& convert) { storeVertexPart(at + form.normalAt(), convert(it->normal)); });
    }
    if (form.colors && source.color.by != By::face) storeVertexPart(at + form.colorAt(), color(it->color));
    if (form.texCoords) storeVertexPart(at + form.texCoordAt(), it->texCoord);
  }
}

BufferContent FaceMesh::content() const {
  BufferContent result;
  result.format = form;
  result.vertexCount = vertexCount();
  result.indices = triangles();
  result.primitiveSize = 3;
  result.writeVertices = [this](std::size_t first, std::size_t count, std::byte* out) {
    writeVertices(first, count, out);
  };
  return result;
}

}  // namespace tessel
