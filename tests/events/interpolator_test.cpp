// SPDX-License-Identifier: BSD-3-Clause
// Interpolators: keys and values, well formed and not, and when they are evaluated.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <Inventor/sensors/SoNodeSensor.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/events/VrmlColorInterpolator.h>
#include <tessel/events/VrmlCoordinateInterpolator.h>
#include <tessel/events/VrmlNormalInterpolator.h>
#include <tessel/events/VrmlOrientationInterpolator.h>
#include <tessel/events/VrmlPositionInterpolator.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/events/VrmlScalarInterpolator.h>
#include <tessel/events/VrmlTimeSensor.h>
#include <tessel/toolkit/PlainReport.h>

#include "events/Clock.h"
#include "support/TestWorld.h"

using tessel::SoRef;
using tessel::test::Clock;
using tessel::test::TestWorld;

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// What goes to standard error.
class PlainTexts {
public:
  PlainTexts() {
    tessel::setPlainReportHandler(
        [](std::string_view text, void* self) { static_cast<PlainTexts*>(self)->heard.emplace_back(text); },
        this);
  }
  ~PlainTexts() { tessel::setPlainReportHandler(nullptr, nullptr); }
  PlainTexts(const PlainTexts&) = delete;
  PlainTexts& operator=(const PlainTexts&) = delete;

  std::vector<std::string> heard;
};

// A world with the interpolator I.
template <class Interpolator> struct Keyed {
  explicit Keyed(const std::string& keysAndValues)
      : world("DEF I " + std::string(Interpolator::fileFormatName) + " { " + keysAndValues + " }"),
        node(*world.template get<Interpolator>("I")) {}

  decltype(auto) at(float fraction) {
    node.set_fraction = fraction;
    if constexpr (requires { node.value_changed.getNum(); })
      return std::vector<SbVec3f>(node.value_changed.getValues(0),
                                  node.value_changed.getValues(0) + node.value_changed.getNum());
    else
      return node.value_changed.getValue();
  }

  TestWorld world;
  Interpolator& node;
};

using Scalars = Keyed<VrmlScalarInterpolator>;
using Points = std::vector<SbVec3f>;

// Keys.

TEST(Interpolator, HoldsTheEndsAndJumpsBetweenEqualKeys) {
  Scalars jump("key [ 0 0.5 0.5 1 ] keyValue [ 0 10 20 30 ]");
  EXPECT_EQ(jump.at(-3), 0);
  EXPECT_EQ(jump.at(0.25F), 5);
  EXPECT_FLOAT_EQ(jump.at(0.499F), 9.98F);
  EXPECT_EQ(jump.at(0.5F), 20);
  EXPECT_EQ(jump.at(0.75F), 25);
  EXPECT_EQ(jump.at(0.5F), 20);
  EXPECT_EQ(jump.at(0.25F), 5);
  EXPECT_EQ(jump.at(1), 30);
  EXPECT_EQ(jump.at(7), 30);
}

TEST(Interpolator, TakesTheOnlyValueOfTheDefaultKey) {
  Scalars one("keyValue 7");
  EXPECT_EQ(one.at(-1), 7);
  EXPECT_EQ(one.at(1), 7);
}

// The value by the plainest search.
float expected(const std::vector<float>& keys, const std::vector<float>& values, float f) {
  if (f < keys.front()) return values.front();
  if (f >= keys.back()) return values.back();
  const std::size_t above = static_cast<std::size_t>(std::ranges::upper_bound(keys, f) - keys.begin());
  const double w =
      (static_cast<double>(keys[above]) - f) / (static_cast<double>(keys[above]) - keys[above - 1]);
  return static_cast<float>(w * values[above - 1] + (1 - w) * values[above]);
}

