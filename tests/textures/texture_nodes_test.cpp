// SPDX-License-Identifier: BSD-3-Clause
// Who asks for a picture, who shares it, and what becomes of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGetMatrixAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/system/gl.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/shapes/VrmlAppearance.h>
#include <tessel/shapes/VrmlBox.h>
#include <tessel/textures/VrmlImageTexture.h>
#include <tessel/textures/VrmlPixelTexture.h>
#include <tessel/textures/VrmlTextureTransform.h>

#include "core/UrlNodes.h"
#include "support/Drawing.h"
#include "support/Paths.h"
#include "support/TestWorld.h"
#include "textures/VrmlTextureData.h"

using namespace tessel::test;
using tessel::SoRef;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The host's side: notes what is asked for.
class Requests {
public:
  Requests() {
    VrmlTextureDef::setFetchURLCallBack(
        [](const SbString& url, void* self, VrmlTextureDef* def) {
          static_cast<Requests*>(self)->urls.emplace_back(url.getString());
          static_cast<Requests*>(self)->defs.emplace_back(def);
        },
        this);
  }
  ~Requests() { VrmlTextureDef::setFetchURLCallBack(nullptr, nullptr); }
  std::vector<std::string> urls;
  std::vector<SoRef<VrmlTextureDef>> defs;
};

/// A colour file of the format that is easiest to write: RGB, verbatim.
std::string pictureFile(const std::string& name, std::vector<unsigned char> rgb, int side = 1) {
  std::string bytes("\x01\xDA\0\x01\0\x03\0", 7);
  bytes += static_cast<char>(side);
  bytes += '\0';
  bytes += static_cast<char>(side);
  bytes += std::string("\0\x03", 2);
  bytes.resize(512);
  for (const unsigned char channel : rgb)
    bytes.append(static_cast<std::size_t>(side * side), static_cast<char>(channel));
  const auto path = scratchDir() / name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path.string();
}

std::string textured(const std::string& texture) {
  return "Shape { appearance DEF APP Appearance { texture " + texture +
         " } geometry IndexedFaceSet { coord Coordinate { point [ -2 -2 0, 2 -2 0, 2 2 0, -2 2 0 ] } "
         "coordIndex [ 0 1 2 "
         "3 ] } }\n";
}

std::string image(const std::string& urls, const std::string& more = "") {
  return "DEF T ImageTexture { url [ " + urls + " ] " + more + " }";
}

/// How many there are, without those that wait to be deleted at the next frame.
int textureObjects() {
  const TestWorld empty("Group { }");
  Drawing(empty.root()).frame();
  int count = 0;
  for (GLuint id = 1; id < 2000; ++id) count += glIsTexture(id);
  return count;
}

constexpr Colour red{255, 0, 0}, green{0, 255, 0};

}  // namespace

TEST(ImageTexture, AsksOnceForAUrlHoweverManyNodesNameIt) {
  Requests requests;
  TestWorld world("Group { children [ " + textured(image("\"http://h/a.png\"")) +
                  textured("ImageTexture { url \"http://h/a.png\" repeatS FALSE }") +
                  textured("ImageTexture { url \"http://h/b.png\" }") + "] }");
  EXPECT_THAT(requests.urls, ElementsAre("http://h/a.png", "http://h/b.png"));
  auto* texture = world.get<VrmlImageTexture>("T");
  EXPECT_EQ(texture->getSize(), SbVec2s(0, 0));
  EXPECT_TRUE(requests.defs[0]->readTexture(pictureFile("a.rgb", {1, 2, 3}).c_str()));
  EXPECT_EQ(texture->getSize(), SbVec2s(1, 1));
  EXPECT_EQ(texture->getNumComponents(), 3);
  EXPECT_EQ(texture->getBytes()[2], 3);
  // Who comes later gets it without asking.
  TestWorld later(textured("ImageTexture { url \"http://h/a.png\" }"));
  EXPECT_EQ(requests.urls.size(), 2u);
}

