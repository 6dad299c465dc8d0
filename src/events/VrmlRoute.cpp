// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/events/VrmlRoute.h>

#include <algorithm>
#include <string>
#include <vector>

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/FieldKind.h>
#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/events/VrmlFanIn.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

#include "events/RouteEnds.h"
#include "events/RouteLevels.h"
#include "toolkit/ReadReport.h"

using tessel::FieldKind;
using tessel::kindOf;
using tessel::SoRef;
using tessel::vrmlNodeOf;

int VrmlRoute::doInvoke = 1;

namespace {

struct Observer {
  VrmlRoute::Callback* callback;
  void* userData;
  bool operator==(const Observer&) const = default;
};

std::vector<Observer>& observers() {
  static std::vector<Observer> list;
  return list;
}

// A field of a toolkit container has no kind, and passes.
bool hasKind(const SoField* field, FieldKind kind) {
  return !vrmlNodeOf(field) || kindOf(field) == kind || kindOf(field) == FieldKind::exposedField;
}

bool isOnNode(const SoField* field) {
  const SoFieldContainer* container = field->getContainer();
  return container && container->isOfType(SoNode::getClassTypeId());
}

// NODE.field, for messages.
std::string endName(const SoField* end) {
  const SoFieldContainer* container = end->getContainer();
  const std::string node = container ? tessel::givenName(*container) : std::string();
  const SbName field = tessel::fieldName(*end);
  return (node.empty() ? "<NONAME>" : node) + '.' + (field.getLength() > 0 ? field.getString() : "<UNKNOWN>");
}

void warnOfDuplicate(const SoField* from, const SoField* to) {
  tessel::postReadWarning("VrmlRoute::add", "ROUTE already exists from " + endName(from) + " to " +
                                                endName(to) + "!  Ignoring...");
}

bool hasRoom(const SoField* from, const SoField* to) {
  if (!isOnNode(from) || !isOnNode(to) || tessel::admitRoute(*from, *to)) return true;
  tessel::postReadWarning("VrmlRoute::add", "No route from " + endName(from) + " to " + endName(to) +
                                                ": the chain of routes would be too long");
  return false;
}

// Takes the value of `from` from its next event on.
void connectInSilence(SoField& field, SoField& from) {
  const tessel::NotifyOff silence(field);
  from.evaluate();
  field.connectFrom(&from, TRUE);
}

// Puts a fan-in between a field and what it is connected from.
VrmlFanIn* insertFanIn(SoField& to) {
  const SoRef<VrmlFanIn> fanIn(new VrmlFanIn(to.getTypeId()));
  SoField& first = *fanIn->addInput();
  {
    const tessel::NotifyOff silence(first);
    SoField* field = nullptr;
    SoEngineOutput* engine = nullptr;
    if (to.getConnectedField(field))
      first.connectFrom(field, TRUE);
    else if (to.getConnectedEngine(engine))
      first.connectFrom(engine, TRUE);
  }
  const tessel::NotifyOff silence(to);
  to.evaluate();  // an event that waits to be read still arrives
  to.connectFrom(&fanIn->output, TRUE);
  return fanIn.get();
}

}  // namespace

int VrmlRoute::add(SoField* from, SoField* to, int skipKindCheck) {
  if (!skipKindCheck && !(hasKind(from, FieldKind::eventOut) && hasKind(to, FieldKind::eventIn))) return 0;
  if (!canRouteBetweenTypeIds(from->getTypeId(), to->getTypeId())) return 0;

  SoField* end = to;
  if (to->isConnected()) {
    VrmlFanIn* fanIn = VrmlFanIn::feeding(to);
    if (!fanIn) fanIn = insertFanIn(*to);
    if (fanIn->findInputFrom(from)) {
      warnOfDuplicate(from, to);
      return 1;
    }
    if (!hasRoom(from, to)) return 0;
    end = fanIn->addInput();
  } else if (!hasRoom(from, to)) {
    return 0;
  }
  connectInSilence(*end, *from);
  invokeCallbacks(from, to, 1);
  return 1;
}

