// SPDX-License-Identifier: BSD-3-Clause
#include "events/RouteLevels.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <utility>

#include <Inventor/fields/SoField.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/events/VrmlRoute.h>

#include "core/FieldLists.h"

namespace tessel {

namespace {

using Node = const SoFieldContainer*;
using Levels = std::unordered_map<Node, int>;

constexpr int leastWork = 64, mostWork = 65536;  // in nodes that get another level

/// What searches may look at, in routes: at first, and in addition for each route that comes. It makes them linear.
constexpr std::int64_t looksAtFirst = 1000000, looksForRoute = 64;
std::int64_t looksLeft = looksAtFirst;

// A node that is gone may leave its level to another at the same address, which has no routes yet.
Levels& levels() {
  static Levels all;
  return all;
}

int levelOf(Node node) {
  const auto found = levels().find(node);
  return found == levels().end() ? 0 : found->second;
}

enum Direction { down = -1, up = 1 };

/// Gives the nodes to which routes lead from a node, or from which they come. False if `visit` has seen enough.
template <class Visit> bool visitNeighbours(Node node, Direction direction, Visit visit) {
  SoFieldList fields;
  listFields(*node, fields);
  for (int i = 0; i < fields.getLength(); ++i) {
    SoFieldList ends;
    direction == up ? VrmlRoute::getAllOutgoing(fields[i], ends) : VrmlRoute::getAllIncoming(fields[i], ends);
    looksLeft -= 1 + ends.getLength();
    for (int k = 0; k < ends.getLength(); ++k)
      if (!visit(ends[k]->getContainer())) return false;
  }
  return true;
}

/// Found without a list, since a node may have any number of routes.
bool hasIncoming(Node node) {
  SoFieldList fields;
  listFields(*node, fields);
  for (int i = 0; i < fields.getLength(); ++i)
    if (fields[i]->isConnected()) return true;
  return false;
}

bool hasOutgoing(Node node) {
  return !visitNeighbours(node, up, [](Node) { return false; });
}

enum class Outcome : std::uint8_t { done, loops, full, tooMuchWork };

/// A node on the move, and the one that pushed it there.
struct Moved {
  int level;
  Node by;
};

/// Whether a node was pushed by another, by way of any number of others.
bool pushedBy(const std::unordered_map<Node, Moved>& moved, Node node, Node other, int& work) {
  for (; node; node = moved.at(node).by) {
    if (node == other) return true;
    --work;
  }
  return false;
}

/// Moves a node to a level, and with it what lies in that direction of it. A route that leads the other way closes a
/// loop and pushes nothing; nor does one whose loop shows only now, since nobody has given its nodes levels before.
Outcome move(Node first, int level, Direction direction, Node other, int work) {
  struct Push {
    Node node;
    int level;
    Node by;
  };
  std::unordered_map<Node, Moved> moved;
  std::deque<Push> open{{first, level, nullptr}};
  while (!open.empty()) {
    const auto [node, wanted, by] = open.front();
    open.pop_front();
    const auto known = moved.find(node);
    const int before = levelOf(node);
    if (direction * (wanted - (known == moved.end() ? before : known->second.level)) <= 0) continue;
    if (node == other) return Outcome::loops;
    if (known != moved.end() && pushedBy(moved, by, node, work)) continue;
    if (wanted * direction > highestRouteLevel) return Outcome::full;
    if (--work < 0 || looksLeft < 0) return Outcome::tooMuchWork;
    moved[node] = {wanted, by};
    visitNeighbours(node, direction, [&, wanted = wanted, node = node](Node neighbour) {
      if (direction * (levelOf(neighbour) - before) >= 0)
        open.push_back({neighbour, wanted + direction, node});
      return true;
    });
  }
  for (const auto& [node, place] : moved) levels()[node] = place.level;
  return Outcome::done;
}

}  // namespace

bool admitRoute(const SoField& from, const SoField& to) {
  const Node source = from.getContainer(), target = to.getContainer();
  if (source == target) return true;
  // The level of one without routes is that of a dead node at the same address.
  if (!hasIncoming(target) && levels().contains(target) && !hasOutgoing(target)) levels().erase(target);
  const int above = levelOf(source) + 1;
  if (levelOf(target) >= above) return true;
  looksLeft = std::min(looksLeft + looksForRoute, looksAtFirst);
  // Nothing else has to move with an end of a chain.
  if (!hasIncoming(source)) {
    if (levelOf(target) <= -highestRouteLevel) {
      if (hasIncoming(target) || hasOutgoing(target)) return false;
      levels().erase(target);
    }
    levels()[source] = levelOf(target) - 1;
    return true;
  }
  if (looksLeft < 0) return true;
  if (!hasOutgoing(target)) {
    if (above > highestRouteLevel) return false;
    levels()[target] = above;
    return true;
  }
  const int below = levelOf(target) - 1;
  for (int work = leastWork; work <= mostWork; work *= 2) {
    const Outcome raised = move(target, above, up, source, work);
    if (raised == Outcome::done || raised == Outcome::loops) return true;
    const Outcome lowered = move(source, below, down, target, work);
    if (lowered == Outcome::done || lowered == Outcome::loops) return true;
    if (raised == Outcome::full && lowered == Outcome::full) return false;
    if (looksLeft < 0) break;
  }
  return true;
}

}  // namespace tessel
