// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/ExtrusionSurface.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Inventor/SbMatrix.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/nodes/SoSeparator.h>

#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlExtrusion.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>
#include <tessel/shapes/VrmlTriangulator.h>
#include <tessel/toolkit/Scoped.h>

#include "shapes/SpineFrames.h"

namespace tessel {

namespace {

/// Sets a list to `count` values that `fill` writes, with one notification.
template <class Field, class Fill> void refill(Field& field, int count, Fill fill) {
  if (field.getNum() != count) {
    const NotifyOff<Field> quiet(field);
    field.setNum(count);
  }
  fill(std::span(field.startEditing(), static_cast<std::size_t>(count)));
  field.finishEditing();
}

void setIndices(SoMFInt32& field, std::span<const std::int32_t> indices) {
  refill(field, static_cast<int>(indices.size()),
         [&](std::span<std::int32_t> to) { std::copy(indices.begin(), indices.end(), to.begin()); });
}

template <class Field> void copyIfChanged(Field& to, const Field& from) {
  if (to.getValue() == from.getValue()) return;
  to.setValue(from.getValue());
  to.setDefault(from.isDefault());
}

template <class Field> auto valuesOf(const Field& field) {
  return std::span(field.getValues(0), static_cast<std::size_t>(field.getNum()));
}

/// The value of a row in a list that holds its last one for all rows beyond it.
template <class Field, class Value> Value valueAt(const Field& field, int row, const Value& otherwise) {
  return field.getNum() == 0 ? otherwise : Value(field[std::clamp(row, 0, field.getNum() - 1)]);
}

template <class Point> double distance(const Point& a, const Point& b) {
  double squares = 0;
  for (int i = 0; i < static_cast<int>(sizeof(Point) / sizeof(float)); ++i)
    squares += (static_cast<double>(b[i]) - a[i]) * (static_cast<double>(b[i]) - a[i]);
  return std::sqrt(squares);
}

// Places along a line, from 0 to 1.
template <class Point> void placesAlong(std::span<const Point> line, std::vector<float>& places) {
  std::vector<double> lengths(line.size());
  for (std::size_t i = 1; i < line.size(); ++i) lengths[i] = lengths[i - 1] + distance(line[i - 1], line[i]);
  for (std::size_t i = 1; i < line.size(); ++i)
    places[i] = static_cast<float>(lengths.back() == 0 ? lengths[i] : lengths[i] / lengths.back());
}

std::vector<std::int32_t> reversedFaces(std::span<const std::int32_t> indices) {
  std::vector<std::int32_t> reversed(indices.begin(), indices.end());
  for (auto face = reversed.begin(); face != reversed.end(); ++face) {
    const auto end = std::find(face, reversed.end(), -1);
    std::reverse(face, end);
    face = end;
  }
  return reversed;
}

float held(double value) {
  constexpr double most = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -most, most));
}

SbVec3d axisOf(const SbVec3f& axis, float scale) {
  return SbVec3d(axis[0], axis[1], axis[2]) * static_cast<double>(scale);
}

/// Places the points of an outline: x and z of each along two axes, from an origin.
class OutlinePlacer {
public:
  OutlinePlacer(const SbVec3d& xAxis, const SbVec3d& zAxis, const SbVec3d& from)
      : x(xAxis), z(zAxis), origin(from) {}

  /// @param reach  the largest coordinate of the outline
  void place(std::span<const SbVec2f> outline, double reach, SbVec3f* to) const {
    constexpr double most = std::numeric_limits<float>::max() / 2;
    bool fits = true;
    for (int i = 0; i < 3; ++i)
      fits = fits && (std::abs(x[i]) + std::abs(z[i])) * reach + std::abs(origin[i]) < most;
    if (fits)
      placeAll<float>(outline, to, [](float value) { return value; });
    else
      placeAll<double>(outline, to, held);
  }

private:
  template <class Real, class Result>
  void placeAll(std::span<const SbVec2f> outline, SbVec3f* to, Result result) const {
    Real a[3], b[3], c[3];
    for (int i = 0; i < 3; ++i) {
      a[i] = static_cast<Real>(x[i]);
      b[i] = static_cast<Real>(z[i]);
      c[i] = static_cast<Real>(origin[i]);
    }
    for (const SbVec2f& point : outline) {
      const Real s = point[0], t = point[1];
      to++->setValue(result(a[0] * s + b[0] * t + c[0]), result(a[1] * s + b[1] * t + c[1]),
                     result(a[2] * s + b[2] * t + c[2]));
    }
  }

