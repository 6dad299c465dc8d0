// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlProtoDict.h>

#include <algorithm>
#include <functional>
#include <utility>

#include <Inventor/lists/SoNodeList.h>

#include <tessel/proto/VrmlExternProtoDef.h>
#include <tessel/proto/VrmlProtoDef.h>

int VrmlProtoDict::currentStackId = -1;

namespace {

// The top scope of each stack, null where a number is free. Never destroyed: definitions are toolkit objects.
std::vector<std::unique_ptr<VrmlProtoDict>>& stackList() {
  static auto* const list = new std::vector<std::unique_ptr<VrmlProtoDict>>;
  return *list;
}

std::unique_ptr<VrmlProtoDict>* topOf(int id) {
  auto& list = stackList();
  if (id < 0 || static_cast<std::size_t>(id) >= list.size() || !list[static_cast<std::size_t>(id)])
    return nullptr;
  return &list[static_cast<std::size_t>(id)];
}

}  // namespace

VrmlProtoDict::VrmlProtoDict() = default;

// Scopes may be nested as deep as a file likes: they go one by one, not inside one another.
VrmlProtoDict::~VrmlProtoDict() {
  for (auto outer = std::move(next); outer;) outer = std::exchange(outer->next, nullptr);
}

// Names are unique: one spelling, one address.
std::size_t VrmlProtoDict::NameHash::operator()(const SbName& name) const noexcept {
  return std::hash<const void*>{}(name.getString());
}

int VrmlProtoDict::createStack() {
  auto& list = stackList();
  auto place = std::find(list.begin(), list.end(), nullptr);
  if (place == list.end()) place = list.emplace(list.end());
  *place = std::make_unique<VrmlProtoDict>();
  currentStackId = static_cast<int>(place - list.begin());
  return currentStackId;
}

void VrmlProtoDict::deleteStack(int id) {
  if (auto* top = topOf(id)) const auto freed = std::exchange(*top, nullptr);
}

void VrmlProtoDict::setCurrentStackId(int id) { currentStackId = std::max(id, -1); }

VrmlProtoDict* VrmlProtoDict::push(int id) {
  auto* top = topOf(id);
  if (!top) return nullptr;
  auto scope = std::make_unique<VrmlProtoDict>();
  scope->next = std::move(*top);
  *top = std::move(scope);
  return top->get();
}

std::unique_ptr<VrmlProtoDict> VrmlProtoDict::pop(int id) {
  auto* top = topOf(id);
  if (!top) return nullptr;
  auto scope = std::move(*top);
  *top = std::move(scope->next);
  return scope;
}

VrmlProtoDict* VrmlProtoDict::getTopOfStack(int id) {
  const auto* top = topOf(id);
  return top ? top->get() : nullptr;
}

void VrmlProtoDict::add(int id, VrmlProtoDef* definition) {
  VrmlProtoDict* top = getTopOfStack(id);
  if (!top) return;
  top->definitions.emplace_back(definition);
  top->dictionary.insert_or_assign(definition->name, definition);
}

VrmlProtoDef* VrmlProtoDict::find(int id, const SbName& name) {
  for (const VrmlProtoDict* scope = getTopOfStack(id); scope; scope = scope->next.get()) {
    if (VrmlProtoDef* found = scope->findInThis(name)) return found;
    if (scope->stopsHere) break;
  }
  return nullptr;
}

bool VrmlProtoDict::knowsAny(int id) {
  for (const VrmlProtoDict* scope = getTopOfStack(id); scope;
       scope = scope->stopsHere ? nullptr : scope->next.get())
    if (!scope->definitions.empty()) return true;
  return false;
}

void VrmlProtoDict::clear(int id) {
  VrmlProtoDict* top = getTopOfStack(id);
  if (!top) return;
  top->dictionary.clear();
  const auto gone = std::exchange(top->definitions, {});
}

VrmlProtoDef* VrmlProtoDict::findInThis(const SbName& name) const {
  const auto found = dictionary.find(name);
  return found == dictionary.end() ? nullptr : found->second;
}

VrmlProtoDef* VrmlProtoDict::getFirstDefinition() const {
  for (const auto& definition : definitions)
    if (!definition->isOfType(VrmlExternProtoDef::getClassTypeId())) return definition.get();
  return nullptr;
}

void VrmlProtoDict::getAllDefinitions(SoNodeList& list) const {
  for (const auto& definition : definitions) list.append(definition.get());
}
