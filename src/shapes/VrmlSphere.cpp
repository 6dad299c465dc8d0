// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlSphere.h>

#include <cmath>

#include <Inventor/SbSphere.h>
#include <Inventor/elements/SoComplexityElement.h>
#include <Inventor/elements/SoComplexityTypeElement.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>

#include "core/NodeClassImpl.h"
#include "shapes/CornerBox.h"
#include "shapes/PickHit.h"
#include "shapes/PrimitiveSink.h"
#include "shapes/Subdivision.h"

namespace {

SbVec2f texCoordsAt(const SbVec3f& p) {
  // These factors, not 1 / (2 pi) and 1 / pi, are what worlds were made for.
  return {std::atan2(p[0], p[2]) * 0.159f + 0.5f,
          std::atan2(p[1], std::sqrt(p[0] * p[0] + p[2] * p[2])) * 0.318f + 0.5f};
}

SbBox3f boxOf(float r) { return tessel::cornerBox(SbVec3f(-r, -r, -r), SbVec3f(r, r, r)); }

/// An octahedron, each of its sides cut into depth times depth triangles, blown up to a sphere.
template <class Sink> class SphereMesh {
public:
  SphereMesh(Sink& to, float r, int d) : sink(to), radius(r), depth(d) {}

  void describe() {
    for (int octant = 0; octant < 8; ++octant) {
      sx = static_cast<float>(1 - 2 * (octant & 1));
      sy = static_cast<float>(1 - (octant & 2));
      sz = static_cast<float>(1 - (octant & 4) / 2);
      mirrored = sx * sy * sz > 0;
      seamFromBelow = octant == 1 || octant == 3;
      seamFromAbove = octant == 5 || octant == 7;
      for (int band = 0; band <= depth - 2; ++band) describeBand(band);
      describeTip();
    }
  }

private:
  // A band runs from one edge of the octant to the other, its lower line a piece shorter than its upper one.
  void describeBand(int band) {
    const float t0 = part(band), t1 = part(band + 1), a = 1 - t0, b = 1 - t1;
    const int n = depth - band;
    sink.begin(tessel::Run::strip);
    for (int j = 0; j < n; ++j) {
      const float f = a * static_cast<float>(mirrored ? n - j : j) / static_cast<float>(n);
      vertex(SbVec3f(sx * f, sy * t0, sz * (a - f)), false);
      const float g = b * static_cast<float>(mirrored ? n - j - 1 : j) / static_cast<float>(n - 1);
      vertex(SbVec3f(sx * g, sy * t1, sz * (b - g)), true);
    }
    const float f = mirrored ? 0 : a;
    vertex(SbVec3f(sx * f, sy * t0, sz * (a - f)), true);
    sink.end();
  }

  void describeTip() {
    const float t = part(depth - 1), a = 1 - t;
    const SbVec3f onX(sx * a, sy * t, 0), onZ(0, sy * t, sz * a);
    sink.begin(tessel::Run::strip);
    const float s1 = vertex(mirrored ? onZ : onX, true);
    const float s2 = vertex(mirrored ? onX : onZ, true);
    const SbVec3f pole(0, sy, 0);
    sink.normal(pole);
    sink.texCoord((s1 + s2) * 0.5f, sy * 0.5f + 0.5f);
    sink.vertex(pole * radius);
    sink.end();
  }

  /// Sends a point of the octahedron as one of the sphere; gives its s.
  float vertex(SbVec3f point, bool repairSeam) {
    point.normalize();
    float s = 0;
    if constexpr (Sink::wantsTexCoords) {
      const SbVec2f st = texCoordsAt(point);
      s = st[0];
      if (repairSeam && seamFromBelow && s < 0.001f) s = 1;
      if (repairSeam && seamFromAbove && s > 0.999f) s = 0;
      sink.texCoord(s, st[1]);
    }
    sink.normal(point);
    sink.vertex(point * radius);
    return s;
  }

  float part(int band) const { return static_cast<float>(band) / static_cast<float>(depth); }

  Sink& sink;
  float radius;
  int depth;
  // Of the octant in work: its signs, whether its strips run the other way, how its edge meets the seam.
  float sx = 1, sy = 1, sz = 1;
  bool mirrored = false, seamFromBelow = false, seamFromAbove = false;
};

template <class Sink> void describeSphere(Sink&& sink, float radius, int depth) {
  SphereMesh<std::remove_reference_t<Sink>>(sink, radius, depth).describe();
}

}  // namespace

std::span<const tessel::FieldSpec> VrmlSphere::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlSphere::radius>("radius", field, {1}),
  };
  return table;
}

VrmlSphere::VrmlSphere() { setUpFields(); }
VrmlSphere::~VrmlSphere() = default;

float VrmlSphere::getSize() const { return radius.isIgnored() ? 1 : radius.getValue(); }

int VrmlSphere::computeDepth(SoAction* action) {
  SoState* state = action->getState();
  const float c = SoComplexityElement::get(state);
  if (SoComplexityTypeElement::get(state) == SoComplexityTypeElement::SCREEN_SPACE) {
    const float pixels = tessel::largerExtent(getScreenSize(state, boxOf(getSize())));
    return tessel::pieces(tessel::wholeCount(0.1f * c * pixels) + 1);
  }
  return tessel::pieces(c < 0.5f ? tessel::wholeCount(c * 9) + 1 : tessel::wholeCount(c * 50) - 20);
}

void VrmlSphere::GLRender(SoGLRenderAction* action) {
  if (!shouldGLRender(action)) return;
  beginSolidShape(action);
  tessel::drawPrimitive(action, [&](auto&& sink) { describeSphere(sink, getSize(), computeDepth(action)); });
  endSolidShape(action);
}

void VrmlSphere::generatePrimitives(SoAction* action) {
  describeSphere(tessel::PipelineSink(this, action), getSize(), computeDepth(action));
}

void VrmlSphere::rayPick(SoRayPickAction* action) {
  if (!shouldRayPick(action)) return;
  computeObjectSpaceRay(action);
  SbVec3f hits[2];
  if (!SbSphere(SbVec3f(0, 0, 0), getSize()).intersect(action->getLine(), hits[0], hits[1])) return;
  for (const SbVec3f& hit : hits) {
    SbVec3f normal = hit;
    normal.normalize();
    tessel::addHit(action, hit, normal, texCoordsAt(hit));
  }
}

void VrmlSphere::collisionDetect(VrmlCollideAction* action) {
  if (action->isCollisionTestOn()) action->collideSphere(getSize());
}

void VrmlSphere::count(VrmlCountAction* action) { VrmlCountAction::add(action->numTriangles, 200); }

void VrmlSphere::computeBBox(SoAction*, SbBox3f& box, SbVec3f& center) {
  box = boxOf(getSize());
  center.setValue(0, 0, 0);
}

template class tessel::NodeClass<VrmlSphere, VrmlGeometry>;
