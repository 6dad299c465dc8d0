// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsSFNode.h"

#include <string>
#include <utility>

#include <Inventor/SbTime.h>

#include <tessel/core/VrmlDB.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/script/RuntimeErrors.h>

#include "core/AsVrmlNode.h"
#include "core/Effort.h"
#include "script/GlobalVar.h"
#include "script/NodeEvents.h"
#include "script/VsError.h"
#include "script/VsMemberAccess.h"
#include "script/VsSFString.h"

namespace tessel::script {
namespace {

void report(const char* text, std::string_view name, const char* more = nullptr, const char* end = nullptr) {
  std::string message = text;
  message.append(" ").append(name);
  for (const char* part : {more, end})
    if (part) message.append(" ").append(part);
  VsError::postRuntimeError("%s", message.c_str());
}

// A node whose properties can be asked for. None at all has no properties.
VrmlNode* ownerOf(SoNode* node, const char* deed, const VsMemberAccess& access) {
  if (!node) {
    report(RTE_FLD_SFNODE_NO_PROP, access.name());
    return nullptr;
  }
  VrmlNode* ours = asVrmlNode(node);
  if (!ours)
    VsError::postRunningLine("Illegal attempt to " + std::string(deed) + " property " +
                             std::string(access.name()) + " of a non-VRML nodes");
  return ours;
}

// The type that an eventIn takes as its report calls it.
const char* complaintOf(Type type) {
  switch (type) {
    case Type::sfVec2f:
      return RTE_FLD_SFNODE_SFVEC2F;
    case Type::sfVec3f:
      return RTE_FLD_SFNODE_SFVEC3F;
    case Type::sfColor:
      return RTE_FLD_SFNODE_SFCOLOR;
    default:
      return RTE_FLD_SFNODE_SFROTATION;
  }
}

bool fits(Type type, const Value& newValue, const VsMemberAccess& access) {
  if (isScalar(type) ? newValue.isScalar() : newValue.type() == type) return true;
  const std::string_view name = access.name();
  if (isScalar(type))
    report(RTE_FLD_SFNODE_NON_NUMERIC, name, RTE_FLD_SFNODE_FIELD);
  else if (isVector(type))
    report(RTE_FLD_SFNODE_ASSIGN_VAL, name, RTE_FLD_SFNODE_FIELD, complaintOf(type));
  else
    report(RTE_FLD_SFNODE_BAD_TYPE, name, RTE_FLD_SFNODE_FIELD);
  return false;
}

// A Script may make one like itself and send it an event. What happens at one time must come to an end.
bool mayRead() {
  constexpr int most = 5000;
  static SbTime time;
  static int count = 0;
  if (const SbTime now = VrmlDB::getFrameTime(); now != time) {
    time = now;
    count = 0;
  }
  if (count < most) return ++count;
  VsError::postRuntimeError("Scripts make nodes of more than %d texts at one time", most);
  return false;
}

}  // namespace

void VsSFNode::setResult(Value& result, SoNode* node) {
  if (result.type() == ofType && result.object()->isUnshared() && !result.object()->liveField()) {
    static_cast<VsSFNode*>(result.object())->own.reset(node);
  } else {
    result = Value(ofType, new VsSFNode(node));
  }
}

SoRef<SoNode> VsSFNode::read(std::string_view text) {
  if (!mayRead()) return {};
  // Its messages name the place in the script as the place of its first line.
  const Location where = VsError::whereItRuns();
  const std::string file(where.file);
  ReadOptions options;
  options.firstLine = where.line;
  const std::string_view header = VrmlDB::header_v2.getString();
  Effort::addEach(text.size());
  std::string whole(text);
  if (!text.starts_with(header)) {
    whole.insert(0, std::string(header) + "\n");
    --options.firstLine;
  }
  ReadStatus status;
  return SoRef<SoNode>(VrmlDB::read(whole, file.c_str(), status, options));
}

void VsSFNode::constructField(Arguments arguments) {
  if (arguments[0]->type() != Type::sfString) return VsError::postRuntimeError("%s", RTE_FLD_SFNODE_ARG);
  own = read(VsSFString::viewOf(*arguments[0]));
}

void VsSFNode::postExecute(const Value& current) {
  Effort::addChange();
  static_cast<SoSFNode*>(liveField())->setValue(nodeOf(current));
}

void VsSFNode::readProperty(Value& result, VsMemberAccess& access) const {
  VrmlNode* owner = ownerOf(node(), "access", access);
  if (!owner) return;
  const SoRef<VrmlNode> staying(owner);
  const NodeEvent event = access.eventOut(*owner);
  if (!event.field) return report(RTE_FLD_SFNODE_NO_PROP, access.name());
  if (!event.isEventOut())
    return report(RTE_FLD_SFNODE_NO_ACCESS, access.name(), RTE_FLD_SFNODE_NOT_EVENTOUT);
  if (isScalar(event.type)) return readScalar(*event.field, event.type, result);
  if (event.type == Type::undefined)
    return VsError::postRunningLine("createField shouldn't be called for this type");
  if (result.type() != event.type || result.object()->liveField() != event.field)
    result = fieldObjectOver(*event.field, true);
}

void VsSFNode::readNumber(Value& result, VsMemberAccess& access) const {
  VrmlNode* owner = asVrmlNode(node());
  const NodeEvent event = owner ? access.eventOut(*owner) : NodeEvent();
  if (event.isEventOut() && isScalar(event.type)) readScalar(*event.field, event.type, result);
}

void VsSFNode::writeProperty(Value& holder, VsMemberAccess& access, const Value& newValue,
                             bool wantsVector) const {
  VrmlNode* owner = ownerOf(node(), "assign to", access);
  if (!owner) return;
  const SoRef<VrmlNode> staying(owner);
  const NodeEvent event = access.eventIn(*owner);
  if (!event.field) return report(RTE_FLD_SFNODE_NO_PROP, access.name());
  if (!event.isEventIn()) return report(RTE_FLD_SFNODE_NO_ASSIGN, access.name(), RTE_FLD_SFNODE_NOT_EVENTIN);
  if (!fits(event.type, newValue, access)) return;
  if (isScalar(event.type)) {
    writeScalar(*event.field, event.type, newValue);
    readScalar(*event.field, event.type, holder);
  } else if (isVector(event.type)) {
    newValue.object()->sendTo(*event.field);
    if (wantsVector) holder = fieldObjectOver(*event.field, true);
  } else {
    access.assign(fieldObjectOver(*event.field, true), newValue);
    holder.setValue(newValue);
  }
}

}  // namespace tessel::script