TEST(Interpolator, FindsTheSameAsAPlainSearchWhereverTheFractionWasBefore) {
  std::mt19937 random(7);
  for (const int count : {2, 3, 10, 200'000}) {
    std::vector<float> keys, values;
    for (int i = 0; i < count; ++i) {
      keys.push_back(static_cast<float>(random() % (2 * static_cast<unsigned>(count))) / 1024);
      values.push_back(static_cast<float>(random() % 100));
    }
    std::ranges::sort(keys);  // some are equal
    Scalars scalars("");
    scalars.node.key.setValues(0, count, keys.data());
    scalars.node.keyValue.setValues(0, count, values.data());
    for (int i = 0; i < 3000; ++i) {
      // Jumps, small steps, and the keys themselves.
      float f = keys[random() % keys.size()];
      if (i % 3 == 1) f += static_cast<float>(random() % 100) / 4096 - 0.01F;
      if (i % 3 == 2) f = std::nextafter(f, 1e9F);
      ASSERT_NEAR(scalars.at(f), expected(keys, values, f), 1e-2) << count << " keys, fraction " << f;
    }
  }
}

TEST(Interpolator, StaysAmongItsValuesWithKeysInNoOrder) {
  const std::vector<std::vector<float>> disorders = {{0, 0.8F, 0.2F, 1}, {1, 0.5F, 0},   {0, nan, 1},
                                                     {nan, 0.5F, 1},     {0, 0.5F, nan}, {nan, nan, nan},
                                                     {0, 0, 0}};
  for (const auto& keys : disorders) {
    Scalars scalars("keyValue [ 1 2 3 4 ]");
    scalars.node.key.setNum(0);
    scalars.node.key.setValues(0, static_cast<int>(keys.size()), keys.data());
    for (const float f : {0.1F, 0.9F, 0.3F, 0.6F, nan, 0.5F, 0.0F, 1.0F, -1.0F}) {
      const float value = scalars.at(f);
      ASSERT_TRUE(value >= 1 && value <= 4) << value << " at " << f << " after " << keys[1];
    }
  }
}

TEST(Interpolator, FollowsChangesOfItsKeys) {
  Scalars scalars("key [ 0 1 ] keyValue [ 0 1 2 3 ]");
  EXPECT_EQ(scalars.at(0.5F), 0.5F);
  const float keys[] = {0, 0.25F, 0.5F, 1};
  scalars.node.key.setValues(0, 4, keys);
  EXPECT_EQ(scalars.node.value_changed.getValue(), 2);
  EXPECT_EQ(scalars.at(0.75F), 2.5F);
  scalars.node.key.setNum(2);
  EXPECT_EQ(scalars.at(0.125F), 0.5F);
}

// The kinds.

TEST(Interpolator, BlendsEachKindInItsOwnWay) {
  Keyed<VrmlPositionInterpolator> position("key [ 0 2 ] keyValue [ 0 0 0, 4 8 12 ]");
  EXPECT_EQ(position.at(0.5F), SbVec3f(1, 2, 3));
  Keyed<VrmlColorInterpolator> color("key [ 0 1 ] keyValue [ 1 0 0, 0 0 1 ]");
  EXPECT_EQ(color.at(0.25F), SbColor(0.75F, 0, 0.25F));
  Keyed<VrmlOrientationInterpolator> turn("key [ 0 1 ] keyValue [ 0 1 0 0, 0 1 0 3 ]");
  EXPECT_TRUE(turn.at(0.5F).equals(SbRotation(SbVec3f(0, 1, 0), 1.5F), 1e-6F));
  // The shorter way round.
  Keyed<VrmlOrientationInterpolator> back("key [ 0 1 ] keyValue [ 0 1 0 0.2, 0 1 0 6.0831853 ]");
  EXPECT_NEAR(std::fabs(back.at(0.5F).getValue()[3]), 1, 1e-5);
  Keyed<VrmlCoordinateInterpolator> points("key [ 0 1 ] keyValue [ 0 0 0, 1 1 1, 2 4 6, 3 5 7 ]");
  EXPECT_EQ(points.at(0.5F), (Points{{1, 2, 3}, {2, 3, 4}}));
}

TEST(Interpolator, KeepsTheEarlierNormalWhereTwoCancelOut) {
  Keyed<VrmlNormalInterpolator> normals("key [ 0 1 ] keyValue [ 0 0 1, 1 0 0, 0 0 -1, 0 1 0 ]");
  const Points half = normals.at(0.5F);
  EXPECT_EQ(half[0], SbVec3f(0, 0, 1));
  EXPECT_TRUE(half[1].equals(SbVec3f(std::sqrt(0.5F), std::sqrt(0.5F), 0), 1e-6F));
  // What a file gives is taken as it is at the ends.
  Keyed<VrmlNormalInterpolator> ends("key [ 0 1 ] keyValue [ 0 0 5, 0 0 7 ]");
  EXPECT_EQ(ends.at(1), (Points{{0, 0, 7}}));
}

// Counts that do not fit.

TEST(Interpolator, DividesItsValuesAmongTheKeysAndLeavesTheRest) {
  Keyed<VrmlCoordinateInterpolator> points(
      "key [ 0 1 2 ] keyValue [ 0 0 0, 0 0 1, 0 0 2,  1 0 0, 1 0 1, 1 0 2,  2 0 0, 2 0 1, 2 0 2,  9 9 9 ]");
  EXPECT_EQ(points.at(1.5F), (Points{{1.5F, 0, 0}, {1.5F, 0, 1}, {1.5F, 0, 2}}));
  EXPECT_EQ(points.at(5), (Points{{2, 0, 0}, {2, 0, 1}, {2, 0, 2}}));
  points.node.keyValue.setNum(2);
  EXPECT_EQ(points.at(1.5F), Points());
  points.node.keyValue.setNum(0);
  EXPECT_EQ(points.at(1.5F), (Points{{0, 0, 0}}));
  const SbVec3f six[] = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {5, 0, 0}};
  points.node.keyValue.setValues(0, 6, six);
  EXPECT_EQ(points.at(1), (Points{{2, 0, 0}, {3, 0, 0}}));
  points.node.keyValue.setNum(0);
  points.at(1);
  points.node.keyValue.setValues(0, 6, six);
  EXPECT_EQ(points.at(1), (Points{{2, 0, 0}, {3, 0, 0}}));
}

