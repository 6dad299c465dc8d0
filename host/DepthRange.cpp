// SPDX-License-Identifier: BSD-3-Clause
#include "DepthRange.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tessel::host {
namespace {

constexpr float deepestRatio = 1e5f;  // what 24 bits of depth bear
constexpr float margin = 0.01f;       // room before and behind, so that rounding cuts nothing off
constexpr float detail = 1e-3f;       // the smallest part of a world that a visitor goes close to

/// Appends a range, in as many equal steps as the depth buffer needs.
void divide(const DepthRange& range, std::vector<DepthRange>& slices) {
  const float ratio = range.farthest / range.nearest;
  const int count = std::max(1, static_cast<int>(std::ceil(std::log(ratio) / std::log(deepestRatio))));
  const float step = std::pow(ratio, 1.0f / static_cast<float>(count));
  float end = range.farthest;
  for (int i = 0; i < count; ++i, end /= step) slices.push_back({end / step, end});
  slices.back().nearest = range.nearest;
}

}  // namespace

std::vector<DepthRange> depthSlices(const DepthNeeds& needs) {
  if (needs.world.isEmpty()) return {{0.1f, 1000.0f}};
  const SbVec3f size = needs.world.getSize();
  const float extent = std::max({size[0], size[1], size[2]});
  // A box of things small and near and of things large and far has lost what is small beside it.
  const float lost = 8 * std::numeric_limits<float>::epsilon() * extent;
  const float front = -needs.world.getMax()[2] - lost, back = -needs.world.getMin()[2];

  float farthest = back * (1 + margin);
  if (needs.visibilityLimit > 0) farthest = std::min(farthest, needs.visibilityLimit);
  // All of the world lies behind the eye, or is no larger than a point: any sound volume will do.
  if (!(farthest > 0) || !std::isfinite(farthest)) return {{0.1f, 1000.0f}};

  // How near anything can stand: the avatar keeps its distance, except in a world that is small beside it.
  float nearest = std::min(needs.avatarRadius > 0 ? needs.avatarRadius / 2 : farthest, extent * detail);
  if (!(nearest > 0)) nearest = farthest * detail;
  nearest = std::max(nearest, front * (1 - margin));
  nearest = std::min(nearest, farthest * (1 - 2 * margin));
  // Beyond that, floats themselves run out.
  nearest = std::max(nearest, farthest * 1e-12f);

  std::vector<DepthRange> slices;
  float end = farthest;
  for (const float multiple : {64.0f, 8.0f})
    if (const float cut = needs.uncertainty * multiple; cut > 4 * nearest && cut * 4 < end) {
      divide({cut, end}, slices);
      end = cut;
    }
  divide({nearest, end}, slices);
  return slices;
}

}  // namespace tessel::host