TEST(ImageTexture, TakesOnePathOfTheDiskInAllSpellingsForOne) {
  Requests requests;
  TestWorld world("Group { children [ " + textured("ImageTexture { url \"file:///x/y.png\" }") +
                  textured("ImageTexture { url \"FILE://localhost/x/y.png\" }") +
                  textured("ImageTexture { url \"file://other/x/y.png\" }") + "] }");
  EXPECT_THAT(requests.urls, ElementsAre("file:///x/y.png", "file://other/x/y.png"));
  const auto offset = [](const char* url) { return tessel::localPathOffset(url); };
  EXPECT_EQ(offset("file:/a"), 5);
  EXPECT_EQ(offset("file:///a"), 7);
  EXPECT_EQ(offset("File://LOCALHOST/a"), 16);
  for (const char* other : {"", "http://a/b", "file://host/a", "file:a"})
    EXPECT_EQ(offset(other), 0) << other;
}

TEST(ImageTexture, TriesItsAlternativesInTheirOrder) {
  Requests requests;
  TestWorld world(textured(image("\"http://h/1\" \"http://h/2\" \"http://h/3\"")));
  requests.defs[0]->fetchFailed();
  ASSERT_EQ(requests.defs.size(), 2u);
  EXPECT_FALSE(requests.defs[1]->readTexture("/nowhere/at/all"));
  EXPECT_EQ(world.messages.count("Could not open texture file /nowhere/at/all."), 1);
  ASSERT_THAT(requests.urls, ElementsAre("http://h/1", "http://h/2", "http://h/3"));
  requests.defs[2]->fetchFailed();
  requests.defs.clear();
  EXPECT_EQ(requests.urls.size(), 3u);
  EXPECT_EQ(world.get<VrmlImageTexture>("T")->getNumComponents(), 0);
  // Another node hears at once that these are bad while somebody holds them, and a new url begins anew.
  world.get<VrmlImageTexture>("T")->url = "http://h/4";
  EXPECT_EQ(requests.urls.back(), "http://h/4");
}

TEST(ImageTexture, PassesByAlternativesThatOthersFoundBad) {
  Requests requests;
  TestWorld others(textured("ImageTexture { url \"http://h/bad1\" }") +
                   textured("ImageTexture { url \"http://h/bad2\" }"));
  for (int i = 0; i < 2; ++i) requests.defs[i]->fetchFailed();
  requests.urls.clear();
  TestWorld world(textured(image("\"http://h/1\" \"http://h/bad1\" \"http://h/2\"")) + "PROTO P [ ] { " +
                  textured("ImageTexture { url [ \"http://h/bad1\" \"http://h/bad2\" \"http://h/bad1\" "
                           "\"http://h/3\" ] }") +
                  " } P { }");
  EXPECT_THAT(requests.urls, ElementsAre("http://h/1", "http://h/3")) << "without being drawn";
  requests.defs[2]->fetchFailed();
  EXPECT_EQ(requests.urls.back(), "http://h/2");
  requests.defs[4]->readTexture(pictureFile("second.rgb", {1, 2, 3}).c_str());
  EXPECT_EQ(world.get<VrmlImageTexture>("T")->getSize(), SbVec2s(1, 1)) << "its answer reaches the node";
}

TEST(ImageTexture, BeginsAnewWithANewUrlWhateverBecameOfTheOldOne) {
  Requests requests;
  TestWorld world(textured(image("\"http://h/1\"")));
  auto* texture = world.get<VrmlImageTexture>("T");
  requests.defs[0]->fetchFailed();
  const char* two[] = {"http://h/2", "http://h/3"};
  texture->url.setValues(0, 2, two);
  EXPECT_THAT(requests.urls, ElementsAre("http://h/1", "http://h/2"));
  texture->url.setNum(1);
  texture->url = "http://h/4";
  EXPECT_EQ(requests.urls.back(), "http://h/4");
  requests.defs[1]->readTexture(pictureFile("late.rgb", {9, 9, 9}).c_str());
  EXPECT_EQ(texture->getNumComponents(), 0) << "nobody wants that any more";
  requests.defs.back()->readTexture(pictureFile("new.rgb", {1, 2, 3}).c_str());
  EXPECT_EQ(texture->getBytes()[2], 3);
  texture->url.setNum(0);
  EXPECT_EQ(texture->getSize(), SbVec2s(0, 0));
}

