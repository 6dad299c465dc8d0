// SPDX-License-Identifier: BSD-3-Clause
#include "core/DeepCopy.h"

#include <algorithm>
#include <utility>

#include <Inventor/fields/SoFieldData.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/core/VrmlSFNode.h>
#include <tessel/toolkit/Scoped.h>

#include "core/AsVrmlNode.h"

namespace tessel {

DeepCopy::DeepCopy(bool withConnections)
    : outer(std::exchange(running, this)),
      connections(withConnections),
      nodesWereFixed(VrmlSFNode::setFixCopy(1)),
      table(64) {}

DeepCopy::~DeepCopy() {
  running = outer;
  if (toolkitKnows) SoFieldContainer::copyDone();
  for (const Entry& entry : table)
    if (entry.copy) entry.copy->unref();
  VrmlSFNode::setFixCopy(nodesWereFixed);
}

// The table.

DeepCopy::Entry& DeepCopy::slotOf(const SoFieldContainer* original) {
  constexpr std::uint64_t golden = 0x9E3779B97F4A7C15;
  const std::size_t mask = table.size() - 1;
  std::size_t i = (reinterpret_cast<std::uintptr_t>(original) * golden >> 32) & mask;
  while (table[i].original && table[i].original != original) i = (i + 1) & mask;
  return table[i];
}

void DeepCopy::grow() {
  const std::vector<Entry> before = std::exchange(table, std::vector<Entry>(table.size() * 2));
  for (const Entry& entry : before)
    if (entry.original) slotOf(entry.original) = entry;
}

void DeepCopy::enter(const SoFieldContainer* original, SoFieldContainer* copy, bool whole) {
  if (!running) return SoFieldContainer::addCopy(original, copy);
  if (++running->count * 2 > running->table.size()) running->grow();
  copy->ref();
  running->slotOf(original) = {original, copy, whole};
  if (running->toolkitKnows) SoFieldContainer::addCopy(original, copy);
}

SoFieldContainer* DeepCopy::known(const SoFieldContainer* original) {
  if (SoFieldContainer* copy = slotOf(original).copy) return copy;
  return toolkitKnows ? SoFieldContainer::checkCopy(original) : nullptr;
}

SoFieldContainer* DeepCopy::filled(const SoFieldContainer* original) {
  Entry& entry = slotOf(original);
  if (toolkitKnows && !entry.isFilled) return SoFieldContainer::findCopy(original, connections);
  SoFieldContainer* copy = entry.copy;
  if (copy && !std::exchange(entry.isFilled, true)) copy->copyContents(original, connections);
  return copy;
}

SoFieldContainer* DeepCopy::checkCopy(const SoFieldContainer* original) {
  return running ? running->known(original) : SoFieldContainer::checkCopy(original);
}

SoFieldContainer* DeepCopy::findCopy(const SoFieldContainer* original, bool withConnections) {
  return running ? running->filled(original) : SoFieldContainer::findCopy(original, withConnections);
}

// Engines, and nodes of the toolkit's own, look for others in the toolkit's table. All are met before the first copy gets
// its contents.
void DeepCopy::useToolkitTable() {
  if (std::exchange(toolkitKnows, true)) return;
  SoFieldContainer::initCopyDict();
  for (const Entry& entry : table)
    if (entry.original) SoFieldContainer::addCopy(entry.original, entry.copy);
}

// What is copied.

void DeepCopy::add(const SoNode& node) {
  if (!asVrmlNode(&node)) useToolkitTable();
  node.addToCopyDict();
}

void DeepCopy::addBelow(const SoNode& node) {
  if (running)
    running->add(node);
  else
    node.addToCopyDict();
}

void DeepCopy::addFields(const SoNode& node) {
  const SoFieldData* fields = node.getFieldData();
  for (int i = 0; i < fields->getNumFields(); ++i) {
    const SoField& field = *fields->getField(&node, i);
    if (field.isConnected()) watchConnection(field);
    if (field.isDefault()) continue;  // it holds no nodes then
    if (field.isOfType(SoSFNode::getClassTypeId())) {
      if (const SoNode* value = static_cast<const SoSFNode&>(field).getValue()) add(*value);
    } else if (field.isOfType(SoMFNode::getClassTypeId())) {
      const auto& list = static_cast<const SoMFNode&>(field);
      for (int n = 0; n < list.getNum(); ++n)
        if (list[n]) add(*list[n]);
    }
  }
}

void DeepCopy::watchConnection(const SoField& field) {
  SoField* master = nullptr;
  if (!field.getConnectedField(master) || !asVrmlNode(master->getContainer())) useToolkitTable();
}

// Nodes come last, with all that they hold: what they are connected with is there by then. Nothing of this is an event,
// also for nodes that are connected with the copy already.
void DeepCopy::copyFields(const VrmlNode& original, VrmlNode& copy) {
  const auto tableOf = [](const SoFieldContainer& node) { return node.getFieldData(); };
  const SoFieldData* theirs = tableOf(original);
  const SoFieldData* own = tableOf(copy);
  const int count = std::min(theirs->getNumFields(), own->getNumFields());
  const auto copyThose = [&](bool ofNodes) {
    bool others = false;
    for (int i = 0; i < count; ++i) {
      const SoField& from = *theirs->getField(&original, i);
      SoField& to = *own->getField(&copy, i);
      if (from.isDefault() && to.isDefault() && !from.isConnected() && !from.isIgnored()) continue;
      const ValueType type = valueTypeOf(from);
      if ((type == ValueType::sfNode || type == ValueType::mfNode) != ofNodes) {
        others = true;
        continue;
      }
      copyField(original, from, to, type);
      copy.notifyContainerOnly(&to);
    }
    return others;
  };
  if (copyThose(false)) copyThose(true);
}

void DeepCopy::copyField(const VrmlNode& original, const SoField& from, SoField& to, ValueType type) {
  const NotifyOff silence(to);
  to.setIgnored(from.isIgnored());
  if (type == ValueType::sfNode) {
    SoNode* node = static_cast<const SoSFNode&>(from).getValue();
    SoNode* itsCopy = node ? of(node) : nullptr;
    static_cast<SoSFNode&>(to).setValue(itsCopy ? itsCopy : node);
  } else if (type != ValueType::children && !from.isDefault()) {
    to.copyFrom(from);
    if (type == ValueType::mfNode) fixNodes(static_cast<SoMFNode&>(to), connections);
  }
  to.setDefault(from.isDefault());
  if (!connections || !from.isConnected() || !original.shouldCopyFieldConnection(&from)) return;
  to.enableConnection(from.isConnectionEnabled());  // the toolkit leaves that out
  to.copyConnection(&from);
}

void DeepCopy::fixNodes(SoMFNode& field, bool withConnections) {
  for (int i = 0; i < field.getNum(); ++i) {
    SoNode* node = field[i];
    SoFieldContainer* copy = node ? findCopy(node, withConnections) : nullptr;
    if (copy && copy != node) field.set1Value(i, static_cast<SoNode*>(copy));
  }
}

}  // namespace tessel
