// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlProtoUse.h>

#include <tuple>
#include <utility>

#include <Inventor/errors/SoDebugError.h>
#include <Inventor/fields/SoMFNode.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlSFNode.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/toolkit/Scoped.h>

#include "core/DeepCopy.h"
#include "core/EventWatch.h"
#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"
#include "proto/BodyMap.h"
#include "proto/FieldValues.h"
#include "proto/InstanceBuild.h"
#include "proto/InstanceData.h"
#include "proto/Remains.h"

using tessel::DeepCopy;
using tessel::InstanceBuild;
using tessel::InstanceData;
using tessel::InstanceFields;
using tessel::InstancePlace;
using tessel::Remains;
using tessel::SoRef;

const VrmlProtoUse* VrmlProtoUse::openProtoUse = nullptr;

namespace {

const VrmlProtoUse* asUse(const SoNode* node) {
  return node && node->isOfType(VrmlProtoUse::getClassTypeId()) ? static_cast<const VrmlProtoUse*>(node)
                                                                : nullptr;
}

}  // namespace

std::span<const tessel::FieldSpec> VrmlProtoUse::fields() { return {}; }

void VrmlProtoUse::initClass() {
  NodeClass::initClass();
  VrmlSFNode::setActualNodeHook([](SoNode* node) -> SoNode* {
    const VrmlProtoUse* use = asUse(node);
    return use ? use->getActualNode() : node;
  });
}

VrmlProtoUse::VrmlProtoUse() : NodeClass(1), data(std::make_unique<InstanceData>()) { setUpFields(); }

VrmlProtoUse::VrmlProtoUse(VrmlProtoDef* definition) : VrmlProtoUse() {
  ref();
  takeDefinition(*definition);
  setUpFromDefinition();
  unrefNoDelete();
}

VrmlProtoUse* VrmlProtoUse::createForReading(VrmlProtoDef& definition, const tessel::WorldReader& reader) {
  auto* use = new VrmlProtoUse;
  use->takeDefinition(definition);
  use->data->isInDefinition = VrmlProtoDef::getTopProtoDef() != nullptr;
  use->data->levelInBody = reader.level();
  return use;
}

VrmlProtoUse::~VrmlProtoUse() {
  if (data->externDef) data->externDef->removeRequestor(*this);
  for (int i = 0; i < getNumChildren(); ++i) Remains::add(getChild(i));
  for (const auto& node : data->otherNodes) Remains::add(node.get());
  for (const auto& node : data->mappedNodes) Remains::add(node.get());
  Remains::add(data->protoDef.get());
  Remains::add(data->externDef.get());
  {
    const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
    childList->truncate(0);
  }
  data->fields.clear();
  data.reset();
  Remains::release();
}

void VrmlProtoUse::takeDefinition(VrmlProtoDef& definition) {
  if (definition.isOfType(VrmlExternProtoDef::getClassTypeId()))
    data->externDef.reset(static_cast<VrmlExternProtoDef*>(&definition));
  else
    data->protoDef.reset(&definition);
  makeFields(definition);
}

void VrmlProtoUse::makeFields(const VrmlProtoDef& definition) {
  data->fields = InstanceFields(definition.getInterface(), *this,
                                [&](int i) -> const SoField& { return *definition.getInterfaceField(i); });
}

VrmlProtoDef* VrmlProtoUse::getProtoDef() const { return data->protoDef.get(); }
VrmlExternProtoDef* VrmlProtoUse::getExternDef() const { return data->externDef.get(); }
const std::vector<SoRef<SoNode>>& VrmlProtoUse::getOtherNodes() const { return data->otherNodes; }

// In the scene.

VrmlNode* VrmlProtoUse::getActualNode(int) const {
  const SoNode* node = this;
  while (const VrmlProtoUse* use = asUse(node)) {
    if (use->getNumChildren() == 0) return nullptr;
    node = use->getChild(0);
  }
  return static_cast<VrmlNode*>(const_cast<SoNode*>(node));
}

SoType VrmlProtoUse::getDefinitionType() const {
  return data->protoDef ? data->protoDef->getType() : SoType::badType();
}

