// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <GL/gl.h>

#include <cmath>
#include <sstream>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlIndexedLineSet.h>
#include <tessel/shapes/VrmlPointSet.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoMaterial.h>

#include "shapes/Probe.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

const Colour red{255, 0, 0}, green{0, 255, 0}, blue{0, 0, 255}, black{};

std::string lines(const std::string& body) {
  return "Shape { geometry DEF L IndexedLineSet { " + body + " } }";
}
std::string points(const std::string& body) { return "Shape { geometry DEF P PointSet { " + body + " } }"; }

// Three level lines, at y = 1, 0 and -1.
const std::string threeLines =
    "coord Coordinate { point [ -1 1 0, 1 1 0, -1 0 0, 1 0 0, -1 -1 0, 1 -1 0 ] } coordIndex [ 0 1 -1 2 3 -1 "
    "4 5 ] ";
const std::string redGreenBlue = "color Color { color [ 1 0 0, 0 1 0, 0 0 1 ] } ";

/// The colour that was drawn round a place: lines are thin.
Colour drawnAt(const Drawing& drawing, float x, float y) {
  for (const float off : {0.0f, -0.05f, 0.05f})
    if (const Colour c = drawing.at(x, y + off); c != black) return c;
  return black;
}

/// Draws a frame and looks at the three lines.
void expectThree(Drawing& drawing, const Colour& top, const Colour& middle, const Colour& bottom) {
  drawing.frame();
  EXPECT_EQ(drawnAt(drawing, 0.5f, 1), top);
  EXPECT_EQ(drawnAt(drawing, 0.5f, 0), middle);
  EXPECT_EQ(drawnAt(drawing, 0.5f, -1), bottom);
}

/// `text` with each word that begins with @ as often as told, without its @.
std::string repeated(const std::string& text, int times) {
  std::istringstream in(text);
  std::string word, result;
  while (in >> word)
    if (word[0] != '@')
      result += word + ' ';
    else
      for (int i = 0; i < times; ++i) result += word.substr(1) + ' ';
  return result;
}

int countSegments(SoNode* scene) {
  VrmlCountAction count;
  count.apply(scene);
  return count.numLineSegments;
}

/// How many points or segments the callback action is handed.
int countPrimitives(SoNode* scene, float complexity = 0.5f) {
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  auto* detailed = new SoComplexity;
  detailed->value = complexity;
  root->addChild(detailed);
  root->addChild(scene);
  SoCallbackAction action;
  int n = 0;
  action.addPointCallback(
      SoNode::getClassTypeId(),
      [](void* out, SoCallbackAction*, const SoPrimitiveVertex*) { ++*static_cast<int*>(out); }, &n);
  action.addLineSegmentCallback(
      SoNode::getClassTypeId(),
      [](void* out, SoCallbackAction*, const SoPrimitiveVertex*, const SoPrimitiveVertex*) {
        ++*static_cast<int*>(out);
      },
      &n);
  action.apply(root.get());
  return n;
}

}  // namespace

// Counting

TEST(IndexedLineSet, CountsSegmentsOfOpenAndEmptyPolylines) {
  const auto count = [](const std::string& indices) {
    TestWorld world(
        lines("coord Coordinate { point [ 0 0 0, 1 0 0, 2 0 0, 3 0 0, 4 0 0 ] } coordIndex " + indices));
    return countSegments(world.root());
  };
  EXPECT_EQ(count("[ 0 1 2 -1 3 4 ]"), 3);
  EXPECT_EQ(count("[ 0 1 2 -1 3 4 -1 ]"), 3);
  EXPECT_EQ(count("[ 0 1 -1 2 -1 3 4 ]"), 2);
  EXPECT_EQ(count("[ -1 ]"), 0);
  EXPECT_EQ(count("[ ]"), 0);
}

TEST(IndexedLineSet, CountsAgainWhenIndicesChange) {
  TestWorld world(lines(repeated(threeLines, 0)));
  EXPECT_EQ(countSegments(world.root()), 3);
  const int32_t indices[] = {0, 1, 2, 3};
  world.get<VrmlIndexedLineSet>("L")->set_coordIndex.setValues(0, 4, indices);
  world.get<VrmlIndexedLineSet>("L")->set_coordIndex.setNum(4);
  EXPECT_EQ(countSegments(world.root()), 3);
  EXPECT_EQ(countPrimitives(world.root()), 3);
}

