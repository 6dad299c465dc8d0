// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include <Inventor/SoInput.h>
#include <Inventor/lists/SoNodeList.h>
#include <Inventor/nodes/SoCone.h>
#include <Inventor/nodes/SoSeparator.h>

#include <unistd.h>
#include <zlib.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/core/VrmlWorldInfo.h>

#include "support/Paths.h"
#include "support/TestWorld.h"

using tessel::ReadStatus;
using tessel::test::TestWorld;

namespace {

// What a text of one line behind the header is to be told.
struct Fault {
  const char* text;
  const char* message;
  int line = 2;
};

class ReadFault : public testing::TestWithParam<Fault> {};

TEST_P(ReadFault, EndsInAMessageWithItsLine) {
  const TestWorld world(GetParam().text);
  EXPECT_EQ(world.status, ReadStatus::failed);
  EXPECT_EQ(world.root(), nullptr);
  ASSERT_FALSE(world.messages.empty());
  char location[64];
  std::snprintf(location, sizeof location, "\n\tOccurred at line %3d in test.wrl", GetParam().line);
  EXPECT_EQ(world.messages.all().front(), std::string("Coin read error: ") + GetParam().message + location);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, ReadFault,
    testing::Values(
        Fault{"Group { foo 1 }", "Unknown field \"foo\""},
        Fault{"\n\nGroup {\n foo 1 }", "Unknown field \"foo\"", 5},
        Fault{"Grop { }", "Unknown class \"Grop\""},
        Fault{"Grop { fields [ SFBool x ] }", "Non-VRML 2.0 node (UnknownNode) found in world"},
        Fault{"Separator { }", "Non-VRML 2.0 node (Separator) found in world"},
        Fault{"Group { children [\n Separator { } ] }", "Non-VRML 2.0 node (Separator) found in world", 3},
        Fault{"CullingGroup { }", "class \"CullingGroup\" is an abstract class"},
        Fault{"Camera { }", "class \"Camera\" is an abstract class"},
        Fault{"SFVec3f { }", "\"SFVec3f\" is not an SoBase"},
        Fault{"NavigationInfo { headlight 1 }", "Unknown value (\"1\") for SoSFBool (must be TRUE or FALSE)"},
        Fault{"NavigationInfo { headlight true }",
              "Unknown value (\"true\") for SoSFBool (must be TRUE or FALSE)"},
        Fault{"Transform { translation 1 2 x }", "Couldn't read value for field \"translation\""},
        Fault{"Transform { translation 1 2 nan }", "Couldn't read value for field \"translation\""},
        Fault{"WorldInfo { info [ \"a\" \"b\" \n} ] }", "Couldn't read value 3 of field", 3},
        Fault{"WorldInfo { info [ \"a\"", "Couldn't read value 2 of field"},
        Fault{"WorldInfo { title \"a", "The file ends inside of a string"},
        Fault{"Transform { set_translation 1 0 0 }",
              "A value was given to the event \"set_translation\"; it belongs to \"translation\""},
        Fault{"Group { children [ USE A DEF A Group { } ] }", "Unknown reference \"A\""},
        Fault{"DEF A Group { children Group { children USE A } }", "USE of \"A\" inside itself"},
        Fault{"Group { children [ Group { ] }", "A field name or \"}\" was expected at \"]\" in \"Group\""},
        Fault{"Group { children [\n Group { }", "The file ends where a node was expected", 3},
        Fault{"Group {\n", "The file ends inside of \"Group\"", 3},
        Fault{"Group [ ]", "\"{\" was expected behind \"Group\""},
        Fault{"Script { field SFBool ROUTE TRUE ROUTE a.b TO c.d }", "Unknown node \"a\""},
        Fault{"NULL", "NULL is no node for the top level of a world"},
        Fault{"DEF { }", "A name was expected behind DEF"},
        Fault{"Shape { geometry IndexedLineSet { coordIndex [ 0 1 2147483648 ] } }",
              "Couldn't read value 3 of field"}));

TEST(Read, TheNumberOfTopLevelNodesDecides) {
  EXPECT_TRUE(TestWorld("Transform { }").root()->isOfType(VrmlTransform::getClassTypeId()));
  const TestWorld two("Transform { } WorldInfo { }");
  ASSERT_EQ(two.root()->getTypeId(), VrmlGroup::getClassTypeId());
  EXPECT_EQ(static_cast<VrmlGroup*>(two.root())->getNumChildren(), 2);
  EXPECT_EQ(TestWorld("\n# nothing\n").status, ReadStatus::empty);
}

TEST(Read, CommasAndMissingBlanksAreFine) {
  const TestWorld world("DEF T Transform{translation 1,2,3,children[WorldInfo{info[\"a\",\"b\",]},NULL]}");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  auto* t = world.get<VrmlTransform>("T");
  ASSERT_TRUE(t);
  EXPECT_EQ(t->translation.getValue(), SbVec3f(1, 2, 3));
  ASSERT_EQ(t->getNumChildren(), 2);
  EXPECT_EQ(static_cast<VrmlWorldInfo*>(t->getChild(0))->info.getNum(), 2);
  EXPECT_TRUE(t->getChild(1)->isOfType(VrmlNULL::getClassTypeId()));
}

TEST(Read, ChildrenGivenTwiceAreAUnion) {
  const TestWorld world("Group { children WorldInfo { title \"a\" } children [ WorldInfo { } Group { } ] }");
  ASSERT_EQ(world.status, ReadStatus::world);
  EXPECT_EQ(static_cast<VrmlGroup*>(world.root())->getNumChildren(), 3);
}

TEST(Read, DefNamesLoseTheirInstanceSuffix) {
  const TestWorld world(
      "DEF Box_1_2 Group { } DEF Box12 Group { } DEF _3 Group { } DEF a+b Group { } "
      "Group { children [ USE Box_1_2 USE _3 ] }");
  ASSERT_EQ(world.status, ReadStatus::failed) << "+ is no identifier character";
  const TestWorld good(
      "DEF Box_1_2 Group { } DEF Box12 Group { } DEF _3 Group { } Group { children [ USE Box_1_2 USE _3 ] }");
  ASSERT_EQ(good.status, ReadStatus::world) << good.messages.text();
  auto* root = static_cast<VrmlGroup*>(good.root());
  EXPECT_EQ(root->getChild(0)->getName(), "Box");
  EXPECT_EQ(static_cast<VrmlNode*>(root->getChild(0))->getDefName(), "Box_1_2");
  EXPECT_EQ(root->getChild(1)->getName(), "Box12");
  EXPECT_EQ(root->getChild(2)->getName(), "");
  EXPECT_EQ(static_cast<VrmlGroup*>(root->getChild(3))->getChild(0), root->getChild(0));
  EXPECT_EQ(static_cast<VrmlGroup*>(root->getChild(3))->getChild(1), root->getChild(2));
}

// The toolkit looks through all nodes of a name when one of them goes.
TEST(Read, SoManyNodesOfOneNameHaveItInTheToolkit) {
  const std::string many = [] {
    std::string text = "Group { children [ ";
    for (int i = 0; i < 12000; ++i) text += "DEF Many_" + std::to_string(i) + " Group { } ";
    return text + "] }";
  }();
  for (int round = 0; round < 2; ++round) {  // those of the first world make room
    const TestWorld world(many);
    auto* root = static_cast<VrmlGroup*>(world.root());
    ASSERT_EQ(root->getNumChildren(), 12000);
    EXPECT_EQ(static_cast<VrmlNode*>(root->getChild(11999))->getDefName(), "Many_11999");
    SoNodeList named;
    EXPECT_EQ(SoNode::getByName("Many", named), 10000);
  }
}

TEST(Read, InstanceNumbersOfThePlainToolkitAreRead) {
  const TestWorld world("DEF Box+3 Group { } DEF _+0 Group { } Group { children [ USE Box+3 USE _+0 ] }");
  ASSERT_EQ(world.status, ReadStatus::world) << world.messages.text();
  auto* root = static_cast<VrmlGroup*>(world.root());
  EXPECT_EQ(root->getChild(0)->getName(), "Box");
  EXPECT_EQ(static_cast<VrmlGroup*>(root->getChild(2))->getChild(1), root->getChild(1));
}

TEST(Read, DefsRememberFileAndLine) {
  const TestWorld world("Group { }\n\n DEF x.y Group { }");
  EXPECT_EQ(world.status, ReadStatus::failed) << "a dot ends a name";
  const TestWorld named("Group { }\n\n DEF x-y Group { }");
  const auto* node = static_cast<VrmlNode*>(static_cast<VrmlGroup*>(named.root())->getChild(1));
  ASSERT_TRUE(node->getDef());
  EXPECT_EQ(node->getDef()->line, 4);
  EXPECT_EQ(node->getDef()->file, "test.wrl");
  EXPECT_EQ(node->getDef()->name, "x-y");
}

TEST(Read, ANodeMayBeRedefinedAndTheOldOneStays) {
  const TestWorld world(
      "DEF A Transform { translation 1 0 0 } Group { children USE A } DEF A Transform { } Group { children "
      "USE A }");
  auto* root = static_cast<VrmlGroup*>(world.root());
  EXPECT_EQ(static_cast<VrmlGroup*>(root->getChild(1))->getChild(0), root->getChild(0));
  EXPECT_EQ(static_cast<VrmlGroup*>(root->getChild(3))->getChild(0), root->getChild(2));
}

TEST(Read, WhatStandsBehindAStrayBraceIsWarnedOf) {
  const TestWorld world("Group { }\n } Garbage [");
  EXPECT_EQ(world.status, ReadStatus::world);
  ASSERT_EQ(world.messages.count("what follows is not read"), 1);
  EXPECT_EQ(world.messages.count("Occurred at line   3"), 1);
}

TEST(Read, ATextThatEndsInARemarkIsToldButGood) {
  const TestWorld world("Group { } # the end");
  EXPECT_EQ(world.status, ReadStatus::world);
  EXPECT_EQ(world.messages.count("EOF reached before end of comment"), 1);
}

TEST(Read, HeadersAreThreeAndSomeAreForgiven) {
  const auto status = [](const char* text, bool strict = false) {
    return TestWorld(std::string_view(text), {.strict = strict}).status;
  };
  EXPECT_EQ(status("#VRML V2.0 utf8\nGroup{}"), ReadStatus::world);
  EXPECT_EQ(status("#VRML V2.0 utf8 by hand\rGroup{}"), ReadStatus::world);
  EXPECT_EQ(status("#VRML Draft #1 V2.0 utf8\nGroup{}"), ReadStatus::world);
  EXPECT_EQ(status("#VRML Draft #2 V2.0 utf8\nGroup{}"), ReadStatus::world);
  EXPECT_EQ(status("#VRML  V2.0   utf8\nGroup{}"), ReadStatus::world);
  EXPECT_EQ(status("#VRML  V2.0   utf8\nGroup{}", true), ReadStatus::failed);
  EXPECT_EQ(status("#VRML V1.0 ascii\nSeparator {}"), ReadStatus::failed);
  EXPECT_EQ(status("#X3D V3.0 utf8\nGroup {}"), ReadStatus::failed);
}

std::string packed(std::string_view text) {
  std::string bytes(1000, '\0');
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY), Z_OK);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_out = static_cast<uInt>(bytes.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  bytes.resize(stream.total_out);
  deflateEnd(&stream);
  return bytes;
}

