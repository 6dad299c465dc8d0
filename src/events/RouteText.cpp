// SPDX-License-Identifier: BSD-3-Clause
// Routes as text: the ROUTE statement read and written.
#include <tessel/events/VrmlRoute.h>

#include <string>
#include <string_view>

#include <Inventor/SoOutput.h>
#include <Inventor/lists/SoNodeList.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/VrmlNode.h>

#include "core/WorldReader.h"
#include "events/RouteEnds.h"

using tessel::FieldKind;
using tessel::kindOf;

namespace {

// What the two ends of a ROUTE statement differ in. An exposed field may be named in its event form, that is
// with the prefix or the suffix.
struct End {
  FieldKind kind;
  const char* kindName;
  std::string_view prefix, suffix;

  bool inEventForm(std::string_view name) const {
    return name.size() > prefix.size() + suffix.size() && name.starts_with(prefix) && name.ends_with(suffix);
  }
  std::string plain(std::string_view name) const {
    return std::string(name.substr(prefix.size(), name.size() - prefix.size() - suffix.size()));
  }
};
constexpr End source = {FieldKind::eventOut, "eventOut", "", "_changed"};
constexpr End destination = {FieldKind::eventIn, "eventIn", "set_", ""};

std::string eventName(const SoField& field, const End& end) {
  const SbName name = tessel::fieldName(field);
  if (kindOf(&field) != FieldKind::exposedField) return name.getString();
  return std::string(end.prefix) + name.getString() + std::string(end.suffix);
}

void writeLine(SoOutput& out, const std::string& text) {
  out.indent();
  out.write(text.c_str());
}

}  // namespace

int VrmlRoute::read(tessel::WorldReader& reader) {
  SoField* const from = readEnd(reader, 0);
  SoField* const to = from && reader.lexer().strictName() == "TO" ? readEnd(reader, 1) : nullptr;
  if (!to) return reader.error("Bad ROUTE specification");
  if (!canRouteBetweenTypeIds(from->getTypeId(), to->getTypeId()))
    return reader.error("ROUTE types do not match");
  add(from, to, 0);  // one that makes too long a chain is warned of and left out
  return 1;
}

SoField* VrmlRoute::readEnd(tessel::WorldReader& reader, int isEventIn) {
  tessel::Lexer& lexer = reader.lexer();
  const std::string nodeName(lexer.peek() == '"' ? std::string_view() : lexer.referenceName());
  if (nodeName.empty() || !lexer.take('.')) return nullptr;
  const std::string fieldName(lexer.identifier());
  if (fieldName.empty()) return nullptr;

  VrmlNode* const node = reader.findReference(nodeName);
  if (!node) {
    reader.error("Unknown node \"%s\"", nodeName.c_str());
    return nullptr;
  }
  return tessel::findEnd(reader, *node, nodeName, fieldName, isEventIn != 0);
}

SoField* tessel::findEnd(WorldReader& reader, VrmlNode& node, const std::string& nodeName,
                         const std::string& fieldName, bool isEventIn) {
  const End& end = isEventIn ? destination : source;
  if (SoField* field = node.getRouteEnd(fieldName.c_str(), isEventIn)) {
    const FieldKind kind = kindOf(field);
    if (kind == FieldKind::exposedField || kind == end.kind) return field;
    reader.error("\"%s\" in node \"%s\" is not an %s", fieldName.c_str(), nodeName.c_str(), end.kindName);
    return nullptr;
  }
  if (end.inEventForm(fieldName)) {
    if (SoField* field = node.getRouteEnd(end.plain(fieldName).c_str(), isEventIn)) {
      if (kindOf(field) == FieldKind::exposedField) return field;
      reader.error("\"%s\" in node \"%s\" is not an exposed field", fieldName.c_str(), nodeName.c_str());
      return nullptr;
    }
  }
  reader.error("Unknown %s \"%s\" in node \"%s\"", end.kindName, fieldName.c_str(), nodeName.c_str());
  return nullptr;
}

void VrmlRoute::getRefNameString(SoOutput* out, SoBase* base, SbString& name) {
  name = base->getName().getString();
  const int id = out->findReference(base);
  if (id == -1) return;
  SoNodeList sameName;
  if (name.getLength() == 0 || SoNode::getByName(base->getName(), sameName) >= 2) {
    name += "_";
    name.addIntString(id);
  }
}

void VrmlRoute::write(SoOutput* out, SoField* from, SoField* to) {
  SbString fromName, toName;
  getRefNameString(out, from->getContainer(), fromName);
  getRefNameString(out, to->getContainer(), toName);
  bool reachable = true;
  for (SbString* name : {&fromName, &toName}) {
    if (name->getLength() > 0) continue;
    *name = "???";
    reachable = false;
  }
  if (!reachable) {
    writeLine(*out, "# One end of the following route is not in this scope.\n");
    writeLine(*out, "# It may be in an inline or other unreachable node.\n");
  }
  const std::string fromEnd = std::string(fromName.getString()) + '.' + eventName(*from, source);
  const std::string toEnd = std::string(toName.getString()) + '.' + eventName(*to, destination);
  writeLine(*out, (reachable ? "ROUTE " : "# ROUTE ") + fromEnd + " TO " + toEnd + '\n');
}
