// SPDX-License-Identifier: BSD-3-Clause
// From vertices to triangles: what a geometry generates and what callbacks, picks and draws see of it.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/elements/SoPickStyleElement.h>
#include <Inventor/elements/SoShapeHintsElement.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoPickStyle.h>

#include <tessel/shapes/VrmlGeometry.h>
#include <tessel/shapes/VrmlShape.h>

#include "core/NodeClassImpl.h"
#include "support/Drawing.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace sketching {

/// A geometry that generates what a test tells it.
class Sketch : public tessel::NodeClass<Sketch, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Sketch";
  static constexpr bool standsInNoFile = true;
  static std::span<const tessel::FieldSpec> fields() { return {}; }

  using Body = std::function<void(Sketch&, SoAction*)>;
  explicit Sketch(Body b) : body(std::move(b)) { setUpFields(); }

  void computeBBox(SoAction*, SbBox3f& box, SbVec3f& center) override {
    box.setBounds(-1, -1, 0, 1, 1, 0);
    center.setValue(0, 0, 0);
  }
  void generatePrimitives(SoAction* action) override { body(*this, action); }
  SoDetail* createTriangleDetail(SoRayPickAction*, const SoPrimitiveVertex*, const SoPrimitiveVertex*,
                                 const SoPrimitiveVertex*, SoPickedPoint*) override {
    auto* detail = new SoFaceDetail;
    detail->setFaceIndex(42);
    return detail;
  }

  void polygon(SoAction* action, TriangleShape type, const std::vector<SbVec2f>& corners,
               SoFaceDetail* detail = nullptr, int materialStep = 1) {
    beginShape(action, type, detail);
    for (std::size_t i = 0; i < corners.size(); ++i) {
      SoPointDetail point;
      point.setCoordinateIndex(static_cast<int>(i));
      SoPrimitiveVertex v;
      v.setPoint(corners[i][0], corners[i][1], 0);
      v.setTextureCoords(corners[i]);
      v.setMaterialIndex(static_cast<int>(i) * materialStep);
      v.setDetail(&point);
      shapeVertex(&v);
    }
    endShape();
  }

protected:
  ~Sketch() override = default;

private:
  Body body;
};

}  // namespace sketching

template class tessel::NodeClass<sketching::Sketch, VrmlGeometry>;

namespace {

using sketching::Sketch;

void setFaceType(Sketch& sketch, SoAction* action, SoShapeHintsElement::FaceType type) {
  SoShapeHintsElement::set(action->getState(), &sketch, SoShapeHintsElement::COUNTERCLOCKWISE,
                           SoShapeHintsElement::UNKNOWN_SHAPE_TYPE, type);
}

/// Polygons may be concave from here on.
void anyForm(Sketch& sketch, SoAction* action) {
  setFaceType(sketch, action, SoShapeHintsElement::UNKNOWN_FACE_TYPE);
}

SoNode* inShape(Sketch::Body body) {
  startLibrary();
  static const bool registered = (Sketch::initClass(), true);
  (void)registered;
  auto* shape = new VrmlShape;
  shape->geometry = new Sketch(std::move(body));
  return shape;
}

struct Triangle {
  SbVec3f corner[3];
  int material[3];
  int coordinate[3] = {-1, -1, -1};
};

std::vector<Triangle> trianglesOf(SoNode* node, SoType type = VrmlGeometry::getClassTypeId()) {
  std::vector<Triangle> found;
  SoCallbackAction action;
  action.addTriangleCallback(
      type,
      [](void* list, SoCallbackAction*, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
         const SoPrimitiveVertex* c) {
        Triangle t{{a->getPoint(), b->getPoint(), c->getPoint()},
                   {a->getMaterialIndex(), b->getMaterialIndex(), c->getMaterialIndex()}};
        if (c->getDetail() && c->getDetail()->isOfType(SoFaceDetail::getClassTypeId())) {
          const auto* face = static_cast<const SoFaceDetail*>(c->getDetail());
          for (int i = 0; i < 3; ++i) t.coordinate[i] = face->getPoint(i)->getCoordinateIndex();
        }
        static_cast<std::vector<Triangle>*>(list)->push_back(t);
      },
      &found);
  action.apply(node);
  return found;
}

double area(const Triangle& t) {
  return (t.corner[1] - t.corner[0]).cross(t.corner[2] - t.corner[0])[2] / 2;  // negative if clockwise
}

double area(const std::vector<Triangle>& triangles) {
  double sum = 0;
  for (const Triangle& t : triangles) sum += area(t);
  return sum;
}

constexpr auto strip = VrmlGeometry::TRIANGLE_STRIP, fan = VrmlGeometry::TRIANGLE_FAN,
               triangles = VrmlGeometry::TRIANGLES, polygon = VrmlGeometry::POLYGON;

struct Outline {
  const char* name;
  VrmlGeometry::TriangleShape type;
  std::vector<SbVec2f> corners;
  std::size_t count;
  double area;
};
void PrintTo(const Outline& outline, std::ostream* out) { *out << outline.name; }
class PrimitiveRuns : public testing::TestWithParam<Outline> {};

}  // namespace

