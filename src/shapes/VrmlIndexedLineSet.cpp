// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlIndexedLineSet.h>

#include <algorithm>
#include <utility>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/caches/SoBoundingBoxCache.h>
#include <Inventor/details/SoLineDetail.h>
#include <Inventor/elements/SoCoordinateElement.h>
#include <Inventor/elements/SoDrawStyleElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoMaterialBindingElement.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/misc/SoNotification.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>

#include "core/NodeClassImpl.h"
#include "shapes/MaterialNumbers.h"
#include "shapes/RealNode.h"
#include "shapes/UnlitBuffers.h"
#include "shapes/UnlitScope.h"

namespace {

using Cache = VrmlVertexPropertyCache;

/// A set of more indices has buffers of its own, and keeps out of display lists.
constexpr int autoCacheLimit = 1000;

int valueAt(const SoMFInt32& list, int i) { return i < list.getNum() ? list.getValues(0)[i] : 0; }

}  // namespace

std::span<const tessel::FieldSpec> VrmlIndexedLineSet::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlIndexedLineSet::colorPerVertex>("colorPerVertex", field, {TRUE}),
  };
  return table;
}

VrmlIndexedLineSet::VrmlIndexedLineSet() : buffers(std::make_unique<tessel::UnlitBuffers>()) {
  setUpFields();
}
VrmlIndexedLineSet::~VrmlIndexedLineSet() = default;

void VrmlIndexedLineSet::notify(SoNotList* list) {
  indicesDirty = true;
  indicesValid = false;
  buffers->invalidate();
  if (list->getLastField() == &coordIndex) {
    polylineCounts = {};
    numSegments = numPolylines = -1;
  }
  VrmlIndexedShape::notify(list);
}

// Counting and checking

void VrmlIndexedLineSet::countPolylinesAndSegments() {
  const int n = coordIndex.getNum();
  if (numPolylines >= 0 && numCounted == n) return;
  numCounted = n;
  polylineCounts.clear();
  int length = 0;
  const std::int32_t* index = coordIndex.getValues(0);
  for (int i = 0; i < n; ++i) {
    const bool ends = index[i] == -1;
    if (!ends) ++length;
    if (ends || i == n - 1) polylineCounts.push_back(std::exchange(length, 0));
  }
  numPolylines = static_cast<int>(polylineCounts.size());
  numSegments = n - static_cast<int>(std::count(index, index + n, -1)) - numPolylines;
}

bool VrmlIndexedLineSet::areIndicesInRange() const {
  struct Check {
    const SoMFInt32& indices;
    int count;
    const char* message;
  };
  const Check checks[] = {
      {coordIndex, vpCache->numVerts, "vertex index %d is out of range 0 - %d"},
      {colorIndex, vpCache->numColors, "color index %d is out of range 0 - %d"},
  };
  for (const auto& [indices, count, message] : checks) {
    const std::int32_t* first = indices.getValues(0);
    const std::int32_t* last = first + indices.getNum();
    const auto* bad = std::find_if(first, last, [n = count](std::int32_t i) { return i < -1 || i >= n; });
    if (bad == last) continue;
    SoDebugError::post("VrmlIndexedLineSet", message, *bad, count);
    return false;
  }
  return true;
}

bool VrmlIndexedLineSet::setupIndices() {
  if (!vpCache->vertexPtr) {
    SoDebugError::post("VrmlIndexedLineSet::setupIndices", "no coordinates specified\n");
    indicesDirty = false;
    return false;
  }
  // A value that came without a notification may have another size.
  const Sizes sizes{vpCache->numVerts, vpCache->numColors, coordIndex.getNum(), colorIndex.getNum()};
  if (sizes != checked) {
    indicesDirty = true;
    buffers->invalidate();
  }
  countPolylinesAndSegments();
  if (indicesDirty && !areIndicesInRange()) return false;
  checked = sizes;
  if (!indicesDirty && preparedBinding == vpCache->materialBinding) return true;
  indicesDirty = false;
  preparedBinding = vpCache->materialBinding;
  return chooseColors();
}