TEST(ImageTexture, IsWaitedForUntilItsSearchHasEnded) {
  const auto isFetched = [](SoNode* texture) {
    for (const tessel::UrlNodeClass& nodes : tessel::urlNodeClasses())
      if (texture->isOfType(nodes.type)) return nodes.isFetched(*texture, true);
    return false;
  };
  Requests requests;
  const std::string common = "\"http://h/common\"";
  TestWorld first(textured(image(common)));
  EXPECT_FALSE(isFetched(first.get<VrmlImageTexture>("T")));
  requests.defs[0]->readTexture(pictureFile("common.rgb", {1, 2, 3}).c_str());
  EXPECT_TRUE(isFetched(first.get<VrmlImageTexture>("T")));
  TestWorld second(textured(image(common)));
  EXPECT_TRUE(isFetched(second.get<VrmlImageTexture>("T"))) << "it was there already";
  TestWorld bad(textured(image("\"http://h/1\" \"http://h/2\"")));
  requests.defs[1]->fetchFailed();
  EXPECT_FALSE(isFetched(bad.get<VrmlImageTexture>("T")));
  requests.defs[2]->fetchFailed();
  EXPECT_TRUE(isFetched(bad.get<VrmlImageTexture>("T"))) << "there is nothing to wait for";
  bad.get<VrmlImageTexture>("T")->url = "";
  EXPECT_TRUE(isFetched(bad.get<VrmlImageTexture>("T")));
}

TEST(ImageTexture, EndsItsSearchAtAnEmptyString) {
  Requests requests;
  TestWorld world(textured(image("\"\" \"http://h/2\"")));
  EXPECT_THAT(requests.urls, IsEmpty());
}

TEST(ImageTexture, LetsGoOfWhatItNoLongerWants) {
  Requests requests;
  {
    TestWorld world(textured(image("\"http://h/slow.png\"")));
    EXPECT_TRUE(requests.defs[0]->isWanted());
  }
  EXPECT_FALSE(requests.defs[0]->isWanted()) << "a request keeps no node alive";
  EXPECT_EQ(requests.defs[0]->getOwner(), nullptr);
  requests.defs[0]->readTexture(pictureFile("late.rgb", {9, 9, 9}).c_str());
}

TEST(ImageTexture, ReadsLocalFilesByItselfWithoutAHost) {
  const std::string good = pictureFile("good.rgb", {255, 0, 0});
  const auto broken = scratchDir() / "broken.png";
  std::ofstream(broken) << "no picture";
  TestWorld world(textured(image("\"file://" + broken.string() + "\" \"file://" + good + "\"")));
  EXPECT_EQ(world.messages.count("Could not read texture image " + ("//" + broken.string())), 1)
      << world.messages.text();
  EXPECT_EQ(world.get<VrmlImageTexture>("T")->getSize(), SbVec2s(1, 1));
}

TEST(ImageTexture, TriesAnyNumberOfAlternatives) {
  std::string urls;
  for (int i = 0; i < 20000; ++i) urls += "\"file:///none/" + std::to_string(i) + "\" ";
  TestWorld world(textured(image(urls + "\"file://" + pictureFile("last.rgb", {1, 2, 3}) + "\"")));
  EXPECT_EQ(world.messages.all().size(), 20000u);
  EXPECT_EQ(world.get<VrmlImageTexture>("T")->getNumComponents(), 3);
}