int VrmlRoute::remove(SoField* from, SoField* to) {
  SoField* master = nullptr;
  if (to->getConnectedField(master)) {
    if (master != from) return 0;
    to->disconnect();
  } else {
    VrmlFanIn* fanIn = VrmlFanIn::feeding(to);
    SoField* input = fanIn ? fanIn->findInputFrom(from) : nullptr;
    if (!input) return 0;
    to->evaluate();  // an event that waits to be read still arrives
    input->disconnect();
  }
  invokeCallbacks(from, to, 0);
  return 1;
}

int VrmlRoute::getAllIncoming(const SoField* to, SoFieldList& list) {
  if (const VrmlFanIn* fanIn = VrmlFanIn::feeding(to)) {
    int count = 0;
    for (int i = 0; i < fanIn->getNumInputs(); ++i) count += getAllIncoming(fanIn->getInput(i), list);
    return count;
  }
  SoField* master = nullptr;
  if (!to->getConnectedField(master) || !isOnNode(master)) return 0;
  list.append(master);
  return 1;
}

int VrmlRoute::getAllOutgoing(const SoField* from, SoFieldList& list) {
  SoFieldList connected;
  from->getForwardConnections(connected);
  int count = 0;
  for (int i = 0; i < connected.getLength(); ++i) {
    SoField* to = connected[i];
    while (to && to->getContainer() && to->getContainer()->isOfType(VrmlFanIn::getClassTypeId())) {
      const SoEngineOutput& output = static_cast<VrmlFanIn*>(to->getContainer())->output;
      to = output.getNumConnections() > 0 ? output[0] : nullptr;
    }
    if (!to || !isOnNode(to)) continue;
    list.append(to);
    ++count;
  }
  return count;
}

int VrmlRoute::getIncoming(const SoField* to, SoFieldList& list) {
  SoFieldList all;
  getAllIncoming(to, all);
  int count = 0;
  for (int i = 0; i < all.getLength(); ++i) {
    if (!isRoute(all[i], to)) continue;
    list.append(all[i]);
    ++count;
  }
  return count;
}

int VrmlRoute::getOutgoing(const SoField* from, SoFieldList& list) {
  SoFieldList all;
  getAllOutgoing(from, all);
  int count = 0;
  for (int i = 0; i < all.getLength(); ++i) {
    if (!isRoute(from, all[i])) continue;
    list.append(all[i]);
    ++count;
  }
  return count;
}

int VrmlRoute::routeExists(SoField* from, SoField* to) {
  return connectionExists(from, to) && isRoute(from, to);
}

int VrmlRoute::connectionExists(SoField* from, SoField* to) {
  SoFieldList all;
  getAllIncoming(to, all);
  return all.find(from) >= 0;
}

int VrmlRoute::isRoute(const SoField* from, const SoField* to) {
  const VrmlNode* source = vrmlNodeOf(from);
  const VrmlNode* destination = vrmlNodeOf(to);
  return (!source || source->isVrmlRoute(from, to)) && (!destination || destination->isVrmlRoute(from, to));
}

int VrmlRoute::canRouteBetweenTypeIds(const SoType& from, const SoType& to) {
  const SoType field = SoField::getClassTypeId();
  if (!from.isDerivedFrom(field) || !to.isDerivedFrom(field)) return 0;
  const SoType children = VrmlMFChildren::getClassTypeId();
  const SoType nodes = SoMFNode::getClassTypeId();
  return from == to || (from == children && to == nodes) || (from == nodes && to == children);
}

void VrmlRoute::addCallback(Callback* callback, void* userData) {
  observers().push_back({callback, userData});
}

void VrmlRoute::removeCallback(Callback* callback, void* userData) {
  auto& list = observers();
  const auto found = std::find(list.begin(), list.end(), Observer{callback, userData});
  if (found != list.end()) list.erase(found);
}

// An observer may take itself or others off the list.
void VrmlRoute::invokeCallbacks(SoField* from, SoField* to, int added) {
  if (!doInvoke) return;
  const std::vector<Observer> present = observers();
  for (const Observer& observer : present)
    if (std::find(observers().begin(), observers().end(), observer) != observers().end())
      observer.callback(observer.userData, from, to, added);
}
