// SPDX-License-Identifier: BSD-3-Clause
// The tests' own measure: it must tell a wrong picture from a right one.
#include "support/Picture.h"

#include <gtest/gtest.h>

#include <GL/gl.h>

#include "support/Messages.h"
#include "support/Paths.h"

#include <Inventor/SoDB.h>
#include <Inventor/errors/SoDebugError.h>

using namespace tessel::test;
using tessel::host::Image;

namespace {

Image grey(int width, int height) {
  return {width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(3 * width * height), 128)};
}

// Relative to tests/, as golden pictures are named.
std::string expectedPicture(const Image& image) {
  const auto file = scratchDir() / "expected.png";
  EXPECT_EQ(tessel::host::writePng(image, file.string()), "");
  return std::filesystem::relative(file, testFile("")).string();
}

}  // namespace

TEST(GoldenPicture, LetsPassWhatAnotherDriverMayDraw) {
  const auto golden = expectedPicture(grey(20, 20));
  auto actual = grey(20, 20);
  for (std::size_t i = 0; i < actual.rgb.size(); i += 2) actual.rgb[i] += 1;
  actual.rgb[30] = 255;
  EXPECT_TRUE(looksLike(golden, actual));
}

TEST(GoldenPicture, RefusesAFewWrongPixelsAndAFaintChangeOfAll) {
  const auto golden = expectedPicture(grey(20, 20));
  auto spotted = grey(20, 20);
  for (std::size_t i = 0; i < 15; ++i) spotted.rgb[i] = 200;
  EXPECT_FALSE(looksLike(golden, spotted));
  auto brighter = grey(20, 20);
  for (auto& channel : brighter.rgb) channel += 3;
  EXPECT_FALSE(looksLike(golden, brighter));
  EXPECT_FALSE(looksLike(golden, grey(10, 40)));
  EXPECT_FALSE(looksLike("project/golden/nowhere.png", grey(20, 20)));
}

TEST(OffscreenGL, OneContextOutlivesAnother) {
  auto first = openContext(16, 16);
  {
    auto second = openContext(8, 8);
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(pixel(second->picture(), 4, 4), (Colour{0, 255, 0}));
  }
  first->makeCurrent();
  glClearColor(1, 0, 0, 1);
  glClear(GL_COLOR_BUFFER_BIT);
  const auto picture = first->picture();
  EXPECT_EQ(pixel(picture, 15, 15), (Colour{255, 0, 0}));
  EXPECT_EQ(countLit(picture), 16 * 16);
}

TEST(Messages, TheInnermostListenerHears) {
  SoDB::init();
  Messages outer;
  {
    Messages inner;
    SoDebugError::postWarning("Some::where", "first");
    EXPECT_EQ(inner.count("first"), 1);
  }
  SoDebugError::postWarning("Some::where", "second");
  EXPECT_EQ(outer.text(), "Coin warning in Some::where(): second");
}