// What is drawn

TEST(LinesGL, TakeTheirColours) {
  const auto draw = [](const std::string& body, const Colour& top, const Colour& middle,
                       const Colour& bottom) {
    for (const int size : {0, 1000}) {  // a few, and so many that they have buffers of their own
      SCOPED_TRACE(body + std::to_string(size));
      TestWorld world(lines(repeated(threeLines + body, size)));
      LitDrawing drawing(world.root());
      for (int frame = 0; frame < 3; ++frame) expectThree(drawing, top, middle, bottom);
      EXPECT_EQ(world.messages.count("Vrml"), 0) << world.messages.text();
    }
  };
  const Colour grey{204, 204, 204};
  draw("", grey, grey, grey);
  draw("color Color { color [ ] }", grey, grey, grey);  // as if there were none
  draw("colorPerVertex FALSE " + redGreenBlue, red, green, blue);
  draw("colorPerVertex FALSE colorIndex [ 2 0 1 ] " + redGreenBlue, blue, red, green);
  draw("colorIndex [ 0 0 -1 2 2 -1 1 1 @1 ] " + redGreenBlue, red, blue, green);
  draw("color Color { color [ 1 0 0, 1 0 0, 0 1 0, 0 1 0, 0 0 1, 0 0 1 ] }", red, green,
       blue);  // by coordIndex
  // An index of -1 where a colour is wanted leaves the last one.
  draw("colorPerVertex FALSE colorIndex [ 1 -1 2 ] " + redGreenBlue, green, green, blue);
  draw("colorIndex [ 0 0 -1 -1 -1 -1 1 1 @-1 ] " + redGreenBlue, red, red, green);
}

TEST(LinesGL, KnowNeitherLightNorTexture) {
  const std::string appearance =
      "appearance Appearance { material Material { diffuseColor 1 0 0 } texture PixelTexture { image 1 1 1 "
      "0x00 } } ";
  TestWorld world("Shape { " + appearance + "geometry IndexedLineSet { " + repeated(threeLines, 0) + "} }");
  LitDrawing drawing(world.root());
  expectThree(drawing, red, red, red);
}

TEST(LinesGL, TakeTheColourThatTheMaterialEmits) {
  const auto line = [](const char* material, const char* y, int times) {
    return repeated(std::string("Shape { appearance Appearance { material Material { ") + material +
                        " } } geometry IndexedLineSet { coord Coordinate { point [ -1 " + y + " 0, 1 " + y +
                        " 0 ] } coordIndex [ 0 1 @-1 @0 @1 ] } } ",
                    times);
  };
  // In display lists, and large enough to have buffers of their own.
  for (const int times : {0, 1000}) {
    TestWorld world("Group { children [ " + line("emissiveColor 0 1 0", "1", times) +
                    line("diffuseColor 1 0 0", "0", times) +
                    line("diffuseColor 1 0 0 emissiveColor 0 0 1", "-1", times) + "] }");
    LitDrawing drawing(world.root());
    for (int frame = 0; frame < 4; ++frame) expectThree(drawing, green, red, blue);
  }
}

TEST(LinesGL, AnOverriddenColourLeavesIndicesRight) {
  const std::string body = repeated(threeLines, 0) + "colorIndex [ 0 0 -1 1 1 -1 2 2 ] " + redGreenBlue;
  TestWorld world(
      "Group { children [ Shape { geometry IndexedLineSet { " + body +
      " } } Shape { geometry IndexedFaceSet { coord Coordinate { point [ -1 0.4 0, 1 0.4 0, 0 0.6 0 ] } "
      "coordIndex [ 0 1 2 -1 ] colorIndex [ 0 1 2 -1 ] " +
      redGreenBlue + "} } ] }");
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  auto* material = new SoMaterial;
  material->diffuseColor.setValue(0, 0, 1);
  material->setOverride(TRUE);
  root->addChild(material);
  root->addChild(world.root());
  LitDrawing drawing(root.get());
  expectThree(drawing, blue, blue, blue);
  EXPECT_EQ(drawing.at(0, 0.5f), blue);
  EXPECT_TRUE(world.messages.empty()) << world.messages.text();
}

