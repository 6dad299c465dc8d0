// SPDX-License-Identifier: BSD-3-Clause
#include <memory>

#include <tessel/core/VrmlDB.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/output/NodeNames.h>
#include <tessel/toolkit/Scoped.h>

#include "core/ValueReader.h"
#include "core/WorldReader.h"
#include "events/RouteEnds.h"
#include "output/NodeNamesState.h"

namespace tessel {

namespace {

// A field that can carry a value to `to`.
std::unique_ptr<SoField> carrierFor(const SoField& to, ValueType& type) {
  type = valueTypeOf(to);
  if (type == ValueType::children) type = ValueType::mfNode;
  return std::unique_ptr<SoField>(type == ValueType::count ? nullptr : newField(type));
}

}  // namespace

bool sendEvent(NodeNames& names, std::string_view target, std::string_view value, const char* fileName,
               int line) {
  SourceText source;
  source.bytes = value;
  source.fileName = fileName;
  WorldReader reader(std::move(source), {.firstLine = line});
  const ReadScope scope(reader.lexer(), reader.fileName());

  const std::size_t dot = target.rfind('.');
  if (dot == std::string_view::npos) return reader.error("NODE.FIELD was expected");
  const std::string nodeName(target.substr(0, dot)), fieldName(target.substr(dot + 1));
  VrmlNode* node = names.find(nodeName);
  if (!node) return reader.error("Unknown node \"%s\"", nodeName.c_str());
  SoField* to = findEnd(reader, *node, nodeName, fieldName, true);
  if (!to) return false;

  ValueType type = ValueType::count;
  const std::unique_ptr<SoField> carrier = carrierFor(*to, type);
  WorldReader::References references;
  for (const auto& [name, named] : names.state->nodes) references[name].node.reset(named);
  reader.setReferences(&references);
  const ScopedValue<int> ours(VrmlDB::usingVrmlTypeIds, 1);
  const int before = reader.errorCount();
  const bool ok = carrier && readValue(reader, *carrier, type);
  if (!ok)
    return reader.errorCount() > before ? false
                                        : reader.error("This is no value for \"%s\"", fieldName.c_str());
  if (reader.lexer().peek() >= 0) return reader.error("The value ends before this");
  const SoRef<VrmlNode> alive(node);
  to->copyFrom(*carrier);
  return true;
}

}  // namespace tessel
