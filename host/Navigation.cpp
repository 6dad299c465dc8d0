// SPDX-License-Identifier: BSD-3-Clause
#include "Navigation.h"

#include <algorithm>
#include <cmath>

namespace tessel::host {
namespace {

constexpr float quarterTurn = 1.57079633f;
constexpr float nearingPerUnit = 4;   // dragging over the whole window changes the distance e^4 = 55 times
constexpr float flightPerUnit = 10;   // the same in FLY is ten seconds of flight
constexpr float closestPart = 1e-4f;  // of the scene's size: nearer to the pivot nothing is seen

SbVec3f axis(const SbRotation& orientation, const SbVec3f& local) {
  SbVec3f out;
  orientation.multVec(local, out);
  return out;
}

SbRotation normalized(const SbRotation& rotation) {
  const float* q = rotation.getValue();
  return SbRotation(q[0], q[1], q[2], q[3]);
}

}  // namespace

Pose Navigation::turned(const Pose& from, const SbVec2f& drag) const {
  const float yaw = drag[0] * 2 * quarterTurn, pitch = drag[1] * 2 * quarterTurn;
  const SbVec3f right = axis(from.orientation, SbVec3f(1, 0, 0));
  if (mode == Mode::fly) {
    // The head turns toward the pointer; looking past the zenith would swap left and right.
    const SbVec3f ahead = axis(from.orientation, SbVec3f(0, 0, -1));
    const float height = std::asin(std::clamp(ahead.dot(up), -1.0f, 1.0f));
    const float limit = 0.99f * quarterTurn;
    const float allowed =
        std::clamp(height + pitch, std::min(-limit, height), std::max(limit, height)) - height;
    return {from.position, normalized(from.orientation * SbRotation(right, allowed) * SbRotation(up, -yaw))};
  }
  // The world follows the hand, so the viewer goes the other way round.
  const SbRotation swing =
      SbRotation(right, pitch) * SbRotation(axis(from.orientation, SbVec3f(0, 1, 0)), -yaw);
  return {pivot + axis(swing, from.position - pivot), normalized(from.orientation * swing)};
}

Pose Navigation::panned(const Pose& from, const SbVec2f& drag) const {
  const float reach =
      mode == Mode::fly ? speed * flightPerUnit : 2 * pivotDistance(from) * std::tan(fieldOfView / 2);
  const SbVec3f shift = axis(from.orientation, SbVec3f(-drag[0] * reach, -drag[1] * reach, 0));
  return {from.position + shift, from.orientation};
}

Pose Navigation::advanced(const Pose& from, float amount) const {
  const SbVec3f ahead = axis(from.orientation, SbVec3f(0, 0, -1));
  if (mode == Mode::fly) return {from.position + ahead * (amount * speed * flightPerUnit), from.orientation};
  // Toward the pivot, not straight ahead: it stays where it is in the window.
  const float distance = (pivot - from.position).length(),
              closest = std::min(distance, sceneSize * closestPart);
  const float wanted = std::max(distance * std::exp(-amount * nearingPerUnit), closest);
  const SbVec3f direction = distance > 0 ? (pivot - from.position) / distance : ahead;
  return {from.position + direction * (distance - wanted), from.orientation};
}

float Navigation::pivotDistance(const Pose& pose) const {
  // Depth along the line of sight; beside or behind the pivot the plain distance, and never nothing.
  const SbVec3f toPivot = pivot - pose.position;
  const float depth = toPivot.dot(axis(pose.orientation, SbVec3f(0, 0, -1)));
  return std::max(depth > 0 ? depth : toPivot.length(), sceneSize * closestPart);
}

}  // namespace tessel::host
