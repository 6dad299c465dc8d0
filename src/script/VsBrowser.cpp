// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsBrowser.h"

#include <initializer_list>
#include <string>

#include <tessel/core/VrmlNode.h>
#include <tessel/events/VrmlFanIn.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/script/RuntimeErrors.h>

#include "core/AsVrmlNode.h"
#include "core/Effort.h"
#include "script/NodeEvents.h"
#include "script/VsError.h"
#include "script/VsMFields.h"
#include "script/VsSFNode.h"
#include "script/VsSFString.h"

namespace tessel::script {
namespace {

const char* nameOf(Method method) {
  switch (method) {
    case Method::getCurrentSpeed:
      return "getCurrentSpeed";
    case Method::getCurrentFrameRate:
      return "getCurrentFrameRate";
    case Method::getWorldURL:
      return "getWorldURL";
    case Method::replaceWorld:
      return "replaceWorld";
    case Method::createVrmlFromString:
      return "createVrmlFromString";
    case Method::createVrmlFromURL:
      return "createVrmlFromURL";
    case Method::addRoute:
      return "addRoute";
    case Method::deleteRoute:
      return "deleteRoute";
    case Method::loadURL:
      return "loadURL";
    default:
      return "setDescription";
  }
}

// The first argument of a wrong type is reported.
bool areOf(std::initializer_list<Type> types, Method method, Arguments arguments) {
  static constexpr const char* places[] = {"First", "Second", "Third", "Fourth"};
  std::size_t i = 0;
  for (const Type type : types) {
    if (arguments[i]->type() != type) {
      VsError::postRuntimeError("%s %s.%s %s %s", places[i], RTE_BROWSER_WRONG_ARG_PART1, nameOf(method),
                                RTE_BROWSER_WRONG_ARG_PART2, type == Type::sfNode ? "SFNode" : "SFString");
      return false;
    }
    ++i;
  }
  return true;
}

void createVrmlFromString(Value& result, Arguments arguments) {
  if (!areOf({Type::sfString}, Method::createVrmlFromString, arguments)) return;
  const Value node(Type::sfNode, new VsSFNode(VsSFNode::read(VsSFString::viewOf(*arguments[0])).get()));
  allocField(result, Type::mfNode);
  result.object()->append(node);
}

// No field has a longer name, and the toolkit writes over other memory when it is given one of 64 KiB.
constexpr std::size_t longestName = 2048;

// The field that events are sent to, or listened to; null after a report.
SoField* lookupEvent(const Value& holder, const Value& nameValue, bool isEventIn, Method method) {
  const std::string name(VsSFString::viewOf(nameValue));
  Effort::addEach(name.size());
  VrmlNode* node = name.size() <= longestName ? asVrmlNode(VsSFNode::nodeOf(holder)) : nullptr;
  const NodeEvent event = node ? findNodeEvent(*node, name.c_str(), isEventIn) : NodeEvent();
  if (!event.field) {
    VsError::postRuntimeError("%s.%s %s %s %s", RTE_BROWSER_IN_BROWSER, nameOf(method),
                              isEventIn ? RTE_BROWSER_NO_EVENTIN : RTE_BROWSER_NO_EVENTOUT, name.c_str(),
                              RTE_BROWSER_EXISTS);
    return nullptr;
  }
  if (isEventIn ? event.isEventIn() : event.isEventOut()) return event.field;
  VsError::postRuntimeError("%s.%s - %s %s", RTE_BROWSER_IN_BROWSER, nameOf(method), name.c_str(),
                            isEventIn ? RTE_BROWSER_NOT_EVENTIN : RTE_BROWSER_NOT_EVENTOUT);
  return nullptr;
}

void changeRoute(Method method, Arguments arguments) {
  if (!areOf({Type::sfNode, Type::sfString, Type::sfNode, Type::sfString}, method, arguments)) return;
  SoField* from = lookupEvent(*arguments[0], *arguments[1], false, method);
  SoField* to = from ? lookupEvent(*arguments[2], *arguments[3], true, method) : nullptr;
  if (!to) return;
  if (const VrmlFanIn* fanIn = VrmlFanIn::feeding(to))
    Effort::addEach(static_cast<std::size_t>(fanIn->getNumInputs()));
  if (method == Method::deleteRoute) {
    if (VrmlRoute::routeExists(from, to)) VrmlRoute::remove(from, to);
  } else if (!VrmlRoute::canRouteBetweenTypeIds(from->getTypeId(), to->getTypeId())) {
    VsError::postRuntimeError("%s.%s", RTE_BROWSER_IN_BROWSER, RTE_BROWSER_EVENT_MISMATCH);
  } else {
    VrmlRoute::add(from, to);
  }
}

}  // namespace

void VsBrowser::evaluateMethod(Value& result, Method method, Arguments arguments) {
  switch (method) {
    case Method::getName:
      return VsSFString::setResult(result, SharedText("Tessel Viewer"));
    case Method::getVersion:
      return VsSFString::setResult(result, SharedText("Version 1.1"));
    case Method::createVrmlFromString:
      return createVrmlFromString(result, arguments);
    case Method::addRoute:
    case Method::deleteRoute:
      return changeRoute(method, arguments);
    default:
      VsError::postRuntimeError("%s %s() %s", RTE_BROWSER_OBJECT, nameOf(method),
                                RTE_BROWSER_NOT_IMPLEMENTED);
  }
}

}  // namespace tessel::script
