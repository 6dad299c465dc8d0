// SPDX-License-Identifier: BSD-3-Clause
// Worlds of one idea each, whose pictures were looked at and found right: NAME.wrl is to look like NAME.png.
#include <filesystem>

#include "host/Program.h"
#include "support/Paths.h"
#include "support/Picture.h"

namespace tessel::host {
namespace {

void expectLooks(const std::string& name, const test::PictureTolerance& tolerance) {
  const std::string file = "host/pictures/" + name;
  const Outcome run =
      runTessel({"shot", test::testFile(file + ".wrl").string(), "-o", "shot.png", "--size", "128x128"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_TRUE(test::looksLike(file + ".png", test::readPng(test::scratchDir() / "shot.png"), tolerance));
}

std::string testName(const ::testing::TestParamInfo<const char*>& info) {
  std::string name = info.param;
  std::erase(name, '-');
  return name;
}

class PicturesGL : public ::testing::TestWithParam<const char*> {};

TEST_P(PicturesGL, LookAsExpected) { expectLooks(GetParam(), {}); }

INSTANTIATE_TEST_SUITE_P(
    Worlds, PicturesGL,
    ::testing::Values("solid-colours", "face-and-vertex-colours", "creases", "concave-faces", "three-lights",
                      "transparency", "transforms-and-use", "billboards", "lines-and-points",
                      "sides-of-faces", "scaled-normals", "light-scopes", "spots", "clear-colours",
                      "textures-and-materials", "texture-repeats", "texture-transforms", "textured-shapes",
                      "textured-others", "background-sky-and-ground", "background-ground-in-sky",
                      "background-two-sky-colours", "background-far-edges", "background-ground-alone",
                      "background-odd-angles", "background-images", "background-image-over-sky", "fog-linear",
                      "fog-exponential", "text-families", "extrusion-frames", "extrusion-caps", "grids",
                      "levels-of-detail"),
    testName);

// A single text out of its place changes some sixty pixels.
class JustifyPicturesGL : public ::testing::TestWithParam<const char*> {};

TEST_P(JustifyPicturesGL, LookAsExpected) { expectLooks(GetParam(), {0.5, 40, 0.003}); }

INSTANTIATE_TEST_SUITE_P(
    Worlds, JustifyPicturesGL,
    ::testing::Values("text-rows-from-left-from-top", "text-rows-from-left-from-bottom",
                      "text-rows-from-right-from-top", "text-rows-from-right-from-bottom",
                      "text-columns-from-left-from-top", "text-columns-from-left-from-bottom",
                      "text-columns-from-right-from-top", "text-columns-from-right-from-bottom"),
    testName);

}  // namespace
}  // namespace tessel::host
