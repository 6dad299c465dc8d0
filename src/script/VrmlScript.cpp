// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/script/VrmlScript.h>

#include <algorithm>
#include <string>

#include <Inventor/SoDB.h>
#include <Inventor/misc/SoNotification.h>

#include <tessel/toolkit/Scoped.h>

#include "core/AsVrmlNode.h"
#include "core/Loops.h"
#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"
#include "script/Declarations.h"
#include "script/ScriptRunner.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;
using tessel::ValueType;

// The toolkit compares each new name with all that a node has.
static constexpr std::size_t maxDeclared = 10000;

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
  declared = std::make_unique<tessel::script::Declarations>(*this, **NodeClass::getFieldDataPtr());
}

VrmlScript::~VrmlScript() { tessel::forgetSuspect(*this); }

int VrmlScript::allEnabled = 1;

// The last function of a program still finds the node whole. Events that it sends here are handled at once or never.
void VrmlScript::leaveLoop() {
  if (!runner) return;
  ref();
  runner->shutDown();
  unrefNoDelete();
  runner.reset();
}

// A node that is in a loop may live on, and any to the end of a notification.
void VrmlScript::destroy() {
  if (getDiscounted() == 0 && !SoDB::isNotifying()) leaveLoop();
  NodeClass::destroy();
}

void VrmlScript::execute() {
  if (!runner) runner = std::make_unique<tessel::script::ScriptRunner>(*this);
  runner->execute();
}

bool VrmlScript::checkProgram() { return tessel::script::ScriptRunner(*this).parseProgram() != nullptr; }

static bool holdsNodes(ValueType type) { return type == ValueType::sfNode || type == ValueType::mfNode; }

// False if the event is lost.
bool VrmlScript::hear(SoField* field) {
  const auto* known = declared->of(field);
  if (known && holdsNodes(known->type)) tessel::suspectLoop(*this);
  if (known && known->kind == FieldKind::eventIn) {
    if (!runner) runner = std::make_unique<tessel::script::ScriptRunner>(*this);
    return runner->take(known->number);
  }
  if (runner && getFieldType(field) == static_cast<int>(FieldKind::field)) runner->fieldChanged();
  return true;
}

void VrmlScript::notify(SoNotList* list) {
  const SoNotRec* record = list->getLastRec();
  SoField* field = list->getLastField();
  if (isNotifyEnabled() && field && record && record->getType() == SoNotRec::CONTAINER &&
      field->getContainer() == this) {
    if (!hear(field) || optimizedNotify) return;
  }
  NodeClass::notify(list);
}

const SoFieldData* VrmlScript::getFieldData() const { return declared->table(); }

SoField* VrmlScript::addField(FieldKind kind, SoType fieldClass, const SbName& name) {
  const ValueType type =
      fieldClass == SoMFNode::getClassTypeId() ? ValueType::mfNode : tessel::valueTypeOf(fieldClass);
  const bool isKind = kind == FieldKind::field || kind == FieldKind::eventIn || kind == FieldKind::eventOut;
  if (!isKind || type == ValueType::count || getField(name) || !forgetProgram()) return nullptr;
  return declared->add(kind, type, name).field.get();
}

bool VrmlScript::removeField(const SbName& name) {
  return declared->named(name) && forgetProgram() && declared->remove(name);
}

// A program knows the fields that it was parsed for.
bool VrmlScript::forgetProgram() {
  if (runner && runner->isExecuting()) return false;
  runner.reset();
  return true;
}

SoField* VrmlScript::getField(const SbName& name) const {
  if (const auto* found = declared->named(name)) return found->field.get();
  const FieldSpec* spec = findField(name.getString());
  return spec ? spec->in(const_cast<VrmlScript&>(*this)) : nullptr;
}

int VrmlScript::getFieldType(const SoField* field) const {
  const auto* found = declared->of(field);
  return found ? static_cast<int>(found->kind) : NodeClass::getFieldType(field);
}

int VrmlScript::getFieldIndex(const SoField* field) const {
  const auto* found = declared->of(field);
  return found ? found->index : NodeClass::getFieldIndex(field);
}

bool VrmlScript::findFieldName(const SoField* field, SbName& name) const {
  const auto* found = declared->of(field);
  if (!found) return NodeClass::findFieldName(field, name);
  if (found->index >= 0) name = (*declared)[found->number].name;
  return found->index >= 0;
}

bool VrmlScript::readBody(tessel::WorldReader& reader) {
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  bool hasUrl = false;
  for (;;) {
    const std::string_view word = reader.lexer().strictName();
    if (word.empty()) break;
    const Keyword* keyword = keywordNamed(word);
    hasUrl = hasUrl || word == "url";
    if (!(keyword         ? readDeclaration(reader, *keyword)
          : word == "url" ? readUrl(reader)
                          : reader.readField(*this, word)))
      return false;
  }
  // The program of a url that was mapped, and has no value, is that of the instances.
  if (reader.options().checkScripts && !(hasUrl && url.isDefault())) checkProgram();
  return true;
}

// With the line of each string: what a program complains of is found by it.
bool VrmlScript::readUrl(tessel::WorldReader& reader) {
  urlLines.clear();
  urlFile = reader.fileNameAsName();
  reader.setStringLines(&urlLines);
  const bool ok = reader.readField(*this, "url");
  reader.setStringLines(nullptr);
  return ok;
}

int VrmlScript::getUrlLine(int i) const {
  return i >= 0 && i < static_cast<int>(urlLines.size()) ? urlLines[static_cast<std::size_t>(i)] : 0;
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

  if (declared->size() == maxDeclared)
    return reader.error("A Script declares more than %d fields and events", static_cast<int>(maxDeclared));
  const auto& declaration = declared->add(keyword.kind, type, name.c_str());
  SoField* field = declaration.field.get();
  if (declaration.kind == FieldKind::internal)
    reader.warning("VrmlScript::readDeclaration", "\"%s\" is declared twice; the first declaration counts",
                   name.c_str());
  if (keyword.kind == FieldKind::field) return reader.readFieldValue(*field, type, name);
  bool failed = false;
  if (const auto readIS = tessel::prototypeHooks().readIS) readIS(reader, name, field, failed);
  return !failed;
}

static void discountCopy(const SoNode* original, SoNode* copy) {
  const VrmlNode* ours = tessel::asVrmlNode(original);
  if (ours && copy && copy != original && ours->getDiscounted() > 0)
    static_cast<VrmlNode*>(copy)->discountReference();
}

void VrmlScript::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  const auto* original = static_cast<const VrmlScript*>(from);
  urlFile = original->urlFile;
  urlLines = original->urlLines;
  for (const auto& one : *original->declared)
    declared->add(one.kind, tessel::valueTypeOf(*one.field), one.name);
  NodeClass::copyContents(from, copyConnections);
  // What the original knows above itself its copy knows too, as a copy.
  for (const auto& one : *declared) {
    const SoField* field = from->getField(one.name);
    if (!field || one.kind == FieldKind::internal) continue;
    if (tessel::valueTypeOf(*one.field) == ValueType::sfNode)
      discountCopy(static_cast<const SoSFNode*>(field)->getValue(),
                   static_cast<SoSFNode&>(*one.field).getValue());
    if (tessel::valueTypeOf(*one.field) == ValueType::mfNode) {
      const auto& originals = *static_cast<const SoMFNode*>(field);
      const auto& copies = static_cast<SoMFNode&>(*one.field);
      for (int i = 0; i < std::min(originals.getNum(), copies.getNum()); ++i)
        discountCopy(originals[i], copies[i]);
    }
  }
}

template class tessel::NodeClass<VrmlScript, VrmlNode>;
