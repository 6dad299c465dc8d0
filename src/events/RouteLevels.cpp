// SPDX-License-Identifier: BSD-3-Clause
#include "events/RouteLevels.h"

#include <cstdint>
#include <deque>
#include <unordered_map>
#include <utility>

#include <Inventor/fields/SoField.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/events/VrmlRoute.h>

namespace tessel {

namespace {

using Node = const SoFieldContainer*;
using Levels = std::unordered_map<Node, int>;

constexpr int leastWork = 64, mostWork = 65536;  // in nodes that get another level

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
  node->getFields(fields);
  for (int i = 0; i < fields.getLength(); ++i) {
    SoFieldList ends;
    direction == up ? VrmlRoute::getAllOutgoing(fields[i], ends) : VrmlRoute::getAllIncoming(fields[i], ends);
    for (int k = 0; k < ends.getLength(); ++k)
      if (!visit(ends[k]->getContainer())) return false;
  }
  return true;
}

/// Found without a list, since a node may have any number of routes.
bool hasIncoming(Node node) {
  SoFieldList fields;
  node->getFields(fields);
  for (int i = 0; i < fields.getLength(); ++i)
    if (fields[i]->isConnected()) return true;
  return false;
}

bool hasOutgoing(Node node) {
  return !visitNeighbours(node, up, [](Node) { return false; });
}

enum class Outcome : std::uint8_t { done, loops, full, tooMuchWork };

/// Moves a node to a level, and with it what lies in that direction of it.
Outcome move(Node first, int level, Direction direction, Node other, int work) {
  Levels moved;
  std::deque<std::pair<Node, int>> open{{first, level}};
  while (!open.empty()) {
    const auto [node, wanted] = open.front();
    open.pop_front();
    const auto known = moved.find(node);
    if (direction * (wanted - (known == moved.end() ? levelOf(node) : known->second)) <= 0) continue;
    if (node == other) return Outcome::loops;
    if (wanted * direction > highestRouteLevel) return Outcome::full;
    if (--work < 0) return Outcome::tooMuchWork;
    moved[node] = wanted;
    visitNeighbours(node, direction, [&, next = wanted + direction](Node neighbour) {
      open.emplace_back(neighbour, next);
      return true;
    });
  }
  for (const auto& [node, l] : moved) levels()[node] = l;
  return Outcome::done;
}

}  // namespace

bool admitRoute(const SoField& from, const SoField& to) {
  const Node source = from.getContainer(), target = to.getContainer();
  if (source == target) return true;
  const int above = levelOf(source) + 1;
  if (levelOf(target) >= above) return true;
  // Nothing else has to move with an end of a chain.
  if (!hasIncoming(source)) {
    if (levelOf(target) <= -highestRouteLevel) {
      if (hasIncoming(target) || hasOutgoing(target)) return false;
      levels().erase(target);
    }
    levels()[source] = levelOf(target) - 1;
    return true;
  }
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
  }
  return false;
}

}  // namespace tessel
