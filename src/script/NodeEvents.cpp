// SPDX-License-Identifier: BSD-3-Clause
#include "script/NodeEvents.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include <Inventor/lists/SoFieldList.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/proto/VrmlProtoUse.h>

#include "core/FieldSpec.h"
#include "script/Effort.h"

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

// To name the fields of an instance would connect them all with its body.
SoField* findBeforeChanged(VrmlNode& node, std::string_view name) {
  constexpr std::string_view suffix = "_changed";
  if (!name.ends_with(suffix) || name.size() == suffix.size()) return nullptr;
  name.remove_suffix(suffix.size());
  if (node.isOfType(VrmlProtoUse::getClassTypeId()))
    if (SoField* field = findPlain(node, name, false)) return field;
  SoFieldList fields;
  node.getFields(fields);
  for (int i = 0; i < fields.getLength(); ++i) {
    SbName own;
    Effort::addEach(static_cast<std::size_t>(i));  // the toolkit finds each name from the first one on
    if (node.getFieldName(fields[i], own) && std::string_view(own.getString()).starts_with(name))
      return fields[i];
  }
  return nullptr;
}

}  // namespace

NodeEvent findNodeEvent(VrmlNode& node, const SbName& name, bool isEventIn) {
  SoField* field = node.getRouteEnd(name, isEventIn);
  const std::string_view text = name.getString();
  if (!field) field = isEventIn ? findBehindSet(node, text) : findBeforeChanged(node, text);
  if (!field) return {};
  Effort::addEach(static_cast<std::size_t>(std::max(node.getFieldIndex(field), 0)));
  return {field, static_cast<FieldKind>(node.getFieldType(field))};
}

// Fields in the table of a class are the same in all its nodes.
NodeEvent NodeEventCache::find(VrmlNode& node, const SbName& name, bool isEventIn) {
  if (node.getTypeId() == type) return {spec->in(node), spec->kind};
  const NodeEvent event = findNodeEvent(node, name, isEventIn);
  SbName own;
  if (!event.field || node.isOfType(VrmlProtoUse::getClassTypeId()) || !node.getFieldName(event.field, own))
    return event;
  const FieldSpec* found = node.findField(own.getString());
  if (found && found->in(node) == event.field) {
    type = node.getTypeId();
    spec = found;
  }
  return event;
}

VrmlNode* asVrmlNode(SoNode* node) {
  return node && node->isOfType(VrmlNode::getClassTypeId()) ? static_cast<VrmlNode*>(node) : nullptr;
}

}  // namespace tessel::script
