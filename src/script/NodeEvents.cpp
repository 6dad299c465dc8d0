// SPDX-License-Identifier: BSD-3-Clause
#include "script/NodeEvents.h"

#include <cstddef>
#include <string>
#include <string_view>

#include <Inventor/lists/SoFieldList.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/proto/VrmlProtoUse.h>
#include <tessel/script/VrmlScript.h>

#include "core/Effort.h"
#include "core/FieldSpec.h"
#include "script/GlobalVar.h"

namespace tessel::script {
namespace {

SoField* findPlain(VrmlNode& node, std::string_view name, bool isEventIn) {
  return node.getRouteEnd(SbName(std::string(name).c_str()), isEventIn);
}

SoField* findBehindSet(VrmlNode& node, std::string_view name) {
  constexpr std::string_view prefix = "set_";
  if (!name.starts_with(prefix) || name.size() == prefix.size()) return nullptr;
  return findPlain(node, name.substr(prefix.size()), true);
}

SoField* findBeforeChanged(VrmlNode& node, std::string_view name) {
  constexpr std::string_view suffix = "_changed";
  if (!name.ends_with(suffix) || name.size() == suffix.size()) return nullptr;
  name.remove_suffix(suffix.size());
  SoFieldList fields;
  node.listFields(fields);
  constexpr std::size_t eachField = 256;  // the toolkit is asked for each name
  Effort::add(eachField * static_cast<std::size_t>(fields.getLength()));
  for (int i = 0; i < fields.getLength(); ++i) {
    SbName own;
    if (node.findFieldName(fields[i], own) && std::string_view(own.getString()).starts_with(name))
      return node.getRouteEnd(own, false);
  }
  return nullptr;
}

}  // namespace

NodeEvent findNodeEvent(VrmlNode& node, const SbName& name, bool isEventIn) {
  Effort::addLookUp();
  SoField* field = node.getRouteEnd(name, isEventIn);
  const std::string_view text = name.getString();
  if (!field) field = isEventIn ? findBehindSet(node, text) : findBeforeChanged(node, text);
  if (!field) return {};
  return {field, static_cast<FieldKind>(node.getFieldType(field)), typeOf(*field)};
}

// Fields in the table of a class are the same in all its nodes, unless these have others of their own.
NodeEvent NodeEventCache::find(VrmlNode& node, const SbName& name, bool isEventIn) {
  if (node.getTypeId() == nodeType) return {spec->in(node), spec->kind, type};
  const NodeEvent event = findNodeEvent(node, name, isEventIn);
  const bool hasOwn =
      node.isOfType(VrmlProtoUse::getClassTypeId()) || node.isOfType(VrmlScript::getClassTypeId());
  SbName own;
  if (!event.field || hasOwn || !node.findFieldName(event.field, own)) return event;
  const FieldSpec* found = node.findField(own.getString());
  if (found && found->in(node) == event.field) {
    nodeType = node.getTypeId();
    type = event.type;
    spec = found;
  }
  return event;
}

}  // namespace tessel::script
