// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <span>

#include <Inventor/SbLine.h>
#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/elements/SoComplexityElement.h>
#include <Inventor/elements/SoComplexityTypeElement.h>

#include "shapes/PrimitiveSink.h"
#include "shapes/Subdivision.h"

// What cylinders and cones are made of.

namespace tessel {

/// The points (x, z) of the unit circle at equal steps, from -z towards x. One array serves everybody:
/// it is valid until a circle of another count is asked for.
std::span<const SbVec2f> unitCircle(int sides);

/// How a surface of revolution is cut: `sections` rings, each of as many sides as `circle` has points.
struct RoundCut {
  std::span<const SbVec2f> circle;
  int sections;
};

/// The cut that a complexity asks for; `type` is one of SoComplexityTypeElement, `pixels` the size on the screen.
RoundCut roundCut(float complexity, int type, float pixels);

/// The same for a state; `screenSize` is asked only where the complexity depends on it.
template <class ScreenSize> RoundCut roundCut(SoState* state, ScreenSize screenSize) {
  const int type = SoComplexityTypeElement::get(state);
  const float pixels = type == SoComplexityTypeElement::OBJECT_SPACE ? 0 : largerExtent(screenSize());
  return roundCut(SoComplexityElement::get(state), type, pixels);
}

/// Where a line crosses the plane at height y. False if it runs along it.
bool crossesLevel(const SbLine& line, float y, SbVec3f& point);

enum class Facing { up, down };

/// A disc at height y, rings from the outside in and a fan in the middle, or a ring without a hole. Its texture is seen upright from
/// outside.
template <class Sink>
void describeDisc(Sink& sink, const RoundCut& cut, float radius, float y, Facing facing) {
  const bool up = facing == Facing::up;
  const int sides = static_cast<int>(cut.circle.size());
  const auto corner = [&](int step, bool rising, float part) {
    const SbVec2f& onCircle = cut.circle[rising ? step % sides : sides - 1 - step % sides];
    const float x = onCircle[0] * part, z = onCircle[1] * part;
    const float across = z * 0.5f + 0.5f;
    sink.texCoord(x * 0.5f + 0.5f, up ? 1.0f - across : across);
    sink.vertex(SbVec3f(x * radius, y, z * radius));
  };
  const auto ring = [&](int i) { return 1.0f - static_cast<float>(i) / static_cast<float>(cut.sections); };

  sink.normal(SbVec3f(0, up ? 1.0f : -1.0f, 0));
  const int strips = Sink::wantsFans ? cut.sections - 1 : cut.sections;
  for (int i = 0; i < strips; ++i) {
    sink.begin(Run::strip);
    for (int step = 0; step <= sides; ++step) {
      corner(step, up, ring(i));
      corner(step, up, ring(i + 1));
    }
    sink.end();
  }
  if (!Sink::wantsFans) return;
  sink.begin(Run::fan);
  sink.texCoord(0.5f, 0.5f);
  sink.vertex(SbVec3f(0, y, 0));
  for (int step = 0; step <= sides; ++step) corner(step, !up, ring(cut.sections - 1));
  sink.end();
}

/// A side from y = `halfHeight` down to its negative, in one strip a section. `radiusAt` gives the radius at
/// a part of the way down, `normalAt` the normal at a point of the circle; s runs round from `firstS` to
/// `lastS`, t from 1 down to 0.
template <class Sink, class RadiusAt, class NormalAt>
void describeSide(Sink& sink, const RoundCut& cut, float halfHeight, float firstS, float lastS,
                  RadiusAt radiusAt, NormalAt normalAt) {
  const int sides = static_cast<int>(cut.circle.size());
  struct Level {
    float radius, y, t;
  };
  const auto level = [&](int section) {
    const float down = static_cast<float>(section) / static_cast<float>(cut.sections);
    return Level{radiusAt(down), halfHeight * (1.0f - 2.0f * down), 1.0f - down};
  };
  for (int section = 0; section < cut.sections; ++section) {
    const Level upper = level(section), lower = level(section + 1);
    sink.begin(Run::strip);
    for (int step = 0; step <= sides; ++step) {
      const SbVec2f& onCircle = cut.circle[step % sides];
      const float s = firstS + (lastS - firstS) * static_cast<float>(step) / static_cast<float>(sides);
      sink.normal(normalAt(onCircle));
      for (const Level& end : {lower, upper}) {
        sink.texCoord(s, end.t);
        sink.vertex(SbVec3f(onCircle[0] * end.radius, end.y, onCircle[1] * end.radius));
      }
    }
    sink.end();
  }
}

}  // namespace tessel
