// SPDX-License-Identifier: BSD-3-Clause
#include "frame/BackgroundBands.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessel {

namespace {

using Angles = std::span<const float>;
using Colors = std::span<const SbColor>;

constexpr float right = std::numbers::pi_v<float> / 2;
constexpr float sameAngle = 0.00001F;
// An edge so near to the horizon is enough for a good blend across it.
constexpr float nearHorizon = 1;

/// An angle between two others. What is no number is the lower one.
float held(float angle, float low, float high) { return angle >= low ? std::min(angle, high) : low; }

SbColor blend(const SbColor& a, const SbColor& b, float t) { return a + (b - a) * t; }

/// How many colours count: one more than angles, if there are several.
std::size_t counting(Colors colors, Angles angles) {
  return colors.size() >= 2 ? std::min(colors.size(), angles.size() + 1) : colors.size();
}

BackgroundBands oneColor(const SbColor& color) {
  BackgroundBands bands;
  bands.add(0, color);
  return bands;
}

BackgroundBands gradient(const SbColor& nadir, const SbColor& zenith) {
  BackgroundBands bands;
  bands.add(-right, nadir);
  bands.add(0, blend(nadir, zenith, 0.5F));
  bands.add(right, zenith);
  return bands;
}

class Builder {
public:
  Builder(Angles groundAngle, Colors groundColor, Angles skyAngle, Colors skyColor) {
    if (groundColor.size() >= 2) addGround(groundAngle, groundColor);
    const float top = bands.empty() ? -right : bands.angles.back();
    if (!skyColor.empty() && top < right) addSky(skyAngle, skyColor, top);
    if (nearest > nearHorizon) addHorizon();
  }
  BackgroundBands bands;

private:
  void addGround(Angles angle, Colors color) {
    bands.add(-right, color[0]);
    for (std::size_t i = 1; i < color.size(); ++i)
      addEdge(held(angle[i - 1] - right, bands.angles.back(), right), color[i]);
  }

  void addEdge(float angle, const SbColor& color) {
    bands.add(angle, color);
    nearest = std::min(nearest, std::abs(angle));
  }

  /// The bands above the ground, which ends at `top`.
  void addSky(Angles angle, Colors color, float top) {
    const auto elevation = [&](std::size_t i) { return held(right - angle[i], -right, right); };
    std::size_t count = 1;  // colours from the zenith down that are seen
    float above = right, below = right;
    while (count < color.size() && elevation(count - 1) >= top) above = elevation(count++ - 1);
    if (count < color.size()) below = elevation(count - 1);

    SbColor join = color[count - 1];
    float edge = color.size() < 2 ? right : elevation(color.size() - 2);
    if (color.size() < 2 || (count == color.size() && top < edge)) {
      bands.add(top, join);  // the last colour fills the gap to the ground
    } else if (count < color.size()) {
      if (std::abs(below - top) < sameAngle) {
        bands.angles.back() = edge = below;
        join = color[count++];
      } else if (below < top) {
        join = blend(color[count - 1], color[count], (top - above) / (below - above));
        edge = top;
      }
    }
    bands.add(edge, join);
    for (std::size_t i = count - 1; i > 0; --i)
      addEdge(held(right - angle[i - 1], bands.angles.back(), right), color[i]);
    if (count < 2 || bands.angles.back() < right) bands.add(right, color[0]);
  }

  void addHorizon() {
    const auto& angles = bands.angles;
    for (std::size_t i = 1; i < angles.size(); ++i) {
      if (!(angles[i - 1] < 0 && angles[i] > 0)) continue;
      const float t = -angles[i - 1] / (angles[i] - angles[i - 1]);
      const SbColor color = blend(bands.colors[i - 1], bands.colors[i], t);
      const auto at = static_cast<std::ptrdiff_t>(i);
      bands.angles.insert(bands.angles.begin() + at, 0);
      bands.colors.insert(bands.colors.begin() + at, color);
      return;
    }
  }

  float nearest = 1e30F;  // distance of the inner edge next to the horizon
};

}  // namespace

BackgroundBands makeBackgroundBands(Angles groundAngle, Colors groundColor, Angles skyAngle,
                                    Colors skyColor) {
  const std::size_t total = skyColor.size() + groundColor.size();
  const std::size_t sky = counting(skyColor, skyAngle), ground = counting(groundColor, groundAngle);
  if (total == 0) return oneColor(SbColor(0, 0, 0));
  if (total == 1) return oneColor(skyColor.empty() ? groundColor[0] : skyColor[0]);
  if (sky == 0 && ground == 2)
    return groundColor[0] == groundColor[1] ? oneColor(groundColor[0])
                                            : gradient(groundColor[0], groundColor[1]);
  if (ground < 2 && (sky == 1 || (sky == 2 && skyColor[0] == skyColor[1]))) return oneColor(skyColor[0]);
  if (sky == 2 && ground == 0) return gradient(skyColor[1], skyColor[0]);
  return Builder(groundAngle, groundColor.first(ground), skyAngle, skyColor.first(sky)).bands;
}

}  // namespace tessel
