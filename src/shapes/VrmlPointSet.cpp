// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlPointSet.h>

#include <algorithm>
#include <vector>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/caches/SoBoundingBoxCache.h>
#include <Inventor/details/SoPointDetail.h>
#include <Inventor/elements/SoComplexityElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/errors/SoDebugError.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>

#include "core/NodeClassImpl.h"
#include "shapes/MaterialNumbers.h"
#include "shapes/RealNode.h"
#include "shapes/UnlitBuffers.h"
#include "shapes/UnlitScope.h"

namespace {

/// From this many points on a set has buffers of its own, and keeps out of display lists.
constexpr int autoCacheLimit = 500;
/// From this many on the box is kept.
constexpr int bboxCacheLimit = 9;

/// The share of points that is left out at the state's complexity, 0 to 0.9.
float thinning(SoState* state) {
  const float c = SoComplexityElement::get(state);
  return c < 0.5f ? 1.8f * (0.5f - std::max(c, 0.0f)) : 0;
}

/// Calls `use` for each point that is not thinned out.
template <class Use> void forEachPoint(int n, float step, Use use) {
  float skip = 0;
  for (int i = 0; i < n; ++i, skip += step) {
    if (skip >= 1)
      skip -= 1;
    else
      use(i);
  }
}

}  // namespace

std::span<const tessel::FieldSpec> VrmlPointSet::fields() { return {}; }

VrmlPointSet::VrmlPointSet() : buffers(std::make_unique<tessel::UnlitBuffers>()) { setUpFields(); }
VrmlPointSet::~VrmlPointSet() = default;

void VrmlPointSet::notify(SoNotList* list) {
  buffers->invalidate();
  VrmlVertexShape::notify(list);
}

void VrmlPointSet::GLRender(SoGLRenderAction* action) {
  if (!shouldGLRender(action)) return;
  SoState* state = action->getState();
  auto* points = tessel::realNode<VrmlCoordinate>(coord);
  auto* colors = tessel::realNode<VrmlColor>(color);
  int n = points ? points->point.getNum() : 0;
  if (n < 1) {
    SoGLCacheContextElement::shouldAutoCache(state, SoGLCacheContextElement::DO_AUTO_CACHE);
    return;
  }
  const int numColors = colors ? colors->color.getNum() : 0;
  if (numColors > 0 && numColors < n) {
    n = numColors;
    SoDebugError::post("VrmlPointSet::GLRender", "too few colors specified\n");
  }

  tessel::UnlitScope unlit(state, this);
  const bool perVertex = numColors > 0;
  vpCache->fillInCache(points, colors, nullptr, nullptr, !perVertex, false, state);
  unlit.send(*vpCache);

  const bool large = n >= autoCacheLimit && !SoGLCacheContextElement::getIsRemoteRendering(state);
  SoGLCacheContextElement::shouldAutoCache(
      state, large ? SoGLCacheContextElement::DONT_AUTO_CACHE : SoGLCacheContextElement::DO_AUTO_CACHE);

  const VrmlVertexPropertyCache& vp = *vpCache;
  const float step = thinning(state);
  if (large && tessel::UnlitBuffers::serve(state)) {
    const tessel::UnlitBuffers::Key key{vp.colorIsInVP, tessel::UnlitBuffers::alphaOf(vp), step, n};
    buffers->draw(state, key, GL_POINTS, [&](auto&& fill) {
      const auto same = [](std::size_t i) { return i; };
      tessel::BufferContent content = tessel::UnlitBuffers::vertices(vp, n, vp.colorIsInVP, same, same);
      std::vector<std::uint32_t> kept;
      if (step > 0) forEachPoint(n, step, [&](int i) { kept.push_back(static_cast<std::uint32_t>(i)); });
      content.indices = kept;
      content.isInOrder = kept.empty();
      fill(content);
    });
    return;
  }

  const auto point = [&](int i) { vp.vertexFunc(vp.at(vp.vertexPtr, vp.vertexStride, i)); };
  glBegin(GL_POINTS);
  if (vp.colorIsInVP)
    forEachPoint(n, step, [&](int i) {
      vp.colorFunc(vp.at(vp.colorPtr, vp.colorStride, i));
      point(i);
    });
  else
    forEachPoint(n, step, point);
  glEnd();
}

void VrmlPointSet::generatePrimitives(SoAction* action) {
  auto* points = tessel::realNode<VrmlCoordinate>(coord);
  if (!points) return;
  auto* colors = tessel::realNode<VrmlColor>(color);
  const int n = points->point.getNum();
  const SbVec3f* values = points->point.getValues(0);
  const bool isPick = action->isOfType(SoRayPickAction::getClassTypeId());
  const int numColors = colors ? colors->color.getNum() : 0;

  SoState* state = action->getState();
  state->push();
  points->doAction(action);
  if (colors) colors->doAction(action);
  const tessel::MaterialNumbers materials(state);
  SoPrimitiveVertex vertex;
  SoPointDetail detail;
  vertex.setDetail(&detail);
  vertex.setTextureCoords(SbVec4f(0, 0, 0, 0));
  forEachPoint(n, isPick ? 0 : thinning(state), [&](int i) {
    const int material = i < numColors ? i : 0;
    vertex.setPoint(values[i]);
    vertex.setMaterialIndex(materials(material));
    detail.setCoordinateIndex(i);
    detail.setMaterialIndex(material);
    invokePointCallbacks(action, &vertex);
  });
  state->pop();
}

SoDetail* VrmlPointSet::createPointDetail(SoRayPickAction*, const SoPrimitiveVertex* v,
                                          SoPickedPoint* point) {
  point->setObjectTextureCoords(SbVec4f(0, 0, 0, 0));
  return new SoPointDetail(*static_cast<const SoPointDetail*>(v->getDetail()));
}

void VrmlPointSet::getBoundingBox(SoGetBoundingBoxAction* action) {
  VrmlGeometry::getBoundingBox(action);
  SoBoundingBoxCache::setHasLinesOrPoints(action->getState());
}

void VrmlPointSet::computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) {
  if (haveBBoxCache(box, center)) return;
  center.setValue(0, 0, 0);
  auto* points = tessel::realNode<VrmlCoordinate>(coord);
  const int n = points ? points->point.getNum() : 0;
  if (n < 1) return;
  const SbVec3f* values = points->point.getValues(0);
  double sum[3] = {};  // a float loses the small parts of a large sum
  for (int i = 0; i < n; ++i) {
    box.extendBy(values[i]);
    for (int k = 0; k < 3; ++k) sum[k] += values[i][k];
  }
  center.setValue(static_cast<float>(sum[0] / n), static_cast<float>(sum[1] / n),
                  static_cast<float>(sum[2] / n));
  if (n >= bboxCacheLimit) createBBoxCache(action->getState(), box, center);
}

void VrmlPointSet::collisionDetect(VrmlCollideAction*) {}

void VrmlPointSet::count(VrmlCountAction* action) {
  if (auto* points = tessel::realNode<VrmlCoordinate>(coord))
    VrmlCountAction::add(action->numPoints, points->point.getNum());
}

template class tessel::NodeClass<VrmlPointSet, VrmlVertexShape>;