TEST_P(PrimitiveRuns, MakeTrianglesOfOneWinding) {
  const Outline& run = GetParam();
  const tessel::SoRef<SoNode> shape(inShape([&](Sketch& s, SoAction* a) {
    anyForm(s, a);
    s.polygon(a, run.type, run.corners);
    s.polygon(a, run.type, run.corners);  // nothing of the first is left
  }));
  const auto found = trianglesOf(shape.get());
  EXPECT_EQ(found.size(), 2 * run.count);
  EXPECT_NEAR(area(found), 2 * run.area, 1e-5);
  for (const Triangle& t : found) EXPECT_GT(area(t), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, PrimitiveRuns,
    testing::Values(
        Outline{"Strip", strip, {{0, 1}, {0, 0}, {1, 1}, {1, 0}, {2, 1}}, 3, 1.5},
        Outline{"Fan", fan, {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, 2, 1},
        Outline{"Triangles", triangles, {{0, 0}, {1, 0}, {0, 1}, {1, 0}, {1, 1}, {0, 1}, {5, 5}}, 2, 1},
        Outline{"Concave", polygon, {{0, 0}, {2, 0}, {2, 2}, {1, 0.5}, {0, 2}}, 3, 2.5},
        // A bow tie: the crossing is a vertex of its own.
        Outline{"CrossingItself", polygon, {{0, 0}, {2, 2}, {2, 0}, {0, 2}}, 2, 2},
        Outline{"TwoCorners", polygon, {{0, 0}, {1, 0}}, 0, 0},
        Outline{"NoNumber", polygon, {{0, 0}, {NAN, 0}, {1, 1}, {0, 1}}, 0, 0},
        Outline{"Infinite", polygon, {{0, 0}, {INFINITY, 0}, {1, 1}, {0, 1}}, 0, 0}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(PrimitivePipeline, AConvexPolygonIsAFan) {
  const tessel::SoRef<SoNode> shape(inShape([](Sketch& s, SoAction* a) {
    setFaceType(s, a, SoShapeHintsElement::CONVEX);
    s.polygon(a, polygon, {{0, 0}, {1, 0}, {1, 1}, {0, 1}});
  }));
  const auto found = trianglesOf(shape.get());
  ASSERT_EQ(found.size(), 2u);
  for (const Triangle& t : found) EXPECT_EQ(t.corner[0], SbVec3f(0, 0, 0));
}

TEST(PrimitivePipeline, ACrossingTakesTheMaterialOfACornerAroundIt) {
  const tessel::SoRef<SoNode> shape(inShape([](Sketch& s, SoAction* a) {
    anyForm(s, a);
    s.polygon(a, polygon, {{0, 0}, {2, 2}, {2, 0}, {0, 2}});
  }));
  int crossings = 0;
  for (const Triangle& t : trianglesOf(shape.get()))
    for (int i = 0; i < 3; ++i)
      if (t.corner[i] == SbVec3f(1, 1, 0)) {
        ++crossings;
        EXPECT_GE(t.material[i], 0);
        EXPECT_LE(t.material[i], 3);
      }
  EXPECT_EQ(crossings, 2);
}

TEST(PrimitivePipeline, AFaceDetailHoldsThePointsOfEachTriangle) {
  const std::vector<SbVec2f> square{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  for (const auto type : {fan, polygon}) {
    const tessel::SoRef<SoNode> shape(inShape([&](Sketch& s, SoAction* a) {
      anyForm(s, a);
      SoFaceDetail detail;
      s.polygon(a, type, square, &detail);
    }));
    const auto found = trianglesOf(shape.get());
    ASSERT_EQ(found.size(), 2u);
    for (const Triangle& t : found)
      for (int i = 0; i < 3; ++i) {
        ASSERT_GE(t.coordinate[i], 0);
        EXPECT_EQ(t.corner[i], SbVec3f(square[static_cast<std::size_t>(t.coordinate[i])][0],
                                       square[static_cast<std::size_t>(t.coordinate[i])][1], 0));
      }
  }
}

TEST(PrimitivePipeline, CallbacksGoByTypeAndPrimitivesAreMadeOnlyForThem) {
  int generated = 0;
  const tessel::SoRef<SoNode> shape(inShape([&](Sketch& s, SoAction* a) {
    ++generated;
    s.polygon(a, fan, {{0, 0}, {1, 0}, {1, 1}});
  }));
  EXPECT_EQ(trianglesOf(shape.get(), SoNode::getClassTypeId()).size(), 1u);
  EXPECT_EQ(trianglesOf(shape.get(), Sketch::getClassTypeId()).size(), 1u);
  EXPECT_EQ(generated, 2);
  EXPECT_EQ(trianglesOf(shape.get(), VrmlShape::getClassTypeId()).size(), 0u);
  SoCallbackAction idle;
  idle.apply(shape.get());
  EXPECT_EQ(generated, 2);
}

TEST(PrimitivePipeline, APickHitsTheNearTriangleWithNormalCoordinatesAndDetail) {
  const tessel::SoRef<SoNode> shape(inShape([](Sketch& s, SoAction* a) {
    s.polygon(a, fan, {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}});
  }));
  SoRayPickAction pick(SbViewportRegion(10, 10));
  pick.setRay(SbVec3f(0.5f, -0.75f, 5), SbVec3f(0, 0, -1));
  pick.apply(shape.get());
  const SoPickedPoint* hit = pick.getPickedPoint();
  ASSERT_TRUE(hit);
  EXPECT_TRUE(hit->getPoint().equals(SbVec3f(0.5f, -0.75f, 0), 1e-5f));
  EXPECT_TRUE(hit->getObjectTextureCoords().equals(SbVec4f(0.5f, -0.75f, 0, 1), 1e-5f));
  // The corner with the least weight names the material: the first here.
  EXPECT_EQ(hit->getMaterialIndex(), 2);
  const auto* detail = static_cast<const SoFaceDetail*>(
      hit->getDetail(static_cast<VrmlShape*>(shape.get())->geometry.getValue()));
  ASSERT_TRUE(detail);
  EXPECT_EQ(detail->getFaceIndex(), 42);
  pick.setRay(SbVec3f(1.5f, 0, 5), SbVec3f(0, 0, -1));
  pick.apply(shape.get());
  EXPECT_FALSE(pick.getPickedPoint());
}

TEST(PrimitivePipeline, ThePickStyleChoosesShapeBoxOrNothing) {
  // The box spans -1 to 1, the triangle only a half of it.
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  auto* style = new SoPickStyle;
  root->addChild(style);
  root->addChild(inShape([](Sketch& s, SoAction* a) { s.polygon(a, fan, {{-1, -1}, {1, -1}, {-1, 1}}); }));
  const auto hits = [&](SoPickStyle::Style how) {
    style->style = how;
    SoRayPickAction pick(SbViewportRegion(10, 10));
    pick.setRay(SbVec3f(0.5f, 0.5f, 5), SbVec3f(0, 0, -1));
    pick.apply(root.get());
    return pick.getPickedPoint() != nullptr;
  };
  EXPECT_FALSE(hits(SoPickStyle::SHAPE));
  EXPECT_TRUE(hits(SoPickStyle::BOUNDING_BOX));
  EXPECT_FALSE(hits(SoPickStyle::UNPICKABLE));
}

TEST(PrimitivePipelineGL, IsDrawnAndAsABoxWhereTheComplexityAsksForIt) {
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  auto* complexity = new SoComplexity;
  root->addChild(complexity);
  SoNode* shape = inShape([](Sketch& s, SoAction* a) {
    s.polygon(a, fan, {{-1, -1}, {1, -1}, {-1, 1}}, nullptr, 0);
  });
  root->addChild(shape);
  Drawing drawing(root.get());
  drawing.frame();
  const Colour grey{204, 204, 204};
  EXPECT_TRUE(near(drawing.at(-0.5f, -0.5f), grey)) << drawing.at(-0.5f, -0.5f);
  EXPECT_TRUE(near(drawing.at(0.5f, 0.5f), {0, 0, 0}));
  complexity->type = SoComplexity::BOUNDING_BOX;
  drawing.frame();
  EXPECT_TRUE(near(drawing.at(0.5f, 0.5f), grey));
}
