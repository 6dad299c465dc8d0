// SPDX-License-Identifier: BSD-3-Clause
// Chains of routes, which the toolkit follows by calling itself.
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/events/VrmlRoute.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <vector>

#include "support/TestWorld.h"

using tessel::SoRef;

namespace {

class Chain : public ::testing::Test {
protected:
  explicit Chain(int n = 25'000) {
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

// Whatever the chain was made of, it ends before the stack does: here in one of half a megabyte.
TEST_F(Chain, ThatOverflowsTheStackIsEnded) {
  const int n = 4'500;
  for (int i = 0; i + 1 < n; ++i) ASSERT_TRUE(route(i, i + 1));
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, 512 * 1024);
  pthread_t thread;
  const auto send = [](void* first) -> void* {
    static_cast<SoSFVec3f*>(first)->setValue(1, 2, 3);
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, send, &field(0)), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  EXPECT_EQ(library.messages.count("A chain of routes is too long: it ends at \"translation\""), 1);
  const int reached = reach();
  EXPECT_GT(reached, 100);
  EXPECT_LT(reached, n);
}

TEST_F(Chain, WhoseNodesHaveACommonSourceIsNotCut) {
  const int n = 4'000;
  for (int i = 1; i < n; ++i) ASSERT_TRUE(route(0, i));
  for (int i = n - 2; i > 0; --i) ASSERT_TRUE(route(i, i + 1));
}

TEST_F(Chain, ThatIsWideOrTurnedAgainAndAgainIsNotCut) {
  for (int i = 1; i < 6'000; ++i) ASSERT_TRUE(route(0, i) && route(i, 8'000 + i));
  // A loop, and a route that changes its direction.
  ASSERT_TRUE(route(15'000, 15'001) && route(15'001, 15'002) && route(15'002, 15'000));
  for (int i = 0; i < 12'000; ++i) {
    const int from = 16'000 + i % 2, to = 16'001 - i % 2;
    ASSERT_TRUE(route(from, to)) << i;
    VrmlRoute::remove(&field(from), &field(to));
  }
  EXPECT_TRUE(library.messages.empty()) << library.messages.text();
}

// Copied nodes come with their routes, and nobody has given them a place in a chain.
TEST_F(Chain, ThatLeadsThroughCopiedLoopsIsNotCut) {
  using tessel::test::TestWorld;
  TestWorld loop(
      "DEF G Group { children [ DEF A Transform { } DEF B Transform { } DEF C Transform { } ] } "
      "ROUTE A.translation TO B.translation ROUTE B.translation TO C.translation ROUTE C.scale TO A.scale "
      "ROUTE B.center TO A.center");
  std::vector<SoRef<VrmlGroup>> copies;
  VrmlTransform* last = nodes[0].get();
  for (int i = 0; i < 100; ++i) {
    copies.emplace_back(static_cast<VrmlGroup*>(VrmlNode::deepCopy(loop.get<VrmlGroup>("G"), 1)));
    const auto child = [&](int n) { return static_cast<VrmlTransform*>(copies.back()->getChild(n)); };
    ASSERT_TRUE(VrmlRoute::add(&last->translation, &child(0)->translation)) << i;
    last = child(2);
  }
  EXPECT_TRUE(library.messages.empty()) << library.messages.text();
  nodes[0]->translation.setValue(1, 2, 3);
  EXPECT_EQ(last->translation.getValue(), SbVec3f(1, 2, 3));
}
