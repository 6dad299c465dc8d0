// SPDX-License-Identifier: BSD-3-Clause
// Worlds of one idea each, whose pictures were looked at and found right: NAME.wrl is to look like NAME.png.
#include <filesystem>

#include "host/Program.h"
#include "support/Paths.h"
#include "support/Picture.h"

namespace tessel::host {
namespace {

class PicturesGL : public ::testing::TestWithParam<const char*> {};

TEST_P(PicturesGL, LookAsExpected) {
  const std::string name = std::string("host/pictures/") + GetParam();
  const Outcome run =
      runTessel({"shot", test::testFile(name + ".wrl").string(), "-o", "shot.png", "--size", "128x128"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_TRUE(test::looksLike(name + ".png", test::readPng(test::scratchDir() / "shot.png")));
}

INSTANTIATE_TEST_SUITE_P(Worlds, PicturesGL,
                         ::testing::Values("solid-colours", "face-and-vertex-colours", "creases",
                                           "concave-faces", "three-lights", "transparency",
                                           "transforms-and-use", "billboards", "lines-and-points",
                                           "sides-of-faces", "scaled-normals", "light-scopes", "spots",
                                           "clear-colours"),
                         [](const auto& info) {
                           std::string name = info.param;
                           std::erase(name, '-');
                           return name;
                         });

}  // namespace
}  // namespace tessel::host
