// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/DrawList.h"

#include <algorithm>

#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLDisplayList.h>
#include <Inventor/misc/SoState.h>

namespace tessel {

DrawList::~DrawList() { clear(); }

void DrawList::clear() {
  // Without a state the toolkit frees the list when its context is current again.
  for (const Recorded& r : recorded)
    if (r.list) r.list->unref(nullptr);
  recorded.clear();
}

DrawList::Recorded* DrawList::find(SoState* state) {
  const int context = SoGLCacheContextElement::get(state);
  const auto it = std::find_if(recorded.begin(), recorded.end(),
                               [context](const Recorded& r) { return r.context == context; });
  return it == recorded.end() ? nullptr : &*it;
}

DrawList::Step DrawList::next(SoState* state, std::uint64_t key) {
  // A cache above records already, and GL records no list inside another.
  if (SoCacheElement::anyOpen(state)) return Step::direct;
  if (key != currentKey) {
    clear();
    currentKey = key;
  }
  const Recorded* r = find(state);
  if (!r) {
    recorded.push_back({SoGLCacheContextElement::get(state), nullptr});
    return Step::direct;
  }
  return r->list ? Step::play : Step::record;
}

void DrawList::open(SoState* state) {
  SoGLDisplayList*& list = find(state)->list;
  list = new SoGLDisplayList(state, SoGLDisplayList::DISPLAY_LIST);
  list->ref();
  list->open(state);
}

void DrawList::close(SoState* state) { find(state)->list->close(state); }

void DrawList::play(SoState* state) { find(state)->list->call(state); }

}  // namespace tessel