const char* VrmlProtoUse::getFileFormatName() const {
  if (data->externDef) return data->externDef->name.getString();
  return data->protoDef ? data->protoDef->name.getString() : fileFormatName;
}

// One whose body is not made yet is known by its definition.
int VrmlProtoUse::isProtoOfType(const SoType& type, int strict) {
  if (const VrmlNode* node = getActualNode()) return node->isOfType(type);
  if (!data->protoDef) return !strict;
  const SoType known = data->protoDef->getWorkType();
  if (known.isBad()) return !strict;
  return known.isDerivedFrom(type);
}

int VrmlProtoUse::shouldRenderBeforeOtherChildren() const {
  const VrmlNode* node = getActualNode();
  return node && node->shouldRenderBeforeOtherChildren();
}

int VrmlProtoUse::isSpatial() const {
  const VrmlNode* node = getActualNode();
  return node ? node->isSpatial() : NodeClass::isSpatial();
}

bool VrmlProtoUse::holdsNodesWeakly() const {
  return data->protoDef && data->protoDef->getBodyMap().nodesHeldWeakly;
}

void VrmlProtoUse::listHeldNodes(std::vector<SoNode*>& list) const {
  for (const auto& node : data->otherNodes) list.push_back(node.get());
  for (const auto& node : data->mappedNodes)
    if (node) list.push_back(node.get());
}

// Making.

void VrmlProtoUse::setUpFromDefinition() { InstanceBuild::run(*this, InstancePlace{}); }

bool VrmlProtoUse::readBody(tessel::WorldReader& reader) {
  {
    const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
    for (;;) {
      const std::string_view name = reader.lexer().strictName();
      if (name.empty()) break;
      const int i = data->fields.find(name);
      const bool ok = i >= 0 ? reader.readFieldValue(data->fields[i], data->fields.item(i).type, name)
                             : reader.readField(*this, name);
      if (!ok) return false;
    }
    if (!data->isInDefinition &&
        !InstanceBuild::run(*this, {.budget = reader.instanceBudget(), .level = reader.level() - 1}))
      return true;  // what is missing is not met by a traversal
  }
  return !data->protoDef ||
         reader.addExtent({data->protoDef->getExpandedNodes(), data->protoDef->getExpandedLevels()});
}

void VrmlProtoUse::makeBody() {
  const VrmlGroup& body = *data->protoDef->getBody();
  const tessel::BodyMap& map = data->protoDef->getBodyMap();
  std::vector<SoRef<VrmlNode>> copies;
  {
    DeepCopy copying(true);
    for (int i = 0; i < body.getNumChildren(); ++i) copying.add(*body.getChild(i));
    for (int i = 0; i < body.getNumChildren(); ++i)
      copies.emplace_back(static_cast<VrmlNode*>(copying.of(body.getChild(i))));
    data->mappedNodes.reserve(map.nodes.size());
    for (const VrmlNode* node : map.nodes)
      data->mappedNodes.emplace_back(static_cast<VrmlNode*>(copying.of(node)));
  }
  data->isMade = true;
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));  // who may be told is told when all is made
  for (std::size_t i = 1; i < copies.size(); ++i) data->otherNodes.emplace_back(copies[i].get());
  for (int i = 0; i < data->fields.size(); ++i) pushField(i);
  if (!copies.empty()) addChild(copies.front().get());
  for (std::size_t i = 0; i < data->connected.size(); ++i)
    if (data->connected[i]) connectField(static_cast<int>(i), std::exchange(data->connected[i], 0));
  // Who watches events is to hear of all that an instance sends, also where no route takes it on.
  for (int i = 0; tessel::EventWatch::any() && i < data->fields.size(); ++i) connectField(i, out);
}

// Copying.

