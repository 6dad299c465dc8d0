// SPDX-License-Identifier: BSD-3-Clause
// `tessel shot` and `tessel info`, seen from the shell. The worlds are lit by themselves (emissive colour alone), so
// that a pixel tells what stands there.
#include <array>
#include <filesystem>

#include <gmock/gmock.h>
#include <png.h>

#include "host/Program.h"
#include "support/Paths.h"

namespace tessel::host {
namespace {

using ::testing::HasSubstr;

using Color = std::array<int, 3>;
constexpr Color black{0, 0, 0}, red{255, 0, 0}, green{0, 255, 0}, blue{0, 0, 255};

/// A picture that the program wrote; rows from the top.
struct Picture {
  int width = 0, height = 0;
  std::vector<png_byte> bytes;

  explicit Picture(const std::string& name) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&png, (test::scratchDir() / name).c_str())) return;
    png.format = PNG_FORMAT_RGB;
    bytes.resize(PNG_IMAGE_SIZE(png));
    png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr);
    width = static_cast<int>(png.width);
    height = static_cast<int>(png.height);
  }
  /// The colour at a place in parts of width and height, from the upper left.
  Color at(double x, double y) const {
    if (bytes.empty()) return {-1, -1, -1};
    const auto i =
        3 * static_cast<std::size_t>(static_cast<int>(y * height) * width + static_cast<int>(x * width));
    return {bytes[i], bytes[i + 1], bytes[i + 2]};
  }
  int pixelsOf(const Color& color) const {
    int n = 0;
    for (std::size_t i = 0; i + 2 < bytes.size(); i += 3)
      n += bytes[i] == color[0] && bytes[i + 1] == color[1] && bytes[i + 2] == color[2];
    return n;
  }
};

TEST(ShotGL, DrawsWhatStandsInFrontOfTheDefaultViewpoint) {
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0") + shiningBox("3 0 0", "1 1 1", "0 1 0")));
  const Outcome run = runTessel({"shot", "w.wrl", "-o", "w.png", "--size", "200x100"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  const Picture picture("w.png");
  ASSERT_EQ(picture.width, 200);
  ASSERT_EQ(picture.height, 100);
  EXPECT_EQ(picture.at(0.5, 0.5), red);
  EXPECT_EQ(picture.at(0.02, 0.02), black);
  EXPECT_GT(picture.pixelsOf(green), 20);
  // 0 0 10, 45 degrees over the height of 100 pixels: the front face is 2 wide at a distance of 9.
  EXPECT_NEAR(picture.pixelsOf(red), 26.8 * 26.8, 60);
}

TEST(ShotGL, FieldOfViewSpansTheSmallerSide) {
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0")));
  ASSERT_EQ(runTessel({"shot", "w.wrl", "-o", "wide.png", "--size", "200x100"}).status, 0);
  ASSERT_EQ(runTessel({"shot", "w.wrl", "-o", "high.png", "--size", "100x200"}).status, 0);
  const int wide = Picture("wide.png").pixelsOf(red), high = Picture("high.png").pixelsOf(red);
  EXPECT_GT(wide, 500);
  EXPECT_NEAR(wide, high, 60);
}

TEST(ShotGL, ViewpointsAreFoundByNameDescriptionAndNumber) {
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0") + shiningBox("100 0 0", "2 2 2", "0 1 0") +
                          shiningBox("200 0 0", "2 2 2", "0 0 1") +
                          "Viewpoint { description \"first\" }\n"
                          "DEF Second Viewpoint { position 100 0 10 description \"a view\" }\n"
                          "Transform { translation 200 0 0 children DEF Third Viewpoint { jump FALSE } }\n"));
  const std::pair<const char*, Color> wanted[] = {{"first", red},  {"Second", green}, {"a view", green},
                                                  {"Third", blue}, {"#3", blue},      {"#1", red}};
  for (const auto& [viewpoint, color] : wanted) {
    const Outcome run =
        runTessel({"shot", "w.wrl", "-o", "w.png", "--size", "64x64", "--viewpoint", viewpoint});
    ASSERT_EQ(run.status, 0) << viewpoint << run.err;
    EXPECT_EQ(Picture("w.png").at(0.5, 0.5), color) << viewpoint;
  }
  for (const char* unknown : {"#4", "#0", "#x", "second", "a"}) {
    const Outcome run = runTessel({"shot", "w.wrl", "-o", "none.png", "--viewpoint", unknown});
    EXPECT_EQ(run.status, 1) << unknown;
    EXPECT_THAT(run.err, HasSubstr("w.wrl: error: there is no viewpoint " + std::string(unknown)));
  }
  EXPECT_FALSE(std::filesystem::exists(test::scratchDir() / "none.png"));
}