TEST(Interpolator, UsesAsManyKeysAsThereAreValues) {
  const std::string keys = "key [ 0 0.1 0.5 1 ] ";
  PlainTexts texts;
  Scalars scalars(keys + "keyValue [ 0 1 3 ]");
  Keyed<VrmlOrientationInterpolator> turns(keys + "keyValue [ 0 1 0 0, 0 1 0 1, 0 1 0 3 ]");
  for (int again = 0; again < 2; ++again) {
    EXPECT_FLOAT_EQ(scalars.at(0.3F), 2);
    EXPECT_TRUE(turns.at(0.3F).equals(SbRotation(SbVec3f(0, 1, 0), 2), 1e-5F));
    EXPECT_EQ(scalars.at(0.5F), 3);
  }
  EXPECT_TRUE(texts.heard.empty());
}

TEST(Interpolator, WarnsOfPositionsAndColorsThatDoNotMatchTheKeys) {
  PlainTexts texts;
  Keyed<VrmlPositionInterpolator> few("key [ 0 0.1 0.5 1 ] keyValue [ 0 0 0, 1 0 0, 3 0 0 ]");
  for (const float f : {0.3F, 0.4F}) EXPECT_NEAR(few.at(f)[0], 5 * f + 0.5F, 1e-5);
  ASSERT_EQ(texts.heard.size(), 2U);
  EXPECT_EQ(texts.heard[1],
            "Warning: The number of keys does not match the number of values.\n"
            "         Adjustments being made...\n");
  Keyed<VrmlColorInterpolator> many("key [ 0 1 ] keyValue [ 0 0 0, 1 1 1, 0 1 0 ]");
  EXPECT_EQ(many.at(0.5F), SbColor(0.5F, 0.5F, 0.5F));
  EXPECT_EQ(texts.heard.back(),
            "VrmlColorInterpolator Warning: The number of keys does not match the number of values.\n"
            "         Adjustments being made...\n");
}

TEST(Interpolator, GivesItsNeutralValueWithoutKeysOrValues) {
  for (const char* body : {"key [] keyValue []", "key [ 0 1 ] keyValue []"}) {
    EXPECT_EQ(Scalars(body).at(0.5F), 0);
    EXPECT_EQ(Keyed<VrmlPositionInterpolator>(body).at(0.5F), SbVec3f(0, 0, 0));
    EXPECT_EQ(Keyed<VrmlColorInterpolator>(body).at(0.5F), SbColor(0, 0, 0));
    EXPECT_EQ(Keyed<VrmlOrientationInterpolator>(body).at(0.5F), SbRotation(SbVec3f(0, 0, 1), 0));
    EXPECT_EQ(Keyed<VrmlCoordinateInterpolator>(body).at(0.5F), (Points{{0, 0, 0}}));
    EXPECT_EQ(Keyed<VrmlNormalInterpolator>(body).at(0.5F), (Points{{0, 0, -1}}));
  }
}

// Events.

struct RoutedInterpolator : ::testing::Test {
  TestWorld world{
      "DEF G Group { children [ "
      "DEF I PositionInterpolator { key [ 0 1 ] keyValue [ 0 0 0, 1 0 0, 2 0 0 ] } DEF T Transform { } ] }"
      "ROUTE I.value_changed TO T.set_translation"};
  VrmlPositionInterpolator& i = *world.get<VrmlPositionInterpolator>("I");
  VrmlTransform& t = *world.get<VrmlTransform>("T");
  PlainTexts evaluations;  // each of which warns
};

