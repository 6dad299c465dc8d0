// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <vector>

#include <Inventor/system/gl.h>

#include "textures/Picture.h"

class SoState;

namespace tessel {

/// The format in which GL takes pictures of that many components.
GLenum pixelFormat(int components);

/// How large a side of a texture goes to GL: a power of two near to that of the picture, at most `most`.
int textureSide(int side, int most);

/// The largest side that the context takes.
int mostTextureSide();

/// Scales a picture to the sides that GL is to get, into `buffer`; `picture` then has its new size and bytes. False, and
/// nothing is done, if it has them already.
bool scaleToTexture(Picture& picture, int mostSide, std::vector<unsigned char>& buffer);

/// How a texture is to be made.
struct TextureForm {
  int wrapS = GL_REPEAT;  ///< GL_REPEAT or GL_CLAMP
  int wrapT = GL_REPEAT;
  float quality = 0;  ///< from 0 to 1: what filters, and how finely colours are kept
};

/// Sends a picture, its filters and its mipmaps to the texture that is bound.
void downloadTexture(SoState* state, const Picture& picture, const TextureForm& form);

}  // namespace tessel
