// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlElevationGrid.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include <Inventor/SbLine.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/elements/SoCreaseAngleElement.h>
#include <Inventor/elements/SoDrawStyleElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLMultiTextureCoordinateElement.h>
#include <Inventor/elements/SoMaterialBindingElement.h>
#include <Inventor/elements/SoNormalBindingElement.h>
#include <Inventor/elements/SoShapeHintsElement.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlNormal.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"
#include "shapes/GridSurface.h"
#include "shapes/MaterialNumbers.h"
#include "shapes/MeshBuffers.h"
#include "shapes/MeshNeeds.h"
#include "shapes/RealNode.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

namespace tessel {

/// What a grid keeps from one frame to the next in order to draw.
struct GridDrawing {
  enum class Status : std::uint8_t { changed, ready, failed };

  Status status = Status::changed;
  MeshNeeds madeFor;
  MeshBuffers buffers;
};

}  // namespace tessel

using tessel::GridDrawing;
using tessel::GridSurface;

namespace {

/// A grid of so many points keeps out of display lists: it has buffers of its own.
constexpr std::int64_t autoCacheLimit = 1001;

}  // namespace

std::span<const FieldSpec> VrmlElevationGrid::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlElevationGrid::color>("color", FieldKind::exposedField),
      fieldSpec<&VrmlElevationGrid::normal>("normal", FieldKind::exposedField),
      fieldSpec<&VrmlElevationGrid::texCoord>("texCoord", FieldKind::exposedField),
      fieldSpec<&VrmlElevationGrid::ccw>("ccw", FieldKind::field, {true}),
      fieldSpec<&VrmlElevationGrid::colorPerVertex>("colorPerVertex", FieldKind::field, {true}),
      fieldSpec<&VrmlElevationGrid::creaseAngle>("creaseAngle", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::height>("height", FieldKind::field),
      fieldSpec<&VrmlElevationGrid::normalPerVertex>("normalPerVertex", FieldKind::field, {true}),
      fieldSpec<&VrmlElevationGrid::solid>("solid", FieldKind::field, {true}),
      fieldSpec<&VrmlElevationGrid::xDimension>("xDimension", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::xSpacing>("xSpacing", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::zDimension>("zDimension", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::zSpacing>("zSpacing", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::set_height>("set_height", FieldKind::eventIn, {0}),
  };
  return table;
}

VrmlElevationGrid::VrmlElevationGrid() : drawing(std::make_unique<GridDrawing>()) { setUpFields(); }

VrmlElevationGrid::~VrmlElevationGrid() = default;

int VrmlElevationGrid::getContainerFlags() const {
  return VrmlContainerElement::normal | VrmlContainerElement::color | VrmlContainerElement::texCoord;
}

void VrmlElevationGrid::notify(SoNotList* list) {
  drawing->status = GridDrawing::Status::changed;
  drawing->buffers.invalidate();
  mirror(list, height, set_height);
  NodeClass::notify(list);
}

void VrmlElevationGrid::computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) {
  if (haveBBoxCache(box, center)) return;
  const SbBox3f bounds = GridSurface(*this).box();
  if (bounds.isEmpty()) return;
  box = bounds;
  center = box.getMin() * 0.5f + box.getMax() * 0.5f;
  createBBoxCache(action->getState(), box, center);
}

void VrmlElevationGrid::count(VrmlCountAction* action) {
  const std::int64_t columns = xDimension.getValue(), rows = zDimension.getValue();
  if (columns > 1 && rows > 1) VrmlCountAction::add(action->numTriangles, (2 * columns - 2) * (rows - 1));
}

void VrmlElevationGrid::sendShapeHintsToState(SoState* state) {
  using Hints = SoShapeHintsElement;
  const bool isSolid = solid.getValue() && SoDrawStyleElement::get(state) == SoDrawStyleElement::FILLED;
  Hints::set(state, this, ccw.getValue() ? Hints::COUNTERCLOCKWISE : Hints::CLOCKWISE,
             isSolid ? Hints::SOLID : Hints::UNKNOWN_SHAPE_TYPE, Hints::CONVEX);
  SoCreaseAngleElement::set(state, this, creaseAngle.getValue());
}

// Drawing

void VrmlElevationGrid::GLRender(SoGLRenderAction* action) {
  SoState* state = action->getState();
  GridDrawing& d = *drawing;
  if (d.status == GridDrawing::Status::failed) return;
  if (!VrmlContainerElement::has(state, VrmlContainerElement::shape)) return;
  sendShapeHintsToState(state);
  if (!shouldGLRender(action) || !prepare(action)) return;
  {
    const tessel::StateScope scope(state);
    if (tessel::needsTexCoords(state))
      SoGLMultiTextureCoordinateElement::setTexGen(state, this, 0, nullptr, nullptr, nullptr, nullptr);
    drawTriangles(state, d.buffers);
  }
  const bool isLarge =
      height.getNum() >= autoCacheLimit && !SoGLCacheContextElement::getIsRemoteRendering(state);
  SoGLCacheContextElement::shouldAutoCache(
      state, isLarge ? SoGLCacheContextElement::DONT_AUTO_CACHE : SoGLCacheContextElement::DO_AUTO_CACHE);
}

// Makes the mesh if there is none that serves. False if there is nothing to draw.
bool VrmlElevationGrid::prepare(SoGLRenderAction* action) {
  using Form = tessel::VertexFormat::NormalForm;
  SoState* state = action->getState();
  GridDrawing& d = *drawing;
  const GridSurface surface(*this);
  const auto needs = tessel::MeshNeeds::of(state, surface.hasColors());
  if (d.status == GridDrawing::Status::ready && d.madeFor.serve(needs) && d.buffers.isReady(state))
    return true;
  if (!surface.isSound()) {
    SoDebugError::post("VrmlElevationGrid::GLRender",
                       "Incorrect number of heights specified; need %lld, have %d",
                       static_cast<long long>(surface.numPoints()), height.getNum());
    d.status = GridDrawing::Status::failed;
    return false;
  }
  if (!surface.hasFaces()) return false;

  const bool isLarge = surface.numPoints() >= autoCacheLimit;
  tessel::VertexFormat format;
  format.normals = needs.normals;
  format.colors = needs.colors;
  format.texCoords = needs.texCoords;
  // Computed ones have length 1.
  if (isLarge && !surface.hasNormals())
    format.normalForm = std::min(tessel::MeshBuffers::smallestNormals(state), Form::shorts);
  std::vector<std::uint32_t> indices;
  if (!d.madeFor.serve(needs)) d.buffers.invalidate();  // also in other contexts
  d.buffers.fill(state, surface.content(format, needs.alpha, indices), isLarge);
  d.madeFor = needs;
  d.status = GridDrawing::Status::ready;
  return true;
}

// Primitives

namespace {

/// Fills vertices and their details for one traversal.
class GridVertices {
public:
  GridVertices(const GridSurface& s, SoAction* action) : surface(s), materials(action->getState()) {
    SoState* state = action->getState();
    if (state->isElementEnabled(SoMultiTextureCoordinateElement::getClassStackIndex()) &&
        SoMultiTextureCoordinateElement::getType(state) == SoMultiTextureCoordinateElement::FUNCTION)
      function = SoMultiTextureCoordinateElement::getInstance(state);
  }

  void fill(int i, int j, SoPrimitiveVertex& vertex) const {
    vertex.setPoint(surface.pointAt(i, j));
    vertex.setNormal(surface.normalAt(i, j));
    vertex.setMaterialIndex(materials(surface.colorIndex(pointNumber(i, j))));
    const SbVec2f st = surface.texCoordAt(i, j);
    vertex.setTextureCoords(function ? function->get(0, vertex.getPoint(), vertex.getNormal())
                                     : SbVec4f(st[0], st[1], 0, 1));
  }

  void fillDetail(std::size_t point, SoPointDetail& detail) const {
    detail.setCoordinateIndex(static_cast<int>(point));
    detail.setMaterialIndex(surface.colorIndex(point));
    detail.setNormalIndex(surface.normalIndex(point));
    detail.setTextureCoordIndex(0);
  }

  std::size_t pointNumber(int i, int j) const {
    return static_cast<std::size_t>(j) * static_cast<std::size_t>(surface.columns()) +
           static_cast<std::size_t>(i);
  }

private:
  const GridSurface& surface;
  tessel::MaterialNumbers materials;
  const SoMultiTextureCoordinateElement* function = nullptr;
};

}  // namespace

template <class Element>
static void bind(SoState* state, SoNode* node, const VrmlSFNode& property, bool perVertex) {
  if (!property.getRealValue() || !state->isElementEnabled(Element::getClassStackIndex())) return;
  Element::set(state, node, perVertex ? Element::PER_VERTEX : Element::OVERALL);
}

// What callbacks ask the state for: the color of a vertex is found there by its number.
void VrmlElevationGrid::doVertexPropertyAction(SoAction* action) {
  tessel::actIfReal<VrmlColor>(action, color);
  bind<SoMaterialBindingElement>(action->getState(), this, color, colorPerVertex.getValue());
  tessel::actIfReal<VrmlNormal>(action, normal);
  bind<SoNormalBindingElement>(action->getState(), this, normal, normalPerVertex.getValue());
  tessel::actIfReal<VrmlTextureCoordinate>(action, texCoord);
}

void VrmlElevationGrid::generatePrimitives(SoAction* action) {
  const GridSurface surface(*this);
  if (!surface.hasFaces()) return;
  const tessel::StateScope scope(action->getState());
  doVertexPropertyAction(action);
  if (action->isOfType(SoRayPickAction::getClassTypeId())) {
    pickQuads(static_cast<SoRayPickAction*>(action), surface);
    return;
  }
  if (action->getState()->isElementEnabled(SoShapeHintsElement::getClassStackIndex()))
    sendShapeHintsToState(action->getState());
  const GridVertices vertices(surface, action);
  SoPrimitiveVertex vertex;
  SoFaceDetail faceDetail;
  SoPointDetail pointDetail;
  vertex.setDetail(&pointDetail);
  for (int j = 0; j + 1 < surface.rows(); ++j) {
    faceDetail.setPartIndex(j);
    beginShape(action, TRIANGLE_STRIP, &faceDetail);
    for (int i = 0; i < surface.columns(); ++i) {
      // The quad that this column ends.
      faceDetail.setFaceIndex(j * (surface.columns() - 1) + i - 1);
      for (const int row : {j, j + 1}) {
        vertices.fill(i, row, vertex);
        vertices.fillDetail(vertices.pointNumber(i, row), pointDetail);
        shapeVertex(&vertex);
      }
    }
    endShape();
  }
}

void VrmlElevationGrid::pickQuads(SoRayPickAction* action, const GridSurface& surface) {
  const GridVertices vertices(surface, action);
  SoFaceDetail faceDetail;
  SoPrimitiveVertex corners[4];
  for (SoPrimitiveVertex& corner : corners) corner.setDetail(&faceDetail);
  surface.alongRay(action->getLine(), [&](int j, GridSurface::Columns columns) {
    faceDetail.setPartIndex(j);
    for (int i = columns.begin; i < columns.end; ++i) {
      faceDetail.setFaceIndex(j * (surface.columns() - 1) + i);
      vertices.fill(i, j, corners[0]);
      vertices.fill(i, j + 1, corners[1]);
      vertices.fill(i + 1, j, corners[2]);
      vertices.fill(i + 1, j + 1, corners[3]);
      rayPickTriangle(action, &corners[0], &corners[1], &corners[2]);
      rayPickTriangle(action, &corners[2], &corners[1], &corners[3]);
    }
  });
}

SoDetail* VrmlElevationGrid::createTriangleDetail(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                                  const SoPrimitiveVertex*, const SoPrimitiveVertex*,
                                                  SoPickedPoint*) {
  const auto* quad = static_cast<const SoFaceDetail*>(v1->getDetail());
  const GridSurface surface(*this);
  const GridVertices vertices(surface, action);
  auto detail = std::make_unique<SoFaceDetail>();
  detail->setFaceIndex(quad->getFaceIndex());
  detail->setPartIndex(quad->getPartIndex());
  detail->setNumPoints(4);
  const int base = quad->getFaceIndex() + quad->getPartIndex(), across = surface.columns();
  const int corners[] = {base, base + across, base + across + 1, base + 1};
  for (int i = 0; i < 4; ++i)
    vertices.fillDetail(static_cast<std::size_t>(corners[i]), detail->getPoints()[i]);
  return detail.release();
}

template class tessel::NodeClass<VrmlElevationGrid, VrmlGeometry>;