TEST(Textures, RefuseTheFieldsThatAreNotTheirs) {
  TestWorld withImage("Appearance { texture ImageTexture { image 1 1 1 0 } }");
  EXPECT_EQ(withImage.status, tessel::ReadStatus::failed);
  EXPECT_EQ(withImage.messages.count("line   2"), 1) << withImage.messages.text();
  TestWorld withUrl("Appearance { texture PixelTexture { url \"a.png\" } }");
  EXPECT_EQ(withUrl.status, tessel::ReadStatus::failed);
  EXPECT_EQ(withUrl.messages.count("line   2"), 1) << withUrl.messages.text();
}

TEST(ImageTexture, CopiesShareThePicture) {
  Requests requests;
  TestWorld world("PROTO P [ field MFString u [] ] { " + textured("ImageTexture { url IS u }") +
                  " } Group { children [ P { u \"http://h/p.png\" } P { u \"http://h/p.png\" } ] }");
  EXPECT_THAT(requests.urls, ElementsAre("http://h/p.png"));
}

TEST(TexturesGL, StandInOneTextureObjectForEachWayToRepeatThem) {
  const std::string url = "\"file://" + pictureFile("shared.rgb", {0, 255, 0}) + "\"";
  std::string shapes;
  for (int i = 0; i < 20; ++i)
    shapes += textured("ImageTexture { url " + url + (i % 2 ? " repeatS FALSE" : "") + " }");
  TestWorld world("Group { children [ " + shapes + "] }");
  Drawing drawing(world.root());
  const int before = textureObjects();
  drawing.frame();
  EXPECT_EQ(textureObjects() - before, 2);
  EXPECT_TRUE(near(drawing.at(0, 0), green));
  // Display lists bind the texture without the toolkit; it must not be taken away after a while.
  for (int frame = 0; frame < 100; ++frame) drawing.frame();
  EXPECT_EQ(textureObjects() - before, 2);
  EXPECT_TRUE(near(drawing.at(0, 0), green));
}

TEST(TexturesGL, ChangeWithTheirFields) {
  TestWorld world(textured("DEF T PixelTexture { image 1 1 3 0xFF0000 }"));
  Drawing drawing(world.root());
  drawing.frame(4);
  EXPECT_EQ(drawing.at(0, 0), red);
  const unsigned char pixel[] = {0, 255, 0};
  auto* texture = world.get<VrmlPixelTexture>("T");
  texture->image.setValue(SbVec2s(1, 1), 3, pixel);
  drawing.frame();
  EXPECT_EQ(drawing.at(0, 0), green);
  texture->image.setValue(SbVec2s(0, 0), 0, nullptr);
  drawing.frame();
  EXPECT_EQ(drawing.at(0, 0), (Colour{204, 204, 204})) << "no picture, no texture";
}

TEST(TexturesGL, ChangeByRoutesAsByTheirOwnFields) {
  const std::string one = "\"file://" + pictureFile("one.rgb", {255, 0, 0}) + "\"",
                    other = "file://" + pictureFile("other.rgb", {0, 255, 0});
  TestWorld world("DEF FROM ImageTexture { } " + textured("DEF T ImageTexture { url " + one + " }") +
                  "ROUTE FROM.url_changed TO T.set_url");
  Drawing drawing(world.root());
  drawing.frame(5);
  EXPECT_EQ(drawing.at(0, 0), red);
  world.get<VrmlImageTexture>("FROM")->url = other.c_str();
  drawing.frame();
  EXPECT_EQ(drawing.at(0, 0), green);
  TestWorld pixels(
      "DEF FROM PixelTexture { } DEF TURN TextureTransform { } " +
      textured("DEF T PixelTexture { image 2 1 3 0xFF0000 0x00FF00 } textureTransform DEF TT "
               "TextureTransform { }") +
      "ROUTE FROM.image_changed TO T.set_image ROUTE TURN.translation_changed TO TT.set_translation");
  Drawing another(pixels.root());
  another.frame(5);
  EXPECT_TRUE(near(another.at(-1, 0), red));
  pixels.get<VrmlTextureTransform>("TURN")->translation.setValue(0.5F, 0);
  another.frame();
  EXPECT_TRUE(near(another.at(-1, 0), green));
  const unsigned char blue[] = {0, 0, 255};
  pixels.get<VrmlPixelTexture>("FROM")->image.setValue(SbVec2s(1, 1), 3, blue);
  another.frame();
  EXPECT_EQ(another.at(-1, 0), (Colour{0, 0, 255}));
}