TEST_F(RoutedInterpolator, ComputesOnceForTheReaderAndNotForTheEvents) {
  for (const float f : {0.1F, 0.2F, 0.75F}) i.set_fraction = f;
  EXPECT_EQ(evaluations.heard.size(), 0U);
  EXPECT_EQ(t.translation.getValue(), SbVec3f(0.75F, 0, 0));
  EXPECT_EQ(t.translation.getValue(), SbVec3f(0.75F, 0, 0));
  EXPECT_EQ(i.value_changed.getValue(), SbVec3f(0.75F, 0, 0));
  EXPECT_EQ(evaluations.heard.size(), 1U);
}

TEST_F(RoutedInterpolator, TellsItsDestinationsAndNobodyAboveItself) {
  std::vector<std::string> heard;
  SoNodeSensor above(
      [](void* list, SoSensor* sensor) {
        const SoNode* node = static_cast<SoNodeSensor*>(sensor)->getTriggerNode();
        static_cast<std::vector<std::string>*>(list)->push_back(node->getName().getString());
      },
      &heard);
  above.setPriority(0);
  above.attach(world.get<VrmlGroup>("G"));
  i.set_fraction = 0.5F;
  EXPECT_EQ(heard, std::vector<std::string>{"T"});
  VrmlRoute::remove(&i.value_changed, &t.translation);
  i.set_fraction = 0.6F;
  EXPECT_EQ(heard.size(), 1U);
}

TEST_F(RoutedInterpolator, HoldsItsEventsBackAndThenSendsOne) {
  i.set_fraction = 0.5F;
  t.translation.getValue();
  i.enable(0);
  i.set_fraction = 0.75F;
  i.enable(0);
  i.set_fraction = 0.25F;
  EXPECT_EQ(t.translation.getValue(), SbVec3f(0.5F, 0, 0));
  i.enable(1);
  EXPECT_EQ(t.translation.getValue(), SbVec3f(0.25F, 0, 0));
  EXPECT_EQ(i.isEnabled(), 1);
}

TEST_F(RoutedInterpolator, IsCopiedWithAnOutputOfItsOwn) {
  i.set_fraction = 0.5F;
  const SoRef<VrmlGroup> copy(static_cast<VrmlGroup*>(VrmlNode::deepCopy(world.get<VrmlGroup>("G"), 1)));
  auto* other = static_cast<VrmlPositionInterpolator*>(copy->getChild(0));
  auto* moved = static_cast<VrmlTransform*>(copy->getChild(1));
  EXPECT_TRUE(VrmlRoute::routeExists(&other->value_changed, &moved->translation));
  EXPECT_FALSE(VrmlRoute::routeExists(&i.value_changed, &moved->translation));
  other->set_fraction = 0.25F;
  EXPECT_EQ(moved->translation.getValue(), SbVec3f(0.25F, 0, 0));
  EXPECT_EQ(t.translation.getValue(), SbVec3f(0.5F, 0, 0));
  i.set_fraction = 0.75F;
  EXPECT_EQ(moved->translation.getValue(), SbVec3f(0.25F, 0, 0));
  EXPECT_EQ(t.translation.getValue(), SbVec3f(0.75F, 0, 0));
}

TEST_F(RoutedInterpolator, LeavesTheLastValueBehindWhenItGoes) {
  i.set_fraction = 0.5F;
  t.translation.getValue();
  VrmlGroup& group = *world.get<VrmlGroup>("G");
  group.removeChild(0);
  EXPECT_EQ(t.translation.getValue(), SbVec3f(0.5F, 0, 0));
  EXPECT_FALSE(t.translation.isConnected());
}

TEST(Interpolator, EndsALoopOfRoutesThroughItself) {
  TestWorld world(
      "DEF I ScalarInterpolator { key [ 0 1 ] keyValue [ 1 0 ] } "
      "ROUTE I.value_changed TO I.set_fraction");
  auto& i = *world.get<VrmlScalarInterpolator>("I");
  i.set_fraction = 0.25F;
  const float value = i.value_changed.getValue();
  EXPECT_TRUE(value >= 0 && value <= 1) << value;
}

TEST(Interpolator, MovesATransformWithTheClock) {
  Clock clock;
  TestWorld world(
      "DEF T TimeSensor { loop TRUE cycleInterval 4 startTime 1000000000 } "
      "DEF I PositionInterpolator { key [ 0 1 ] keyValue [ 0 0 0, 4 0 0 ] } DEF X Transform { } "
      "ROUTE T.fraction_changed TO I.set_fraction ROUTE I.value_changed TO X.set_translation");
  clock.to(1);
  EXPECT_EQ(world.get<VrmlTransform>("X")->translation.getValue(), SbVec3f(1, 0, 0));
  clock.to(7);
  EXPECT_EQ(world.get<VrmlTransform>("X")->translation.getValue(), SbVec3f(3, 0, 0));
}

}  // namespace