  SbVec3d x, z, origin;
};

}  // namespace

ExtrusionSurface::ExtrusionSurface(const VrmlExtrusion& node) : root(new SoSeparator), node(node) {
  // The shape that the extrusion stands in keeps what is drawn.
  root->renderCaching = SoSeparator::OFF;
  root->renderCulling = SoSeparator::OFF;
  root->pickCulling = SoSeparator::OFF;
}

ExtrusionSurface::~ExtrusionSurface() = default;

void ExtrusionSurface::update() {
  spine = valuesOf(node.spine);
  crossSection = valuesOf(node.crossSection);
  numSpine = std::max(node.spine.getNum(), 2);
  numCross = std::max(node.crossSection.getNum(), 2);
  if (isTooLarge()) {
    SoDebugError::post(
        "VrmlExtrusion::updateSurface",
        "%d points of the spine times %d of the cross section are more than %d; it stays empty", numSpine,
        numCross, static_cast<int>(maxPoints));
    clear();
    return;
  }
  reach = 0;
  for (const SbVec2f& point : crossSection)
    reach = std::max<double>({reach, std::abs(point[0]), std::abs(point[1])});
  calcRideAlongSpineRotations(spine, spineRotations);
  calcCrossSectionUValues();
  calcSpineVValues();
  calcCapUVValues();
  buildSides();
  buildCaps();
  loadShapeHints();
}

bool ExtrusionSurface::isTooLarge() const {
  return static_cast<std::int64_t>(numSpine) * numCross > maxPoints;
}

void ExtrusionSurface::clear() {
  root->removeAllChildren();
  sideFaces.reset();
  sideCoord.reset();
  sideTexCoord.reset();
  beginFaces.reset();
  endFaces.reset();
  capTexCoord.reset();
  builtSpine = builtCross = 0;
}

// Texture coordinates

void ExtrusionSurface::calcCrossSectionUValues() {
  crossSectionU.assign(static_cast<std::size_t>(numCross), 0);
  crossSectionU[1] = 1;
  placesAlong(crossSection, crossSectionU);
}

void ExtrusionSurface::calcSpineVValues() {
  spineV.assign(std::max<std::size_t>(spine.size(), 1), 0);
  placesAlong(spine, spineV);
}

// Across the box of the outline.
void ExtrusionSurface::calcCapUVValues() {
  constexpr double beyond = 100000000;
  double low[2] = {beyond, beyond}, high[2] = {-beyond, -beyond};
  for (int axis = 0; axis < 2; ++axis) {
    for (const SbVec2f& point : crossSection) {
      low[axis] = std::min<double>(low[axis], point[axis]);
      high[axis] = std::max<double>(high[axis], point[axis]);
    }
    if (high[axis] == low[axis]) high[axis] += 1;
  }
  capUV.clear();
  for (const SbVec2f& point : crossSection) {
    const auto share = [&](int axis) {
      return static_cast<float>((point[axis] - low[axis]) / (high[axis] - low[axis]));
    };
    capUV.emplace_back(share(0), 1 - share(1));
  }
}

void ExtrusionSurface::loadTextureRow(int row, std::span<SbVec2f> coords) const {
  const float otherwise = row == 0 ? 0.0f : 1.0f;
  const float v = spine.size() < 2 ? otherwise : spineV[static_cast<std::size_t>(row)];
  for (std::size_t i = 0; i < coords.size(); ++i) coords[i].setValue(crossSectionU[i], v);
}

// Points