SoNode* VrmlProtoUse::addToCopyDict() const {
  if (SoFieldContainer* copied = DeepCopy::checkCopy(this)) return static_cast<SoNode*>(copied);
  auto* copy = new VrmlProtoUse;
  DeepCopy::enter(this, copy, false);
  if (data->protoDef) copy->data->protoDef = data->protoDef;
  copy->data->externDef = data->externDef;
  if (const VrmlProtoDef* definition = data->protoDef ? data->protoDef.get() : data->externDef.get())
    copy->makeFields(*definition);
  // Not into its body, which is made anew, but into what it was given.
  for (int i = 0; i < data->fields.size(); ++i) {
    if (!data->fields.item(i).hasValue()) continue;
    const SoField& field = data->fields[i];
    if (data->fields.item(i).type == tessel::ValueType::sfNode) {
      if (const SoNode* node = static_cast<const VrmlSFNode&>(field).getValue()) DeepCopy::addBelow(*node);
    } else if (data->fields.item(i).type == tessel::ValueType::mfNode) {
      const auto& list = static_cast<const SoMFNode&>(field);
      for (int n = 0; n < list.getNum(); ++n)
        if (list[n]) DeepCopy::addBelow(*list[n]);
    }
  }
  return copy;
}

// The toolkit would copy the connections with the body too.
void VrmlProtoUse::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  const auto& original = *static_cast<const VrmlProtoUse*>(from);
  if (const tessel::DefName* name = original.getDef()) setDef(*name);
  for (int i = 0; i < data->fields.size(); ++i) {
    SoField& field = data->fields[i];
    const SoField& source = original.data->fields[i];
    if (!source.isDefault()) field.copyFrom(source);
    if (data->fields.item(i).hasValue()) field.fixCopy(copyConnections);
    tessel::discountAsIn(source, field);
    field.setDefault(source.isDefault());
    if (copyConnections) copyRoutes(source, i);
  }
  if (InstanceBuild* build = InstanceBuild::current())
    build->later(*this, original.data->levelInBody);
  else if (!original.data->isInDefinition)
    setUpFromDefinition();
  else
    data->isInDefinition = true;
}

void VrmlProtoUse::copyRoutes(const SoField& source, int index) {
  SoFieldList masters;
  VrmlRoute::getIncoming(&source, masters);
  for (int n = 0; n < masters.getLength(); ++n) {
    auto* node = dynamic_cast<VrmlNode*>(masters[n]->getContainer());
    if (!node) continue;
    auto* copy = static_cast<VrmlNode*>(DeepCopy::checkCopy(node) ? DeepCopy::findCopy(node, true) : node);
    if (SoField* master = copy->getFieldAt(node->getFieldIndex(masters[n]))) {
      connectField(index, in);
      VrmlRoute::add(master, &data->fields[index], 1);
    }
  }
}

int VrmlProtoUse::shouldCopyFieldConnection(const SoField* field) const {
  SoField* master = nullptr;
  return !field->getConnectedField(master) || isVrmlRoute(master, field);
}

// Fields.

int VrmlProtoUse::getFieldType(const SoField* field) const {
  const int i = data->fields.indexOf(field);
  return i >= 0 ? static_cast<int>(data->fields.item(i).kind) : NodeClass::getFieldType(field);
}

SoField* VrmlProtoUse::getField(const SbName& name) const {
  const int i = data->fields.find(name.getString());
  if (i < 0) return nullptr;
  const_cast<VrmlProtoUse*>(this)->connectField(i, both);
  return &data->fields[i];
}

SoField* VrmlProtoUse::getRouteEnd(const SbName& name, bool isEventIn) {
  const int i = data->fields.find(name.getString());
  if (i < 0) return nullptr;
  connectField(i, isEventIn ? in : out);
  return &data->fields[i];
}

int VrmlProtoUse::getFieldIndex(const SoField* field) const { return data->fields.indexOf(field); }

SoField* VrmlProtoUse::getFieldAt(int index) {
  return index >= 0 && index < data->fields.size() ? &data->fields[index] : nullptr;
}

void VrmlProtoUse::listFields(SoFieldList& list) const {
  for (int i = 0; i < data->fields.size(); ++i) list.append(&data->fields[i]);
}

bool VrmlProtoUse::findFieldName(const SoField* field, SbName& name) const {
  const int i = data->fields.indexOf(field);
  if (i >= 0) name = data->fields.item(i).name;
  return i >= 0;
}

