// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/RoundMesh.h"

#include <cmath>
#include <numbers>
#include <vector>

namespace tessel {

std::span<const SbVec2f> unitCircle(int sides) {
  static std::vector<SbVec2f> circle;
  if (circle.size() != static_cast<std::size_t>(sides)) {
    circle.resize(static_cast<std::size_t>(sides));
    const double step = 2.0 * std::numbers::pi / sides;
    for (int j = 0; j < sides; ++j) {
      const double angle = step * j;
      circle[static_cast<std::size_t>(j)].setValue(static_cast<float>(std::sin(angle)),
                                                   static_cast<float>(-std::cos(angle)));
    }
  }
  return circle;
}

RoundCut roundCut(float complexity, int type, float pixels) {
  const float c = complexity;
  int sections, sides;
  if (type != SoComplexityTypeElement::OBJECT_SPACE) {
    sections = wholeCount(0.2f * c * pixels) + 1;
    sides = wholeCount(c * 0.25f * pixels) + 3;
  } else if (c <= 0.5f) {
    sections = 1;
    sides = wholeCount(c * 26 + 3);
  } else {
    sections = wholeCount(c * 14 - 6);
    sides = wholeCount(c * 96 - 32);
  }
  return {unitCircle(pieces(sides, 3)), pieces(sections)};
}

bool crossesLevel(const SbLine& line, float y, SbVec3f& point) {
  const SbVec3f &from = line.getPosition(), &along = line.getDirection();
  if (along[1] == 0) return false;
  point = from + along * ((y - from[1]) / along[1]);
  point[1] = y;
  return true;
}

}  // namespace tessel
