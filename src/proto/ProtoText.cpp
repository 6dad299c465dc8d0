// SPDX-License-Identifier: BSD-3-Clause
// Prototypes as text: the PROTO statement and the IS clause read, the interface written.
#include <tessel/proto/VrmlProtoDef.h>

#include <string>

#include <Inventor/SoOutput.h>
#include <Inventor/fields/SoField.h>

#include <tessel/core/FieldKind.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/proto/VrmlProtoDict.h>

#include "core/ValueWriter.h"
#include "core/WorldReader.h"
#include "proto/ProtoInterface.h"
#include "proto/ProtoReading.h"

using tessel::FieldKind;
using tessel::ValueType;
using tessel::WorldReader;

namespace {

// The toolkit compares each new name with all others.
constexpr int maxDeclared = 10000;

constexpr const char* keywords[] = {"field", "exposedField", "eventIn", "eventOut"};
constexpr std::size_t keywordWidth = 13;

int kindNamed(std::string_view word) {
  for (int kind = 0; kind < 4; ++kind)
    if (word == keywords[kind]) return kind;
  return -1;
}

class OpenPrototype {
public:
  explicit OpenPrototype(VrmlProtoDef& d) : definition(d) { definition.openPrototype(); }
  ~OpenPrototype() { definition.closePrototype(); }
  OpenPrototype(const OpenPrototype&) = delete;
  OpenPrototype& operator=(const OpenPrototype&) = delete;

private:
  VrmlProtoDef& definition;
};

}  // namespace

// In its scope only after its body, so that it can't use itself.
int VrmlProtoDef::read(WorldReader& reader) {
  const tessel::SoRef<VrmlProtoDef> definition(new VrmlProtoDef);
  const int line = reader.lexer().line();
  if (!definition->readContents(reader)) return 0;
  definition->setDef({definition->name, reader.fileNameAsName(), line});
  VrmlProtoDict::add(definition->stackId, definition.get());
  return 1;
}

int VrmlProtoDef::readContents(WorldReader& reader) {
  tessel::Lexer& lexer = reader.lexer();
  const Reading reading(*this);
  if (!readNameAndInterface(reader, 1)) return 0;
  if (!lexer.take('{')) return reader.error("Expected a '{' to begin prototype definition");
  if (reader.isTooDeep()) return 0;
  const OpenPrototype open(*this);
  const WorldReader::BodyScope scope(reader, *this);
  for (;;) {
    bool error = false;
    const tessel::SoRef<VrmlNode> node = reader.readBodyNode(error);
    if (error) return 0;
    if (!node) break;
    body->addChild(node.get());
  }
  if (!lexer.take('}')) return reader.error("Expected a '}' to end prototype definition");
  bodyNodes = scope.nodes();
  expandedNodes = scope.extent().nodes;
  expandedLevels = scope.extent().levels;
  bodyLevels = scope.levels();
  return 1;
}

int VrmlProtoDef::readNameAndInterface(WorldReader& reader, int readValues) {
  tessel::Lexer& lexer = reader.lexer();
  const std::string text(lexer.strictName());
  if (text.empty()) return reader.error("Invalid prototype definition name");
  name = SbName(text.c_str());
  if (!lexer.take('[')) return reader.error("Expected a '['");
  int error = 0;
  while (readInterfaceItem(reader, readValues, error)) {
  }
  if (error) return 0;
  return lexer.take(']') || reader.error("Expected a ']'");
}

int VrmlProtoDef::readInterfaceItem(WorldReader& reader, int readValues, int& error) {
  tessel::Lexer& lexer = reader.lexer();
  error = 0;
  const std::string word(lexer.strictName());
  if (word.empty()) return 0;
  error = 1;
  const int kind = kindNamed(word);
  if (kind < 0) return reader.error("Unknown event or field keyword: \"%s\"", word.c_str());
  const std::string typeName(lexer.strictName());
  if (typeName.empty()) return reader.error("Expected event or field type for %s", word.c_str());
  const ValueType type = tessel::valueTypeNamed(typeName);
  if (type == ValueType::count) return reader.error("Unknown event or field type: \"%s\"", typeName.c_str());
  const std::string fieldName(lexer.strictName());
  if (fieldName.empty()) return reader.error("Expected name for %s", word.c_str());
  if (getNumInterfaceFields() == maxDeclared)
    return reader.error("A prototype declares more than %d fields and events", maxDeclared);

  SoField* field = addInterfaceField(fieldName, static_cast<FieldKind>(kind), type);
  std::unique_ptr<SoField> unused;
  if (!field) {
    reader.warning("VrmlProtoDef::readInterfaceItem",
                   "\"%s\" is declared twice; the first declaration counts", fieldName.c_str());
    unused.reset(tessel::newField(type));
    field = unused.get();
  }
  const bool hasValue = kind < 2;
  if (readValues && hasValue && !reader.readPlainValue(*field, type, fieldName)) return 0;
  error = 0;
  return 1;
}

// Asked for each field in a file, so the keyword is only looked at.
bool VrmlProtoDef::readIS(WorldReader& reader, std::string_view fieldName, SoField* field, bool& error) {
  error = false;
  tessel::Lexer& lexer = reader.lexer();
  if (lexer.strictName() != "IS") {
    lexer.putBack();
    return false;
  }
  error = true;
  const std::string wanted(lexer.strictName());
  if (wanted.empty()) return reader.error("Missing event or field name for IS");
  VrmlProtoDef* definition = getTopProtoDef();
  if (!definition) return reader.error("IS statement outside PROTO definition");
  const char* protoName = definition->name.getString();
  const int index = definition->interface->find(wanted);
  if (index < 0)
    return reader.error("No such event or field \"%s\" inside PROTO %s", wanted.c_str(), protoName);

  const std::string bodyName(fieldName);
  const SoField* own = definition->getInterfaceField(index);
  const bool fits = VrmlRoute::canRouteBetweenTypeIds(field->getTypeId(), own->getTypeId());
  if (!fits)
    return reader.error("Field %s and %s in PROTO %s have different types", bodyName.c_str(), wanted.c_str(),
                        protoName);
  const auto* node = static_cast<const VrmlNode*>(field->getContainer());
  const auto kind = static_cast<FieldKind>(node->getFieldType(field));
  if (kind != (*definition->interface)[index].kind && kind != FieldKind::exposedField)
    return reader.error("Field %s and %s in PROTO %s are incompatible as an IS mapping", bodyName.c_str(),
                        wanted.c_str(), protoName);
  definition->addIsMapping(field, index);
  error = false;
  return true;
}

void VrmlProtoDef::writeNameAndInterface(SoOutput* out, const char* keyword, int withValues) {
  constexpr int levels = 6;
  out->indent();
  out->write(keyword);
  out->write(' ');
  out->write(name.getString());
  out->write(" [\n");
  out->incrementIndent(levels);
  for (int i = 0; i < getNumInterfaceFields(); ++i) writeInterfaceItem(out, i, withValues);
  out->decrementIndent(1);
  out->indent();
  out->write("]\n");
  out->decrementIndent(levels - 1);
}

void VrmlProtoDef::writeInterfaceItem(SoOutput* out, int index, int withValue) {
  const auto& item = (*interface)[index];
  std::string text = keywords[static_cast<int>(item.kind)];
  text.resize(keywordWidth, ' ');
  out->indent();
  out->write((text + tessel::nameOf(item.type) + ' ' + item.name.getString() + ' ').c_str());
  if (withValue && item.hasValue()) {
    std::string value;
    tessel::writeValue(value, *getInterfaceField(index), item.type);
    out->write(value.c_str());
  }
  out->write('\n');
}
