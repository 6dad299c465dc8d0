// SPDX-License-Identifier: BSD-3-Clause
#include "host/DepthRange.h"

#include <cmath>

#include <gtest/gtest.h>

namespace tessel::host {
namespace {

SbBox3f box(float side, float z0, float z1) { return SbBox3f(-side, -side, z0, side, side, z1); }

/// What must hold whatever the world: slices in order, without a gap, each within what a depth buffer bears.
void expectSound(const std::vector<DepthRange>& slices) {
  ASSERT_FALSE(slices.empty());
  for (std::size_t i = 0; i < slices.size(); ++i) {
    EXPECT_GT(slices[i].nearest, 0);
    EXPECT_LT(slices[i].nearest, slices[i].farthest);
    EXPECT_TRUE(std::isfinite(slices[i].farthest));
    EXPECT_LE(slices[i].farthest / slices[i].nearest, 1.01e5f);
    if (i > 0) {
      EXPECT_NEAR(slices[i].farthest / slices[i - 1].nearest, 1, 1e-4);
    }
  }
}

TEST(DepthRange, HoldsWorldsOfAnySizeSeenFromOutside) {
  for (int power = -12; power <= 12; ++power) {
    const float size = std::pow(10.0f, static_cast<float>(power));
    const std::vector<DepthRange> slices = depthSlices({box(size, -4 * size, -2 * size)});
    expectSound(slices);
    ASSERT_EQ(slices.size(), 1u) << size;
    EXPECT_LE(slices[0].nearest, 2 * size);
    EXPECT_GE(slices[0].farthest, 4 * size);
    EXPECT_LT(slices[0].farthest / slices[0].nearest, 3) << "depth is wasted in a world of " << size;
  }
}

TEST(DepthRange, ClipsNothingThatAnAvatarInsideCanReach) {
  for (const float size : {1.0f, 100.0f, 1e4f, 1e6f, 1e7f, 1e9f}) {
    const std::vector<DepthRange> slices = depthSlices({box(size, -size, size)});
    expectSound(slices);
    EXPECT_LE(slices.back().nearest, 0.125f) << size;
    EXPECT_GE(slices.front().farthest, size);
  }
}

TEST(DepthRange, ComesAsCloseToAMoleculeAsItsOwnSizeAsks) {
  const std::vector<DepthRange> slices = depthSlices({box(1e-10f, -1e-10f, 1e-10f)});
  expectSound(slices);
  EXPECT_LE(slices.back().nearest, 1e-12f);
  EXPECT_GE(slices.front().farthest, 1e-10f);
}

// Boxes of such worlds are found by the toolkit, which moves them by their centers.
TEST(DepthRange, KeepsWhatRoundingHasTakenFromTheBox) {
  EXPECT_LE(depthSlices({box(5e5f, -3e6f, -3)}).back().nearest, 2.8f);
}

TEST(DepthRange, DividesOnlyWhatOneDepthBufferCannotBear) {
  EXPECT_EQ(depthSlices({box(10, -10, 10)}).size(), 1u);
  EXPECT_EQ(depthSlices({box(1e4f, -1e4f, 1e4f)}).size(), 1u);
  EXPECT_EQ(depthSlices({box(1e7f, -1e7f, 1e7f)}).size(), 2u);
}

TEST(DepthRange, DrawsTheCloseApartWhereFloatsAreCoarse) {
  DepthNeeds needs{box(500, -500, 500)};
  needs.uncertainty = 0.5f;  // at a map's seven digits
  const std::vector<DepthRange> slices = depthSlices(needs);
  expectSound(slices);
  ASSERT_GT(slices.size(), 1u);
  EXPECT_LT(needs.uncertainty / slices[0].nearest, 0.05f) << "what is far is blurred";
  EXPECT_LE(slices.back().nearest, 0.125f) << "what is close is clipped";
  needs.uncertainty = 1e-5f;
  EXPECT_EQ(depthSlices(needs).size(), 1u);
}

TEST(DepthRange, EndsAtTheVisibilityLimit) {
  EXPECT_FLOAT_EQ(depthSlices({box(100, -100, 100), 30}).front().farthest, 30);
  EXPECT_LT(depthSlices({box(10, -100, 100), 1000}).front().farthest, 200);
  // All of the world lies beyond it: an empty picture, but a sound volume.
  expectSound(depthSlices({box(10, -100, -50), 30}));
}

TEST(DepthRange, BearsWorldsThatCannotBeSeen) {
  expectSound(depthSlices({SbBox3f()}));                  // nothing there
  expectSound(depthSlices({box(10, 20, 40)}));            // all behind
  expectSound(depthSlices({box(0, 0, 0)}));               // a point in the eye
  expectSound(depthSlices({box(0, -5, -5)}));             // a point in front
  expectSound(depthSlices({box(10, -10, 10), 0, 0}));     // no avatar
  expectSound(depthSlices({box(10, -10, 10), -1, -1}));   // nonsense
  expectSound(depthSlices({box(3e38f, -3e38f, 3e38f)}));  // the end of the floats
}

}  // namespace
}  // namespace tessel::host
