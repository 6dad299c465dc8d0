// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <Inventor/SbName.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFBool.h>

namespace tessel {
enum class FieldKind : int;
enum class ValueType : std::uint8_t;
namespace script {
class Declarations;
class ScriptRunner;
}  // namespace script
}  // namespace tessel

/// Script: a node whose events and fields are declared in the file, and the program behind them.
///
/// The declared ones are toolkit fields like any other: they are found by name, routed and copied with the
/// node, which owns them.
class TESSEL_API VrmlScript : public tessel::NodeClass<VrmlScript, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Script";
  static std::span<const tessel::FieldSpec> fields();

  SoMFString url;         ///< exposedField, one empty string: alternatives; "vrmlscript:" and a text is run
  SoSFBool mustEvaluate;  ///< field, FALSE: without effect
  SoSFBool directOutput;  ///< field, FALSE: without effect

  VrmlScript();

  /// A host's switch, 1 at first: while it is 0 no Script does anything; events wait.
  static int allEnabled;

  /// Handles the events that wait: calls their functions, then `eventsProcessed`. It is done by itself at the end of
  /// the notification that brought an event.
  void execute();

  /// Parses the program without running any of it, and reports what is wrong with it.
  /// @return false if the node has no program, or none that can be parsed
  bool checkProgram();

  /// Declares a field or event of a class of fields, SoSFBool to SoMFVec3f, with the neutral value of its type. The
  /// program starts anew with the next event.
  /// @return the field, which the node owns; null for a class that can't be declared, for a name that the node has
  ///     already, and while the program runs
  SoField* addField(tessel::FieldKind kind, SoType fieldClass, const SbName& name);

  /// Takes back what was declared under a name, with its routes. The program starts anew with the next event.
  /// @return false if nothing was, and while the program runs
  bool removeField(const SbName& name);

  /// The file that `url` was read from, empty if it came otherwise.
  const SbName& getUrlFile() const { return urlFile; }
  /// The line of that file on which value `i` of `url` begins, counted from 1; 0 if it is not known.
  int getUrlLine(int i) const;

  SoField* getField(const SbName& name) const override;
  int getFieldType(const SoField* field) const override;
  int getFieldIndex(const SoField* field) const override;
  bool findFieldName(const SoField* field, SbName& name) const override;
  void notify(SoNotList* list) override;
  int isSpatial() const override { return 0; }
  /// A script may know nodes above it.
  bool holdsNodesWeakly() const override { return true; }
  bool heedsHeldNodes() const override { return false; }
  /// Calls the program's `shutdown`. The program is gone then.
  void leaveLoop() override;
  /// Reads declarations too.
  bool readBody(tessel::WorldReader& reader) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  ~VrmlScript() override;
  const SoFieldData* getFieldData() const override;
  void destroy() override;

private:
  friend class tessel::script::ScriptRunner;
  struct Keyword;

  static const Keyword* keywordNamed(std::string_view word);
  bool hear(SoField* field);
  bool forgetProgram();
  bool readDeclaration(tessel::WorldReader& reader, const Keyword& keyword);
  bool readUrl(tessel::WorldReader& reader);

  std::unique_ptr<tessel::script::Declarations> declared;
  SbName urlFile;
  std::vector<int> urlLines;                             // of the values that were read
  std::unique_ptr<tessel::script::ScriptRunner> runner;  // made for the first event
};
