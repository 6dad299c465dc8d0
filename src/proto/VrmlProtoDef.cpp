// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlProtoDef.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include <Inventor/lists/SbStringList.h>
#include <Inventor/lists/SoFieldList.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/proto/VrmlExternProtoDef.h>
#include <tessel/proto/VrmlProtoDict.h>
#include <tessel/proto/VrmlProtoUse.h>

#include "core/NodeClassImpl.h"
#include "core/PrototypeScope.h"
#include "core/WorldReader.h"
#include "proto/BodyMap.h"
#include "proto/ProtoInterface.h"
#include "proto/ProtoReading.h"
#include "proto/Remains.h"

using tessel::FieldKind;
using tessel::ProtoInterface;

VrmlProtoDef::Reading* VrmlProtoDef::innermostReading = nullptr;

namespace {

// The definitions whose bodies are being read, innermost last.
std::vector<VrmlProtoDef*>& openProtos() {
  static std::vector<VrmlProtoDef*> list;
  return list;
}

VrmlProtoUse* asUse(SoNode* node) {
  return node && node->isOfType(VrmlProtoUse::getClassTypeId()) ? static_cast<VrmlProtoUse*>(node) : nullptr;
}

}  // namespace

std::span<const tessel::FieldSpec> VrmlProtoDef::fields() { return {}; }

void VrmlProtoDef::initClass() {
  NodeClass::initClass();
  tessel::registerStatement("PROTO", [](tessel::WorldReader& reader) { return read(reader) != 0; });
  tessel::PrototypeHooks& hooks = tessel::prototypeHooks();
  hooks.readIS = &VrmlProtoDef::readIS;
  hooks.createUse = [](tessel::WorldReader& reader, std::string_view wanted) -> VrmlNode* {
    return createUse(reader, wanted);
  };
  hooks.createStack = &VrmlProtoDict::createStack;
  hooks.deleteStack = &VrmlProtoDict::deleteStack;
  hooks.currentStack = [] { return VrmlProtoDict::currentStackId; };
  hooks.setCurrentStack = &VrmlProtoDict::setCurrentStackId;
}

VrmlProtoDef::VrmlProtoDef()
    : routesInPlace(0),
      stackId(VrmlProtoDict::currentStackId),
      interface(std::make_unique<ProtoInterface>()),
      body(new VrmlGroup) {
  setUpFields();
}

VrmlProtoDef::~VrmlProtoDef() {
  for (const auto& used : uses) tessel::Remains::add(used.get());
  uses.clear();
  tessel::Remains::release();
}

const SoFieldData* VrmlProtoDef::getFieldData() const { return &interfaceData; }

// Interface.

SoField* VrmlProtoDef::addInterfaceField(std::string_view fieldName, FieldKind kind, tessel::ValueType type) {
  if (!interface->add(fieldName, kind, type)) return nullptr;
  interfaceFields.emplace_back(tessel::newField(type));
  SoField* field = interfaceFields.back().get();
  field->setContainer(this);
  interfaceData.addField(this, std::string(fieldName).c_str(), field);
  return field;
}

int VrmlProtoDef::getNumInterfaceFields() const { return interface->size(); }
SoField* VrmlProtoDef::getInterfaceField(int index) const {
  return interfaceFields[static_cast<std::size_t>(index)].get();
}

int VrmlProtoDef::getFieldType(const SoField* field) const {
  for (int i = 0; i < interface->size(); ++i)
    if (getInterfaceField(i) == field) return static_cast<int>((*interface)[i].kind);
  return static_cast<int>(FieldKind::internal);
}

SoType VrmlProtoDef::getType() const {
  return body->getNumChildren() > 0 ? body->getChild(0)->getTypeId() : SoType::badType();
}

SoType VrmlProtoDef::getWorkType() const {
  const VrmlProtoDef* definition = this;
  while (definition && definition->body->getNumChildren() > 0) {
    VrmlProtoUse* use = asUse(definition->body->getChild(0));
    if (!use) return definition->getType();
    definition = use->getProtoDef();
  }
  return SoType::badType();
}

// Scopes.

VrmlProtoDef* VrmlProtoDef::getTopProtoDef() { return openProtos().empty() ? nullptr : openProtos().back(); }

void VrmlProtoDef::openPrototype() {
  openProtos().push_back(this);
  tessel::PrototypeScope::openDefinitions = static_cast<int>(openProtos().size());
  VrmlProtoDict::push(stackId);
  body.reset(new VrmlGroup);
}

void VrmlProtoDef::closePrototype() {
  openProtos().pop_back();
  tessel::PrototypeScope::openDefinitions = static_cast<int>(openProtos().size());
  innerDict = VrmlProtoDict::pop(stackId);
}

VrmlProtoUse* VrmlProtoDef::createUse(tessel::WorldReader& reader, std::string_view wanted) {
  const int stack = VrmlProtoDict::currentStackId;
  if (!VrmlProtoDict::knowsAny(stack)) return nullptr;
  VrmlProtoDef* definition = VrmlProtoDict::find(stack, std::string(wanted).c_str());
  if (!definition) return nullptr;
  if (innermostReading) innermostReading->met(*definition);
  return VrmlProtoUse::createForReading(*definition, reader);
}

