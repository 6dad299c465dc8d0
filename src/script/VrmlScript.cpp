// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/script/VrmlScript.h>

#include <string>

#include <tessel/toolkit/Scoped.h>

#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;
using tessel::ValueType;

// A word that begins a declaration.
struct VrmlScript::Keyword {
  const char* word;
  FieldKind kind;
};

const VrmlScript::Keyword* VrmlScript::keywordNamed(std::string_view word) {
  static constexpr Keyword keywords[] = {
      {"eventIn", FieldKind::eventIn},
      {"eventOut", FieldKind::eventOut},
      {"field", FieldKind::field},
  };
  for (const Keyword& keyword : keywords)
    if (keyword.word == word) return &keyword;
  return nullptr;
}

std::span<const FieldSpec> VrmlScript::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlScript::url>("url", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlScript::mustEvaluate>("mustEvaluate", FieldKind::field, {false}),
      fieldSpec<&VrmlScript::directOutput>("directOutput", FieldKind::field, {false}),
  };
  return table;
}

VrmlScript::VrmlScript() {
  setUpFields();
  allFields = std::make_unique<SoFieldData>(*NodeClass::getFieldDataPtr());
}

VrmlScript::~VrmlScript() = default;

const SoFieldData* VrmlScript::getFieldData() const { return allFields.get(); }

SoField* VrmlScript::addField(FieldKind kind, ValueType type, const SbName& name) {
  if (type == ValueType::count) return nullptr;
  Declared& added = declared.emplace_back(
      Declared{name, kind, std::unique_ptr<SoField>(tessel::newField(type))});
  added.field->setContainer(this);
  allFields->addField(this, name.getString(), added.field.get());
  return added.field.get();
}

const VrmlScript::Declared* VrmlScript::findDeclared(FieldKind kind, const SbName& name) const {
  for (const Declared& one : declared)
    if (one.kind == kind && one.name == name) return &one;
  return nullptr;
}

SoField* VrmlScript::getField(const SbName& name) const {
  for (const FieldKind kind : {FieldKind::eventOut, FieldKind::eventIn, FieldKind::field})
    if (const Declared* found = findDeclared(kind, name)) return found->field.get();
  return NodeClass::getField(name);
}

int VrmlScript::getFieldType(const SoField* field) const {
  for (const Declared& one : declared)
    if (one.field.get() == field) return static_cast<int>(one.kind);
  return NodeClass::getFieldType(field);
}

bool VrmlScript::readBody(tessel::WorldReader& reader) {
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  for (;;) {
    const std::string_view word = reader.lexer().strictName();
    if (word.empty()) return true;
    const Keyword* keyword = keywordNamed(word);
    if (!(keyword ? readDeclaration(reader, *keyword) : reader.readField(*this, word))) return false;
  }
}

// `field SFBool on TRUE`, `eventIn SFBool set IS on`: type, name, then a value for a field, or IS for any.
bool VrmlScript::readDeclaration(tessel::WorldReader& reader, const Keyword& keyword) {
  const std::string_view typeName = reader.lexer().strictName();
  if (typeName.empty()) return reader.error("Expected event or field type for %s", keyword.word);
  const ValueType type = tessel::valueTypeNamed(typeName);
  if (type == ValueType::count)
    return reader.error("Unknown event or field type: \"%s\"", std::string(typeName).c_str());
  const std::string name(reader.lexer().strictName());
  if (name.empty()) return reader.error("Expected name for %s", keyword.word);

  if (findDeclared(keyword.kind, name.c_str()))
    reader.warning("VrmlScript::readDeclaration", "%s \"%s\" is declared twice; the first declaration counts",
                   keyword.word, name.c_str());
  SoField* field = addField(keyword.kind, type, name.c_str());
  if (keyword.kind == FieldKind::field) return reader.readFieldValue(*field, type, name);
  bool failed = false;
  if (const auto readIS = tessel::prototypeHooks().readIS) readIS(reader, name, field, failed);
  return !failed;
}

void VrmlScript::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  for (const Declared& one : static_cast<const VrmlScript*>(from)->declared)
    addField(one.kind, tessel::valueTypeOf(*one.field), one.name);
  NodeClass::copyContents(from, copyConnections);
}

template class tessel::NodeClass<VrmlScript, VrmlNode>;
