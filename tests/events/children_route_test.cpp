// SPDX-License-Identifier: BSD-3-Clause
// Events between `children` and fields of nodes.
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/events/VrmlFanIn.h>
#include <tessel/events/VrmlRoute.h>

#include <gtest/gtest.h>

#include <vector>

#include <Inventor/SoFullPath.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoCube.h>

#include "events/RouteProbe.h"

using tessel::SoRef;
using tessel::test::ProbeWorld;
using tessel::test::RouteProbe;

namespace {

struct ChildrenRoutes : ::testing::Test {
  ProbeWorld world{
      "DEF A RouteProbe {} DEF B RouteProbe {}\n"
      "DEF G Group { children [ DEF X WorldInfo {} NULL ] } DEF H Group {} DEF K Group {}"};
  RouteProbe &a = world.probe("A"), &b = world.probe("B");
  VrmlGroup &g = *world.get<VrmlGroup>("G"), &h = *world.get<VrmlGroup>("H"), &k = *world.get<VrmlGroup>("K");
  SoNode* const x = world.get<VrmlNode>("X");
  const SoRef<RouteProbe> y{new RouteProbe}, z{new RouteProbe};

  static void send(SoMFNode& field, std::vector<const SoNode*> nodes) {
    field.enableNotify(FALSE);
    field.setNum(static_cast<int>(nodes.size()));
    field.setValues(0, static_cast<int>(nodes.size()), nodes.data());
    field.enableNotify(TRUE);
    field.touch();
  }
  // What a traversal sees, null for VrmlNULL.
  static std::vector<SoNode*> childrenOf(const VrmlGroup& group) {
    std::vector<SoNode*> nodes;
    for (int i = 0; i < group.getChildren()->getLength(); ++i) {
      SoNode* child = (*group.getChildren())[i];
      nodes.push_back(child->isOfType(VrmlNULL::getClassTypeId()) ? nullptr : child);
    }
    return nodes;
  }
  static std::vector<SoNode*> valuesOf(const SoMFNode& field) {
    std::vector<SoNode*> nodes;
    for (int i = 0; i < field.getNum(); ++i) nodes.push_back(field[i]);
    return nodes;
  }
  using Nodes = std::vector<SoNode*>;
};

TEST_F(ChildrenRoutes, NodesReplaceTheChildrenAtOnceInOrderAndAsOneEvent) {
  EXPECT_EQ(VrmlRoute::add(&a.nodes, &g.children), 1);
  EXPECT_EQ(childrenOf(g), (Nodes{x, nullptr})) << "making the route changes nothing";
  VrmlRoute::add(&g.children, &b.nodes);
  const int before = b.notifications;
  send(a.nodes, {z.get(), nullptr, x, y.get()});
  EXPECT_EQ(childrenOf(g), (Nodes{z.get(), nullptr, x, y.get()}));
  EXPECT_EQ(b.notifications, before + 1);
  send(a.nodes, {});
  EXPECT_EQ(childrenOf(g), Nodes{});
}

TEST_F(ChildrenRoutes, PathsThroughChildrenThatStayLiveOn) {
  VrmlRoute::add(&a.nodes, &h.children);
  send(a.nodes, {x, y.get(), z.get(), nullptr});
  const auto pathTo = [&](int child) {
    SoRef<SoPath> path(new SoPath(&h));
    path->append(child);
    return path;
  };
  const auto first = pathTo(0), middle = pathTo(1), last = pathTo(2);
  const SoRef<RouteProbe> other(new RouteProbe);
  send(a.nodes, {x, other.get(), other.get(), z.get(), nullptr});
  EXPECT_EQ(childrenOf(h), (Nodes{x, other.get(), other.get(), z.get(), nullptr}));
  const auto end = [](const SoRef<SoPath>& path) {
    return static_cast<const SoFullPath*>(path.get())->getTail();
  };
  EXPECT_EQ(end(first), x);
  EXPECT_EQ(end(middle), &h) << "cut, where it led to a child that is gone";
  EXPECT_EQ(end(last), z.get());
  send(a.nodes, {z.get(), nullptr});
  EXPECT_EQ(childrenOf(h), (Nodes{z.get(), nullptr}));
  EXPECT_EQ(end(last), z.get());
}

TEST_F(ChildrenRoutes, FieldsOfNodesSeeTheChildrenWithNullForNone) {
  EXPECT_EQ(VrmlRoute::add(&g.children, &b.nodes), 1);
  EXPECT_EQ(b.nodes.getNum(), 0);
  g.addChild(y.get());
  EXPECT_EQ(valuesOf(b.nodes), (Nodes{x, nullptr, y.get()}));
  g.removeChild(0);
  EXPECT_EQ(valuesOf(b.nodes), (Nodes{nullptr, y.get()}));
}

TEST_F(ChildrenRoutes, FromGroupToGroupTheChildrenAreSharedWithoutAnyRead) {
  VrmlRoute::add(&g.children, &h.children);
  VrmlRoute::add(&h.children, &k.children);
  g.addChild(y.get());
  EXPECT_EQ(childrenOf(h), (Nodes{x, nullptr, y.get()}));
  EXPECT_EQ(childrenOf(k), (Nodes{x, nullptr, y.get()}));
  h.removeAllChildren();
  EXPECT_EQ(childrenOf(k), Nodes{});
  EXPECT_EQ(childrenOf(g).size(), 3U);
}

TEST_F(ChildrenRoutes, ALoopOfGroupsAndFieldsEnds) {
  VrmlRoute::add(&g.children, &h.children);
  VrmlRoute::add(&h.children, &a.nodes);
  VrmlRoute::add(&a.nodes, &g.children);
  h.addChild(y.get());
  EXPECT_EQ(childrenOf(h), (Nodes{y.get()}));
  EXPECT_EQ(childrenOf(g), (Nodes{y.get()}));
  EXPECT_EQ(valuesOf(a.nodes), (Nodes{y.get()}));
  send(a.nodes, {z.get(), nullptr});
  EXPECT_EQ(childrenOf(h), (Nodes{z.get(), nullptr}));
}

TEST_F(ChildrenRoutes, SeveralSourcesOfChildrenFanIn) {
  VrmlRoute::add(&a.nodes, &h.children);
  VrmlRoute::add(&b.nodes, &h.children);
  VrmlRoute::add(&g.children, &h.children);
  ASSERT_TRUE(VrmlFanIn::feeding(&h.children));
  EXPECT_EQ(childrenOf(h), Nodes{});
  send(b.nodes, {y.get(), nullptr});
  EXPECT_EQ(childrenOf(h), (Nodes{y.get(), nullptr}));
  send(a.nodes, {z.get()});
  EXPECT_EQ(childrenOf(h), (Nodes{z.get()}));
  g.addChild(y.get());
  EXPECT_EQ(childrenOf(h), (Nodes{x, nullptr, y.get()}));
}

TEST_F(ChildrenRoutes, SeveralSourcesOfAFieldOfNodesFanIn) {
  VrmlRoute::add(&g.children, &b.nodes);
  VrmlRoute::add(&a.nodes, &b.nodes);
  g.addChild(y.get());
  EXPECT_EQ(valuesOf(b.nodes), (Nodes{x, nullptr, y.get()}));
  send(a.nodes, {z.get()});
  EXPECT_EQ(valuesOf(b.nodes), (Nodes{z.get()}));
}

// The toolkit's own copy of a list onto a longer one keeps the rest alive for ever.
TEST_F(ChildrenRoutes, NodesThatAShorterListDropsAreFree) {
  VrmlRoute::add(&a.nodes, &b.nodes);
  VrmlRoute::add(&b.nodes, &h.children);
  send(a.nodes, {x, y.get(), z.get()});
  EXPECT_EQ(b.nodes.getNum(), 3);
  send(a.nodes, {x});
  EXPECT_EQ(valuesOf(b.nodes), Nodes{x});
  EXPECT_EQ(childrenOf(h), Nodes{x});
  EXPECT_EQ(y->getRefCount(), 1);
  EXPECT_EQ(z->getRefCount(), 1);
}

TEST_F(ChildrenRoutes, ToolkitNodesAreNoChildren) {
  VrmlRoute::add(&a.nodes, &h.children);
  const SoRef<SoCube> foreign(new SoCube);
  send(a.nodes, {foreign.get(), y.get()});
  EXPECT_EQ(childrenOf(h), (Nodes{y.get()}));
}

TEST_F(ChildrenRoutes, ADeepCopySharesWhatTheOriginalShares) {
  h.addChild(static_cast<VrmlNode*>(x));
  k.addChild(&g);
  k.addChild(&h);
  const SoRef<SoNode> copy(VrmlNode::deepCopy(&k, TRUE));
  const auto children = childrenOf(static_cast<VrmlGroup&>(*copy));
  ASSERT_EQ(children.size(), 2U);
  const auto first = childrenOf(static_cast<VrmlGroup&>(*children[0]));
  const auto second = childrenOf(static_cast<VrmlGroup&>(*children[1]));
  ASSERT_EQ(first.size(), 2U);
  ASSERT_EQ(second.size(), 1U);
  EXPECT_NE(first[0], x);
  EXPECT_EQ(first[0], second[0]);
  EXPECT_EQ(first[1], nullptr);
}

}  // namespace
