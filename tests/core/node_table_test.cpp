// SPDX-License-Identifier: BSD-3-Clause
// Every class of node against node-table.txt, which says what a file can set in each.
#include <gtest/gtest.h>

#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/pointing/VrmlLocateHighlight.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <Inventor/SbName.h>
#include <Inventor/SbString.h>
#include <Inventor/fields/SoSFRotation.h>
#include <Inventor/lists/SoFieldList.h>

#include "core/ValueReader.h"
#include "core/ValueType.h"
#include "core/WorldReader.h"
#include "support/Paths.h"
#include "support/TestWorld.h"
#include "toolkit/TypeNames.h"

using namespace tessel;
using namespace tessel::test;

namespace {

struct ExpectedField {
  std::string kind, type, name, value;
  int line = 0;
};

struct ExpectedClass {
  std::string parent;
  bool isAbstract = false;
  std::vector<ExpectedField> own;
};

using Table = std::map<std::string, ExpectedClass>;

Table readTable() {
  Table table;
  ExpectedClass* current = nullptr;
  std::ifstream file(testFile("core/node-table.txt"));
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    if (line[0] == ' ') {
      ExpectedField field;
      words >> field.kind >> field.type >> field.name >> std::ws;
      std::getline(words, field.value);
      field.line = number;
      current->own.push_back(field);
      continue;
    }
    std::string name, word;
    words >> name;
    current = &table[name];
    while (words >> word) {
      if (word == "<") words >> current->parent;
      if (word == "abstract") current->isAbstract = true;
    }
  }
  return table;
}

// Inherited fields come first.
std::vector<ExpectedField> allFields(const Table& table, const std::string& name) {
  const ExpectedClass& one = table.at(name);
  std::vector<ExpectedField> fields =
      one.parent.empty() ? std::vector<ExpectedField>{} : allFields(table, one.parent);
  fields.insert(fields.end(), one.own.begin(), one.own.end());
  return fields;
}

const char* wordOf(int kind) {
  constexpr const char* words[] = {"field", "exposedField", "eventIn", "eventOut", "internal"};
  return words[kind];
}

bool haveEqualValues(const SoField& a, const SoField& b) {
  if (a.isOfType(SoSFRotation::getClassTypeId()))
    return static_cast<const SoSFRotation&>(a).getValue().equals(
        static_cast<const SoSFRotation&>(b).getValue(), 1e-6f);
  return a == b;
}

// A field of a node against its row. `other` is a field of another node of the class, to take the default as a
// file would spell it.
void expectField(VrmlNode& node, SoField& field, SoField& other, const ExpectedField& row) {
  SbName name;
  node.getFieldName(&field, name);
  EXPECT_EQ(row.name, name.getString());
  EXPECT_EQ(row.kind, wordOf(node.getFieldType(&field)));
  const ValueType type = valueTypeOf(field);
  ASSERT_NE(type, ValueType::count);
  EXPECT_EQ(row.type, nameOf(type));
  if (row.value == "children") {
    ASSERT_EQ(type, ValueType::children);
    EXPECT_EQ(static_cast<VrmlMFChildren&>(field).getValue(), node.getChildren());
    EXPECT_FALSE(field.isDefault()) << "a file must always get it";
    return;
  }
  EXPECT_TRUE(field.isDefault());
  std::string complaint;
  const std::string text = "#VRML V2.0 utf8\n" + row.value + " ";
  WorldReader reader(*takeText(text, "node-table.txt", complaint), {});
  ASSERT_TRUE(readValue(reader, other, type)) << row.value;
  EXPECT_EQ(reader.lexer().peek(), -1) << "one value and no more";
  SbString actual;
  field.get(actual);
  EXPECT_TRUE(haveEqualValues(field, other)) << "is " << actual.getString() << ", not " << row.value;
}