const SoFieldData* VrmlProtoUse::getFieldData() const {
  auto& self = const_cast<VrmlProtoUse&>(*this);
  for (int i = 0; i < data->fields.size(); ++i) self.connectField(i, both);
  if (!data->table) {
    data->table = std::make_unique<SoFieldData>();
    for (int i = 0; i < data->fields.size(); ++i)
      data->table->addField(&self, data->fields.item(i).name.getString(), &data->fields[i]);
  }
  return data->table.get();
}

// Between fields and body.

VrmlNode* VrmlProtoUse::mappedNode(int number) const {
  return data->mappedNodes[static_cast<std::size_t>(number)].get();
}

SoField* VrmlProtoUse::mappedField(const tessel::BodyMapEntry& entry) const {
  VrmlNode* node = mappedNode(entry.node);
  if (!node) return nullptr;
  const int index =
      entry.isInstance ? static_cast<VrmlProtoUse*>(node)->indexNow(entry.fieldIndex) : entry.fieldIndex;
  return node->getFieldAt(index);
}

// Bodies know an instance of an external prototype by its declaration; the real definition may have other fields
// before those.
int VrmlProtoUse::indexNow(int declared) const {
  if (!data->externDef || !data->protoDef) return declared;
  const std::vector<int>& counterparts = data->externDef->getCounterparts(*data->protoDef);
  const auto i = static_cast<std::size_t>(declared);
  return i < counterparts.size() ? counterparts[i] : -1;
}

int VrmlProtoUse::isVrmlRoute(const SoField* from, const SoField* to) const {
  if (!data->isMade) return 1;
  const SoField* other = data->fields.indexOf(from) >= 0 ? to : from;
  const int own = data->fields.indexOf(other == to ? from : to);
  if (own < 0) return 1;
  for (const auto& entry : data->protoDef->getBodyMap().of(own))
    if (mappedField(entry) == other) return 0;
  return 1;
}

// From the body of this instance on, into the instances in it that the field goes on to.
template <class Visit> void VrmlProtoUse::forEachInside(int index, Visit visit) {
  std::vector<std::pair<VrmlProtoUse*, int>> open;  // most fields go no further than the body
  VrmlProtoUse* use = this;
  for (std::size_t n = 0;; ++n) {
    if (visit(*use, index) && use->data->isMade)
      for (const auto& entry : use->data->protoDef->getBodyMap().of(index)) {
        auto* inner = entry.isInstance ? static_cast<VrmlProtoUse*>(use->mappedNode(entry.node)) : nullptr;
        const int now = inner ? inner->indexNow(entry.fieldIndex) : -1;
        if (now >= 0) open.emplace_back(inner, now);
      }
    if (n == open.size()) return;
    std::tie(use, index) = open[n];
  }
}

// Inner instances first: what they send out has to be there.
void VrmlProtoUse::connectField(int index, Ways ways) {
  struct Step {
    VrmlProtoUse* use;
    int index;
    Ways ways;
  };
  std::vector<Step> steps;
  forEachInside(index, [&](VrmlProtoUse& use, int own) {
    InstanceData& d = *use.data;
    if (d.isInDefinition) return false;
    const auto& item = d.fields.item(own);
    const Ways possible = static_cast<Ways>((item.sendsIn() ? in : 0) | (item.sendsOut() ? out : 0));
    if (d.connected.empty()) d.connected.resize(static_cast<std::size_t>(d.fields.size()));
    std::uint8_t& connected = d.connected[static_cast<std::size_t>(own)];
    const Ways missing = static_cast<Ways>(ways & possible & ~connected);
    if (!missing) return false;
    connected |= missing;
    steps.push_back({&use, own, missing});
    return true;
  });
  for (auto step = steps.rbegin(); step != steps.rend(); ++step)
    if (step->use->data->isMade) step->use->connectWithBody(step->index, step->ways);
}

