// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <vector>

class SoGLRenderAction;
class SoGLRenderCache;

namespace tessel {

class DelayedRecording;

/// Display lists that stand for a branch of the world, for as long as nothing in it changes.
///
/// What the branch delays (see VrmlRenderAction) is recorded beside the list and delayed again whenever the list
/// is drawn. At first a list is made when the branch has been drawn unchanged in one frame, or so often in this one that
/// it pays at once: the first picture of a world does not wait for lists, and the next ones share the making of them. The shorter the lists of a branch live, the
/// longer it must stay unchanged before the next. None is made of a branch of many shapes: lists of its
/// parts are drawn as fast, and a change costs less. Nor of one in which something says by the toolkit's
/// DONT_AUTO_CACHE that it draws better without; these marks are passed on.
///
///     StateScope scope(state);
///     if (cache.call(action)) return;
///     cache.open(action);
///     ... draw the branch ...
///     cache.close(action);
class RenderCache {
public:
  /// Of more shapes a branch makes no list: the first that moved would cost all of them.
  static constexpr int manyShapes = 128;
  /// When a frame has recorded so many shapes it makes no further list: to make one takes longer than to draw without.
  static constexpr unsigned manyRecorded = 1000;

  /// `capacity`: how many lists may stand side by side, for several contexts or surroundings.
  /// `maxShapes`: how many shapes a list may hold.
  explicit RenderCache(int capacity, int maxShapes = manyShapes);
  ~RenderCache();
  RenderCache(const RenderCache&) = delete;
  RenderCache& operator=(const RenderCache&) = delete;

  /// Draws a list that holds for the state, if there is one. Not inside another list that is being made: the toolkit
  /// lets none stand that calls others.
  bool call(SoGLRenderAction* action);
  /// Begins a list, if it is time for one. Does nothing inside another list that is being made.
  void open(SoGLRenderAction* action);
  void close(SoGLRenderAction* action);
  /// The branch has changed.
  void invalidate();
  /// To be called by the action when a frame begins.
  static void beginFrame() {
    ++frame;
    recordedInFrame = 0;
  }
  /// To be called by each shape that is drawn, or delayed.
  static void countShape() { ++shapesMet; }

private:
  struct Release {
    void operator()(SoGLRenderCache* list) const;
  };
  struct Entry {
    std::unique_ptr<SoGLRenderCache, Release> list;
    std::unique_ptr<DelayedRecording> delayed;  // null: the branch delays nothing
    int transparencyType = 0;                   // of the action that made it
    unsigned numShapes = 0;
    int timesDrawn = 0;
  };
  void learnFrom(const Entry& entry);
  void countUse(SoGLRenderAction* action);
  void startWaiting();
  bool mayRecord(SoGLRenderAction* action) const;

  static unsigned shapesMet;        // in all traversals so far, also in lists
  static unsigned frame;            // a number of its own for each
  static unsigned recordedInFrame;  // shapes that this frame has drawn into lists

  std::vector<Entry> entries;  // the one drawn last comes first
  Entry making;                // between open and close
  int invalidOutside = 0;      // what the toolkit's marks were before `open`
  int autoCacheOutside = 0;
  bool keptOut = false;  // by something in the branch
  int capacity;
  int maxShapes;
  unsigned shapesBefore = 0;  // met before `open`
  unsigned numShapes = 0;     // that the branch held when it was last drawn without a list
  unsigned lastFrame = 0;     // in which the branch was drawn without a list
  int usesInFrame = 0;        // how often it was so in that frame
  int unchanged = 0;          // for how many frames before; many uses count as one
  int patience;               // how often it must be before a list is made
};

}  // namespace tessel
