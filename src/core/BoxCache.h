// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbXfBox3f.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/caches/SoBoundingBoxCache.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoLocalBBoxMatrixElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

namespace tessel {

/// Box and center of a part of a scene, in its own space, as they stand until the part or what it depends on in
/// the state changes.
class BoxCache {
public:
  const SoBoundingBoxCache* get() const { return cache.get(); }
  void drop() { cache.reset(); }
  /// Keeps a box that is known.
  void keep(SoState* state, const SbXfBox3f& box, bool hasCenter, const SbVec3f& center) {
    cache.reset(new SoBoundingBoxCache(state));
    cache->set(box, hasCenter, center);
  }

  /// Extends the action's box by the kept one, if it holds for the state.
  bool extend(SoGetBoundingBoxAction* action) const {
    SoState* state = action->getState();
    if (!cache || !cache->isValid(state)) return false;
    SoCacheElement::addCacheDependency(state, cache.get());
    if (cache->hasLinesOrPoints()) SoBoundingBoxCache::setHasLinesOrPoints(state);
    action->extendBy(cache->getBox());
    if (cache->isCenterSet()) action->setCenter(cache->getCenter(), TRUE);
    return true;
  }

  /// Keeps what `traverse` makes of an empty box, and extends the action's box by it.
  template <class Traverse> void fill(SoGetBoundingBoxAction* action, Traverse&& traverse) {
    SoState* state = action->getState();
    SbXfBox3f& box = action->getXfBoundingBox();
    const SbXfBox3f before = box;
    const SbBool stored = SoCacheElement::setInvalid(FALSE);
    // What is notified meanwhile drops the member: the cache is held here until it is whole.
    SoRef<SoBoundingBoxCache> filling;
    {
      const StateScope scope(state);
      filling.reset(new SoBoundingBoxCache(state));
      cache = filling;
      SoCacheElement::set(state, filling.get());
      SoLocalBBoxMatrixElement::makeIdentity(state);
      box.makeEmpty();
      action->resetCenter();
      traverse();
      filling->set(box, action->isCenterSet(), action->getCenter());
      action->resetCenter();
    }
    SoCacheElement::setInvalid(stored);
    box = before;
    if (filling->getBox().isEmpty()) return;
    action->extendBy(filling->getBox());
    if (filling->isCenterSet()) action->setCenter(filling->getCenter(), TRUE);
  }

private:
  SoRef<SoBoundingBoxCache> cache;
};

}  // namespace tessel
