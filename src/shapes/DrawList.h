// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

class SoGLDisplayList;
class SoState;

namespace tessel {

/// Keeps what a node draws as a display list of its own, for a node too large for the caches of the shapes
/// and groups above it.
///
/// What is drawn only once, because it changes from frame to frame, is drawn directly; what is drawn again
/// unchanged is recorded, and played from then on. Only drawing is recorded: the state must be sent before.
/// There is one list for each GL context. The lists of a node that goes are freed when their context draws next.
class DrawList {
public:
  DrawList() = default;
  ~DrawList();
  DrawList(const DrawList&) = delete;
  DrawList& operator=(const DrawList&) = delete;

  /// Draws by `draw`, a function without arguments, or plays what that drew. `key` stands for all that
  /// `draw` takes from the state: another key is another drawing.
  template <class Draw> void draw(SoState* state, std::uint64_t key, Draw&& draw) {
    switch (next(state, key)) {
      case Step::direct:
        draw();
        break;
      case Step::record:
        open(state);
        draw();
        close(state);
        [[fallthrough]];
      case Step::play:
        play(state);
        break;
    }
  }

  /// Forgets what was drawn, since it changed.
  void clear();

private:
  enum class Step { direct, record, play };
  Step next(SoState* state, std::uint64_t key);
  void open(SoState* state);
  void close(SoState* state);
  void play(SoState* state);

  struct Recorded {
    int context;
    SoGLDisplayList* list;  // counted by the toolkit's own reference count; null before the second drawing
  };
  Recorded* find(SoState* state);

  std::vector<Recorded> recorded;
  std::uint64_t currentKey = 0;
};

}  // namespace tessel