bool VrmlIndexedLineSet::chooseColors() {
  const bool indexed = colorIndex.getNum() > 0 && colorIndex.getValues(0)[0] >= 0;
  const char* name = nullptr;
  int need = 0;  // entries in the list of indices
  colorSource = ColorSource::own;
  switch (vpCache->materialBinding) {
    case Cache::overall:
      break;
    case Cache::perFace:
      name = indexed ? "PER_FACE_INDEXED" : "PER_LINE";
      need = numPolylines;
      if (indexed) colorSource = ColorSource::colorIndex;
      break;
    case Cache::perVertexIndexed:
      name = "PER_VERTEX_INDEXED";
      need = coordIndex.getNum();
      colorSource = indexed ? ColorSource::colorIndex : ColorSource::coordIndex;
      break;
    default:
      SoDebugError::post("VrmlIndexedLineSet::setupIndices", "invalid material binding %d!\n",
                         vpCache->materialBinding);
  }
  if (!name) return true;

  int numNeeded = need;
  if (colorSource != ColorSource::own) {
    const SoMFInt32& indices = colorSource == ColorSource::colorIndex ? colorIndex : coordIndex;
    const int n = indices.getNum();
    if (n < need) {
      SoDebugError::post("VrmlIndexedLineSet", "Need %d indices for %s  material binding, have only %d", need,
                         name, n);
      return false;
    }
    const std::int32_t* first = indices.getValues(0);
    numNeeded = n > 0 ? *std::max_element(first, first + n) + 1 : 0;
  }
  if (numNeeded > vpCache->numColors) {
    SoDebugError::post("VrmlIndexedLineSet", "Material binding is %s, but only %d colors given (%d needed)",
                       name, vpCache->numColors, numNeeded);
    return false;
  }
  return true;
}

// Drawing

const std::int32_t* VrmlIndexedLineSet::colorIndices() const {
  switch (colorSource) {
    case ColorSource::colorIndex:
      return colorIndex.getValues(0);
    case ColorSource::coordIndex:
      return coordIndex.getValues(0);
    default:
      return nullptr;
  }
}

template <VrmlIndexedLineSet::ColorUse use> void VrmlIndexedLineSet::draw(bool asPoints) const {
  const Cache& vp = *vpCache;
  const std::int32_t* index = coordIndex.getValues(0);
  const std::int32_t* colorI = colorIndices();
  // An entry of -1 where a color is wanted leaves the last one.
  const auto sendColor = [&vp, colorI](int i) {
    const int which = colorI ? colorI[i] : i;
    if (which >= 0) vp.colorFunc(vp.at(vp.colorPtr, vp.colorStride, which));
  };
  const auto sendVertex = [&vp, index](int p) {
    vp.vertexFunc(vp.at(vp.vertexPtr, vp.vertexStride, index[p]));
  };

  const GLenum primitive = asPoints ? GL_POINTS : use == Pm ? GL_LINES : GL_LINE_STRIP;
  int p = 0, line = 0;
  [[maybe_unused]] int segment = 0;
  for (const int n : polylineCounts) {
    const int end = p + n;
    glBegin(primitive);
    if constexpr (use == Fm) sendColor(line);  // before glBegin it would cut a display list in two
    if constexpr (use == Pm) {
      for (; p < end - 1; ++p) {
        sendColor(segment++);
        sendVertex(p);
        sendVertex(p + 1);
      }
    } else {
      for (; p < end; ++p) {
        if constexpr (use == Vm) sendColor(p);
        sendVertex(p);
      }
    }
    glEnd();
    p = end + 1;
    ++line;
  }
}

