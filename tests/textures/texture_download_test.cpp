// SPDX-License-Identifier: BSD-3-Clause
// In what size, with which filters and in which format a picture goes to GL.
#include "textures/TextureDownload.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/system/gl.h>

#include "support/Drawing.h"
#include "support/TestWorld.h"

using namespace tessel::test;

namespace {

std::string textured(const std::string& texture) {
  return "Shape { appearance Appearance { texture " + texture + " } geometry Box { size 4 4 1 } }";
}

GLuint newestTexture() {
  GLuint newest = 0;
  for (GLuint id = 1; id < 2000; ++id)
    if (glIsTexture(id)) newest = id;
  return newest;
}

}  // namespace

TEST(TextureDownload, ChoosesSidesByTheirTopTwoBits) {
  const struct {
    int side, sent;
  } rows[] = {{1, 1},   {2, 2},   {3, 4},    {5, 8},       {8, 8},       {9, 8},       {11, 8},
              {12, 16}, {95, 64}, {96, 128}, {1023, 1024}, {1024, 1024}, {1025, 1024}, {5000, 1024}};
  for (const auto& row : rows) EXPECT_EQ(tessel::textureSide(row.side, 1024), row.sent) << row.side;
}

TEST(TextureDownloadGL, TakesSidesThatShortNumbersDoNotHold) {
  TestWorld world("Group { }");
  Drawing drawing(world.root());
  drawing.frame();
  const std::vector<unsigned char> pixels(30000, 7);
  tessel::Picture picture{30000, 1, 1, pixels.data()};
  std::vector<unsigned char> buffer;
  EXPECT_TRUE(tessel::scaleToTexture(picture, 32768, buffer));
  EXPECT_EQ(picture.width, 32768);
  EXPECT_EQ(buffer.size(), 32768u);
}

TEST(TextureDownloadGL, ChoosesFiltersAndFormatsByTheQuality) {
  const struct {
    float quality;
    GLint minification, magnification, format;
  } rows[] = {{0.05F, GL_NEAREST, GL_NEAREST, GL_RGB4},
              {0.1F, GL_NEAREST, GL_NEAREST, GL_RGB4},
              {0.4F, GL_LINEAR, GL_NEAREST, GL_RGB4},
              {0.5F, GL_LINEAR, GL_LINEAR, GL_RGB4},
              {0.6F, GL_LINEAR, GL_LINEAR, GL_RGB},
              {0.65F, GL_NEAREST_MIPMAP_NEAREST, GL_LINEAR, GL_RGB},
              {0.75F, GL_NEAREST_MIPMAP_LINEAR, GL_LINEAR, GL_RGB},
              {0.85F, GL_LINEAR_MIPMAP_NEAREST, GL_LINEAR, GL_RGB},
              {1, GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR, GL_RGB}};
  TestWorld world(textured("PixelTexture { image 2 1 3 0xFF0000 0x00FF00 repeatT FALSE }"));
  Drawing drawing(world.root());
  auto* complexity = new SoComplexity;
  drawing.root->insertChild(complexity, 0);
  for (const auto& row : rows) {
    complexity->textureQuality = row.quality;
    drawing.frame();
    glBindTexture(GL_TEXTURE_2D, newestTexture());
    const auto parameter = [](GLenum name) {
      GLint value = 0;
      glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
      return value;
    };
    EXPECT_EQ(parameter(GL_TEXTURE_MIN_FILTER), row.minification) << row.quality;
    EXPECT_EQ(parameter(GL_TEXTURE_MAG_FILTER), row.magnification) << row.quality;
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP);
    GLint format = 0, below = -1;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 1, GL_TEXTURE_WIDTH, &below);
    EXPECT_EQ(format, row.format) << row.quality;
    EXPECT_EQ(below, row.quality > 0.6F ? 1 : 0) << row.quality;
  }
}

TEST(TextureDownloadGL, MakesMipmapsByTruncatedMeans) {
  // A picture of 4 x 2 pixels with one component.
  TestWorld world(textured("PixelTexture { image 4 2 1 0 10 20 31 100 110 120 133 }"));
  Drawing drawing(world.root());
  auto* complexity = new SoComplexity;
  complexity->textureQuality = 1;
  drawing.root->insertChild(complexity, 0);
  drawing.frame();
  glBindTexture(GL_TEXTURE_2D, newestTexture());
  unsigned char level[8] = {};
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glGetTexImage(GL_TEXTURE_2D, 1, GL_LUMINANCE, GL_UNSIGNED_BYTE, level);
  EXPECT_EQ(level[0], (0 + 10 + 100 + 110) / 4);
  EXPECT_EQ(level[1], (20 + 31 + 120 + 133) / 4);
  glGetTexImage(GL_TEXTURE_2D, 2, GL_LUMINANCE, GL_UNSIGNED_BYTE, level);
  EXPECT_EQ(level[0], (55 + 76) * 2 / 4);
  GLint width = -1;
  glGetTexLevelParameteriv(GL_TEXTURE_2D, 3, GL_TEXTURE_WIDTH, &width);
  EXPECT_EQ(width, 0) << "no level below the one of a single pixel";
}
