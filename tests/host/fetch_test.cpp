// SPDX-License-Identifier: BSD-3-Clause
// Worlds of many files through the program: from the disk, from the network, and never across.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <tessel/frame/VrmlBackground.h>

#include "HttpServer.h"
#include "Program.h"
#include "host/fetch/Requests.h"
#include "support/Paths.h"
#include "support/Picture.h"
#include "support/TestWorld.h"

namespace tessel::host {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Reply = HttpServer::Reply;

std::string inlined(const std::string& url) { return "Inline { url \"" + url + "\" }\n"; }
const std::string redBox = world(shiningBox("0 0 0", "2 2 2", "1 0 0"));

/// The pixel in the middle of the picture of a world.
test::Colour middleOf(const std::string& path, const std::vector<std::string>& options = {}) {
  std::vector<std::string> arguments{"shot", path, "-o", "out.png", "--size", "64x64"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  const Outcome outcome = runTessel(arguments);
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  return test::pixel(test::readPng(test::scratchDir() / "out.png"), 32, 32);
}
constexpr test::Colour red{255, 0, 0};

TEST(LocalFiles, AreInTheFirstPictureWhateverNestsInWhatGL) {
  makeFile("main.wrl", world("Transform { children " + inlined("parts/a.wrl") + " }"));
  makeFile("parts/a.wrl", world(inlined("../b.wrl")));
  makeFile("b.wrl", world("LOD { level " + inlined("parts/c.wrl") + " }"));
  makeFile("parts/c.wrl", redBox);
  EXPECT_TRUE(near(middleOf("main.wrl"), red));
}

TEST(LocalFiles, AreFoundUnderTheNamesOfOtherSystems) {
  makeFile("Parts/My Box.WRL", world("Shape {"));  // read, and so complained about
  makeFile("odd%20name.wrl", world("Shape {"));
  for (const std::string url : {"parts/my%20box.wrl", "PARTS\\\\MY BOX.wrl", "file:Parts/My%20Box.WRL",
                                "./Parts/../parts/MY%20BOX.WRL", "odd%20name.wrl"}) {
    makeFile("main.wrl", world(inlined(url)));
    EXPECT_THAT(runTessel({"check", "--follow", "main.wrl"}).err, HasSubstr(":2: error: ")) << url;
  }
}

/// A square that fills the view, with a picture on it.
std::string square(const std::string& urls) {
  return world(
      "Shape { appearance Appearance { texture ImageTexture { url [ " + urls +
      " ] } } geometry IndexedFaceSet { coord Coordinate { point [ -9 -9 0, 9 -9 0, 9 9 0, -9 9 0 ] } "
      "coordIndex [ 0 1 2 3 ] } }");
}

std::string redPicture() {
  std::ifstream file(test::testFile("host/pictures/images/back.png"), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Pictures, ComeFromTheDiskByTheFirstAlternativeThatIsGoodGL) {
  makeFile("textures/Red.PNG", redPicture());
  makeFile("broken.png", "no picture");
  makeFile("main.wrl", square("\"none.png\" \"broken.png\" \"textures/red.png\""));
  EXPECT_TRUE(near(middleOf("main.wrl"), red));
  const Outcome check = runTessel({"check", "--follow", "main.wrl"});
  EXPECT_EQ(check.status, 1) << check.err;
  EXPECT_THAT(check.err, HasSubstr("broken.png"));
  makeFile("sky.wrl", world("Background { backUrl [ \"none.png\" \"textures/red.png\" ] }"));
  EXPECT_TRUE(near(middleOf("sky.wrl"), red));
}

TEST(Pictures, ThatWereForgottenAreAskedForAgain) {
  test::startLibrary();
  std::vector<std::unique_ptr<Request>> requests;
  const RequestListener listener(
      [&](std::unique_ptr<Request> asked) { requests.push_back(std::move(asked)); });
  const std::string text = square("\"http://h/slow.png\"");
  const test::TestWorld shown(text);
  ASSERT_EQ(requests.size(), 1u);
  requests.clear();  // as when the world is read again, while the old one still stands in the window
  const test::TestWorld again(text);
  EXPECT_EQ(requests.size(), 1u);
}

TEST(Pictures, OfABackgroundAreNotWantedOnceAnotherUrlIs) {
  test::startLibrary();
  std::vector<std::unique_ptr<Request>> requests;
  const RequestListener listener(
      [&](std::unique_ptr<Request> asked) { requests.push_back(std::move(asked)); });
  const test::TestWorld sky("DEF B Background { backUrl [ \"http://h/1\", \"http://h/2\" ] }");
  auto* background = sky.get<VrmlBackground>("B");
  background->requestHolderImage(0);
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_TRUE(requests[0]->isWanted());
  background->backUrl = "http://h/3";
  EXPECT_FALSE(requests[0]->isWanted()) << "its failure would be taken for that of the new one";
  background->requestHolderImage(0);
  EXPECT_TRUE(requests[1]->isWanted());
}

TEST(Pictures, ComeFromTheNetworkOnceForAllWhoNameThemGL) {
  const std::string many = square("\"gone.png\" \"red.png\"");
  HttpServer server({{"/main.wrl", {.body = many + many.substr(many.find('\n'))}},
                     {"/red.png", {.body = redPicture(), .delay = 200ms}}});
  EXPECT_TRUE(near(middleOf(server.url("/main.wrl")), red));
  EXPECT_EQ(server.count("/red.png"), 1);
  EXPECT_EQ(server.count("/gone.png"), 1);
}

TEST(Pictures, OfTheDiskAreNotForWorldsFromTheNetworkGL) {
  makeFile("secret.png", redPicture());
  const std::string path = (test::scratchDir() / "secret.png").string();
  const std::string urls = "\"" + path + "\" \"file:" + path + "\" \"file://" + path + "\" \"secret.png\"";
  HttpServer server({{"/main.wrl", {.body = square(urls) + "Background { backUrl [ " + urls + " ] }"}}});
  EXPECT_FALSE(near(middleOf(server.url("/main.wrl")), red));
}

TEST(LocalFiles, ThatFailLeaveTheWorldAndAreNamedWithWhoAsked) {
  makeFile("main.wrl", world("Shape { geometry Box {} }\nDEF I Inline { url [\"none.wrl\" \"bad.wrl\"] }\n" +
                             inlined("ftp://h/x.wrl")));
  makeFile("bad.wrl", world("Group { children [\n Shape { oops 3 } ] }"));
  const Outcome shot = runTessel({"shot", "main.wrl", "-o", "out.png"});
  EXPECT_EQ(shot.status, 0) << "the world goes on";
  EXPECT_THAT(shot.err, HasSubstr("main.wrl:3: warning: can't get"));
  EXPECT_THAT(shot.err, HasSubstr("none.wrl: there is no such file"));
  EXPECT_THAT(shot.err, HasSubstr("bad.wrl:3: error: "));
  EXPECT_THAT(shot.err, HasSubstr("bad.wrl: it can't be read"));
  EXPECT_THAT(shot.err, HasSubstr("main.wrl: warning: can't get ftp://h/x.wrl: "));
  EXPECT_EQ(runTessel({"check", "main.wrl"}).status, 0) << "nothing is wrong with the file itself";
  EXPECT_EQ(runTessel({"check", "--follow", "main.wrl"}).status, 1);

  makeFile("good.wrl", world("Inline { url [\"none.wrl\" \"part.wrl\"] }"));
  makeFile("part.wrl", redBox);
  const Outcome good = runTessel({"check", "--follow", "good.wrl"});
  EXPECT_EQ(good.status, 0) << "an alternative that is not there is no error: " << good.err;
}

TEST(LocalFiles, AskedForInCirclesEnd) {
  makeFile("self.wrl", world(inlined("self.wrl")));
  EXPECT_THAT(runTessel({"check", "--follow", "self.wrl"}).err,
              HasSubstr("self.wrl: error: can't get a file: "));
  makeFile("a.wrl", world(inlined("b.wrl") + inlined("b.wrl")));
  makeFile("b.wrl", world(inlined("a.wrl") + inlined("./b.wrl")));
  const Outcome circle = runTessel({"check", "--follow", "a.wrl"});
  EXPECT_EQ(circle.status, 1);
  EXPECT_THAT(circle.err,
              HasSubstr("b.wrl: error: can't get file://" + (test::scratchDir() / "a.wrl").string()));
  EXPECT_THAT(circle.err, HasSubstr("a file can't be inlined in itself"));
}

TEST(LocalFiles, EndAtTheLimitsOfAWorld) {
  for (int i = 0; i < 40; ++i)
    makeFile("chain" + std::to_string(i) + ".wrl", world(inlined("chain" + std::to_string(i + 1) + ".wrl")));
  const Outcome chain = runTessel({"check", "--follow", "chain0.wrl"});
  EXPECT_EQ(chain.status, 1);
  EXPECT_THAT(chain.err, HasSubstr("chain32.wrl: error: can't get file://"));
  EXPECT_THAT(chain.err, HasSubstr("chain33.wrl: more than 32 files that lead to one another"));

  for (int i = 0; i < 5; ++i) {
    std::string nested =
        i < 4 ? inlined("deep" + std::to_string(i + 1) + ".wrl") : shiningBox("0 0 0", "2 2 2", "1 0 0");
    for (int level = 0; level < 1500; ++level) nested = "Group { children " + nested + "}";
    makeFile("deep" + std::to_string(i) + ".wrl", world(nested));
  }
  const Outcome deep = runTessel({"check", "--follow", "deep0.wrl"});
  EXPECT_EQ(deep.status, 1);
  EXPECT_THAT(deep.err, HasSubstr("deep2.wrl:2: error: Nodes are nested more than 4000 levels deep"));

  std::string ten;
  for (int i = 0; i < 20; ++i) {
    for (int n = 0; n < 10; ++n) ten += inlined("bomb" + std::to_string(i + 1) + ".wrl");
    makeFile("bomb" + std::to_string(i) + ".wrl", world(ten));
    ten.clear();
  }
  const Outcome bomb = runTessel({"check", "--follow", "bomb0.wrl"});
  EXPECT_EQ(bomb.status, 1);
  EXPECT_THAT(bomb.err, HasSubstr("the world is put together from more than 10000 files"));
}

TEST(LocalFiles, DoNotMultiplyWithoutEnd) {
  for (int i = 0; i < 30; ++i)
    makeFile("double" + std::to_string(i) + ".wrl",
             world("Group { children [ DEF I Inline { url \"double" + std::to_string(i + 1) +
                   ".wrl\" } USE I USE I USE I ] }"));
  makeFile("double30.wrl", redBox);
  const Outcome outcome = runTessel({"check", "--follow", "double0.wrl"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("the world would show too many nodes"));
}

TEST(NetworkWorlds, AreReadWithTheirPartsEachFetchedOnceGL) {
  std::string many;
  for (int i = 0; i < 20; ++i) many += inlined("part.wrl");
  HttpServer server({{"/far.wrl", {.headers = "Location: /dir/main.wrl\r\n", .status = "301 Moved"}},
                     {"/dir/main.wrl", {.body = world(many + inlined("/dir/slow.wrl#Here"))}},
                     {"/dir/part.wrl", {.body = gzipped(redBox), .delay = 100ms}},
                     {"/dir/slow.wrl", {.body = world("Group {}"), .delay = 300ms}}});
  EXPECT_TRUE(near(middleOf(server.url("/far.wrl")), red));
  EXPECT_EQ(server.count("/dir/part.wrl"), 1);
  EXPECT_EQ(server.count("/dir/slow.wrl"), 1);
}

TEST(NetworkWorlds, FetchAndReadAFileOfPrototypesOnceForAllInstances) {
  const std::string door = "EXTERNPROTO Door [ field SFFloat width ] \"lib.wrl#Door\"\n";
  std::string many = door + "EXTERNPROTO Gate [ ] \"lib.wrl#Gate\"\n";
  for (int i = 0; i < 1000; ++i) many += "Door { width 2 }\n";
  many += "Gate { }\n" + inlined("part.wrl");
  HttpServer server({{"/main.wrl", {.body = world(many)}},
                     {"/part.wrl", {.body = world(door + "Door { }")}},
                     {"/lib.wrl",
                      {.body = world("PROTO Gate [ field SFBool twice TRUE field SFBool twice TRUE ] { }\n"
                                     "PROTO Door [ field SFFloat width 1 ] { Group { } }")}}});
  const Outcome outcome = runTessel({"check", "--follow", server.url("/main.wrl")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(server.count("/lib.wrl"), 1);
  EXPECT_THAT(outcome.err, HasSubstr("\"twice\" is declared twice"));
  EXPECT_THAT(outcome.err, Not(HasSubstr(" times)"))) << "read more than once";
}

TEST(NetworkWorlds, AreLeftAloneIfTheUserSaysSo) {
  HttpServer server({{"/main.wrl", {.body = redBox}}});
  EXPECT_EQ(runTessel({"check", "--no-network", server.url("/main.wrl")}).status, 3);
  makeFile("main.wrl", world(inlined(server.url("/main.wrl"))));
  const Outcome follow = runTessel({"check", "--no-network", "--follow", "main.wrl"});
  EXPECT_THAT(follow.err, HasSubstr("main.wrl: error: can't get " + server.url("/main.wrl") +
                                    ": the network is switched off"));
  EXPECT_EQ(server.count("/main.wrl"), 0);
  EXPECT_EQ(runTessel({"check", server.url("/none.wrl")}).status, 3);
}

TEST(NetworkWorlds, GetNothingFromTheDiskByAnySpelling) {
  makeFile("secret.wrl", world("Shape { leaked }"));
  const std::string path = (test::scratchDir() / "secret.wrl").string();
  std::string backslashes = path;
  for (char& c : backslashes)
    if (c == '/') c = '\\';
  std::string body;
  for (const std::string& url :
       std::vector<std::string>{path, "file:" + path, "file://" + path, "FILE://localhost" + path,
                                " file://" + path, "file:/%2e%2e" + path, "../../../../../../../../.." + path,
                                "%2e%2e/%2e%2e" + path, backslashes, "\\\\" + backslashes, "//" + path,
                                "C:" + path, "file:secret.wrl", "file:\\" + backslashes, "secret.wrl"})
    body += inlined(url);
  std::string escaped;
  for (const char c : body) escaped += c == '\\' ? std::string("\\\\") : std::string(1, c);
  HttpServer server({{"/main.wrl", {.body = world(escaped)}}});
  makeFile("local.wrl", world(inlined(server.url("/main.wrl"))));
  for (const std::string& start : {server.url("/main.wrl"), std::string("local.wrl")}) {
    const Outcome outcome = runTessel({"check", "--follow", start});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, Not(HasSubstr("leaked"))) << "something of the disk was read";
    EXPECT_THAT(outcome.err, HasSubstr("a world from the network gets nothing from this disk"));
  }
}

TEST(NetworkWorlds, LeaveNothingBehind) {
  HttpServer server({{"/main.wrl", {.body = world(inlined("part.wrl"))}}, {"/part.wrl", {.body = redBox}}});
  const std::filesystem::path folder = test::scratchDir() / "tmp";
  std::filesystem::create_directories(folder);
  setenv("TMPDIR", folder.c_str(), 1);
  EXPECT_EQ(runTessel({"check", "--follow", server.url("/main.wrl")}).status, 0);
  unsetenv("TMPDIR");
  EXPECT_EQ(server.count("/part.wrl"), 1);
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

}  // namespace
}  // namespace tessel::host
