// SPDX-License-Identifier: BSD-3-Clause
// Chains of routes, which the toolkit follows by calling itself.
#include <tessel/core/VrmlTransform.h>
#include <tessel/events/VrmlRoute.h>

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "support/TestWorld.h"

using tessel::SoRef;

namespace {

class Chain : public ::testing::Test {
protected:
  explicit Chain(int n = 100'000) {
    for (int i = 0; i < n; ++i) nodes.emplace_back(new VrmlTransform);
  }
  SoSFVec3f& field(int i) { return nodes[static_cast<std::size_t>(i)]->translation; }
  bool route(int from, int to) { return VrmlRoute::add(&field(from), &field(to)) == 1; }
  int size() const { return static_cast<int>(nodes.size()); }
  /// How many nodes from the first on get an event.
  int reach() {
    field(0).setValue(1, 2, 3);
    int n = 0;
    while (n < size() && field(n).getValue()[0] == 1) ++n;
    return n;
  }

  const tessel::test::TestWorld library{"Group {}"};
  std::vector<SoRef<VrmlTransform>> nodes;
};

}  // namespace

TEST_F(Chain, ThatIsTooLongIsCutWithAWarning) {
  for (int i = 0; i + 1 < size(); ++i) route(i, i + 1);
  const int reached = reach();
  EXPECT_GE(reached, 5'000);
  EXPECT_LE(reached, 10'001);
  EXPECT_GE(library.messages.count("the chain of routes would be too long"), 1);
}

TEST_F(Chain, MadeFromItsEndIsCutToo) {
  for (int i = size() - 2; i >= 0; --i) route(i, i + 1);
  const int reached = reach();
  EXPECT_GE(reached, 1);
  EXPECT_LE(reached, 10'001);
}

TEST_F(Chain, WhoseNodesHaveACommonSourceTakesNoLonger) {
  const int n = 4'000;
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 1; i < n; ++i) ASSERT_TRUE(route(0, i));
  for (int i = n - 2; i > 0; --i) ASSERT_TRUE(route(i, i + 1));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(Chain, ThatIsWideOrTurnedAgainAndAgainIsNotCut) {
  for (int i = 1; i < 6'000; ++i) ASSERT_TRUE(route(0, i) && route(i, 30'000 + i));
  // A loop, and a route that changes its direction.
  ASSERT_TRUE(route(70'000, 70'001) && route(70'001, 70'002) && route(70'002, 70'000));
  for (int i = 0; i < 12'000; ++i) {
    const int from = 80'000 + i % 2, to = 80'001 - i % 2;
    ASSERT_TRUE(route(from, to)) << i;
    VrmlRoute::remove(&field(from), &field(to));
  }
  EXPECT_TRUE(library.messages.empty()) << library.messages.text();
}
