// SPDX-License-Identifier: BSD-3-Clause
#include "actions/RenderCache.h"

#include <algorithm>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/caches/SoGLRenderCache.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlRenderAction.h>

#include "actions/DelayedShapes.h"

namespace tessel {

namespace {

// In frames.
constexpr int leastPatience = 1, mostPatience = 256;
// In times that the list is drawn.
constexpr int longLife = 64;
// To make a list takes as long as to draw the branch some ten times without.
constexpr int manyUses = 12;

}  // namespace

void RenderCache::Release::operator()(SoGLRenderCache* list) const { list->unref(); }

unsigned RenderCache::shapesMet = 0;
unsigned RenderCache::frame = 0;
unsigned RenderCache::recordedInFrame = 0;

RenderCache::RenderCache(int lists, int shapes)
    : capacity(lists), maxShapes(shapes), patience(leastPatience) {}

RenderCache::~RenderCache() = default;

void RenderCache::invalidate() {
  if (!entries.empty()) learnFrom(entries.front());
  entries.clear();
  startWaiting();
}

void RenderCache::startWaiting() { unchanged = usesInFrame = 0; }

void RenderCache::countUse(SoGLRenderAction* action) {
  // Other actions tell of no frames: each use is one.
  const bool sameFrame = lastFrame == frame && VrmlRenderAction::delayedShapesOf(action);
  lastFrame = frame;
  if (usesInFrame > 0 && (!sameFrame || usesInFrame == manyUses)) {
    ++unchanged;
    usesInFrame = 0;
  }
  ++usesInFrame;
}

void RenderCache::learnFrom(const Entry& entry) {
  patience = entry.timesDrawn >= longLife ? leastPatience : std::min(2 * patience, mostPatience);
}

bool RenderCache::call(SoGLRenderAction* action) {
  SoState* state = action->getState();
  if (entries.empty() || SoCacheElement::anyOpen(state)) return false;
  DelayedShapes* delayed = VrmlRenderAction::delayedShapesOf(action);
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    SoGLRenderCache* list = entry->list.get();
    if (list->getCacheContext() != SoGLCacheContextElement::get(state) ||
        entry->transparencyType != action->getTransparencyType() || (entry->delayed && !delayed) ||
        !list->isValid(state) || !SoGLLazyElement::preCacheCall(state, list->getPreLazyState()))
      continue;
    std::rotate(entries.begin(), entry, entry + 1);
    SoGLLazyElement::getInstance(state)->send(state, SoLazyElement::ALL_MASK);
    list->call(state);
    SoGLLazyElement::postCacheCall(state, list->getPostLazyState());
    Entry& called = entries.front();
    ++called.timesDrawn;
    shapesMet += called.numShapes;
    if (called.delayed) delayed->replay(action, *called.delayed);
    return true;
  }
  return false;
}

bool RenderCache::mayRecord(SoGLRenderAction* action) const {
  if (unchanged < patience || capacity <= 0 || keptOut || numShapes > static_cast<unsigned>(maxShapes))
    return false;
  // No other action tells when a frame begins.
  if (recordedInFrame >= manyRecorded && VrmlRenderAction::delayedShapesOf(action)) return false;
  return !SoCacheElement::anyOpen(action->getState());
}

void RenderCache::open(SoGLRenderAction* action) {
  SoState* state = action->getState();
  autoCacheOutside = SoGLCacheContextElement::resetAutoCacheBits(state);
  shapesBefore = shapesMet;
  // What is drawn unchanged into a list of a larger branch is ready for one when that is lost.
  countUse(action);
  if (!mayRecord(action)) return;
  if (static_cast<int>(entries.size()) >= capacity) {
    learnFrom(entries.back());
    entries.pop_back();
  }
  invalidOutside = SoCacheElement::setInvalid(FALSE);
  auto* list = new SoGLRenderCache(state);
  list->ref();
  making.list.reset(list);
  making.transparencyType = action->getTransparencyType();
  SoCacheElement::set(state, list);
  SoGLLazyElement::beginCaching(state, list->getPreLazyState(), list->getPostLazyState());
  list->open(state);
  if (DelayedShapes* delayed = VrmlRenderAction::delayedShapesOf(action)) {
    making.delayed = std::make_unique<DelayedRecording>();
    delayed->beginRecording(action, *making.delayed, list);
  }
  state->push();
}

void RenderCache::close(SoGLRenderAction* action) {
  SoState* state = action->getState();
  // What ends with the branch, as its lights do, is to end inside the list, too.
  if (making.list) state->pop();
  const int marks = SoGLCacheContextElement::resetAutoCacheBits(state);
  keptOut = (marks & SoGLCacheContextElement::DONT_AUTO_CACHE) != 0;
  SoGLCacheContextElement::setAutoCacheBits(state, autoCacheOutside | marks);
  numShapes = shapesMet - shapesBefore;
  if (!making.list) return;
  making.list->close();
  SoGLLazyElement::endCaching(state);
  if (making.delayed) {
    VrmlRenderAction::delayedShapesOf(action)->endRecording();
    if (making.delayed->empty()) making.delayed.reset();
  }
  const bool sound = !SoCacheElement::setInvalid(invalidOutside);
  making.numShapes = numShapes;
  recordedInFrame += numShapes;
  if (sound) {
    entries.insert(entries.begin(), std::move(making));
    startWaiting();
  }
  making = Entry();
}

}  // namespace tessel
