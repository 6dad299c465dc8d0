// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlExternProtoDef.h>

#include <string>
#include <utility>

#include <tessel/core/VrmlDB.h>
#include <tessel/proto/VrmlExternProtoInline.h>
#include <tessel/proto/VrmlProtoDict.h>
#include <tessel/proto/VrmlProtoUse.h>

#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"
#include "proto/InstanceBuild.h"
#include "proto/InstanceData.h"
#include "proto/ProtoInterface.h"
#include "toolkit/ReadReport.h"

using tessel::InstancePlace;

struct VrmlExternProtoDef::Requestor {
  VrmlProtoUse* use;
  InstancePlace place;
};

std::span<const tessel::FieldSpec> VrmlExternProtoDef::fields() { return {}; }

void VrmlExternProtoDef::initClass() {
  NodeClass::initClass();
  tessel::registerStatement("EXTERNPROTO", [](tessel::WorldReader& reader) { return read(reader) != 0; });
}

VrmlExternProtoDef::VrmlExternProtoDef() : baseURL(VrmlDB::baseURL) {
  setUpFields();
  url.setContainer(this);
}

VrmlExternProtoDef::~VrmlExternProtoDef() {
  unfollow();
  if (fetchInline) fetchInline->setOwner(nullptr);
}

void VrmlExternProtoDef::unfollow() {
  if (followed) std::erase(followed->followers, this);
  followed.reset();
}

// Alive for as long as they are told.
std::vector<tessel::SoRef<VrmlExternProtoDef>> VrmlExternProtoDef::takeFollowers() {
  std::vector<tessel::SoRef<VrmlExternProtoDef>> taken;
  for (VrmlExternProtoDef* follower : std::exchange(followers, {})) taken.emplace_back(follower);
  return taken;
}

int VrmlExternProtoDef::read(tessel::WorldReader& reader) {
  const tessel::SoRef<VrmlExternProtoDef> definition(new VrmlExternProtoDef);
  const int line = reader.lexer().line();
  if (!definition->readContents(reader)) return 0;
  definition->setDef({definition->name, reader.fileNameAsName(), line});
  VrmlProtoDict::add(VrmlProtoDict::currentStackId, definition.get());
  return 1;
}

int VrmlExternProtoDef::readContents(tessel::WorldReader& reader) {
  if (!readNameAndInterface(reader, 0)) return 0;
  if (!reader.readPlainValue(url, tessel::ValueType::mfString, "url")) return 0;
  return url.getNum() > 0 || reader.error("EXTERNPROTO had null url for definition address");
}

void VrmlExternProtoDef::getDefinition(VrmlProtoUse* use) { getDefinition(use, InstancePlace{}); }

void VrmlExternProtoDef::getDefinition(VrmlProtoUse* use, const InstancePlace& place) {
  if (realDef) {
    tessel::InstanceBuild::complete(*use, *realDef, place);
    return;
  }
  addRequestor(*use, place);
  requestFile();
}

// One fetch serves all.
void VrmlExternProtoDef::requestFile() {
  if (fetchRequested) return;
  fetchRequested = true;
  fetchInline.reset(new VrmlExternProtoInline);
  fetchInline->setOwner(this);
  fetchInline->setBaseURL(baseURL);
  fetchInline->url.copyFrom(url);
  if (!fetchInline->isFetchRequested()) fetchInline->requestChildrenFromURL();
}

bool VrmlExternProtoDef::canBecome(const VrmlProtoDef& definition) const {
  const VrmlProtoDef* one = &definition;
  while (one && one->isOfType(getClassTypeId())) {
    if (one == this) return false;
    one = static_cast<const VrmlExternProtoDef*>(one)->followed.get();
  }
  return true;
}

void VrmlExternProtoDef::setDefinition(VrmlProtoDef* definition) {
  const tessel::SoRef<VrmlExternProtoDef> alive(this);
  if (definition && definition->isOfType(getClassTypeId())) {
    auto* external = static_cast<VrmlExternProtoDef*>(definition);
    if (!external->realDef) {
      unfollow();
      followed.reset(external);
      external->followers.push_back(this);
      external->requestFile();
      return;
    }
    definition = external->realDef.get();
  }
  unfollow();
  if (definition && definition->leadsTo(*this)) {
    refuse();
    return;
  }
  realDef.reset(definition);
  for (const auto& follower : takeFollowers()) follower->setDefinition(definition);
  while (realDef && !requestors.empty()) {
    const Requestor last = requestors.rbegin()->second;
    removeRequestor(*last.use);
    tessel::InstanceBuild::complete(*last.use, *realDef, last.place);
  }
}

const std::vector<int>& VrmlExternProtoDef::getCounterparts(const VrmlProtoDef& definition) {
  const SbUniqueId number = definition.getNodeId();
  if (std::exchange(counterpartsOf, number) == number) return counterparts;
  counterparts.clear();
  const tessel::ProtoInterface& theirs = definition.getInterface();
  for (const auto& declared : getInterface()) {
    const int index = theirs.find(declared.name.getString());
    if (index < 0 || theirs[index].type != declared.type || theirs[index].kind != declared.kind) break;
    counterparts.push_back(index);
  }
  return counterparts;
}

// Without this the definitions would hold one another for ever, and an instance would end at the limits only.
void VrmlExternProtoDef::refuse() {
  const std::string text = "A prototype can't use itself, through no other file either; instances of \"" +
                           std::string(name.getString()) + "\" stay empty";
  constexpr const char* where = "VrmlExternProtoDef::setDefinition";
  if (const tessel::DefName* place = getPlace())
    tessel::postReadWarning(where, place->file.getString(), place->line, text);
  else
    tessel::postReadWarning(where, text);
  fetchFailed();
}

void VrmlExternProtoDef::addRequestor(VrmlProtoUse* use) { addRequestor(*use, InstancePlace{}); }

void VrmlExternProtoDef::addRequestor(VrmlProtoUse& use, const InstancePlace& place) {
  std::uint64_t& number = use.data->requestNumber;
  if (number != 0) return;
  number = ++lastNumber;
  requestors.emplace(number, Requestor{&use, place});
}

void VrmlExternProtoDef::removeRequestor(VrmlProtoUse& use) {
  if (const std::uint64_t number = std::exchange(use.data->requestNumber, 0)) requestors.erase(number);
}

void VrmlExternProtoDef::fetchFailed() {
  for (const auto& follower : takeFollowers()) {
    follower->followed.reset();
    follower->fetchFailed();
  }
}

template class tessel::NodeClass<VrmlExternProtoDef, VrmlProtoDef>;