// How a text ends that is given in one of four ways, and in which line the first message lies.
struct Ending {
  ReadStatus status = ReadStatus::failed;
  int line = 0;
  bool operator==(const Ending&) const = default;
};

Ending readFrom(int source, const std::string& bytes) {
  const tessel::test::Messages messages;
  const std::string file = tessel::test::scratchDir() / "source.wrl";
  std::ofstream(file, std::ios::binary) << bytes;
  Ending ending;
  SoInput in;
  std::FILE* open = nullptr;
  if (source == 0) in.setBuffer(bytes.data(), bytes.size());
  if (source == 1) in.setFilePointer(open = std::fopen(file.c_str(), "rb"));
  if (source == 2) in.openFile(file.c_str());
  const tessel::SoRef<SoNode> root(source == 3 ? VrmlDB::read(bytes, "memory", ending.status)
                                               : VrmlDB::read(&in, ending.status));
  if (open) std::fclose(open);
  EXPECT_EQ(VrmlDB::usingVrmlTypeIds, 0);
  if (!messages.empty())
    std::sscanf(std::strstr(messages.all().front().c_str(), "at line"), "at line %d", &ending.line);
  return ending;
}

TEST(Read, ATextEndsTheSameFromEverySource) {
  tessel::test::startLibrary();
  const std::pair<const char*, Ending> rows[] = {
      {"#VRML V2.0 utf8\n\nFoo {}", {ReadStatus::failed, 3}},
      {"#VRML V2.0 utf8\r\n\r\nFoo {}", {ReadStatus::failed, 3}},
      {"#VRML V2.0 utf8\r\rFoo {}", {ReadStatus::failed, 3}},
      {"#VRML V2.0 utf8 by hand\n\nFoo {}", {ReadStatus::failed, 3}},
      {"#VRML Draft #1 V2.0 utf8\r\n\r\nFoo {}", {ReadStatus::failed, 3}},
      {"\xef\xbb\xbf#VRML V2.0 utf8\r\n\r\nFoo {}", {ReadStatus::failed, 3}},
      {"#VRML V2.0 utf8\nWorldInfo { title \"caf\xe9\" }", {ReadStatus::world}},
      {"#VRML V2.0 utf8", {ReadStatus::empty}},
      {"#Inventor V2.1 ascii\n", {ReadStatus::empty}},
      {"\r\n\n", {ReadStatus::empty}},
      {"", {ReadStatus::empty}},
      {"\x7f"
       "ELF\x01\x02",
       {ReadStatus::failed, 1}},
  };
  for (const auto& [text, expected] : rows)
    for (int source = 0; source < 4; ++source) {
      EXPECT_EQ(readFrom(source, text), expected) << text << ", source " << source;
      EXPECT_EQ(readFrom(source, packed(text)), expected) << text << ", packed, source " << source;
    }
  const std::string whole = packed(rows[6].first);
  for (std::size_t n = 3; n < whole.size() - 8; n += 5)
    EXPECT_EQ(readFrom(3, whole.substr(0, n)), (Ending{ReadStatus::failed, 1})) << "cut off";
}

