// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/SpineFrames.h"

#include <algorithm>

#include <Inventor/SbMatrix.h>
#include <Inventor/SbVec3d.h>

namespace tessel {

namespace {

/// In double precision differences of coordinates are exact, and nothing that floats hold overflows.
using Vec = SbVec3d;

const Vec none(0, 0, 0);

Vec exact(const SbVec3f& v) { return Vec(v[0], v[1], v[2]); }
SbVec3f toFloat(const Vec& v) {
  return SbVec3f(static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2]));
}

Vec normalized(const Vec& v) {
  const double length = v.length();
  return length > 0 ? v / length : v;
}

SbRotation fromYTo(const Vec& direction) {
  return direction == none ? SbRotation::identity()
                           : SbRotation(SbVec3f(0, 1, 0), toFloat(normalized(direction)));
}

struct Frame {
  Vec x, y, z;

  SbRotation rotation() const {
    SbMatrix matrix = SbMatrix::identity();
    for (int row = 0; row < 3; ++row) {
      const SbVec3f axis = toFloat(row == 0 ? x : row == 1 ? y : z);
      for (int i = 0; i < 3; ++i) matrix[row][i] = axis[i];
    }
    return SbRotation(matrix);
  }
};

class Ride {
public:
  explicit Ride(std::span<const SbVec3f> spine) : spine(spine) {}

  bool isClosed() const { return spine.front() == spine.back(); }
  Vec from(std::size_t a, std::size_t b) const { return exact(spine[b]) - exact(spine[a]); }

  bool beginClosed(Frame& frame) const;
  bool beginOpen(Frame& frame, SbRotation& straight) const;
  void goOn(std::size_t i, Frame& frame) const;
  void end(Frame& frame) const;

private:
  std::span<const SbVec3f> spine;
};

bool pointsAway(const Vec& z) { return z[2] < 0; }

// False if the ends give no plane.
bool Ride::beginClosed(Frame& frame) const {
  const std::size_t last = spine.size() - 1;
  const Vec across = from(0, 1).cross(from(0, last - 1));
  if (across == none) return false;
  frame.z = normalized(across);
  if (pointsAway(frame.z)) frame.z.negate();
  frame.x = normalized(from(last - 1, 1).cross(frame.z));
  frame.y = frame.z.cross(frame.x);
  return true;
}

// False for a spine that doesn't bend: then `straight` is the rotation of all its points.
bool Ride::beginOpen(Frame& frame, SbRotation& straight) const {
  std::size_t next = 1;
  while (next < spine.size() && spine[next] == spine[0]) ++next;
  straight = SbRotation::identity();
  if (next == spine.size()) return false;

  const Vec along = from(0, next);
  Vec across = none;
  for (std::size_t i = next + 1; i < spine.size() && across == none; ++i)
    across = from(next, i).cross(-along);
  if (across == none) {
    straight = fromYTo(along);
    return false;
  }
  frame.y = normalized(along);
  frame.z = normalized(across);
  if (pointsAway(frame.z)) frame.z.negate();
  frame.x = frame.y.cross(frame.z);
  return true;
}

// Where the points tell nothing about an axis the one before stays.
void Ride::goOn(std::size_t i, Frame& frame) const {
  const Vec across = from(i, i + 1).cross(from(i, i - 1));
  if (across != none) {
    const Vec z = normalized(across);
    frame.z = z.dot(frame.z) < 0 ? -z : z;
  }
  const Vec x = from(i - 1, i + 1).cross(frame.z);
  if (x != none) frame.x = normalized(x);
  frame.y = frame.z.cross(frame.x);
}

void Ride::end(Frame& frame) const {
  const Vec along = from(spine.size() - 2, spine.size() - 1);
  const Vec y = along == none ? frame.y : normalized(along);
  const Vec x = y.cross(frame.z);
  if (x == none) return;
  frame.x = x;
  frame.y = y;
}

}  // namespace

void calcRideAlongSpineRotations(std::span<const SbVec3f> spine, std::vector<SbRotation>& rotations) {
  rotations.assign(std::max<std::size_t>(spine.size(), 1), SbRotation::identity());
  if (spine.size() < 2) return;
  const Ride ride(spine);
  if (spine.size() == 2) {
    std::fill(rotations.begin(), rotations.end(), fromYTo(ride.from(0, 1)));
    return;
  }

  Frame frame;
  const bool isClosed = ride.isClosed();
  if (SbRotation straight; !(isClosed && ride.beginClosed(frame)) && !ride.beginOpen(frame, straight)) {
    std::fill(rotations.begin(), rotations.end(), straight);
    return;
  }
  const std::size_t last = spine.size() - 1;
  rotations[0] = frame.rotation();
  for (std::size_t i = 1; i < last; ++i) {
    ride.goOn(i, frame);
    rotations[i] = frame.rotation();
  }
  if (isClosed) {
    rotations[last] = rotations[0];
  } else {
    ride.end(frame);
    rotations[last] = frame.rotation();
  }
}

}  // namespace tessel
