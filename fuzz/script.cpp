// SPDX-License-Identifier: BSD-3-Clause
// Any bytes to a script: parsed, and each of its functions run, with few steps.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <Inventor/fields/SoFieldContainer.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/FieldKind.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/script/VrmlScript.h>
#include <tessel/toolkit/SoRef.h>

#include "Traversals.h"
#include "script/VsParseTree.h"

namespace {

// A Script with a field and an eventOut of every type that scripts know, named after it ("fSFVec3f", "oSFVec3f"),
// and the eventIns `go` and `eSFVec3f`.
std::string world() {
  static constexpr const char* fields[][2] = {{"SFBool", "TRUE"},           {"SFInt32", "7"},
                                              {"SFFloat", "0.5"},           {"SFTime", "1"},
                                              {"SFString", "\"text\""},     {"SFNode", "Transform { }"},
                                              {"SFImage", "1 2 1 3 4"},     {"SFVec2f", "1 2"},
                                              {"SFVec3f", "1 2 3"},         {"SFRotation", "0 1 0 1"},
                                              {"SFColor", "1 0 0.5"},       {"MFInt32", "[ 1 2 ]"},
                                              {"MFFloat", "[ 1 2 ]"},       {"MFString", "[ \"a\" \"b\" ]"},
                                              {"MFNode", "[ Group { } ]"},  {"MFVec2f", "[ 1 2, 3 4 ]"},
                                              {"MFVec3f", "[ 1 2 3 ]"},     {"MFColor", "[ 1 0 0 ]"},
                                              {"MFRotation", "[ 0 0 1 2 ]"}};
  std::string text = "#VRML V2.0 utf8\nDEF S Script { eventIn SFBool go field SFNode self USE S\n";
  for (const auto& [type, value] : fields) {
    const std::string word = type;
    text += "field " + word + " f" + word + " " + value + "\n";
    text += "eventOut " + word + " o" + word + "\neventIn " + word + " e" + word + "\n";
  }
  return text + "}";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int steps = 300;  // as few as still come round, so that many scripts are tried
  static const bool started = (tessel::fuzz::start(), tessel::setScriptStepLimit(steps), true);
  (void)started;
  static const std::string text = world();

  // By itself: every name is a variable of a function.
  const std::string_view source(reinterpret_cast<const char*>(data), size);
  if (tessel::script::VsParseTree tree; tree.parse(source, "fuzzed")) {
    using tessel::script::Value;
    const Value arguments[] = {Value::ofTime(2), Value::ofTime(0.5)};
    tree.preExecute();
    for (const char* name : {"go", "test", "f", "eSFString", "initialize"})
      if (auto* function = tree.findFunction(name)) tree.call(*function, arguments);
    tree.postExecute();
  }

  // In a Script, where fields and eventOuts are variables too.
  tessel::ReadStatus status;
  const tessel::SoRef<SoNode> root(VrmlDB::read(text, "fuzzed.wrl", status, {}));
  if (!root) __builtin_trap();
  SoNode* const first = root->isOfType(VrmlScript::getClassTypeId()) ? root.get() : (*root->getChildren())[0];
  auto* script = static_cast<VrmlScript*>(first);
  const std::string program = "vrmlscript:" + std::string(source);
  script->url.setValue(program.c_str());
  SoFieldList fields;
  script->getFields(fields);
  for (int round = 0; round < 2; ++round)
    for (int i = 0; i < fields.getLength(); ++i)
      if (script->getFieldType(fields[i]) == static_cast<int>(tessel::FieldKind::eventIn)) fields[i]->touch();
  return 0;
}