// What the body has become meanwhile, nobody has asked for until now.
void VrmlProtoUse::connectWithBody(int index, Ways ways) {
  SoField& own = data->fields[index];
  const SbBool wasDefault = own.isDefault();
  for (const auto& entry : data->protoDef->getBodyMap().of(index)) {
    SoField* inner = mappedField(entry);
    if (!inner) continue;
    if (ways & out) {
      const tessel::NotifyOff silence(own);
      tessel::copyValue(*inner, own);
    }
    if (ways & in) VrmlRoute::add(&own, inner, 1);
    if (ways & out) VrmlRoute::add(inner, &own, 1);
  }
  own.setDefault(wasDefault);
}

void VrmlProtoUse::pushField(int index) {
  forEachInside(index, [](VrmlProtoUse& use, int own) {
    const auto& item = use.data->fields.item(own);
    if (!use.data->isMade || !item.hasValue()) return false;
    const SoField& value = use.data->fields[own];
    for (const auto& entry : use.data->protoDef->getBodyMap().of(own)) {
      SoField* inner = use.mappedField(entry);
      if (!inner) continue;
      {
        const tessel::NotifyOff silence(*inner);
        tessel::copyValue(value, *inner);
        if (item.holdsNodes()) tessel::discountAsIn(value, *inner);
      }
      if (!entry.isInstance) use.mappedNode(entry.node)->notifyContainerOnly(inner);
    }
    return true;
  });
}

void VrmlProtoUse::notifyContainerOnly(const SoField* field) {
  if (const int i = data->fields.indexOf(field); i >= 0) pushField(i);
}

// External prototypes.

void VrmlProtoUse::setUpFromExternDefinition(VrmlProtoDef* definition) {
  InstanceBuild::complete(*this, *definition, InstancePlace{});
}

// The fields of the real definition take the place of those of the declaration, with the values that were given.
InstanceFields VrmlProtoUse::takeRealDefinition(VrmlProtoDef& definition) {
  InstanceFields before = std::move(data->fields);
  data->table.reset();
  data->connected.clear();
  data->protoDef.reset(&definition);
  makeFields(definition);
  const std::vector<int>& counterparts = data->externDef->getCounterparts(definition);
  for (std::size_t i = 0; i < counterparts.size(); ++i) {
    const SoField& old = before[static_cast<int>(i)];
    if (old.isDefault()) continue;
    SoField& field = data->fields[counterparts[i]];
    const tessel::NotifyOff silence(field);
    field.copyFrom(old);
    tessel::discountAsIn(old, field);
  }
  return before;
}

void VrmlProtoUse::moveRoutes(InstanceFields& before) {
  const std::vector<int>& counterparts = data->externDef->getCounterparts(*data->protoDef);
  for (std::size_t i = 0; i < counterparts.size(); ++i)
    moveRoutes(before[static_cast<int>(i)], counterparts[i]);
  if (static_cast<int>(counterparts.size()) < before.size())
    SoDebugError::post("VrmlProtoUse::setUpFromExternDefinition",
                       "Fields of EXTERNPROTO \"%s\" are not a subset of fields of PROTO \"%s\"",
                       data->externDef->name.getString(), data->protoDef->name.getString());
}

void VrmlProtoUse::moveRoutes(SoField& old, int index) {
  SoField& field = data->fields[index];
  SoFieldList incoming, outgoing;
  VrmlRoute::getIncoming(&old, incoming);
  VrmlRoute::getOutgoing(&old, outgoing);
  // What has no value of its own in the body has waited as an event.
  const bool eventWaits = !data->fields.item(index).hasValue() && !old.isDefault();
  if (incoming.getLength() > 0 || eventWaits) connectField(index, in);
  if (outgoing.getLength() > 0) connectField(index, out);
  if (eventWaits) field.touch();
  for (int n = 0; n < incoming.getLength(); ++n) {
    VrmlRoute::remove(incoming[n], &old);
    VrmlRoute::add(incoming[n], &field, 0);
  }
  for (int n = 0; n < outgoing.getLength(); ++n) {
    VrmlRoute::remove(&old, outgoing[n]);
    VrmlRoute::add(&field, outgoing[n], 0);
  }
}

template class tessel::NodeClass<VrmlProtoUse, VrmlBaseGroup>;
