// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlCone.h>

#include <algorithm>
#include <cmath>

#include <Inventor/details/SoConeDetail.h>

#include <tessel/actions/VrmlCountAction.h>

#include "core/NodeClassImpl.h"
#include "shapes/CornerBox.h"
#include "shapes/PickHit.h"
#include "shapes/RoundMesh.h"

namespace {

enum Part { sidePart = 1, bottomPart = 2 };
constexpr float perTurn = 0.15915494309189535f;

/// Where the line o + t d meets the double cone x x - y y + z z = 0; how many points there are.
int intersectInfiniteCone(const SbVec3f& o, const SbVec3f& d, SbVec3f points[2]) {
  const double ox = o[0], oy = o[1], oz = o[2], dx = d[0], dy = d[1], dz = d[2];
  const double a = dx * dx - dy * dy + dz * dz;
  const double b = 2 * (ox * dx - oy * dy + oz * dz);
  const double c = ox * ox - oy * oy + oz * oz;
  const double discriminant = b * b - 4 * a * c;
  if (!(discriminant >= 0)) return 0;
  // Both terms of the sum have one sign, so that nothing is lost where they are almost equal.
  const double q = -0.5 * (b + std::copysign(std::sqrt(discriminant), b));
  const auto at = [&](double t) {
    return SbVec3f(static_cast<float>(ox + t * dx), static_cast<float>(oy + t * dy),
                   static_cast<float>(oz + t * dz));
  };
  // A line along one on the cone meets one half only; one through the tip goes in there once.
  if (a == 0) {
    if (q == 0) return 0;
    points[0] = at(c / q);
    return 1;
  }
  const double first = q / a, other = q == 0 ? first : c / q;
  points[0] = at(std::min(first, other));
  points[1] = at(std::max(first, other));
  return first == other ? 1 : 2;
}

}  // namespace

std::span<const tessel::FieldSpec> VrmlCone::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlCone::bottomRadius>("bottomRadius", field, {1}),
      tessel::fieldSpec<&VrmlCone::height>("height", field, {2}),
      tessel::fieldSpec<&VrmlCone::side>("side", field, {TRUE}),
      tessel::fieldSpec<&VrmlCone::bottom>("bottom", field, {TRUE}),
  };
  return table;
}

VrmlCone::VrmlCone() { setUpFields(); }
VrmlCone::~VrmlCone() = default;

void VrmlCone::getSize(float& radius, float& halfHeight) const {
  radius = bottomRadius.isIgnored() ? 1 : bottomRadius.getValue();
  halfHeight = height.isIgnored() ? 1 : height.getValue() * 0.5f;
}

tessel::RoundCut VrmlCone::computeBase(SoAction* action) {
  return tessel::roundCut(action->getState(), [&] {
    SbBox3f box;
    SbVec3f center;
    computeBBox(action, box, center);
    return getScreenSize(action->getState(), box);
  });
}

template <class Sink> void VrmlCone::describe(Sink&& sink, SoAction* action) {
  const tessel::RoundCut cut = computeBase(action);
  float r, h;
  getSize(r, h);
  if (side.getValue()) {
    // The normals lean up as much as the side leans in.
    const float slant = std::hypot(r, 2 * h);
    const float out = slant > 0 ? 2 * h / slant : 0, up = slant > 0 ? r / slant : 1;
    sink.part(sidePart);
    tessel::describeSide(
        sink, cut, h, 0, 1, [r](float down) { return r * down; },
        [=](const SbVec2f& onCircle) { return SbVec3f(out * onCircle[0], up, out * onCircle[1]); });
  }
  if (bottom.getValue()) {
    sink.part(bottomPart);
    tessel::describeDisc(sink, cut, r, -h, tessel::Facing::down);
  }
}

void VrmlCone::GLRender(SoGLRenderAction* action) {
  if (!shouldGLRender(action)) return;
  beginSolidShape(action);
  tessel::drawPrimitive(action, [&](auto&& sink) { describe(sink, action); });
  endSolidShape(action);
}

void VrmlCone::generatePrimitives(SoAction* action) {
  describe(tessel::DetailSink<SoConeDetail>(this, action), action);
}

void VrmlCone::rayPick(SoRayPickAction* action) {
  float r, h;
  getSize(r, h);
  if (!std::isnormal(r) || !std::isnormal(h)) {
    VrmlGeometry::rayPick(action);  // too flat for that: as it is drawn
    return;
  }
  if (!shouldRayPick(action)) return;
  computeObjectSpaceRay(action);
  const SbLine& line = action->getLine();

  // The side is met in a space where the cone has radius 1 and height 1 and its tip is at the origin.
  const auto toUnit = [r, h](const SbVec3f& v) { return SbVec3f(v[0] / r, v[1] / (2 * h), v[2] / r); };
  const SbVec3f tip(0, h, 0);

  int numHits = 0;
  const auto hit = [&](const SbVec3f& point, const SbVec3f& normal, const SbVec2f& texCoords, Part part) {
    ++numHits;
    if (SoPickedPoint* picked = tessel::addHit(action, point, normal, texCoords))
      setDetail(picked, tessel::partDetail<SoConeDetail>(part), action);
  };

  if (side.getValue()) {
    SbVec3f points[2];
    const int numPoints =
        intersectInfiniteCone(toUnit(line.getPosition() - tip), toUnit(line.getDirection()), points);
    for (int i = 0; i < numPoints; ++i) {
      const SbVec3f& p = points[i];
      if (!(p[1] >= -1 && p[1] <= 0)) continue;
      const SbVec3f below(p[0] * r, p[1] * 2 * h, p[2] * r);  // from the tip, in object space
      SbVec3f normal(-below[0] * below[1], below[0] * below[0] + below[2] * below[2], -below[1] * below[2]);
      normal.normalize();
      hit(tip + below, normal, SbVec2f(std::atan2(p[0], p[2]) * perTurn + 0.5f, p[1] + 1), sidePart);
    }
  }
  SbVec3f p;
  if (numHits < 2 && bottom.getValue() && tessel::crossesLevel(line, -h, p)) {
    const float x = p[0] / r, z = p[2] / r;
    if (x * x + z * z <= 1) hit(p, SbVec3f(0, -1, 0), SbVec2f(x / 2 + 0.5f, z / 2 + 0.5f), bottomPart);
  }
}

void VrmlCone::count(VrmlCountAction* action) {
  VrmlCountAction::add(action->numTriangles, (side.getValue() ? 16 : 0) + (bottom.getValue() ? 16 : 0));
}

void VrmlCone::computeBBox(SoAction*, SbBox3f& box, SbVec3f& center) {
  center.setValue(0, 0, 0);
  const bool hasSide = side.getValue();
  if (!hasSide && !bottom.getValue()) return;
  float r, h;
  getSize(r, h);
  box = tessel::cornerBox(SbVec3f(-r, -h, -r), SbVec3f(r, hasSide ? h : -h, r));
}

template class tessel::NodeClass<VrmlCone, VrmlGeometry>;
