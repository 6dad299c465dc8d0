// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlCylinder.h>

#include <cmath>

#include <Inventor/SbCylinder.h>
#include <Inventor/details/SoCylinderDetail.h>

#include <tessel/actions/VrmlCountAction.h>

#include "core/NodeClassImpl.h"
#include "shapes/CornerBox.h"
#include "shapes/PickHit.h"
#include "shapes/RoundMesh.h"

namespace {

enum Part { sidePart = 1, topPart = 2, bottomPart = 4 };
constexpr float perTurn = 0.15915494309189535f;

}  // namespace

std::span<const tessel::FieldSpec> VrmlCylinder::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlCylinder::radius>("radius", field, {1}),
      tessel::fieldSpec<&VrmlCylinder::height>("height", field, {2}),
      tessel::fieldSpec<&VrmlCylinder::side>("side", field, {TRUE}),
      tessel::fieldSpec<&VrmlCylinder::top>("top", field, {TRUE}),
      tessel::fieldSpec<&VrmlCylinder::bottom>("bottom", field, {TRUE}),
  };
  return table;
}

VrmlCylinder::VrmlCylinder() { setUpFields(); }
VrmlCylinder::~VrmlCylinder() = default;

void VrmlCylinder::getSize(float& r, float& halfHeight) const {
  r = radius.isIgnored() ? 1 : radius.getValue();
  halfHeight = height.isIgnored() ? 1 : height.getValue() * 0.5f;
}

tessel::RoundCut VrmlCylinder::computeRing(SoAction* action) {
  return tessel::roundCut(action->getState(), [&] {
    SbBox3f box;
    SbVec3f center;
    computeBBox(action, box, center);
    return getScreenSize(action->getState(), box);
  });
}

template <class Sink> void VrmlCylinder::describe(Sink&& sink, SoAction* action) {
  const tessel::RoundCut cut = computeRing(action);
  float r, h;
  getSize(r, h);
  if (side.getValue()) {
    sink.part(sidePart);
    tessel::describeSide(
        sink, cut, h, 1, 0, [r](float) { return r; },
        [](const SbVec2f& onCircle) { return SbVec3f(onCircle[0], 0, onCircle[1]); });
  }
  if (top.getValue()) {
    sink.part(topPart);
    tessel::describeDisc(sink, cut, r, h, tessel::Facing::up);
  }
  if (bottom.getValue()) {
    sink.part(bottomPart);
    tessel::describeDisc(sink, cut, r, -h, tessel::Facing::down);
  }
}

void VrmlCylinder::GLRender(SoGLRenderAction* action) {
  if (!shouldGLRender(action)) return;
  beginSolidShape(action);
  tessel::drawPrimitive(action, [&](auto&& sink) { describe(sink, action); });
  endSolidShape(action);
}

void VrmlCylinder::generatePrimitives(SoAction* action) {
  describe(tessel::DetailSink<SoCylinderDetail>(this, action), action);
}

void VrmlCylinder::rayPick(SoRayPickAction* action) {
  if (!shouldRayPick(action)) return;
  computeObjectSpaceRay(action);
  const SbLine& line = action->getLine();
  float r, h;
  getSize(r, h);

  // A straight line meets the surface twice at most; the ends are not looked at once that is reached.
  int numHits = 0;
  const auto hit = [&](const SbVec3f& point, const SbVec3f& normal, const SbVec2f& texCoords, Part part) {
    ++numHits;
    if (SoPickedPoint* picked = tessel::addHit(action, point, normal, texCoords))
      setDetail(picked, tessel::partDetail<SoCylinderDetail>(part), action);
  };

  if (side.getValue()) {
    SbVec3f points[2];
    const SbCylinder cylinder(SbLine(SbVec3f(0, 0, 0), SbVec3f(0, 1, 0)), r);
    if (cylinder.intersect(line, points[0], points[1])) {
      for (const SbVec3f& p : points) {
        if (!(p[1] >= -h && p[1] <= h)) continue;
        SbVec3f normal(p[0], 0, p[2]);
        normal.normalize();
        hit(p, normal, SbVec2f(std::atan2(p[0], p[2]) * perTurn + 0.5f, (p[1] + h) / (2 * h)), sidePart);
      }
    }
  }
  const auto hitDisc = [&](float y, float up, Part part) {
    SbVec3f p;
    if (!tessel::crossesLevel(line, y, p) || !(p[0] * p[0] + p[2] * p[2] <= r * r)) return;
    hit(p, SbVec3f(0, up, 0), SbVec2f(p[0] / (2 * r) + 0.5f, 0.5f - up * p[2] / (2 * r)), part);
  };
  if (numHits < 2 && top.getValue()) hitDisc(h, 1, topPart);
  if (numHits < 2 && bottom.getValue()) hitDisc(-h, -1, bottomPart);
}

void VrmlCylinder::count(VrmlCountAction* action) {
  VrmlCountAction::add(action->numTriangles,
                       (side.getValue() ? 32 : 0) + (top.getValue() ? 16 : 0) + (bottom.getValue() ? 16 : 0));
}

void VrmlCylinder::computeBBox(SoAction*, SbBox3f& box, SbVec3f& center) {
  center.setValue(0, 0, 0);
  const bool hasSide = side.getValue(), hasTop = top.getValue(), hasBottom = bottom.getValue();
  if (!hasSide && !hasTop && !hasBottom) {
    box.setBounds(0, 0, 0, 0, 0, 0);
    return;
  }
  float r, h;
  getSize(r, h);
  const float low = hasSide || hasBottom ? -h : h, high = hasSide || hasTop ? h : -h;
  box = tessel::cornerBox(SbVec3f(-r, low, -r), SbVec3f(r, high, r));
}

template class tessel::NodeClass<VrmlCylinder, VrmlGeometry>;