TEST(ShotGL, AllFramesWorldsOfAnySizeAndPlace) {
  const std::pair<const char*, const char*> worlds[] = {{"0 0 0", "2 2 2"},
                                                        {"0 0 0", "1e-10 1e-10 1e-10"},
                                                        {"0 0 0", "1e7 1e7 1e7"},
                                                        {"5e6 -3e6 1e6", "300 300 300"}};
  for (const auto& [place, size] : worlds) {
    makeFile("w.wrl", world(shiningBox(place, size, "1 0 0")));
    ASSERT_EQ(runTessel({"shot", "w.wrl", "-o", "w.png", "--size", "100x100", "--viewpoint", "all"}).status,
              0);
    const Picture picture("w.png");
    EXPECT_EQ(picture.at(0.5, 0.5), red) << place << ' ' << size;
    EXPECT_EQ(picture.at(0.01, 0.01), black) << place << ' ' << size;
    EXPECT_GT(picture.pixelsOf(red), 1500) << place << ' ' << size;
  }
}

TEST(ShotGL, DepthHoldsNearAndFarInOneWorld) {
  // A hand's breadth and ten thousand kilometres, each with something just behind what must hide it.
  makeFile("w.wrl",
           world(shiningBox("0 0 -1e7", "1e7 1e7 10", "0 0 1") +
                 shiningBox("0 0 -1.1e7", "1.2e7 0.9e6 10", "1 0 0") +
                 shiningBox("0.1 0 -0.3", "0.1 0.1 0.0001", "0 1 0") +
                 shiningBox("0.1 0 -0.301", "0.1 0.1 0.0001", "1 0 0") + "Viewpoint { position 0 0 0 }\n"));
  ASSERT_EQ(runTessel({"shot", "w.wrl", "-o", "w.png", "--size", "100x100"}).status, 0);
  const Picture picture("w.png");
  EXPECT_EQ(picture.at(0.3, 0.5), blue);
  EXPECT_EQ(picture.at(0.9, 0.5), green);
  EXPECT_LT(picture.pixelsOf(red), 120) << "what lies behind shows through";
}

TEST(ShotGL, DepthHoldsFarFromTheOrigin) {
  // Two walls, ten metres one behind the other, with a map's coordinates in their corners; and a post beside the eye.
  const auto wall = [](int half, int z, const char* color) {
    const std::string x0 = std::to_string(3456789 - half), x1 = std::to_string(3456789 + half),
                      y0 = std::to_string(-half), y1 = std::to_string(half),
                      d = std::string(" ").append(std::to_string(z - 5412345)).append(" ");
    return "Shape { appearance Appearance { material Material { ambientIntensity 0 diffuseColor 0 0 0 "
           "emissiveColor " +
           std::string(color) +
           " } } geometry IndexedFaceSet { coordIndex [ 0 1 2 3 ] coord Coordinate { point [ " + x0 + " " +
           y0 + d + x1 + " " + y0 + d + x1 + " " + y1 + d + x0 + " " + y1 + d + "] } } }\n";
  };
  makeFile("w.wrl", world(wall(20, -100, "0 1 0") + wall(22, -110, "1 0 0") +
                          shiningBox("3456792 0 -5412344", "1 1 1", "0 0 1") +
                          "Viewpoint { position 3456789 0 -5412345 }\n"));
  ASSERT_EQ(runTessel({"shot", "w.wrl", "-o", "w.png", "--size", "100x100"}).status, 0);
  const Picture picture("w.png");
  EXPECT_GT(picture.pixelsOf(green), 40 * 40);
  EXPECT_LT(picture.pixelsOf(red), 100) << "what lies behind shows through";
}