void VrmlIndexedLineSet::GLRender(SoGLRenderAction* action) {
  if (!indicesDirty && !indicesValid) return;
  if (!shouldGLRender(action)) return;
  SoState* state = action->getState();
  tessel::UnlitScope unlit(state, this);
  vpCache->fillInCache(tessel::realNode<VrmlCoordinate>(coord), tessel::realNode<VrmlColor>(color), nullptr,
                       nullptr, !colorPerVertex.getValue(), false, state);
  indicesValid = setupIndices();
  if (!indicesValid) {
    // No cache may hide the report from the next frame.
    SoGLCacheContextElement::shouldAutoCache(state, SoGLCacheContextElement::DONT_AUTO_CACHE);
    return;
  }
  unlit.send(*vpCache);

  const auto use = static_cast<ColorUse>((vpCache->renderCase & Cache::needColors) >> 3);
  const bool asPoints = SoDrawStyleElement::get(state) == SoDrawStyleElement::POINTS;
  const bool large =
      coordIndex.getNum() > autoCacheLimit && !SoGLCacheContextElement::getIsRemoteRendering(state);
  SoGLCacheContextElement::shouldAutoCache(
      state, large ? SoGLCacheContextElement::DONT_AUTO_CACHE : SoGLCacheContextElement::DO_AUTO_CACHE);
  if (large && use != Pm && tessel::UnlitBuffers::serve(state) && tessel::MeshBuffers::canEndStrips(state)) {
    drawFromBuffers(state, use, asPoints);
    return;
  }
  using Draw = void (VrmlIndexedLineSet::*)(bool) const;
  static constexpr Draw renderFunc[] = {&VrmlIndexedLineSet::draw<Om>, &VrmlIndexedLineSet::draw<Pm>,
                                        &VrmlIndexedLineSet::draw<Fm>, &VrmlIndexedLineSet::draw<Vm>};
  (this->*renderFunc[use])(asPoints);
}

void VrmlIndexedLineSet::drawFromBuffers(SoState* state, ColorUse use, bool asPoints) {
  using tessel::BufferContent;
  const tessel::UnlitBuffers::Key key{use, tessel::UnlitBuffers::alphaOf(*vpCache), 0, coordIndex.getNum()};
  buffers->draw(state, key, asPoints ? GL_POINTS : GL_LINE_STRIP, [&](auto&& fill) {
    const Cache& vp = *vpCache;
    const std::int32_t* index = coordIndex.getValues(0);
    const int n = coordIndex.getNum();
    const bool colored = use != Om;

    // Where a vertex is a point, in the color of its number if any, the list of indices serves as it is: its -1
    // is the end of a strip.
    const bool shared = use == Om || (use == Vm && colorSource == ColorSource::coordIndex);
    if (shared && vp.numVerts <= 2 * n) {
      BufferContent content = tessel::UnlitBuffers::vertices(
          vp, vp.numVerts, colored, [](std::size_t i) { return i; },
          [&vp](std::size_t i) { return i < static_cast<std::size_t>(vp.numColors) ? i : 0; });
      content.indices = {reinterpret_cast<const std::uint32_t*>(index), static_cast<std::size_t>(n)};
      content.hasStripEnds = true;
      fill(content);
      return;
    }

    // Else there is a vertex an entry. As in the loops, an entry of -1 where a color is wanted leaves the last one.
    std::vector<std::uint32_t> order(static_cast<std::size_t>(n));
    std::vector<std::int32_t> colorAt(colored ? order.size() : 0);
    const std::int32_t* colorI = colorIndices();
    std::int32_t line = 0, color = 0;
    bool begins = true;
    for (int i = 0; i < n; ++i) {
      const bool ends = index[i] == -1;
      order[static_cast<std::size_t>(i)] = ends ? BufferContent::endOfStrip : static_cast<std::uint32_t>(i);
      if (colored) {
        if (use == Fm ? begins : !ends) {
          const std::int32_t wanted = use == Vm ? colorI[i] : colorI ? colorI[line] : line;
          if (wanted >= 0) color = wanted;
        }
        colorAt[static_cast<std::size_t>(i)] = color;
      }
      begins = ends;
      line += ends;
    }
    BufferContent content = tessel::UnlitBuffers::vertices(
        vp, n, colored, [index](std::size_t i) { return std::max(index[i], 0); },
        [&colorAt](std::size_t i) { return colorAt[i]; });
    content.indices = order;
    content.hasStripEnds = true;
    fill(content);
  });
}

