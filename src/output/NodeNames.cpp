// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/output/NodeNames.h>

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/proto/VrmlProtoUse.h>
#include <tessel/shapes/VrmlGeometry.h>

#include "core/AsVrmlNode.h"
#include "output/NodeNamesState.h"

namespace tessel {

namespace {

bool isScope(const VrmlNode& node) {
  return node.isOfType(VrmlInline::getClassTypeId()) || node.isOfType(VrmlProtoUse::getClassTypeId());
}

// The group that the reader made for a file of several nodes.
bool isFileRoot(const VrmlNode& node) { return node.getDef() && node.getDef()->name.getLength() == 0; }

template <class Take> void eachNodeIn(const SoField& field, Take take) {
  if (field.isOfType(SoSFNode::getClassTypeId())) {
    take(static_cast<const SoSFNode&>(field).getValue());
  } else if (field.isOfType(SoMFNode::getClassTypeId())) {
    const SoMFNode& list = static_cast<const SoMFNode&>(field);
    for (int i = 0; i < list.getNum(); ++i) take(list[i]);
  } else if (field.isOfType(VrmlMFChildren::getClassTypeId())) {
    const SoChildList* list = static_cast<const VrmlMFChildren&>(field).getValue();
    for (int i = 0; list && i < list->getLength(); ++i) take((*list)[i]);
  }
}

}  // namespace

std::string plainName(const VrmlNode& node) {
  const std::string own = node.getDefName().getString();
  return own.empty() ? node.getFileFormatName() : own;
}

std::string NameScope::add(const VrmlNode& node) {
  const std::string own = node.getDefName().getString();
  if (own.empty()) {
    const std::string type = node.getFileFormatName();
    return prefix + type + '#' + std::to_string(++unnamed[type]);
  }
  const int number = ++named[own];
  return prefix + own + (number > 1 ? '#' + std::to_string(number) : std::string());
}

void NodeNames::State::gone(const VrmlNode& node) {
  const auto found = names.find(&node);
  if (found == names.end()) return;
  nodes.erase(found->second);
  names.erase(found);
  scopes.erase(&node);
}

void NodeNames::State::add(VrmlNode& node, NameScope& scope) {
  const auto [entry, isNew] = names.try_emplace(&node);
  if (!isNew) return;
  entry->second = scope.add(node);
  nodes.emplace(entry->second, &node);
}

void NodeNames::State::lookThrough() {
  visited.clear();
  if (world) visit(world.get(), top);
}

void NodeNames::State::visit(SoNode* node, NameScope& scope) {
  if (!node || !visited.insert(node).second) return;
  if (!asVrmlNode(node)) {
    visitChildren(*node, scope);
    return;
  }
  VrmlNode& ours = static_cast<VrmlNode&>(*node);
  if (ours.isOfType(VrmlNULL::getClassTypeId())) return;
  if (!isFileRoot(ours)) add(ours, scope);
  visitFields(ours, scope);
  if (!isScope(ours)) {
    visitChildren(ours, scope);
    return;
  }
  NameScope& inner = scopes[&ours];
  if (inner.prefix.empty()) inner.prefix = names[&ours] + '/';
  visitChildren(ours, inner);
}

// Fields in their order in the file format; `children` has its place among them. What an instance has by default
// stands in its prototype, not in the place of the instance. A value that waits to be fetched goes on waiting.
void NodeNames::State::visitFields(const VrmlNode& node, NameScope& scope) {
  const bool onlyOwn = isScope(node);
  SoFieldList fields;
  node.listFields(fields);
  for (int i = 0; i < fields.getLength(); ++i)
    if (!fields[i]->getDirty() && !(onlyOwn && fields[i]->isDefault()))
      eachNodeIn(*fields[i], [&](SoNode* value) { visit(value, scope); });
}

void NodeNames::State::visitChildren(const SoNode& node, NameScope& scope) {
  if (node.isOfType(VrmlGeometry::getClassTypeId())) return;  // what it is built of is no part of the world
  // The first child of an Inline is the box that stands for its world.
  if (node.isOfType(VrmlInline::getClassTypeId())) {
    visit(static_cast<const VrmlInline&>(node).getChildData(), scope);
    return;
  }
  const SoChildList* list = node.getChildren();
  for (int i = 0; list && i < list->getLength(); ++i) visit((*list)[i], scope);
  if (node.isOfType(VrmlProtoUse::getClassTypeId()))
    for (const auto& other : static_cast<const VrmlProtoUse&>(node).getOtherNodes())
      visit(other.get(), scope);
}

NodeNames::NodeNames() : state(std::make_unique<State>()) {}
NodeNames::~NodeNames() = default;

void NodeNames::setWorld(SoNode* world) {
  state->top = {};
  state->scopes.clear();
  state->names.clear();
  state->nodes.clear();
  state->world.reset(world);
  update();
}

void NodeNames::update() { state->lookThrough(); }

std::string_view NodeNames::knownName(const VrmlNode& node) const {
  const auto found = state->names.find(&node);
  return found == state->names.end() ? std::string_view() : found->second;
}

std::string NodeNames::nameOf(const VrmlNode& node) {
  if (knownName(node).empty()) update();
  if (const std::string_view known = knownName(node); !known.empty()) return std::string(known);
  return plainName(node);
}

VrmlNode* NodeNames::find(std::string_view name) {
  const std::string wanted(name);
  auto found = state->nodes.find(wanted);
  if (found == state->nodes.end()) {
    state->lookThrough();
    found = state->nodes.find(wanted);
  }
  return found == state->nodes.end() ? nullptr : found->second;
}

}  // namespace tessel