TEST(LinesGL, AnEmptyPolylineTakesAColour) {
  TestWorld world(
      lines("coord Coordinate { point [ -1 1 0, 1 1 0, -1 -1 0, 1 -1 0 ] } coordIndex [ 0 1 -1 -1 2 3 ] "
            "colorPerVertex FALSE " +
            redGreenBlue));
  LitDrawing drawing(world.root());
  expectThree(drawing, red, black, blue);
}

TEST(LinesGL, PointStyleDrawsTheVertices) {
  TestWorld world(lines(repeated(threeLines, 0)));
  const tessel::SoRef<SoSeparator> root(new SoSeparator);
  auto* style = new SoDrawStyle;
  style->style = SoDrawStyle::POINTS;
  root->addChild(style);
  root->addChild(world.root());
  EXPECT_EQ(countLit(root.get()), 6);
}

struct BadLines {
  const char* body;
  const char* message;
  bool everyFrame;
};
void PrintTo(const BadLines& bad, std::ostream* out) { *out << bad.body; }

class BadLinesGL : public ::testing::TestWithParam<BadLines> {};

TEST_P(BadLinesGL, AreReportedAndNotDrawn) {
  TestWorld world(lines(GetParam().body));
  ASSERT_TRUE(world.root()) << world.messages.text();
  LitDrawing drawing(world.root());
  EXPECT_EQ(countLit(drawing.frame()), 0);
  EXPECT_EQ(world.messages.count(GetParam().message), 1) << world.messages.text();
  EXPECT_EQ(countLit(drawing.frame()), 0);
  EXPECT_EQ(world.messages.count(GetParam().message), GetParam().everyFrame ? 2 : 1) << world.messages.text();
  // A change of the node lets it try again.
  world.get<VrmlIndexedLineSet>("L")->touch();
  drawing.frame();
  EXPECT_EQ(world.messages.count(GetParam().message), GetParam().everyFrame ? 3 : 2);
  hitsOf(world.root(), {0, 0, 10}, {0, 0, -1});
}

const std::string twoPoints = "coord Coordinate { point [ -1 0 0, 1 0 0 ] } ";
const std::string badTexts[] = {
    twoPoints + "coordIndex [ 0 1 2 -1 ]",
    twoPoints + "coordIndex [ 0 -2 1 ]",
    twoPoints + "coordIndex [ 0 1 -1 ] color Color { color [ 1 0 0 ] } colorIndex [ 0 1 -1 ]",
    twoPoints + "coordIndex [ 0 1 -1 ] colorIndex [ 1 0 ]",
    twoPoints + "coordIndex [ 0 1 -1 1 0 ] colorPerVertex FALSE color Color { color [ 1 0 0 ] }",
    twoPoints +
        "coordIndex [ 0 1 -1 1 0 ] colorPerVertex FALSE color Color { color [ 1 0 0 ] } colorIndex [ 0 ]",
    twoPoints + "coordIndex [ 0 1 ] color Color { color [ 1 0 0 ] }",
    twoPoints + "coordIndex [ 0 1 -1 ] color Color { color [ 1 0 0 ] } colorIndex [ 0 0 ]",
};
INSTANTIATE_TEST_SUITE_P(
    All, BadLinesGL,
    ::testing::Values(
        BadLines{badTexts[0].c_str(), "VrmlIndexedLineSet(): vertex index 2 is out of range 0 - 2", true},
        BadLines{badTexts[1].c_str(), "vertex index -2 is out of range 0 - 2", true},
        BadLines{badTexts[2].c_str(), "VrmlIndexedLineSet(): color index 1 is out of range 0 - 1", true},
        BadLines{badTexts[3].c_str(), "color index 1 is out of range 0 - 1", true},
        BadLines{badTexts[4].c_str(), "Material binding is PER_LINE, but only 1 colors given (2 needed)",
                 false},
        BadLines{badTexts[5].c_str(), "Need 2 indices for PER_FACE_INDEXED  material binding, have only 1",
                 false},
        BadLines{badTexts[6].c_str(),
                 "Material binding is PER_VERTEX_INDEXED, but only 1 colors given (2 needed)", false},
        BadLines{badTexts[7].c_str(), "Need 3 indices for PER_VERTEX_INDEXED  material binding, have only 2",
                 false},
        BadLines{"coordIndex [ 0 1 -1 ]", "VrmlIndexedLineSet::setupIndices(): no coordinates specified\n",
                 false},
        BadLines{"coord Coordinate { point [ ] }",
                 "VrmlVertexPropertyCache::fillInCache(): no coordinates specified\n", false}));

