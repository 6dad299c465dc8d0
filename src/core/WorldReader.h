// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <Inventor/SbName.h>

#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/SoRef.h>

#include "core/InstanceBudget.h"
#include "core/ValueType.h"
#include "toolkit/Lexer.h"
#include "toolkit/ReadReport.h"
#include "toolkit/SourceText.h"

class SoField;
class SoNode;
class VrmlNode;

namespace tessel {

struct FieldSpec;
class WorldReader;

/// A statement that is no node (ROUTE, PROTO, EXTERNPROTO) reads what follows its keyword; false after a
/// report. The floor that knows the statement enters it at start-up.
using StatementReader = bool (*)(WorldReader&);
void registerStatement(std::string_view keyword, StatementReader reader);

/// What the prototypes do in the middle of a read. Empty until they enter themselves.
struct PrototypeHooks {
  /// A new instance of the prototype of that name in scope, unreferenced; null if there is none.
  VrmlNode* (*createUse)(WorldReader&, std::string_view name) = nullptr;
  /// Reads `IS name` behind a field name. `error` is set after a report.
  bool (*readIS)(WorldReader&, std::string_view fieldName, SoField* field, bool& error) = nullptr;
  /// A stack of name scopes is made for a text and deleted after it. The current one, if any, has a number from 0.
  int (*createStack)() = nullptr;
  void (*deleteStack)(int id) = nullptr;
  int (*currentStack)() = nullptr;
  void (*setCurrentStack)(int id) = nullptr;
};
PrototypeHooks& prototypeHooks();

/// Builds nodes from the tokens of one text.
///
/// Every function that fails has reported, with the line of the offending token.
class WorldReader {
public:
  /// What a traversal meets in a node, itself and USEs included.
  struct Extent {
    std::uint64_t nodes = 1;
    int levels = 1;
  };
  /// A node that can be used again.
  struct Reference {
    SoRef<VrmlNode> node;
    Extent extent;
    std::vector<const VrmlNode*> above;  // nodes around it that it holds, itself held by a Script
  };
  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const noexcept {
      return std::hash<std::string_view>{}(name);
    }
  };
  using References = std::unordered_map<std::string, Reference, NameHash, std::equal_to<>>;

  WorldReader(SourceText text, const ReadOptions& options);

  /// The body of a prototype is being read: it has DEF names of its own, its nodes don't count as nodes of the world,
  /// and what is in it counts for each instance.
  class [[nodiscard]] BodyScope {
  public:
    BodyScope(WorldReader& reader, const VrmlNode& body);
    ~BodyScope();
    BodyScope(const BodyScope&) = delete;
    BodyScope& operator=(const BodyScope&) = delete;

    std::uint64_t nodes() const { return reader.nodesMade - nodesBefore; }
    /// What a traversal of an instance meets: USEs, and bodies of instances inside it, followed.
    const Extent& extent() const { return reader.open.back().extent; }
    /// How many nodes stand inside one another in it.
    int levels() const { return static_cast<int>(reader.deepest - firstLevel); }

  private:
    friend WorldReader;
    WorldReader& reader;
    References names;
    References* outerNames;
    BodyScope* outer;
    std::uint64_t nodesBefore;
    std::size_t firstLevel, deepestBefore;
  };

  Lexer& lexer() { return tokens; }
  const ReadOptions& options() const { return readOptions; }
  const std::string& fileName() const { return source.fileName; }
  /// The same as a name, which many may keep at no cost.
  const SbName& fileNameAsName() const { return sourceName; }