TEST(TexturesGL, AreGoneFromGLWithTheirPictureAndTheirWorld) {
  TestWorld empty("Group { }");
  Drawing drawing(empty.root());
  drawing.frame();
  const int before = textureObjects();
  {
    TestWorld world("Group { children [ " + textured("DEF T PixelTexture { image 1 1 3 0xFF0000 }") +
                    textured("ImageTexture { url \"file://" + pictureFile("world.rgb", {1, 2, 3}) + "\" }") +
                    " ] }");
    drawing.root->addChild(world.root());
    drawing.frame(4);
    for (unsigned char i = 0; i < 100; ++i) {
      const unsigned char pixel[] = {i, 255, 0};
      world.get<VrmlPixelTexture>("T")->image.setValue(SbVec2s(1, 1), 3, pixel);
      drawing.frame();
    }
    EXPECT_EQ(textureObjects() - before, 2);
    drawing.root->removeChild(world.root());
  }
  drawing.frame(2);
  EXPECT_EQ(textureObjects(), before);
}

TEST(TexturesGL, StayInEachOfTwoContexts) {
  TestWorld world(textured(image("\"file://" + pictureFile("both.rgb", {0, 255, 0}) + "\"")));
  Drawing one(world.root()), other(world.root());
  other.action.setCacheContext(SoGLCacheContextElement::getUniqueCacheContext());
  const int before = textureObjects();
  one.frame(3);
  other.frame(3);
  const int objects = textureObjects();
  EXPECT_EQ(objects - before, 2);
  for (int frame = 0; frame < 5; ++frame)
    for (Drawing* drawing : {&one, &other}) {
      drawing->frame();
      EXPECT_TRUE(near(drawing->at(0, 0), green));
    }
  EXPECT_EQ(textureObjects(), objects);
}

TEST(TexturesGL, AreReadAgainWhenTheirFileHasChanged) {
  const std::string file = pictureFile("changing.rgb", {255, 0, 0});
  const std::string url = "\"file://" + file + "\"";
  TestWorld world(textured("ImageTexture { url " + url + " }"));
  Drawing drawing(world.root());
  drawing.frame(4);
  EXPECT_EQ(drawing.at(0, 0), red);
  pictureFile("changing.rgb", {0, 255, 0});
  namespace fs = std::filesystem;
  fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(5));
  drawing.frame();
  EXPECT_EQ(drawing.at(0, 0), red) << "nobody has looked yet";
  TestWorld another(textured(image(url)));
  drawing.frame(2);
  EXPECT_EQ(drawing.at(0, 0), green);
  pictureFile("changing.rgb", {255, 0, 0});
  fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(10));
  another.get<VrmlImageTexture>("T")->reload();
  drawing.frame();
  EXPECT_EQ(drawing.at(0, 0), green) << "it looks when it is drawn";
  Drawing(another.root()).frame();
  drawing.frame(2);
  EXPECT_EQ(drawing.at(0, 0), red);
}