// Large sets keep what they drew

TEST(LinesGL, ALargeSetIsDrawnAlikeEveryFrameAndFollowsChanges) {
  std::string indices;
  for (int i = 0; i < 400; ++i) indices += "0 1 -1 2 3 -1 4 5 -1 ";
  std::string colours;
  for (int i = 0; i < 400; ++i) colours += "1 0 0, 0 1 0, 0 0 1, ";
  TestWorld world(lines(
      "coord DEF C Coordinate { point [ -1 1 0, 1 1 0, -1 0 0, 1 0 0, -1 -1 0, 1 -1 0 ] } coordIndex [ " +
      indices + "] colorPerVertex FALSE color DEF K Color { color [ " + colours + "] }"));
  LitDrawing drawing(world.root());
  for (int frame = 0; frame < 5; ++frame) expectThree(drawing, red, green, blue);
  auto* coordinates = world.get<VrmlCoordinate>("C");
  coordinates->point.set1Value(0, SbVec3f(-1, 1.5f, 0));
  coordinates->point.set1Value(1, SbVec3f(1, 1.5f, 0));
  for (int frame = 0; frame < 5; ++frame) {
    expectThree(drawing, black, green, blue);
    EXPECT_EQ(drawnAt(drawing, 0.5f, 1.5f), red);
  }
  world.get<VrmlColor>("K")->color.setNum(3);
  EXPECT_EQ(countLit(drawing.frame()), 0);
  EXPECT_EQ(world.messages.count("only 3 colors given (1200 needed)"), 1) << world.messages.text();
}

// Points

TEST(PointsGL, TakeTheirColours) {
  TestWorld world(
      points("coord Coordinate { point [ 0.5 1 0, 0.5 0 0, 0.5 -1 0 ] } "
             "color Color { color [ 1 0 0, 0 1 0, 0 0 1, 1 1 1 ] }"));
  LitDrawing drawing(world.root());
  expectThree(drawing, red, green, blue);
  EXPECT_EQ(countLit(drawing.frame()), 3);
}

TEST(PointsGL, SurplusPointsAreNotDrawn) {
  TestWorld world(points(
      "coord Coordinate { point [ 0.5 1 0, 0.5 0 0, 0.5 -1 0 ] } color Color { color [ 1 0 0, 0 1 0 ] }"));
  LitDrawing drawing(world.root());
  expectThree(drawing, red, green, black);
  EXPECT_EQ(world.messages.count("VrmlPointSet::GLRender(): too few colors specified\n"), 1)
      << world.messages.text();
}

TEST(PointsGL, WithoutPointsNothing) {
  for (const char* body : {"", "coord Coordinate { point [ ] }", "coord NULL color Color { }"}) {
    TestWorld world(points(body));
    EXPECT_EQ(countLit(world.root()), 0) << body;
    EXPECT_TRUE(boxOf(world.root()).isEmpty()) << body;
    EXPECT_EQ(countPrimitives(world.root()), 0) << body;
    EXPECT_TRUE(hitsOf(world.root(), {0, 0, 10}, {0, 0, -1}).empty()) << body;
    EXPECT_EQ(world.messages.count("Vrml"), 0) << world.messages.text();
  }
}

TEST(PointsGL, LowComplexityThinsThePicture) {
  std::string row;  // one point a pixel
  for (int i = 0; i < 60; ++i) row += std::to_string((i - 30) / 16.0 + 0.03) + " 0.03 0, ";
  const std::string text = points("coord Coordinate { point [ " + row + "] }");
  const auto drawn = [&](float complexity) {
    TestWorld world(text);
    const tessel::SoRef<SoSeparator> root(new SoSeparator);
    auto* detailed = new SoComplexity;
    detailed->value = complexity;
    root->addChild(detailed);
    root->addChild(world.root());
    const int lit = countLit(root.get());
    EXPECT_EQ(countPrimitives(world.root(), complexity), lit);
    EXPECT_EQ(hitsOf(world.root(), {(59 - 30) / 16.0f + 0.03f, 0.03f, 10}, {0, 0, -1}).size(), 1u);
    return lit;
  };
  EXPECT_EQ(drawn(0.5f), 60);
  EXPECT_EQ(drawn(1), 60);
  EXPECT_NEAR(drawn(0.25f), 60 * 0.55, 1);
  EXPECT_NEAR(drawn(0), 60 * 0.1, 1);
}