TEST(Read, EveryPrefixOfAWorldEndsWell) {
  const std::string text =
      "#VRML V2.0 utf8\nDEF A Transform { translation 1 2 3 children [ WorldInfo { info [ \"x\" ] } "
      "USE B NULL ] bboxSize 1 1 1 } # remark\nROUTE A.translation TO A.set_scale";
  tessel::test::startLibrary();
  for (std::size_t n = 0; n <= text.size(); ++n) {
    const tessel::test::Messages messages;
    ReadStatus status;
    tessel::SoRef<SoNode> root(VrmlDB::read(std::string_view(text).substr(0, n), "cut.wrl", status));
    EXPECT_EQ(status == ReadStatus::world, static_cast<bool>(root)) << n;
    EXPECT_TRUE(status != ReadStatus::failed || !messages.empty()) << n;
  }
}

TEST(Read, NestingHasALimit) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "Group { children ";
  const TestWorld tooDeep{std::string_view(text)};
  EXPECT_EQ(tooDeep.status, ReadStatus::failed);
  EXPECT_EQ(tooDeep.messages.count("nested more than 4000 levels"), 1);

  std::string good;
  for (int i = 0; i < 3999; ++i) good += "Group { children ";
  good += "Group { }" + std::string(3999, '}');
  const TestWorld deep{std::string_view(good)};
  EXPECT_EQ(deep.status, ReadStatus::world) << deep.messages.text();
}