void expectClass(const Table& table, const std::string& name) {
  const ExpectedClass& expected = table.at(name);
  const SoType type = typeNames().find(name).type;
  ASSERT_TRUE(type.isDerivedFrom(VrmlNode::getClassTypeId())) << "not registered";
  EXPECT_EQ(type.canCreateInstance(), !expected.isAbstract);
  if (!expected.parent.empty()) {
    EXPECT_EQ(type.getParent(), typeNames().find(expected.parent).type) << expected.parent;
  }
  if (expected.isAbstract) return;

  const SoRef<VrmlNode> node(static_cast<VrmlNode*>(type.createInstance()));
  const SoRef<VrmlNode> other(static_cast<VrmlNode*>(type.createInstance()));
  EXPECT_EQ(name, node->getFileFormatName());
  const std::vector<ExpectedField> rows = allFields(table, name);
  SoFieldList fields, otherFields;
  ASSERT_EQ(static_cast<std::size_t>(node->getFields(fields)), rows.size());
  other->getFields(otherFields);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE("node-table.txt:" + std::to_string(rows[i].line) + ": " + rows[i].name);
    expectField(*node, *fields[static_cast<int>(i)], *otherFields[static_cast<int>(i)], rows[i]);
  }
}

TEST(NodeTable, EachClassHasTheFieldsOfItsRows) {
  startLibrary();
  const Table table = readTable();
  for (const auto& [name, expected] : table) {
    SCOPED_TRACE(name);
    expectClass(table, name);
  }
}

TEST(NodeTable, EveryClassThatAFileCanNameHasItsRows) {
  startLibrary();
  const Table table = readTable();
  std::set<std::string> named;
  for (int key = 0; key < SoType::getNumTypes(); ++key) {
    const SoType type = SoType::fromKey(static_cast<std::uint16_t>(key));
    if (!type.isDerivedFrom(VrmlNode::getClassTypeId())) continue;
    const std::string name = std::string(type.getName().getString()).substr(std::string_view("Vrml").size());
    if (typeNames().find(name).type == type) named.insert(name);
  }
  named.erase("NULL");  // a value, not a class, to a file
  std::set<std::string> inTable;
  for (const auto& row : table) inTable.insert(row.first);
  EXPECT_EQ(named, inTable);
}

TEST(NodeTable, TellsAWrongFieldFromARightOne) {
  const TestWorld right("Group { children [ Shape { geometry Box { } } TouchSensor { enabled FALSE } ] }");
  EXPECT_EQ(right.status, ReadStatus::world);
  EXPECT_TRUE(right.messages.empty()) << right.messages.text();
  const TestWorld wrong(
      "Group { children [\n Shape { geometry Box { } }\n TouchSensor { autoOffset FALSE } ] }");
  EXPECT_EQ(wrong.status, ReadStatus::failed);
  ASSERT_FALSE(wrong.messages.empty());
  EXPECT_NE(wrong.messages.all()[0].find("Unknown field \"autoOffset\"\n\tOccurred at line   4"),
            std::string::npos)
      << wrong.messages.text();
}

TEST(NodeTable, ValuesWithNamesAreReadByThem) {
  const TestWorld world("DEF L LocateHighlight { style EMISSIVE_DIFFUSE mode OFF }");
  const auto* highlight = world.get<VrmlLocateHighlight>("L");
  ASSERT_TRUE(highlight) << world.messages.text();
  EXPECT_EQ(highlight->mode.getValue(), VrmlLocateHighlight::OFF);
  EXPECT_EQ(highlight->style.getValue(), VrmlLocateHighlight::EMISSIVE_DIFFUSE);
  for (const char* wrong :
       {"LocateHighlight { mode off }", "LocateHighlight { mode 1 }", "LocateHighlight { mode }"}) {
    const TestWorld refused(wrong);
    EXPECT_EQ(refused.status, ReadStatus::failed) << wrong;
    EXPECT_EQ(refused.messages.count("Couldn't read value for field \"mode\""), 1) << refused.messages.text();
  }
}

TEST(NodeTable, WhatOnlyTheLibraryMakesHasNoNameInAFile) {
  const TestWorld world("XXXX_ProtoUse_XXXX { }");
  EXPECT_EQ(world.status, ReadStatus::failed);
  EXPECT_EQ(world.messages.count("Unknown class \"XXXX_ProtoUse_XXXX\""), 1) << world.messages.text();
}

}  // namespace
