// SPDX-License-Identifier: BSD-3-Clause
#include "actions/DelayedShapes.h"

#include <algorithm>
#include <limits>

#include <Inventor/SbDPMatrix.h>
#include <Inventor/SbXfBox3f.h>
#include <Inventor/SoFullPath.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/core/VrmlCullingGroup.h>
#include <tessel/toolkit/Scoped.h>

#include "actions/DrawScopeElement.h"
#include "core/AsVrmlNode.h"

namespace tessel {

namespace {

/// For a scope, what is read from the state makes no display list depend on it.
class Unobserved {
public:
  explicit Unobserved(SoState* s) : state(s), was(s->isCacheOpen()) { state->setCacheOpen(FALSE); }
  ~Unobserved() { state->setCacheOpen(was); }
  Unobserved(const Unobserved&) = delete;
  Unobserved& operator=(const Unobserved&) = delete;

private:
  SoState* state;
  SbBool was;
};

/// Whether a path begins with the same nodes, by the same children, as another of at least that length.
bool beginAlike(const SoFullPath& a, const SoFullPath& b, int length) {
  for (int i = 0; i < length; ++i)
    if (a.getNode(i) != b.getNode(i) || (i > 0 && a.getIndex(i) != b.getIndex(i))) return false;
  return true;
}

int indexOfWorld(const SoFullPath& path, int length) {
  int i = 0;
  while (i < length - 1 && !asVrmlNode(path.getNode(i))) ++i;
  return i;
}

/// The z of a box's farthest point behind a matrix; the greatest number for an empty box, which is drawn last.
float farthest(const SbBox3f& box, const SbMatrix& m) {
  if (box.isEmpty()) return std::numeric_limits<float>::max();
  float z = m[3][2];
  for (int i = 0; i < 3; ++i) z += std::min(box.getMin()[i] * m[i][2], box.getMax()[i] * m[i][2]);
  return z;
}

/// From where `from` stood to where `to` stands. In doubles, for worlds far from their origin.
SbDPMatrix moved(const SbMatrix& from, const SbMatrix& to) {
  SbDPMatrix move = SbDPMatrix(from).inverse();
  move.multRight(SbDPMatrix(to));
  return move;
}

SbMatrix times(const SbMatrix& a, const SbDPMatrix& b) {
  SbDPMatrix product(a);
  product.multRight(b);
  SbMatrix result;
  for (int i = 0; i < 4; ++i)
    for (int k = 0; k < 4; ++k) result[i][k] = static_cast<float>(product[i][k]);
  return result;
}

}  // namespace

DelayedShapes::DelayedShapes() = default;
DelayedShapes::~DelayedShapes() = default;

// Gathering

bool DelayedShapes::add(SoGLRenderAction* action) {
  const auto& path = *static_cast<const SoFullPath*>(action->getCurPath());
  int length = path.getLength();
  while (length > 0 && !path.getNode(length - 1)->isOfType(VrmlShape::getClassTypeId())) --length;
  if (length == 0) return false;
  auto* node = static_cast<VrmlShape*>(path.getNode(length - 1));
  SoState* state = action->getState();
  // A display list that is being made loses this shape, unless the recording beside it has it.
  const bool recorded = recording && recording->list == SoCacheElement::getCurrentCache(state);
  if (!recorded && SoCacheElement::anyOpen(state)) SoCacheElement::invalidate(state);

  const Unobserved reading(state);
  const SbMatrix matrix = SoModelMatrixElement::get(state);
  const SbBox3f box = boxOf(node, action->getViewportRegion());
  const std::size_t place = placeOf(path, length, {}, DrawScopeElement::get(state));
  addShape(state, node, matrix, box, place);
  if (recorded)
    recording->shapes.push_back(
        {SoRef<VrmlShape>(node), matrix, box, recordedPlace(path, length, {}, place)});
  return true;
}

void DelayedShapes::addShape(SoState* state, VrmlShape* node, const SbMatrix& matrix, const SbBox3f& box,
                             std::size_t place) {
  shapes.push_back(
      {SoRef<VrmlShape>(node), matrix, farthest(box, matrix * SoViewingMatrixElement::get(state)), place});
}

SbBox3f DelayedShapes::boxOf(VrmlShape* shape, const SbViewportRegion& region) {
  if (!measure) measure = std::make_unique<SoGetBoundingBoxAction>(region);
  measure->apply(shape);
  return measure->getBoundingBox();
}

/// `below` leads on from the first `length` nodes of the path to a shape.
std::size_t DelayedShapes::placeOf(const SoFullPath& path, int length, std::span<const int> below,
                                   int scope) {
  // The newest first: neighbours in the tree mostly share a place.
  for (std::size_t i = places.size(); i-- > 0;) {
    const Place& place = places[i];
    if (place.shared && place.scope == scope && place.rootDepth < length &&
        beginAlike(path, *static_cast<const SoFullPath*>(place.path.get()), place.rootDepth + 1))
      return i;
  }
  const int rootDepth = indexOfWorld(path, length);
  // Nodes of the toolkit below may change anything.
  const bool shared =
      (static_cast<VrmlNode*>(path.getNode(rootDepth))->getKidType() & KidType::foreign) != KidType::foreign;
  SoRef<SoPath> whole(path.copy(0, length));
  for (const int child : below) whole->append(child);
  places.push_back({std::move(whole), rootDepth, scope, shared});
  return places.size() - 1;
}

void DelayedShapes::sort() {
  std::stable_sort(shapes.begin(), shapes.end(),
                   [](const Shape& a, const Shape& b) { return a.depth < b.depth; });
}

void DelayedShapes::clear() {
  shapes.clear();
  places.clear();
  recording = nullptr;
  runs.resize(runNumber);
  runBegin = runEnd = runNumber = 0;
  runDrawn = true;
}

// Recordings

void DelayedShapes::beginRecording(SoGLRenderAction* action, DelayedRecording& into, const SoCache* list) {
  SoState* state = action->getState();
  const Unobserved reading(state);
  recording = &into;
  into.list = list;
  into.base = SoModelMatrixElement::get(state);
  into.depth = static_cast<const SoFullPath*>(action->getCurPath())->getLength();
  into.scope = DrawScopeElement::get(state);
}

/// The place in the recording of a place in the frame.
std::size_t DelayedShapes::recordedPlace(const SoFullPath& path, int length, std::span<const int> below,
                                         std::size_t place) {
  const Place& inFrame = places[place];
  std::vector<DelayedRecording::Place>& known = recording->places;
  if (inFrame.shared)
    for (std::size_t i = known.size(); i-- > 0;)
      if (known[i].scope == inFrame.scope) return i;
  std::vector<int> way;
  for (int i = recording->depth; i < length; ++i) way.push_back(path.getIndex(i));
  way.insert(way.end(), below.begin(), below.end());
  known.push_back({std::move(way), inFrame.shared && inFrame.scope == recording->scope, inFrame.scope});
  return known.size() - 1;
}

void DelayedShapes::replay(SoGLRenderAction* action, const DelayedRecording& recorded) {
  SoState* state = action->getState();
  const bool recordToo = recording && recording->list == SoCacheElement::getCurrentCache(state);
  if (!recordToo && SoCacheElement::anyOpen(state)) SoCacheElement::invalidate(state);
  const Unobserved reading(state);
  const auto& path = *static_cast<const SoFullPath*>(action->getCurPath());
  const int length = path.getLength();
  const int scope = DrawScopeElement::get(state);

  std::vector<std::size_t> placeHere, placeThere;
  for (const DelayedRecording::Place& place : recorded.places) {
    placeHere.push_back(placeOf(path, length, place.below, place.outer ? scope : DrawScopeElement::unused()));
    if (recordToo) placeThere.push_back(recordedPlace(path, length, place.below, placeHere.back()));
  }
  const SbMatrix base = SoModelMatrixElement::get(state);
  const bool still = base == recorded.base;
  const SbDPMatrix move = still ? SbDPMatrix::identity() : moved(recorded.base, base);
  for (const DelayedRecording::Shape& shape : recorded.shapes) {
    const SbMatrix matrix = still ? shape.matrix : times(shape.matrix, move);
    addShape(state, shape.node.get(), matrix, shape.box, placeHere[shape.place]);
    if (recordToo) recording->shapes.push_back({shape.node, matrix, shape.box, placeThere[shape.place]});
  }
}

// Drawing

SoPath* DelayedShapes::nextRun() {
  if (runEnd == shapes.size()) return nullptr;
  runBegin = runEnd;
  const std::size_t place = shapes[runBegin].place;
  while (runEnd < shapes.size() && shapes[runEnd].place == place) ++runEnd;
  if (runs.size() == runNumber) runs.emplace_back();
  ++runNumber;
  runDrawn = false;
  return places[place].path.get();
}

bool DelayedShapes::drawRun(SoGLRenderAction* action) {
  if (runDrawn) return false;
  runDrawn = true;
  Run& run = runs[runNumber - 1];
  if (!run.cache)
    run.cache = std::make_unique<RenderCache>(VrmlCullingGroup::getNumRenderCaches(),
                                              std::numeric_limits<int>::max());

  // The same shapes in the same order at the same places make the same display list.
  bool same = run.drawn.size() == runEnd - runBegin;
  run.drawn.resize(runEnd - runBegin);
  for (std::size_t i = runBegin; i < runEnd; ++i) {
    const Drawn now{shapes[i].node->getNodeId(), shapes[i].matrix};
    Drawn& before = run.drawn[i - runBegin];
    same = same && before == now;
    before = now;
  }
  if (!same) run.cache->invalidate();

  SoState* state = action->getState();
  const StateScope scope(state);
  SoModelMatrixElement::makeIdentity(state, nullptr);
  if (run.cache->call(action)) return true;
  run.cache->open(action);
  drawShapes(action);
  run.cache->close(action);
  return true;
}

void DelayedShapes::drawShapes(SoGLRenderAction* action) {
  SoState* state = action->getState();
  for (std::size_t i = runBegin; i < runEnd; ++i) {
    if (action->abortNow()) {
      SoCacheElement::invalidate(state);
      return;
    }
    const StateScope scope(state);
    SoModelMatrixElement::mult(state, shapes[i].node.get(), shapes[i].matrix);
    shapes[i].node->GLRender(action);
  }
}

}  // namespace tessel
