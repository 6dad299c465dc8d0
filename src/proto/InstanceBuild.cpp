// SPDX-License-Identifier: BSD-3-Clause
#include "proto/InstanceBuild.h"

#include <iterator>

#include <tessel/proto/VrmlExternProtoDef.h>
#include <tessel/proto/VrmlProtoDef.h>

#include "core/PrototypeScope.h"
#include "proto/ProtoInterface.h"
#include "toolkit/ReadReport.h"

namespace tessel {

InstanceBuild::InstanceBuild(VrmlProtoUse& outermost) {
  running = this;
  VrmlProtoUse::openProtoUse = &outermost;
  PrototypeScope::openInstance = &outermost;
}

InstanceBuild::~InstanceBuild() {
  running = nullptr;
  VrmlProtoUse::openProtoUse = nullptr;
  PrototypeScope::openInstance = nullptr;
}

bool InstanceBuild::run(VrmlProtoUse& instance, const InstancePlace& place) {
  InstanceBuild build(instance);
  build.open.push_back({SoRef<VrmlProtoUse>(&instance), place});
  while (!build.open.empty()) {
    const Pending next = std::move(build.open.back());
    build.open.pop_back();
    build.here = next.place;
    build.make(*next.instance);
    // The first of a body is made first.
    build.open.insert(build.open.end(), std::make_move_iterator(build.inside.rbegin()),
                      std::make_move_iterator(build.inside.rend()));
    build.inside.clear();
  }
  const bool whole = !build.complained;
  build.open.clear();
  return whole;
}

void InstanceBuild::later(VrmlProtoUse& instance, int levelInBody) {
  inside.push_back(
      {SoRef<VrmlProtoUse>(&instance), {here.budget, here.nesting + 1, here.level + levelInBody}});
}

void InstanceBuild::make(VrmlProtoUse& instance) {
  if (instance.getProtoDef()) {
    if (fits(instance)) instance.makeBody();
  } else if (VrmlExternProtoDef* external = instance.getExternDef()) {
    external->getDefinition(&instance, here);
  }
}

void InstanceBuild::complete(VrmlProtoUse& instance, VrmlProtoDef& definition, const InstancePlace& place) {
  const SoRef<VrmlProtoUse> alive(&instance);
  if (!running) {
    InstanceFields before = instance.takeRealDefinition(definition);
    run(instance, place);
    instance.moveRoutes(before);
    instance.startNotify();
    return;
  }
  InstanceFields before = instance.takeRealDefinition(definition);
  running->make(instance);
  instance.moveRoutes(before);
}

// An instance that takes too much stays empty. One message says so for the whole that is being made.
bool InstanceBuild::fits(const VrmlProtoUse& instance) {
  const VrmlProtoDef& definition = *instance.getProtoDef();
  InstanceBudget& budget = *here.budget;
  if (here.nesting > budget.maxNesting)
    return complain(instance, "Instances of prototypes are nested more than " +
                                  std::to_string(budget.maxNesting) + " levels deep");
  if (here.level + definition.getBodyLevels() > budget.maxLevels)
    return complain(instance, "Nodes in instances of prototypes are nested more than " +
                                  std::to_string(budget.maxLevels) + " levels deep");
  if (budget.made + definition.getBodyNodes() > budget.maxNodes)
    return complain(instance,
                    "Instances of prototypes make more than " + std::to_string(budget.maxNodes) + " nodes");
  budget.made += definition.getBodyNodes();
  return true;
}

bool InstanceBuild::complain(const VrmlProtoUse& instance, const std::string& text) {
  if (complained) return false;
  complained = true;
  const std::string whole = text + "; an instance of \"" + instance.getFileFormatName() + "\" stays empty";
  constexpr const char* where = "VrmlProtoUse::setUpFromDefinition";
  const DefName* place = instance.getProtoDef()->getPlace();
  if (!place || !readLocation().empty())
    postReadWarning(where, whole);
  else
    postReadWarning(where, place->file.getString(), place->line, whole);
  return false;
}

}  // namespace tessel