TEST(TexturesGL, AreNotDrawnAtQualityZeroOrOutsideOfAnAppearance) {
  TestWorld world(textured("PixelTexture { image 1 1 3 0xFF0000 }"));
  Drawing drawing(world.root());
  auto* complexity = new SoComplexity;
  complexity->textureQuality = 0;
  drawing.root->insertChild(complexity, 0);
  drawing.frame();
  EXPECT_EQ(drawing.at(0, 0), (Colour{204, 204, 204}));
  complexity->textureQuality = 1;
  drawing.frame(2);
  EXPECT_EQ(drawing.at(0, 0), red);
  auto* stray = new VrmlPixelTexture;
  const unsigned char pixel[] = {0, 255, 0};
  stray->image.setValue(SbVec2s(1, 1), 3, pixel);
  TestWorld plain("Shape { geometry Box { size 4 4 1 } }");
  drawing.root->replaceChild(world.root(), plain.root());
  drawing.root->insertChild(stray, 1);
  drawing.frame();
  EXPECT_EQ(drawing.at(0, 0), (Colour{204, 204, 204}));
}

TEST(Textures, StandInTheStateOfActionsThatDrawNothing) {
  startLibrary();
  struct Seen {
    SbVec2s size;
    int components = 0;
    SbColor diffuse;
    float transparency = -1;
    SbMatrix matrix;
  } seen;
  SoCallbackAction action;
  action.addPreCallback(
      VrmlBox::getClassTypeId(),
      [](void* out, SoCallbackAction* at, const SoNode*) {
        auto& s = *static_cast<Seen*>(out);
        SbColor ignored[3];
        float shininess;
        at->getTextureImage(s.size, s.components);
        at->getMaterial(ignored[0], s.diffuse, ignored[1], ignored[2], shininess, s.transparency);
        s.matrix = at->getTextureMatrix();
        return SoCallbackAction::CONTINUE;
      },
      &seen);
  const std::string file = pictureFile("seen.rgb", {1, 2, 3}, 2);
  for (const std::string& texture : std::vector<std::string>{
           "PixelTexture { image 2 2 4 1 2 3 4 }", "ImageTexture { url \"file://" + file + "\" }"}) {
    TestWorld world(
        "Shape { geometry Box { } appearance Appearance { material Material { diffuseColor 1 0 0 "
        "transparency 0.5 } textureTransform TextureTransform { translation 3 4 } texture " +
        texture + " } }");
    seen = {};
    action.apply(world.root());
    EXPECT_EQ(seen.size, SbVec2s(2, 2)) << texture;
    EXPECT_EQ(seen.diffuse, SbColor(1, 1, 1));
    EXPECT_EQ(seen.transparency, seen.components == 4 ? 0.0F : 0.5F) << "only an alpha takes its place";
    EXPECT_EQ(seen.matrix[3][1], 4);
  }
}

TEST(Textures, ResolveTheirUrlsAgainstTheBaseOfTheirReading) {
  startLibrary();
  Requests requests;
  VrmlDB::setBaseURL("http://h/a/world.wrl");
  TestWorld world(textured(image("\"../1.png\" \"2.png\"")));
  VrmlDB::setBaseURL("http://elsewhere/");
  requests.defs[0]->fetchFailed();
  VrmlDB::setBaseURL(nullptr);
  EXPECT_THAT(requests.urls, ElementsAre("http://h/1.png", "http://h/a/2.png"));
}

TEST(TextureTransform, GivesItsStepsAndTheirInverse) {
  startLibrary();
  const SoRef<VrmlTextureTransform> node(new VrmlTextureTransform);
  node->translation.setValue(0.5F, 0.25F);
  node->rotation = 1.5707963F;
  node->scale.setValue(2, 4);
  node->center.setValue(1, 1);
  SoGetMatrixAction action{SbViewportRegion(10, 10)};
  action.apply(node.get());
  SbVec3f to;
  // Less the centre (1, 0), scaled (2, 0), turned (0, 2), plus the centre (1, 3), moved.
  action.getTextureMatrix().multVecMatrix(SbVec3f(2, 1, 0), to);
  EXPECT_TRUE(to.equals(SbVec3f(1.5F, 3.25F, 0), 1e-4F)) << to[0] << ' ' << to[1];
  action.getTextureInverse().multVecMatrix(to, to);
  EXPECT_TRUE(to.equals(SbVec3f(2, 1, 0), 1e-4F)) << to[0] << ' ' << to[1];
}
