// SPDX-License-Identifier: BSD-3-Clause
#include "core/WorldReader.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include <tessel/core/VrmlNode.h>

#include "core/FieldSpec.h"
#include "core/ValueReader.h"
#include "toolkit/TypeNames.h"

namespace tessel {

namespace {

struct Statement {
  std::string keyword;
  StatementReader reader;
};

std::vector<Statement>& statements() {
  static std::vector<Statement> list;
  return list;
}

// A name that a writer made up for a node without one: an underscore, then digits and underscores.
bool isGenerated(std::string_view name) {
  return name.starts_with('_') && name.find_first_not_of("0123456789_", 1) == std::string_view::npos;
}

// The name less its instance suffix: Box_12 and Box_1_2 are both Box, Box12 is itself; a '+' cuts too, as
// writers of the toolkit make it.
std::string_view withoutInstanceSuffix(std::string_view name) {
  if (!name.empty() && name.back() >= '0' && name.back() <= '9') {
    const std::size_t last = name.find_last_not_of("0123456789_");
    const std::size_t tail = last == std::string_view::npos ? 0 : last + 1;
    const std::size_t cut = name.find('_', tail);
    if (cut != std::string_view::npos) name = name.substr(0, cut);
  }
  const std::size_t plus = name.find('+', 1);
  return plus == std::string_view::npos ? name : name.substr(0, plus);
}

std::string formatted(const char* format, va_list arguments) {
  char text[2048];
  std::vsnprintf(text, sizeof text, format, arguments);
  return text;
}

}  // namespace

void registerStatement(std::string_view keyword, StatementReader reader) {
  statements().push_back({std::string(keyword), reader});
}

PrototypeHooks& prototypeHooks() {
  static PrototypeHooks hooks;
  return hooks;
}

WorldReader::WorldReader(SourceText text, const ReadOptions& o)
    : source(std::move(text)),
      sourceName(source.fileName.c_str()),
      readOptions(o),
      tokens(source.text(), o.firstLine, source.bodyStart),
      budget(std::make_shared<InstanceBudget>(InstanceBudget{
          .maxNodes = o.maxInstanceNodes, .maxNesting = o.maxInstanceNesting, .maxLevels = o.maxNesting})) {}

WorldReader::BodyScope::BodyScope(WorldReader& r, const VrmlNode& body)
    : reader(r),
      outerNames(std::exchange(r.references, &names)),
      outer(std::exchange(r.body, this)),
      nodesBefore(r.nodesMade),
      firstLevel(r.open.size() + 1),
      deepestBefore(std::exchange(r.deepest, firstLevel)) {
  reader.open.push_back({&body, false, {0, 0}, {}});
}

WorldReader::BodyScope::~BodyScope() {
  reader.open.pop_back();
  reader.references = outerNames;
  reader.body = outer;
  reader.nodesMade = nodesBefore;
  reader.deepest = std::max(deepestBefore, reader.deepest);
}

bool WorldReader::error(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  postReadError(formatted(format, arguments));
  va_end(arguments);
  ++errors;
  return false;
}

void WorldReader::warning(const char* where, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  postReadWarning(where, formatted(format, arguments));
  va_end(arguments);
}

bool WorldReader::readStatement(std::string_view word, bool& ok) {
  for (const Statement& statement : statements()) {
    if (statement.keyword != word) continue;
    ok = statement.reader(*this);
    return true;
  }
  return false;
}

SoRef<VrmlNode> WorldReader::readTopNode(bool& error) {
  const ReadScope scope(tokens, source.fileName);
  SoRef<VrmlNode> node = readBodyNode(error);
  if (!node && !error) warnOfRest();
  return node;
}

SoRef<VrmlNode> WorldReader::readBodyNode(bool& error) {
  error = true;
  for (;;) {
    const std::string_view word = tokens.name();
    if (word.empty()) {
      error = false;
      return {};
    }
    bool ok = false;
    if (readStatement(word, ok)) {
      if (!ok) return {};
      continue;
    }
    tokens.putBack();
    SoRef<VrmlNode> node = readNode(ok);
    if (ok && !node) this->error("NULL is no node for the top level of a world");
    if (!ok || !node) return {};
    error = false;
    return node;
  }
}

// The end of a text is where no name can be read. If something stands there all the same, the author meant
// it to count.
void WorldReader::warnOfRest() {
  if (tokens.peek() >= 0)
    warning("VrmlDB::read", "\"%c\" here ends the world; what follows is not read", tokens.peek());
  tokens.stop();
  if (tokens.endedInComment()) warning("VrmlDB::read", "EOF reached before end of comment");
}

SoRef<VrmlNode> WorldReader::readNode(bool& ok) {
  ok = false;
  const std::string_view word = tokens.strictName();
  if (word == "USE") {
    SoRef<VrmlNode> node = readUse();
    ok = static_cast<bool>(node);
    return node;
  }
  if (word == "NULL") {
    ok = true;
    return {};
  }
  SoRef<VrmlNode> node;
  if (word == "DEF") {
    const std::string defName(tokens.referenceName());
    if (defName.empty()) {
      error("A name was expected behind DEF");
      return {};
    }
    node = readDefinition(defName, tokens.strictName());
  } else {
    node = readDefinition({}, word);
  }
  ok = static_cast<bool>(node);
  return node;
}

SoRef<VrmlNode> WorldReader::readUse() {
  const std::string name(tokens.referenceName());
  const auto found = references->find(name);
  if (found == references->end()) {
    error("Unknown reference \"%.200s\"", name.c_str());
    return {};
  }
  VrmlNode* node = found->second.node.get();
  const auto& above = found->second.above;
  if (makesCycle(node) ||
      std::ranges::any_of(above, [this](const VrmlNode* one) { return makesCycle(one); })) {
    error("USE of \"%.200s\" inside itself", name.c_str());
    return {};
  }
  const Extent& extent = found->second.extent;
  if (isTooDeep(extent.levels) || !addExtent(extent)) return {};
  if (isOpen(node)) {
    node->discountReference();
    holdAbove({node});
  }
  holdAbove(above);
  return SoRef<VrmlNode>(node);
}

// What a Script holds may stand in the scene too, by another USE, and then without the Script around it.
void WorldReader::holdAbove(const std::vector<const VrmlNode*>& nodes) {
  if (open.empty() || open.back().holdsWeakly) return;
  auto& above = open.back().above;
  for (const VrmlNode* node : nodes)
    if (isOpen(node) && std::ranges::find(above, node) == above.end()) above.push_back(node);
}

// A file of a few lines can use each of its groups twice in the next one, and so on until no traversal ends.
bool WorldReader::addExtent(const Extent& extent) {
  Extent& sum = open.empty() ? world : open.back().extent;
  constexpr std::uint64_t most = std::uint64_t{1} << 62;
  sum.nodes = std::min(sum.nodes + extent.nodes, most);
  sum.levels = std::max(sum.levels, extent.levels);
  lowestLevel = std::max(lowestLevel, depth() + extent.levels);
  if (readOptions.levels) *readOptions.levels = lowestLevel;
  return sum.nodes <= readOptions.maxExpanded || body ||  // nobody traverses the body of a prototype
         error("The world shows more than %llu nodes, each USE counted anew",
               static_cast<unsigned long long>(readOptions.maxExpanded));
}

bool WorldReader::isOpen(const VrmlNode* node) const {
  return std::ranges::any_of(open, [node](const OpenNode& one) { return one.node == node; });
}

bool WorldReader::makesCycle(const VrmlNode* node) const {
  const auto met = std::find_if(open.rbegin(), open.rend(),
                                [node](const OpenNode& one) { return one.holdsWeakly || one.node == node; });
  return met != open.rend() && !met->holdsWeakly;
}

SoRef<VrmlNode> WorldReader::createNode(std::string_view typeName) {
  if (typeName.empty()) {
    if (const int c = tokens.peek(); c < 0)
      error("The file ends where a node was expected");
    else
      error("A node was expected at \"%c\"", c);
    return {};
  }
  if (const auto createUse = prototypeHooks().createUse)
    if (VrmlNode* use = createUse(*this, typeName)) return SoRef<VrmlNode>(use);

  const int length = static_cast<int>(typeName.size());
  const TypeNames::Entry entry = typeNames().find(typeName);
  switch (entry.meaning) {
    case TypeNames::Meaning::node:
      return SoRef<VrmlNode>(static_cast<VrmlNode*>(entry.type.createInstance()));
    case TypeNames::Meaning::abstractNode:
    case TypeNames::Meaning::abstractForeign:
      error("class \"%.*s\" is an abstract class", length, typeName.data());
      break;
    case TypeNames::Meaning::notANode:
      error("\"%.*s\" is not an SoBase", length, typeName.data());
      break;
    case TypeNames::Meaning::foreignNode:
      error("Non-VRML 2.0 node (%.*s) found in world", length, typeName.data());
      break;
    case TypeNames::Meaning::unknown: {
      // A class that describes its own fields is one of the toolkit's, only not known here.
      std::string_view first;
      if (Lexer ahead = tokens; ahead.take('{')) first = ahead.strictName();
      if (first == "fields" || first == "inputs")
        error("Non-VRML 2.0 node (%s) found in world", first == "fields" ? "UnknownNode" : "UnknownEngine");
      else
        error("Unknown class \"%.*s\"", length, typeName.data());
      break;
    }
  }
  return {};
}

SoRef<VrmlNode> WorldReader::readDefinition(std::string_view defName, std::string_view typeName) {
  const int defLine = defName.empty() ? 0 : tokens.line();
  if (isTooDeep()) return {};
  SoRef<VrmlNode> node = createNode(typeName);
  if (!node) return {};
  Reference* own = nullptr;
  if (!defName.empty()) {
    node->setDef({SbName(std::string(defName).c_str()), sourceName, defLine});
    own = &addReference(defName, node.get());
  }
  if (!tokens.take('{')) {
    error("\"{\" was expected behind \"%s\"", node->getFileFormatName());
    return {};
  }
  open.push_back({node.get(), node->holdsNodesWeakly(), {1, 0}, {}});
  deepest = std::max(deepest, open.size());
  ++nodesMade;
  const bool ok = node->readBody(*this);
  const Extent extent{open.back().extent.nodes, open.back().extent.levels + 1};
  std::vector<const VrmlNode*> above = std::move(open.back().above);
  open.pop_back();
  if (!ok || !addExtent(extent)) return {};
  holdAbove(above);
  if (own && own->node.get() == node.get()) {  // unless the name was given anew in there
    own->extent = extent;
    own->above = std::move(above);
  }
  if (!tokens.take('}')) {
    if (const int c = tokens.peek(); c < 0)
      error("The file ends inside of \"%s\"", node->getFileFormatName());
    else
      error("A field name or \"}\" was expected at \"%c\" in \"%s\"", c, node->getFileFormatName());
    return {};
  }
  return node;
}

// A chain of USEs is as deep as one that is written out.
bool WorldReader::isTooDeep(int levels) {
  if (depth() + levels <= readOptions.maxNesting) return false;
  error("Nodes are nested more than %d levels deep", readOptions.maxNesting);
  return true;
}

int WorldReader::level() const { return body ? static_cast<int>(open.size() - body->firstLevel) : depth(); }

bool WorldReader::readFields(VrmlNode& node) {
  for (;;) {
    const std::string_view name = tokens.strictName();
    if (name.empty()) return true;
    if (!readField(node, name)) return false;
  }
}

bool WorldReader::readField(VrmlNode& node, std::string_view name) {
  bool ok = false;
  if (readStatement(name, ok)) return ok;
  const NamedField found = findField(node, name);
  return found.field ? readFieldValue(*found.field, found.type, name) : readEventForm(node, name);
}

// From the table of the node's class, or a field that this node alone has.
WorldReader::NamedField WorldReader::findField(VrmlNode& node, std::string_view name) {
  if (const FieldSpec* spec = node.findField(name)) return {spec->in(node), spec->type};
  SoField* own = node.getField(SbName(std::string(name).c_str()));
  return {own, own ? valueTypeOf(*own) : ValueType::count};
}

// set_x and x_changed stand for an exposed field x only in front of IS; a value goes under the plain name.
bool WorldReader::readEventForm(VrmlNode& node, std::string_view name) {
  constexpr std::string_view prefix = "set_", suffix = "_changed";
  std::string_view plain;
  NamedField found;
  if (name.size() >= 5 && name.starts_with(prefix)) {
    plain = name.substr(prefix.size());
    found = findField(node, plain);
  }
  if (!found.field && name.size() >= 9 && name.ends_with(suffix)) {
    plain = name.substr(0, name.size() - suffix.size());
    found = findField(node, plain);
  }
  if (!found.field) return error("Unknown field \"%.*s\"", static_cast<int>(name.size()), name.data());
  bool failed = false;
  const auto readIS = prototypeHooks().readIS;
  if (readIS && readIS(*this, name, found.field, failed)) return true;
  if (failed) return false;
  return error("A value was given to the event \"%.*s\"; it belongs to \"%.*s\"",
               static_cast<int>(name.size()), name.data(), static_cast<int>(plain.size()), plain.data());
}

bool WorldReader::readFieldValue(SoField& field, ValueType type, std::string_view fieldName) {
  bool failed = false;
  if (const auto readIS = prototypeHooks().readIS; readIS && readIS(*this, fieldName, &field, failed))
    return true;
  return !failed && readPlainValue(field, type, fieldName);
}

bool WorldReader::readPlainValue(SoField& field, ValueType type, std::string_view fieldName) {
  const int before = errors;
  if (readValue(*this, field, type)) return true;
  if (errors == before)
    error("Couldn't read value for field \"%.*s\"", static_cast<int>(fieldName.size()), fieldName.data());
  return false;
}

VrmlNode* WorldReader::findReference(std::string_view name) const {
  const auto found = references->find(name);
  return found == references->end() ? nullptr : found->second.node.get();
}

WorldReader::Reference& WorldReader::addReference(std::string_view name, VrmlNode* node) {
  Reference& entry =
      references->insert_or_assign(std::string(name), Reference{SoRef<VrmlNode>(node), {}, {}}).first->second;
  if (!isGenerated(name)) {
    const std::string_view plain = withoutInstanceSuffix(name);
    const SbName& def = node->getDefName();
    node->nameInToolkit(plain == def.getString() ? def : SbName(std::string(plain).c_str()));
  }
  return entry;
}

}  // namespace tessel