TEST(PointsGL, ALargeSetIsDrawnAlikeEveryFrameAndFollowsChanges) {
  std::string many;
  for (int i = 0; i < 600; ++i) many += "0.5 1 0, 0.5 0 0, ";
  TestWorld world(points("coord DEF C Coordinate { point [ " + many + "] }"));
  LitDrawing drawing(world.root());
  const Colour grey{204, 204, 204};
  for (int frame = 0; frame < 5; ++frame) expectThree(drawing, grey, grey, black);
  world.get<VrmlCoordinate>("C")->point.set1Value(7, SbVec3f(0.5f, -1, 0));
  for (int frame = 0; frame < 5; ++frame) expectThree(drawing, grey, grey, grey);
}

TEST(PointsGL, ALargeSetServesTwoContextsAndOutlivesOne) {
  std::string many;
  for (int i = 0; i < 600; ++i) many += "0.5 1 0, ";
  TestWorld world(points("coord Coordinate { point [ " + many + "] }"));
  LitDrawing first(world.root());
  EXPECT_EQ(countLit(first.frame()), 1);
  {
    const auto context = openContext(Drawing::size, Drawing::size);
    VrmlRenderAction action(SbViewportRegion(Drawing::size, Drawing::size));
    action.setCacheContext(SoGLCacheContextElement::getUniqueCacheContext());
    for (int frame = 0; frame < 3; ++frame) {
      glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
      action.apply(first.root.get());
      EXPECT_EQ(countLit(context->picture()), 1);
    }
  }
  EXPECT_EQ(countLit(first.frame()), 1);
}

// Boxes and picking

TEST(LinesAndPoints, BoxAndCentre) {
  TestWorld lineWorld(lines("coord Coordinate { point [ 0 0 0, 4 2 1, 100 100 100 ] } coordIndex [ 0 1 ]"));
  const SbBox3f box = boxOf(lineWorld.root());
  EXPECT_EQ(box.getMax(), SbVec3f(4, 2, 1));  // a point that is not used does not count
  TestWorld pointWorld(points("coord Coordinate { point [ 0 0 0, 4 2 1 ] }"));
  EXPECT_EQ(boxOf(pointWorld.root()).getMin(), SbVec3f(0, 0, 0));
  EXPECT_EQ(boxOf(pointWorld.root()).getMax(), SbVec3f(4, 2, 1));
}

TEST(LinesAndPoints, PickedLineTellsItsNumbers) {
  TestWorld world(lines(
      "coord Coordinate { point [ -1 1 0, 1 1 0, -1 -1 0, 0 -1 0, 1 -1 0 ] } coordIndex [ 0 1 -1 2 3 4 ]"));
  const auto hits = hitsOf(world.root(), {0.5f, -1, 10}, {0, 0, -1});
  ASSERT_EQ(hits.size(), 1u);
  EXPECT_EQ(hits[0].line, 1);
  EXPECT_EQ(hits[0].part, 2);  // segments are counted through
}

TEST(LinesAndPoints, PickedPointTellsItsNumber) {
  TestWorld world(points("coord Coordinate { point [ -1 1 0, 1 1 0, 0.5 -1 0 ] }"));
  const auto hits = hitsOf(world.root(), {0.5f, -1, 10}, {0, 0, -1});
  ASSERT_EQ(hits.size(), 1u);
  EXPECT_EQ(hits[0].coordinate, 2);
}

TEST(LinesAndPoints, IndicesOutOfRangeAreNotPicked) {
  TestWorld world(lines(twoPoints + "coordIndex [ 0 1 2000000000 0 -5 1 ]"));
  EXPECT_EQ(countPrimitives(world.root()), 1);
}
