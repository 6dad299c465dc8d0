// SPDX-License-Identifier: BSD-3-Clause
#include "core/Loops.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/sensors/SoOneShotSensor.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

#include "core/AsVrmlNode.h"
#include "core/FieldLists.h"

namespace tessel {

namespace {

// Nodes in doubt, and what looks at them if no read does. Never destroyed: nodes may outlive static objects.
struct Waiting {
  std::vector<SoRef<VrmlNode>> nodes;
  SoOneShotSensor sensor{[](void*, SoSensor*) { releaseLoops(); }, nullptr};
};
Waiting& waiting() {
  static auto* const all = new Waiting;
  return *all;
}

// Nodes that may be in loops, and what looking at them may cost and has cost, in nodes. Never destroyed either.
struct Suspects {
  std::unordered_set<VrmlNode*> nodes;
  std::size_t paid = 0, lastCost = 0;
};
Suspects& suspects() {
  static auto* const all = new Suspects;
  return *all;
}

// Gives each node that a field holds at this moment. To ask the field itself would run the connection that feeds
// it, which changes what is held.
struct SingleField : SoSFNode {
  template <class Visit> static void visit(const SoField& field, Visit visit) {
    constexpr auto held = &SingleField::value;
    if (SoNode* node = static_cast<const SoSFNode&>(field).*held) visit(node);
  }
};
struct MultipleField : SoMFNode {
  template <class Visit> static void visit(const SoField& f, Visit visit) {
    constexpr auto held = &MultipleField::values;
    constexpr auto count = &MultipleField::num;
    const auto& field = static_cast<const SoMFNode&>(f);
    for (int i = 0; i < field.*count; ++i)
      if (SoNode* node = (field.*held)[i]) visit(node);
  }
};

bool isSingle(const SoField& field) { return field.isOfType(SoSFNode::getClassTypeId()); }
bool isMultiple(const SoField& field) { return field.isOfType(SoMFNode::getClassTypeId()); }

// Gives each node that a node holds, as often as it holds it.
template <class Visit> void visitHeld(const SoNode& node, Visit visit) {
  if (const SoChildList* children = node.getChildren())
    for (int i = 0; i < children->getLength(); ++i)
      if (SoNode* child = (*children)[i]) visit(child);
  SoFieldList fields;
  listFields(node, fields);
  for (int i = 0; i < fields.getLength(); ++i) {
    if (isSingle(*fields[i])) SingleField::visit(*fields[i], visit);
    if (isMultiple(*fields[i])) MultipleField::visit(*fields[i], visit);
  }
  const VrmlNode* ours = asVrmlNode(&node);
  if (!ours) return;
  std::vector<SoNode*> held;
  ours->listHeldNodes(held);
  for (SoNode* inside : held) visit(inside);
}

using Counts = std::unordered_map<SoNode*, int>;

// How often each node that can be reached from some, themselves included, is held by us and from in there.
Counts reachable(Counts start) {
  Counts held = std::move(start);
  std::vector<const SoNode*> open;
  for (const auto& [node, count] : held) open.push_back(node);
  while (!open.empty()) {
    const SoNode* node = open.back();
    open.pop_back();
    visitHeld(*node, [&](SoNode* inside) {
      const auto [place, isNew] = held.try_emplace(inside);
      ++place->second;
      if (isNew) open.push_back(inside);
    });
  }
  return held;
}

int referencesOf(SoNode* node) {
  const VrmlNode* ours = asVrmlNode(node);
  return node->getRefCount() + (ours ? ours->getDiscounted() : 0);
}

// Takes away what is held from outside, directly or through others. Of the nodes in doubt that live on, each hangs
// from such a one: from now on, that one's references from in there are discounted.
void removeLiving(Counts& held, const Counts& inDoubt) {
  std::vector<std::pair<SoNode*, int>> living;
  for (const auto& [node, count] : held)
    if (referencesOf(node) > count) living.emplace_back(node, count);
  std::vector<const SoNode*> open;
  for (const auto& [root, count] : living) {
    bool loops = false;
    const auto save = [&](SoNode* node) {
      if (held.erase(node) == 0) return;
      open.push_back(node);
      loops = loops || inDoubt.contains(node);
    };
    save(root);
    while (!open.empty()) {
      const SoNode* node = open.back();
      open.pop_back();
      visitHeld(*node, save);
    }
    VrmlNode* ours = asVrmlNode(root);
    if (!loops || !ours) continue;
    const auto own = inDoubt.find(root);
    const int inside = count - (own == inDoubt.end() ? 0 : own->second);
    for (int i = ours->getDiscounted(); i < inside; ++i) ours->discountReference();
  }
}

void clearNodeFields(SoNode& node) {
  const NotifyOff silence(node);
  SoFieldList fields;
  listFields(node, fields);
  for (int i = 0; i < fields.getLength(); ++i) {
    SoField& field = *fields[i];
    if (!isSingle(field) && !isMultiple(field)) continue;
    field.disconnect();
    if (isSingle(field))
      static_cast<SoSFNode&>(field).setValue(nullptr);
    else
      static_cast<SoMFNode&>(field).setNum(0);
  }
}

// Of nodes that nobody outside holds, those that close loops give up what they hold.
void cut(const Counts& dead) {
  std::vector<SoRef<SoNode>> closing;
  for (const auto& [node, count] : dead)
    if (VrmlNode* ours = asVrmlNode(node); ours && ours->holdsNodesWeakly()) closing.emplace_back(ours);
  for (const auto& node : closing) static_cast<VrmlNode*>(node.get())->leaveLoop();
  for (const auto& node : closing) clearNodeFields(*node);
}

}  // namespace

void releaseLater(VrmlNode& node) {
  Waiting& all = waiting();
  all.nodes.emplace_back(&node);
  if (!all.sensor.isScheduled()) all.sensor.schedule();
}

void releaseLoops() {
  // What one round frees may hold a node that waited for nothing else.
  while (!waiting().nodes.empty()) {
    const auto nodes = std::exchange(waiting().nodes, {});
    Counts inDoubt;
    for (const auto& node : nodes) ++inDoubt[node.get()];
    Counts held = reachable(inDoubt);
    removeLiving(held, inDoubt);
    cut(held);
  }
}

void suspectLoop(VrmlNode& script) { suspects().nodes.insert(&script); }
void forgetSuspect(VrmlNode& script) { suspects().nodes.erase(&script); }

void releaseLoopsBeforeRead(std::size_t bytes) {
  // A read takes about as long for these bytes as a look at a node does, and some time in any case.
  constexpr std::size_t bytesForNode = 64, forEachRead = 256;
  releaseLoops();
  Suspects& all = suspects();
  if (all.nodes.empty()) return;
  all.paid += forEachRead + bytes / bytesForNode;
  if (all.paid < all.lastCost) return;
  all.paid = 0;
  Counts start;
  for (VrmlNode* node : all.nodes) start.try_emplace(node);
  Counts held = reachable(std::move(start));
  all.lastCost = held.size();
  removeLiving(held, {});
  cut(held);
  releaseLoops();
}

}  // namespace tessel