// Other actions

int VrmlIndexedLineSet::getMaterialBinding(SoAction* action) {
  const int binding = SoMaterialBindingElement::get(action->getState()) - SoMaterialBindingElement::OVERALL;
  return binding >= 0 && binding <= 6 ? binding : 0;
}

void VrmlIndexedLineSet::doVertexPropertyAction(SoAction* action) {
  tessel::actIfReal<VrmlCoordinate>(action, coord);
  tessel::actIfReal<VrmlColor>(action, color);
}

void VrmlIndexedLineSet::generatePrimitives(SoAction* action) {
  if (!tessel::realNode<VrmlCoordinate>(coord)) return;
  SoState* state = action->getState();
  state->push();
  doVertexPropertyAction(action);
  countPolylinesAndSegments();
  const SoCoordinateElement* coordinates = SoCoordinateElement::getInstance(state);
  const int numPoints = coordinates->is3D() ? coordinates->getNum() : 0;
  const SbVec3f* points = coordinates->getArrayPtr3();
  const std::int32_t* index = coordIndex.getValues(0);
  const int binding = getMaterialBinding(action);
  const tessel::MaterialNumbers materials(state);

  SoPrimitiveVertex vertices[2];  // taken in turn
  SoLineDetail detail;
  SoPointDetail pointDetail;
  for (SoPrimitiveVertex& v : vertices) {
    v.setDetail(&detail);
    v.setNormal(0, 0, 0);
    v.setTextureCoords(SbVec4f(0, 0, 0, 0));
  }

  int p = 0, line = 0, segment = 0, numSeen = 0;
  for (const int n : polylineCounts) {
    detail.setLineIndex(line);
    bool hasBefore = false;  // whether the vertex before is there to be joined
    for (const int end = p + n; p < end; ++p) {
      if (index[p] < 0 || index[p] >= numPoints) {
        hasBefore = false;
        continue;
      }
      const int parts[] = {0,
                           segment,
                           valueAt(colorIndex, segment),
                           line,
                           valueAt(colorIndex, line),
                           numSeen,
                           valueAt(colorIndex, p)};
      const int material = parts[binding];
      SoPrimitiveVertex& here = vertices[numSeen & 1];
      SoPrimitiveVertex& before = vertices[~numSeen & 1];
      here.setPoint(points[index[p]]);
      here.setMaterialIndex(materials(material));
      pointDetail.setCoordinateIndex(index[p]);
      pointDetail.setMaterialIndex(material);
      numSeen & 1 ? detail.setPoint1(&pointDetail) : detail.setPoint0(&pointDetail);
      ++numSeen;
      if (hasBefore) {
        if (binding == 1 || binding == 2) before.setMaterialIndex(materials(material));
        detail.setPartIndex(segment);
        invokeLineSegmentCallbacks(action, &before, &here);
        ++segment;
      }
      hasBefore = true;
    }
    ++p;  // over the terminator
    ++line;
  }
  state->pop();
}

SoDetail* VrmlIndexedLineSet::createLineSegmentDetail(SoRayPickAction*, const SoPrimitiveVertex* v1,
                                                      const SoPrimitiveVertex*, SoPickedPoint*) {
  return v1->getDetail()->copy();
}

void VrmlIndexedLineSet::getBoundingBox(SoGetBoundingBoxAction* action) {
  VrmlGeometry::getBoundingBox(action);
  SoBoundingBoxCache::setHasLinesOrPoints(action->getState());
}

void VrmlIndexedLineSet::collisionDetect(VrmlCollideAction*) {}

void VrmlIndexedLineSet::count(VrmlCountAction* action) {
  countPolylinesAndSegments();
  VrmlCountAction::add(action->numLineSegments, std::max(numSegments, 0));
}

template class tessel::NodeClass<VrmlIndexedLineSet, VrmlIndexedShape>;
