// SPDX-License-Identifier: BSD-3-Clause
// The example hosts do what their texts say.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "support/Paths.h"
#include "support/Picture.h"

using namespace tessel::test;

namespace {

struct Outcome {
  int status;
  std::string output;
};

Outcome run(const char* program, const std::string& arguments) {
  const auto output = scratchDir() / "output.txt";
  const auto command = builtProgram(program).string() + " " + arguments + " > " + output.string();
  const int status = std::system(command.c_str());
  std::ifstream in(output);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, std::string(std::istreambuf_iterator<char>(in), {})};
}

}  // namespace

TEST(Example, EmbedTellsTheSizeOfAWorld) {
  const auto box = run("example-embed", testFile("install/box.wrl").string());
  EXPECT_EQ(box.status, 0);
  EXPECT_EQ(box.output, "2 x 3 x 4 metres\n");
}

TEST(Example, EmbedEndsInTheDefinedWayOnWhatIsNoWorld) {
  const auto broken = scratchDir() / "broken.wrl";
  std::ofstream(broken) << "#VRML V2.0 utf8\nGroup { childen [] }\n";
  EXPECT_EQ(run("example-embed", broken.string() + " 2>&1").status, 1);
  EXPECT_EQ(run("example-embed", (scratchDir() / "missing.wrl").string() + " 2>&1").status, 2);
}

TEST(Example, FetchPutsAWorldTogether) {
  const auto write = [](const char* name, const char* body) {
    std::ofstream(scratchDir() / name) << "#VRML V2.0 utf8\n" << body;
  };
  write("main.wrl", "Inline { url [\"none.wrl\" \"part.wrl\"] }");
  write("part.wrl",
        "Transform { translation 5 0 0 children Inline { url \"box.wrl\" } } Inline { url \"box.wrl\" }");
  write("box.wrl", "Shape { geometry Box {} }");
  const auto made = run("example-fetch", (scratchDir() / "main.wrl").string());
  EXPECT_EQ(made.status, 0);
  EXPECT_EQ(made.output,
            "none.wrl: not to be had\npart.wrl: read\nbox.wrl: read\nbox.wrl: read\n7 x 2 x 2\n");
}

TEST(ExampleGL, PictureShowsTheShowcaseWorld) {
  const auto file = scratchDir() / "showcase.png";
  ASSERT_EQ(run("example-picture", projectFile("examples/worlds/showcase.wrl").string() + " " + file.string())
                .status,
            0);
  const auto picture = readPng(file);
  ASSERT_EQ(picture.width, 640);
  ASSERT_EQ(picture.height, 480);
  const Colour sky = pixel(picture, 10, 470);
  EXPECT_TRUE(near(sky, {26, 33, 61}, 2)) << sky;
  const Colour star = pixel(picture, 320, 390);
  EXPECT_GT(star.g, 2 * star.b) << star;
  const Colour tower = pixel(picture, 320, 180);
  EXPECT_GT(tower.r, 2 * tower.b) << tower;
  const Colour columnInTheBubble = pixel(picture, 197, 210), column = pixel(picture, 197, 240);
  EXPECT_GT(columnInTheBubble.b, columnInTheBubble.r) << "the bubble is clear and blue";
  EXPECT_GT(column.r, column.b) << "the column behind it is warm";
}