TEST(ShotGL, HeadlightShinesAlongTheView) {
  const std::string shape =
      "Transform { translation 100 0 0 children Shape { appearance Appearance { material Material "
      "{ diffuseColor 1 1 1 } } geometry Box { } } }\nViewpoint { position 110 0 0 orientation 0 1 0 1.5708 "
      "}\n";
  makeFile("lit.wrl", world(shape));
  makeFile("dark.wrl", world(shape + "NavigationInfo { headlight FALSE }\n"));
  ASSERT_EQ(runTessel({"shot", "lit.wrl", "-o", "lit.png", "--size", "50x50"}).status, 0);
  ASSERT_EQ(runTessel({"shot", "dark.wrl", "-o", "dark.png", "--size", "50x50"}).status, 0);
  EXPECT_GT(Picture("lit.png").at(0.5, 0.5)[0], 240);
  EXPECT_LT(Picture("dark.png").at(0.5, 0.5)[0], 80);
}

TEST(ShotGL, TakesPicturesAtATimeAndOfEveryFrame) {
  makeFile("w.wrl", world("DEF T Transform { children " + shiningBox("0 0 0", "2 2 2", "1 0 0") +
                          "}\nDEF C TimeSensor { cycleInterval 1 startTime 1000000000 }\n"
                          "DEF P PositionInterpolator { key [ 0 0.4 1 ] keyValue [ 0 0 0 0 0 0 100 0 0 ] }\n"
                          "ROUTE C.fraction_changed TO P.set_fraction\n"
                          "ROUTE P.value_changed TO T.translation\n"));
  makeFile("in", "0.2 set C.enabled FALSE\n0.2 set T.translation 100 0 0\n");
  const auto shoot = [](std::vector<std::string> more) {
    std::vector<std::string> arguments = {"shot", "w.wrl", "--size", "64x64", "--fps", "10"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome run = runTessel(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
  };
  shoot({"--time", "0.9", "--frames", "one/two", "-o", "last.png"});
  shoot({"--time", "0.9", "--frames", "again"});
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(test::scratchDir() / "one/two"))
    names.push_back(entry.path().filename());
  EXPECT_EQ(names.size(), 10u);
  for (const std::string& name : names) {
    const Picture picture("one/two/" + name);
    EXPECT_EQ(picture.bytes, Picture("again/" + name).bytes) << name;
  }
  EXPECT_EQ(Picture("one/two/000000.png").at(0.5, 0.5), red);
  EXPECT_EQ(Picture("one/two/000009.png").at(0.5, 0.5), black);
  EXPECT_EQ(Picture("last.png").bytes, Picture("one/two/000009.png").bytes);
  shoot({"--time", "0.3", "-o", "early.png"});
  EXPECT_EQ(Picture("early.png").at(0.5, 0.5), red);
  shoot({"--time", "0.3", "-o", "early.png", "--input", "in"});
  EXPECT_EQ(Picture("early.png").at(0.5, 0.5), black);
}

TEST(ShotGL, ManyWorldsGoIntoAFolderUnderTheirNames) {
  makeFile("a/w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0")));
  makeFile("b/w.wrl", world(shiningBox("0 0 0", "2 2 2", "0 1 0")));
  makeFile("bad.wrl", world("Groop { }"));
  makeFile("empty.wrl", world(""));
  const Outcome run = runTessel(
      {"shot", "a/w.wrl", "bad.wrl", "empty.wrl", "b/w.wrl", "-o", "pictures/new", "--size", "50x50"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "4 worlds: 2 pictures\n");
  EXPECT_THAT(run.err, HasSubstr("empty.wrl: error: there is nothing to show"));
  EXPECT_EQ(Picture("pictures/new/w.png").at(0.5, 0.5), red);
  EXPECT_EQ(Picture("pictures/new/w-2.png").at(0.5, 0.5), green);
}

