// SPDX-License-Identifier: BSD-3-Clause
#include "textures/TextureDownload.h"

#include <algorithm>
#include <limits>
#include <vector>

#include <GL/glu.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/system/gl.h>

namespace tessel {

namespace {

struct FilterRow {
  float fastBound, slowBound;  // the row is for qualities up to here, where mipmaps are fast and where not
  GLint minification;
  bool mipMaps;
};

constexpr float noBound = std::numeric_limits<float>::max();
constexpr FilterRow filterRows[] = {
    {0.1F, 0.5F, GL_NEAREST, false},
    {0.6F, 0.6F, GL_LINEAR, false},
    {0.7F, 0.7F, GL_NEAREST_MIPMAP_NEAREST, true},
    {0.8F, 0.8F, GL_NEAREST_MIPMAP_LINEAR, true},
    {0.9F, 0.9F, GL_LINEAR_MIPMAP_NEAREST, true},
    {noBound, noBound, GL_LINEAR_MIPMAP_LINEAR, true},
};

constexpr float fineColors = 0.6F;  // the least quality that keeps all bits of a colour

GLint internalFormat(SoState* state, int components, float quality) {
  static const int extension = SoGLCacheContextElement::getExtID("GL_EXT_texture");
  if (!SoGLCacheContextElement::extSupported(state, extension)) return components;
  if (quality >= fineColors) return static_cast<GLint>(pixelFormat(components));
  constexpr GLint small[] = {GL_LUMINANCE8_EXT, GL_LUMINANCE8_ALPHA8_EXT, GL_RGB4_EXT, GL_RGBA4_EXT};
  return small[components - 1];
}

/// Half of a picture in its place: each pixel is the mean of four, or of the same two twice, rounded down.
void halve(unsigned char* pixels, int& width, int& height, int components) {
  const int oldWidth = width;
  const std::size_t right = width > 1 ? static_cast<std::size_t>(components) : 0;
  const std::size_t up =
      height > 1 ? static_cast<std::size_t>(oldWidth) * static_cast<std::size_t>(components) : 0;
  const int stepX = width > 1 ? 2 : 1, stepY = height > 1 ? 2 : 1;
  width = std::max(width / 2, 1);
  height = std::max(height / 2, 1);
  unsigned char* to = pixels;
  for (int y = 0; y < height; ++y) {
    const unsigned char* from = pixels + static_cast<std::size_t>(y * stepY) *
                                             static_cast<std::size_t>(oldWidth) *
                                             static_cast<std::size_t>(components);
    for (int x = 0; x < width; ++x, from += stepX * components)
      for (int c = 0; c < components; ++c)
        *to++ = static_cast<unsigned char>(
            (from[c] + from[right + c] + from[up + c] + from[up + right + c]) >> 2);
  }
}

}  // namespace

GLenum pixelFormat(int components) {
  constexpr GLenum formats[] = {GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGB, GL_RGBA};
  return formats[std::clamp(components, 1, 4) - 1];
}

int textureSide(int side, int most) {
  if (side < 9) {
    int power = 1;
    while (power < side) power *= 2;
    return power;
  }
  if (side > most) return most;
  int below = 1;
  while (below * 2 <= side) below *= 2;
  return side < below + below / 2 ? below : below * 2;
}

int mostTextureSide() {
  GLint most = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
  return most;
}

bool scaleToTexture(Picture& picture, int mostSide, std::vector<unsigned char>& buffer) {
  const int width = textureSide(picture.width, mostSide), height = textureSide(picture.height, mostSide);
  if (width == picture.width && height == picture.height) return false;
  buffer.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                static_cast<std::size_t>(picture.components));
  const GLenum format = pixelFormat(picture.components);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  gluScaleImage(format, picture.width, picture.height, GL_UNSIGNED_BYTE, picture.bytes, width, height,
                GL_UNSIGNED_BYTE, buffer.data());
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  picture.width = width;
  picture.height = height;
  picture.bytes = buffer.data();
  return true;
}

void downloadTexture(SoState* state, const Picture& picture, const TextureForm& form) {
  const bool fast = SoGLCacheContextElement::areMipMapsFast(state);
  const FilterRow& filter = *std::find_if(
      std::begin(filterRows), std::end(filterRows) - 1,
      [&](const FilterRow& row) { return (fast ? row.fastBound : row.slowBound) >= form.quality; });
  const GLenum format = pixelFormat(picture.components);
  const GLint stored = internalFormat(state, picture.components, form.quality);

  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER,
                  form.quality < (fast ? 0.5F : 0.75F) ? GL_NEAREST : GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter.minification);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, form.wrapS);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, form.wrapT);

  std::vector<unsigned char> buffer;
  Picture sent = picture;
  scaleToTexture(sent, mostTextureSide(), buffer);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  int width = sent.width, height = sent.height;
  glTexImage2D(GL_TEXTURE_2D, 0, stored, width, height, 0, format, GL_UNSIGNED_BYTE, sent.bytes);
  if (filter.mipMaps && (width > 1 || height > 1)) {
    const std::size_t bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                              static_cast<std::size_t>(sent.components);
    if (buffer.empty()) buffer.assign(sent.bytes, sent.bytes + bytes);
    for (GLint level = 1; width > 1 || height > 1; ++level) {
      halve(buffer.data(), width, height, sent.components);
      glTexImage2D(GL_TEXTURE_2D, level, stored, width, height, 0, format, GL_UNSIGNED_BYTE, buffer.data());
    }
  }
  glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

}  // namespace tessel