void ExtrusionSurface::getSpineInfo(int row, SbVec3f& translation, SbRotation& rotation) const {
  const int last = static_cast<int>(spine.size()) - 1;
  rotation = spineRotations[static_cast<std::size_t>(std::clamp(row, 0, std::max(last, 0)))];
  if (last < 0)
    translation.setValue(0, row == 0 ? -1.0f : 1.0f, 0);
  else if (last == 0)
    translation = spine[0] + SbVec3f(0, row == 0 ? 0.0f : 1.0f, 0);
  else
    translation = spine[static_cast<std::size_t>(row)];
}

// Scaled, then turned by `orientation`, then by the spine's frame, then moved to the spine.
ExtrusionSurface::Placement ExtrusionSurface::placementOf(int row) const {
  SbVec3f translation;
  SbRotation turn;
  getSpineInfo(row, translation, turn);
  const auto orientation = valueAt(node.orientation, row, SbRotation::identity());
  const auto scale = valueAt(node.scale, row, SbVec2f(1, 1));
  SbMatrix matrix;
  (orientation * turn).getValue(matrix);
  return {axisOf(SbVec3f(matrix[0]), scale[0]), axisOf(SbVec3f(matrix[2]), scale[1]), axisOf(translation, 1)};
}

// An outline of less than two points is a line of length 1, or one of length 2 about the spine.
void ExtrusionSurface::loadRow(int row, std::span<SbVec3f> points) const {
  const Placement at = placementOf(row);
  const OutlinePlacer placer(at.x, at.z, at.origin);
  if (crossSection.size() >= 2) return placer.place(crossSection, reach, points.data());
  const bool isEmpty = crossSection.empty();
  const SbVec2f first = isEmpty ? SbVec2f(-1, 0) : crossSection[0];
  const SbVec2f line[] = {first, first + SbVec2f(isEmpty ? 2.0f : 1.0f, 0)};
  placer.place(line, reach + 1, points.data());
}

// Sides

void ExtrusionSurface::buildSides() {
  if (!sideFaces) {
    sideCoord.reset(new VrmlCoordinate);
    sideTexCoord.reset(new VrmlTextureCoordinate);
    sideFaces.reset(new VrmlIndexedFaceSet);
    sideFaces->coord.setValue(sideCoord.get());
    sideFaces->texCoord.setValue(sideTexCoord.get());
    root->insertChild(sideFaces.get(), 0);
  }
  const auto width = static_cast<std::size_t>(numCross);
  const auto rowIn = [width](auto all, int row) {
    return all.subspan(static_cast<std::size_t>(row) * width, width);
  };
  refill(sideCoord->point, numSpine * numCross, [&](std::span<SbVec3f> points) {
    for (int row = 0; row < numSpine; ++row) loadRow(row, rowIn(points, row));
  });
  refill(sideTexCoord->point, numSpine * numCross, [&](std::span<SbVec2f> coords) {
    for (int row = 0; row < numSpine; ++row) loadTextureRow(row, rowIn(coords, row));
  });
  if (builtSpine != numSpine || builtCross != numCross) buildSideIndices();
}

// Two triangles between each two neighbours of a row and the next row.
void ExtrusionSurface::buildSideIndices() {
  refill(sideFaces->coordIndex, 8 * (numSpine - 1) * (numCross - 1), [this](std::span<std::int32_t> indices) {
    auto to = indices.begin();
    for (int row = 0; row + 1 < numSpine; ++row)
      for (int column = 0; column + 1 < numCross; ++column) {
        const int a = row * numCross + column, b = a + numCross;
        for (const int index : {a, a + 1, b, -1, b, a + 1, b + 1, -1}) *to++ = index;
      }
  });
  builtSpine = numSpine;
  builtCross = numCross;
}

// Caps