bool VrmlProtoDef::leadsTo(const VrmlProtoDef& other) const {
  std::unordered_set<const VrmlProtoDef*> met{this};
  std::vector<const VrmlProtoDef*> open{this};
  const auto meet = [&](const VrmlProtoDef* next) {
    if (next && met.insert(next).second) open.push_back(next);
  };
  while (!open.empty()) {
    const VrmlProtoDef* one = open.back();
    open.pop_back();
    if (one == &other) return true;
    if (one->isOfType(VrmlExternProtoDef::getClassTypeId()))
      meet(static_cast<const VrmlExternProtoDef*>(one)->getRealDefinition());
    for (const auto& used : one->uses) meet(used.get());
  }
  return false;
}

// Mappings.

int VrmlProtoDef::getNumIsMappings() const { return static_cast<int>(isMappings.size()); }

void VrmlProtoDef::getIsMapping(int mapping, const SoField*& field, int& index) const {
  field = isMappings[static_cast<std::size_t>(mapping)].field;
  index = isMappings[static_cast<std::size_t>(mapping)].index;
}

void VrmlProtoDef::addIsMapping(const SoField* field, int index) {
  isMappings.push_back({const_cast<SoField*>(field), index});
  bodyMap.reset();
}

void VrmlProtoDef::getWhichIsMapRoutes(int index, int& toBody, int& fromBody) const {
  const bool known = index >= 0 && index < interface->size();
  toBody = known && (*interface)[index].sendsIn();
  fromBody = known && (*interface)[index].sendsOut();
}

const tessel::BodyMap& VrmlProtoDef::getBodyMap() const {
  if (bodyMap) return *bodyMap;
  bodyMap = std::make_unique<tessel::BodyMap>();
  tessel::BodyMap& map = *bodyMap;
  std::unordered_map<const VrmlNode*, int> numbers;
  map.nodesHeldWeakly = true;
  for (const Mapping& mapping : isMappings) {
    const auto* node = static_cast<const VrmlNode*>(mapping.field->getContainer());
    const int fieldIndex = node->getFieldIndex(mapping.field);
    if (fieldIndex < 0) continue;  // declared twice
    const auto [place, isNew] = numbers.try_emplace(node, static_cast<int>(map.nodes.size()));
    if (isNew) map.nodes.push_back(node);
    map.entries.push_back(
        {mapping.index, place->second, fieldIndex, node->isOfType(VrmlProtoUse::getClassTypeId()) == TRUE});
    if ((*interface)[mapping.index].holdsNodes() && !node->holdsNodesWeakly()) map.nodesHeldWeakly = false;
  }
  std::ranges::stable_sort(map.entries, {}, &tessel::BodyMap::Entry::index);
  for (int i = 0; i <= interface->size(); ++i)
    map.first.push_back(static_cast<int>(
        std::ranges::lower_bound(map.entries, i, {}, &tessel::BodyMap::Entry::index) - map.entries.begin()));
  return map;
}

int VrmlProtoDef::isIS(SoField* field, SbStringList& names) const {
  int found = 0;
  for (const Mapping& mapping : isMappings) {
    if (mapping.field != field) continue;
    names.append(new SbString((*interface)[mapping.index].name.getString()));
    found = 1;
  }
  return found;
}

int VrmlProtoDef::isVrmlRoute(const SoField*, const SoField*) const { return routesInPlace; }

void VrmlProtoDef::moveIsMappingsToRoutes() {
  for (const Mapping& mapping : isMappings) {
    int toBody = 0, fromBody = 0;
    getWhichIsMapRoutes(mapping.index, toBody, fromBody);
    SoField* own = getInterfaceField(mapping.index);
    if (toBody) VrmlRoute::add(own, mapping.field, 1);
    if (fromBody) VrmlRoute::add(mapping.field, own, 1);
  }
  routesInPlace = 1;
}

void VrmlProtoDef::moveRoutesToIsMappings() {
  isMappings.clear();
  bodyMap.reset();
  for (int i = 0; i < interface->size(); ++i) {
    SoField* own = getInterfaceField(i);
    SoFieldList incoming, outgoing;
    VrmlRoute::getIncoming(own, incoming);
    VrmlRoute::getOutgoing(own, outgoing);
    for (int n = 0; n < incoming.getLength(); ++n) {
      addIsMapping(incoming[n], i);
      VrmlRoute::remove(incoming[n], own);
    }
    for (int n = 0; n < outgoing.getLength(); ++n) {
      if (incoming.find(outgoing[n]) < 0) addIsMapping(outgoing[n], i);
      VrmlRoute::remove(own, outgoing[n]);
    }
  }
  routesInPlace = 0;
}

template class tessel::NodeClass<VrmlProtoDef, VrmlNode>;