TEST(Read, UsesThatMultiplyHaveALimit) {
  std::string text = "DEF G0 Group { }";
  for (int i = 1; i < 64; ++i)
    text += "DEF G" + std::to_string(i) + " Group { children [ USE G" + std::to_string(i - 1) + " USE G" +
            std::to_string(i - 1) + " ] }\n";
  const TestWorld world{std::string_view(text)};
  EXPECT_EQ(world.status, ReadStatus::failed);
  EXPECT_EQ(world.messages.count("more than 100000000 nodes"), 1) << world.messages.text();
}

TEST(Read, ImagesAreCheckedBeforeTheyAreBelieved) {
  for (const char* image :
       {"32767 32767 4 0", "-1 1 1 0", "1 1 5 0", "60000 1 1 0", "2 2 3 0xff 0xff 0xff"}) {
    const TestWorld world(std::string_view(
        std::string("Shape { appearance Appearance { texture PixelTexture { image ") + image + " } } }"));
    EXPECT_EQ(world.status, ReadStatus::failed) << image;
  }
}

TEST(Read, ToolkitFilesStayTheToolkits) {
  tessel::test::startLibrary();
  const auto readToolkit = [] {
    const char text[] = "#Inventor V2.1 ascii\nSeparator { Cone { } }";
    SoInput in;
    in.setBuffer(text, sizeof text - 1);
    tessel::SoRef<SoSeparator> root(SoDB::readAll(&in));
    ASSERT_TRUE(root);
    EXPECT_EQ(root->getChild(0)->getTypeId(), SoCone::getClassTypeId());
  };
  readToolkit();
  const TestWorld ours("Shape { geometry Cone { } }");
  EXPECT_EQ(ours.status, ReadStatus::world) << ours.messages.text();
  readToolkit();

  const tessel::test::Messages messages;
  const char text[] = "#Inventor V2.1 ascii\nSeparator { }";
  SoInput in;
  in.setBuffer(text, sizeof text - 1);
  EXPECT_EQ(VrmlDB::read(&in), nullptr);
  EXPECT_EQ(messages.count("Non-VRML 2.0 node (Separator) found in world"), 1) << messages.text();
}