void ExtrusionSurface::buildCaps() {
  const auto points = static_cast<int>(crossSection.size());
  const bool isClosed = points > 0 && crossSection.front() == crossSection.back();
  const int corners = isClosed ? points - 1 : points;
  const bool hasCaps = points >= 3 && corners >= 3;
  buildCapNodes(hasCaps && node.beginCap.getValue(), hasCaps && node.endCap.getValue());
  if (!beginFaces && !endFaces) return;
  refill(capTexCoord->point, points,
         [this](std::span<SbVec2f> coords) { std::copy(capUV.begin(), capUV.end(), coords.begin()); });

  const auto outline = crossSection.first(static_cast<std::size_t>(corners));
  if (!std::ranges::equal(outline, caps.outline)) cutCaps(outline);
  buildCap(endFaces.get(), numSpine - 1, caps.end);
  buildCap(beginFaces.get(), 0, caps.begin);
}

void ExtrusionSurface::cutCaps(std::span<const SbVec2f> outline) {
  caps.outline.assign(outline.begin(), outline.end());
  // Of points that repeat one stays: the angles at the others would hide which way the outline winds.
  std::vector<std::int32_t> run;
  for (std::size_t i = 0; i < outline.size(); ++i)
    if (outline[i] != outline[(i + 1) % outline.size()]) run.push_back(static_cast<std::int32_t>(i));
  const auto corners = static_cast<int>(run.size());
  run.push_back(-1);
  SoMFVec3f points;
  refill(points, static_cast<int>(outline.size()), [&](std::span<SbVec3f> to) {
    std::ranges::transform(outline, to.begin(),
                           [](const SbVec2f& point) { return SbVec3f(point[0], 0, point[1]); });
  });
  SoMFInt32 indices, faces;
  setIndices(indices, run);
  // All pieces, or the outline if it can't be cut, get the winding that the triangulator gives to most: that of the
  // outline is not always that one, and it leaves triangles as they are.
  const bool isWound = VrmlTriangulator::clockWiseTest(points, indices, 0, corners) != 0;
  if (!isWound) std::reverse(indices.startEditing(), indices.startEditing() + corners);
  const bool isCut = VrmlTriangulator::triangulate(points, indices, faces) != 0;
  const auto pieces = valuesOf(isCut ? faces : indices);
  // The end cap winds as the outline does.
  caps.end.assign(pieces.begin(), pieces.end());
  caps.begin = reversedFaces(pieces);
  if (!isWound) std::swap(caps.begin, caps.end);
}

void ExtrusionSurface::buildCapNodes(bool haveBegin, bool haveEnd) {
  if (!haveBegin && !haveEnd) capTexCoord.reset();
  if ((haveBegin || haveEnd) && !capTexCoord) capTexCoord.reset(new VrmlTextureCoordinate);
  const auto makeOrRemove = [this](SoRef<VrmlIndexedFaceSet>& faces, bool isWanted) {
    if (isWanted == static_cast<bool>(faces)) return;
    if (isWanted) {
      faces.reset(new VrmlIndexedFaceSet);
      faces->coord.setValue(new VrmlCoordinate);
      faces->texCoord.setValue(capTexCoord.get());
      root->addChild(faces.get());
    } else {
      root->removeChild(faces.get());
      faces.reset();
    }
  };
  makeOrRemove(endFaces, haveEnd);
  makeOrRemove(beginFaces, haveBegin);
}

void ExtrusionSurface::buildCap(VrmlIndexedFaceSet* faces, int row, std::span<const std::int32_t> indices) {
  if (!faces) return;
  auto& points = static_cast<VrmlCoordinate*>(faces->coord.getValue())->point;
  refill(points, indices.empty() ? 0 : numCross, [&](std::span<SbVec3f> to) {
    if (!to.empty()) loadRow(row, to);
  });
  if (!std::ranges::equal(indices, valuesOf(faces->coordIndex))) setIndices(faces->coordIndex, indices);
}

void ExtrusionSurface::loadShapeHints() {
  for (VrmlIndexedFaceSet* faces : {sideFaces.get(), endFaces.get(), beginFaces.get()}) {
    if (!faces) continue;
    copyIfChanged(faces->ccw, node.ccw);
    copyIfChanged(faces->solid, node.solid);
    copyIfChanged(faces->convex, node.convex);
    copyIfChanged(faces->creaseAngle, node.creaseAngle);
  }
}

}  // namespace tessel
