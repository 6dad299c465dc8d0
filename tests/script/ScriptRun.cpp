// SPDX-License-Identifier: BSD-3-Clause
#include "script/ScriptRun.h"

#include <cstdio>

#include "script/VsField.h"
#include "script/VsSFNode.h"
#include "script/VsSFString.h"

using namespace tessel::script;

namespace tessel::test {

ScriptReports::ScriptReports() { setScriptReportHandler(hearCB, this); }
ScriptReports::~ScriptReports() { setScriptReportHandler(nullptr, nullptr); }

void ScriptReports::hearCB(const ScriptReport& report, void* self) {
  static_cast<ScriptReports*>(self)->heard.push_back({report.kind, std::string(report.message),
                                                      std::string(report.text), std::string(report.script),
                                                      std::string(report.file), report.line});
}

std::vector<std::string> ScriptReports::messages() const {
  std::vector<std::string> list;
  for (const Heard& one : heard) list.push_back(one.message);
  return list;
}

// Its type and components, as its elements show them.
static std::string vectorText(const Value& value) {
  static constexpr const char* names[] = {"SFVec2f", "SFVec3f", "SFRotation", "SFColor"};
  static constexpr int counts[] = {2, 3, 4, 3};
  const int kind = static_cast<int>(value.type()) - static_cast<int>(Type::sfVec2f);
  std::string text = names[kind];
  for (int i = 0; i < counts[kind]; ++i) {
    Value component;
    value.object()->getElement(component, -1, i);
    char number[32];
    std::snprintf(number, sizeof number, " %.5g", component.getTime() + 0.0);
    text += number;
  }
  return text;
}

// Its type and values: numbers as they are, strings in brackets, vectors by their components.
static std::string multipleText(const Value& value) {
  static constexpr const char* names[] = {"MFInt32", "MFFloat", "MFString", "MFNode",
                                          "MFVec2f", "MFVec3f", "MFColor",  "MFRotation"};
  std::string text = names[static_cast<int>(value.type()) - static_cast<int>(Type::mfInt32)];
  Value count;
  value.object()->memberEvaluate(count, Property::length, "length");
  for (int i = 0; i < count.getInt(); ++i) {
    Value element;
    value.object()->getElement(element, -1, i);
    if (isVector(element.type())) {
      Value vector;
      vector.setValue(element);
      const std::string components = vectorText(vector);
      text += " (" + components.substr(components.find(' ') + 1) + ")";
    } else if (element.type() == Type::sfString) {
      text += " [" + std::string(VsSFString::viewOf(element)) + "]";
    } else if (element.type() == Type::sfNode) {
      text += VsSFNode::nodeOf(element) ? " node" : " null";
    } else {
      text += ' ' + VsSFString::getStringFromScalar(element);
    }
  }
  return text;
}

std::string written(const Value& value) {
  static constexpr const char* scalars[] = {"SFBool ", "SFInt32 ", "SFFloat ", "SFTime "};
  if (value.isScalar())
    return scalars[static_cast<int>(value.type())] + VsSFString::getStringFromScalar(value);
  if (isMultiple(value.type())) return multipleText(value);
  switch (value.type()) {
    case Type::none:
      return "none";
    case Type::undefined:
      return "undefined";
    case Type::sfString:
      return "SFString " + std::string(VsSFString::viewOf(value));
    case Type::sfVec2f:
    case Type::sfVec3f:
    case Type::sfRotation:
    case Type::sfColor:
      return vectorText(value);
    case Type::sfNode:
      return VsSFNode::nodeOf(value) ? "SFNode" : "SFNode null";
    default:
      return "object";
  }
}

std::string resultOf(std::string_view text) {
  VsParseTree tree;
  if (!tree.parse(text, "")) return "unparsed";
  Function* test = tree.findFunction("test");
  if (!test) return "no test";
  tree.preExecute();
  Value result;
  if (!tree.call(*test, {}, &result)) return "stopped";
  tree.postExecute();
  return written(result);
}

}  // namespace tessel::test