TEST(ShotGL, SaysWhatItCannotDo) {
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0")));
  EXPECT_EQ(runTessel({"shot", "w.wrl", "-o", "no/such/folder/w.png"}).status, 3);
  EXPECT_EQ(runTessel({"shot", "missing.wrl", "-o", "w.png"}).status, 3);
  for (const char* size : {"0x5", "800", "800x600x2", "-5x5", "99999x10", "x"})
    EXPECT_EQ(runTessel({"shot", "w.wrl", "--size", size}).status, 2) << size;
}

TEST(ShotGL, ASystemWithoutFontsDrawsTheRest) {
  const std::string text = "Shape { geometry Text { string [ \"A\", \"B\" ] fontStyle FontStyle { } } }";
  const std::string configuration =
      (test::scratchDir() / makeFile("fonts.conf", "<fontconfig></fontconfig>")).string();
  setenv("FONTCONFIG_FILE", configuration.c_str(), 1);
  const Outcome run = runTessel(
      {"shot", "-o", "p.png", "--size", "32x32",
       makeFile("w.wrl", world("Viewpoint { } " + text + text + shiningBox("0 0 0", "2 2 2", "1 0 0")))});
  unsetenv("FONTCONFIG_FILE");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "w.wrl: warning: no outline font on this system: text is not drawn\n");
  EXPECT_EQ(Picture("p.png").at(0.5, 0.5), red);
}

TEST(Info, CountsTextsUnderAGivenBoxToo) {
  const std::string text = "Shape { geometry Text { string \"l\" fontStyle FontStyle { family \"SANS\" } } }";
  // A plain l is a bar: four points.
  for (const std::string& body : {text, "Group { bboxSize 1 1 1 children " + text + " }"}) {
    const Outcome run = runTessel({"info", "--json", makeFile("w.wrl", world(body))});
    EXPECT_THAT(run.out, HasSubstr("\"triangles\": 4,")) << run.err;
  }
}

TEST(Info, CountsWhatIsThere) {
  makeFile(
      "w.wrl",
      world(
          "DEF S Shape { geometry Box { } }\nTransform { translation 5 0 0 children [ USE S USE S ] }\n"
          "DEF A Viewpoint { description \"front \\\"door\\\"\" }\nDEF B Transform { }\nDEF C Transform { }\n"
          "ROUTE B.translation TO C.translation\nROUTE B.rotation TO C.rotation\n"));
  const Outcome run = runTessel({"info", "--json", "w.wrl"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("\"triangles\": 36,"));
  EXPECT_THAT(run.out, HasSubstr("\"lines\": 0,"));
  EXPECT_THAT(run.out, HasSubstr("\"points\": 0,"));
  EXPECT_THAT(run.out, HasSubstr("\"Box\": 1,"));
  EXPECT_THAT(run.out, HasSubstr("\"Transform\": 3"));
  EXPECT_THAT(run.out, HasSubstr("\"routes\": 2,"));
  EXPECT_THAT(run.out, HasSubstr("\"name\": \"A\""));
  EXPECT_THAT(run.out, HasSubstr("\"description\": \"front \\\"door\\\"\""));
  const Outcome text = runTessel({"info", "w.wrl"});
  EXPECT_THAT(text.out, HasSubstr("#1 A  \"front \"door\"\""));
  EXPECT_THAT(text.out, HasSubstr("box         -1 -1 -1  to  6 1 1"));
}

}  // namespace
}  // namespace tessel::host