TEST(Read, StatementsAreTakenOneByOne) {
  tessel::test::startLibrary();
  const char text[] = "#VRML V2.0 utf8\nGroup { } DEF B Transform { }";
  SoInput in;
  in.setBuffer(text, sizeof text - 1);
  int error = 1;
  tessel::SoRef<SoNode> first(VrmlDB::readNode(&in, error));
  ASSERT_TRUE(first);
  EXPECT_EQ(error, 0);
  SbName name;
  EXPECT_EQ(VrmlDB::readIdentifier(&in, name), 1);
  EXPECT_EQ(name, "DEF");
  EXPECT_EQ(VrmlDB::readIdentifier(&in, name), 1);
  EXPECT_EQ(name, "B");
  tessel::SoRef<SoNode> second(VrmlDB::readNode(&in, error));
  ASSERT_TRUE(second);
  for (int again = 0; again < 2; ++again) {
    EXPECT_EQ(VrmlDB::readNode(&in, error), nullptr);
    EXPECT_EQ(error, 0);
  }
}

TEST(Read, AnInputInThePlaceOfAnotherIsReadFromItsStart) {
  tessel::test::startLibrary();
  const auto firstNode = [](const char* text) {
    SoInput in;  // at the same place on the stack each time
    in.setBuffer(text, std::strlen(text));
    int error = 1;
    const tessel::SoRef<SoNode> node(VrmlDB::readNode(&in, error));
    return std::string(node ? static_cast<VrmlNode*>(node.get())->getDefName().getString() : "none");
  };
  EXPECT_EQ(firstNode("#VRML V2.0 utf8\nDEF A Group { } DEF B Group { }"), "A");
  EXPECT_EQ(firstNode("#VRML V2.0 utf8\nDEF CCC Group { } DEF D Group { }"), "CCC");

  const std::string file = tessel::test::scratchDir() / "two.wrl";
  std::ofstream(file) << "#VRML V2.0 utf8\nGroup { } Group { }";
  SoInput in;
  ASSERT_TRUE(in.openFile(file.c_str()));
  int error = 1, nodes = 0;
  for (int i = 0; i < 6; ++i)
    if (tessel::SoRef<SoNode> node(VrmlDB::readNode(&in, error)); node) ++nodes;
  EXPECT_EQ(nodes, 2);
}

TEST(Read, AFaultLeavesStandardInputAlone) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], "mine", 4), 4);
  close(ends[1]);
  const int kept = dup(STDIN_FILENO);
  dup2(ends[0], STDIN_FILENO);
  const TestWorld world("Grop { }");
  char text[4];
  const auto left = read(STDIN_FILENO, text, sizeof text);
  dup2(kept, STDIN_FILENO);
  close(kept);
  close(ends[0]);
  EXPECT_EQ(world.status, ReadStatus::failed);
  EXPECT_EQ(left, 4);
}

TEST(Read, IdentifiersAreWide) {
  for (const char* good : {"1abc", "a-b", "a:b", "\xc3\xa9"}) EXPECT_TRUE(VrmlDB::isIdentifier(good)) << good;
  for (const char* bad : {"a.b", "a,b", "a b", "", "a{", "a'b", "a&b", "a+b"})
    EXPECT_FALSE(VrmlDB::isIdentifier(bad)) << bad;
}

}  // namespace