  /// Reads statements until one node is complete. Null with `error` false at the end of the text.
  SoRef<VrmlNode> readTopNode(bool& error);
  /// Reads a statement that begins with `word` if it is one; `ok` tells how it went.
  bool readStatement(std::string_view word, bool& ok);
  /// Reads one node in the place of a value: DEF, USE, or a type name and a body. A null result with `ok`
  /// stands for NULL.
  SoRef<VrmlNode> readNode(bool& ok);
  /// Reads the fields of a node up to its closing brace, which stays.
  bool readFields(VrmlNode& node);
  /// Reads one field or statement of a node whose first word, `name`, is taken.
  bool readField(VrmlNode& node, std::string_view name);
  /// Reads what stands behind a field name into the field.
  bool readFieldValue(SoField& field, ValueType type, std::string_view fieldName);
  /// The same where no IS may stand.
  bool readPlainValue(SoField& field, ValueType type, std::string_view fieldName);
  /// Reads statements until one node is complete, inside the body of a prototype: null with `error` false where no
  /// statement begins.
  SoRef<VrmlNode> readBodyNode(bool& error);

  /// The level of the node that is being read, 1 for the root of a world that stands in no other.
  int depth() const { return static_cast<int>(open.size()) + readOptions.levelsAbove; }

  /// The node that a DEF of this text or prototype body has named, null if none.
  VrmlNode* findReference(std::string_view name) const;
  /// Names a node: enters it among the references and, less the instance suffix, with the toolkit.
  Reference& addReference(std::string_view name, VrmlNode* node);
  /// Puts another set of references in place; gives the old one.
  References* setReferences(References* others) { return std::exchange(references, others); }

  /// The same, counted from the body of a prototype if there is one around it.
  int level() const;
  /// Whether what has so many levels would be nested too deep here, which is then reported.
  bool isTooDeep(int levels = 1);
  /// Counts what a traversal meets under the node that is being read. False after a report if it is too much.
  bool addExtent(const Extent& extent);
  const std::shared_ptr<InstanceBudget>& instanceBudget() const { return budget; }

  /// From now on the line of each string that is read goes into the list; null ends that.
  void setStringLines(std::vector<int>* lines) { stringLines = lines; }
  /// To be called where a string begins.
  void noteString() {
    if (stringLines) stringLines->push_back(tokens.line());
  }

  /// Posts a read error in printf style. False, for `return reader.error(...)`.
  [[gnu::format(printf, 2, 3)]] bool error(const char* format, ...);
  /// Posts a warning of the read.
  [[gnu::format(printf, 3, 4)]] void warning(const char* where, const char* format, ...);
  /// How many errors were posted, to tell whether somebody below has reported already.
  int errorCount() const { return errors; }

private:
  struct OpenNode {
    const VrmlNode* node;
    bool holdsWeakly;  // its node fields may point back up without making a cycle of traversals
    Extent extent;     // that was met so far, its levels those below it
    std::vector<const VrmlNode*> above;  // nodes around a Script around it that it holds
  };

  struct NamedField {
    SoField* field = nullptr;
    ValueType type = ValueType::count;
  };

  static NamedField findField(VrmlNode& node, std::string_view name);
  SoRef<VrmlNode> createNode(std::string_view typeName);
  SoRef<VrmlNode> readDefinition(std::string_view defName, std::string_view typeName);
  SoRef<VrmlNode> readUse();
  bool readEventForm(VrmlNode& node, std::string_view name);
  bool isOpen(const VrmlNode* node) const;
  void holdAbove(const std::vector<const VrmlNode*>& nodes);
  bool makesCycle(const VrmlNode* node) const;
  void warnOfRest();

  SourceText source;
  SbName sourceName;
  ReadOptions readOptions;
  Lexer tokens;
  References fileReferences;
  References* references = &fileReferences;
  std::vector<OpenNode> open;
  Extent world{0, 0};  // of the nodes at file level
  int errors = 0;
  std::vector<int>* stringLines = nullptr;
  BodyScope* body = nullptr;  // the innermost, if any
  int lowestLevel = 0;
  std::uint64_t nodesMade = 0;
  std::size_t deepest = 0;  // of `open`
  std::shared_ptr<InstanceBudget> budget;
};

}  // namespace tessel
