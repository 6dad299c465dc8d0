// SPDX-License-Identifier: BSD-3-Clause
#include "actions/DelayedShapes.h"

#include <algorithm>
#include <limits>

#include <Inventor/SbXfBox3f.h>
#include <Inventor/SoFullPath.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/toolkit/Scoped.h>

#include "actions/DrawScopeElement.h"

namespace tessel {

namespace {

/// Whether a path begins with the same nodes, by the same children, as another of at least that length.
bool beginAlike(const SoFullPath& a, const SoFullPath& b, int length) {
  for (int i = 0; i < length; ++i)
    if (a.getNode(i) != b.getNode(i) || (i > 0 && a.getIndex(i) != b.getIndex(i))) return false;
  return true;
}

int indexOfWorld(const SoFullPath& path, int length) {
  int i = 0;
  while (i < length - 1 && !path.getNode(i)->isOfType(VrmlNode::getClassTypeId())) ++i;
  return i;
}

}  // namespace

DelayedShapes::DelayedShapes() = default;
DelayedShapes::~DelayedShapes() = default;

bool DelayedShapes::add(SoGLRenderAction* action, bool withDepth) {
  const auto& path = *static_cast<const SoFullPath*>(action->getCurPath());
  int length = path.getLength();
  while (length > 0 && !path.getNode(length - 1)->isOfType(VrmlShape::getClassTypeId())) --length;
  if (length == 0) return false;
  auto* node = static_cast<VrmlShape*>(path.getNode(length - 1));
  SoState* state = action->getState();
  const SbMatrix& matrix = SoModelMatrixElement::get(state);
  const float depth =
      withDepth ? depthOf(node, matrix * SoViewingMatrixElement::get(state), action->getViewportRegion()) : 0;
  shapes.push_back({SoRef<VrmlShape>(node), matrix, depth, placeOf(path, length, state)});
  return true;
}

float DelayedShapes::depthOf(VrmlShape* shape, const SbMatrix& toEye, const SbViewportRegion& region) {
  if (!measure) measure = std::make_unique<SoGetBoundingBoxAction>(region);
  measure->apply(shape);
  SbXfBox3f box = measure->getXfBoundingBox();
  if (box.isEmpty()) return std::numeric_limits<float>::max();
  box.transform(toEye);
  return box.project().getMin()[2];
}

std::size_t DelayedShapes::placeOf(const SoFullPath& path, int length, SoState* state) {
  const int scope = DrawScopeElement::get(state);
  // The newest first: neighbours in the tree mostly share a place.
  for (std::size_t i = places.size(); i-- > 0;) {
    const Place& place = places[i];
    if (place.shared && place.scope == scope && place.rootDepth < length &&
        beginAlike(path, *static_cast<const SoFullPath*>(place.path.get()), place.rootDepth + 1))
      return i;
  }
  const int rootDepth = indexOfWorld(path, length);
  // Nodes of the toolkit below may change anything.
  const bool shared = (static_cast<VrmlNode*>(path.getNode(rootDepth))->getKidType() & KidType::foreign) !=
                      KidType::foreign;
  SoRef<SoPath> copy(path.copy(0, length));
  places.push_back({std::move(copy), rootDepth, scope, shared});
  return places.size() - 1;
}

void DelayedShapes::sort() {
  std::stable_sort(shapes.begin(), shapes.end(), [](const Shape& a, const Shape& b) { return a.depth < b.depth; });
}

void DelayedShapes::clear() {
  shapes.clear();
  places.clear();
  runBegin = runEnd = 0;
  runDrawn = true;
}

SoPath* DelayedShapes::nextRun() {
  if (runEnd == shapes.size()) return nullptr;
  runBegin = runEnd;
  const std::size_t place = shapes[runBegin].place;
  while (runEnd < shapes.size() && shapes[runEnd].place == place) ++runEnd;
  runDrawn = false;
  return places[place].path.get();
}

bool DelayedShapes::drawRun(SoGLRenderAction* action) {
  if (runDrawn) return false;
  runDrawn = true;
  SoState* state = action->getState();
  for (std::size_t i = runBegin; i < runEnd && !action->abortNow(); ++i) {
    const StateScope scope(state);
    SoModelMatrixElement::set(state, shapes[i].node.get(), shapes[i].matrix);
    shapes[i].node->GLRender(action);
  }
  return true;
}

}  // namespace tessel
