// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

#include <GL/gl.h>

class SoState;
class VrmlColor;
class VrmlCoordinate;
class VrmlNormal;
class VrmlTextureCoordinate;

/// What a vertex shape draws from: for each property the GL function, the array and its stride, and the
/// bindings that the node's fields ask for. Filled when the node or the state changes, so that the draw
/// loops ask nothing.
class VrmlVertexPropertyCache {
public:
  using SendFn = void (*)(const GLfloat*);

  /// Parts of the state whose value the cache has still to take, matched against the render cases that
  /// the state needs.
  enum Need : std::uint8_t {
    needTexCoords = 0x1,
    needNormals = 0x6,
    needColors = 0x18,
    needCoords = 0x20,
    needAll = 0xFF,
  };
  /// Bits of `renderCase`.
  enum Case : std::uint8_t {
    texCoordsCase = 0x1,
    faceNormalsCase = 0x4,
    vertexNormalsCase = 0x6,
    faceColorsCase = 0x10,
    vertexColorsCase = 0x18,
  };
  /// How normals and colors are bound.
  enum Binding : std::uint8_t {
    overall = 2,
    perFace = 5,
    perFaceIndexed = 6,
    perVertex = 7,
    perVertexIndexed = 8,
    notBound = 0xFF,
  };
  /// How texture coordinates are bound.
  enum TexBinding : std::uint8_t { texDefault = 0, texPerVertex = 2, texPerVertexIndexed = 3 };

  /// Takes the values of the nodes, any of which may be null. Without coordinates a report, and
  /// `vertexPtr` is null.
  void fillInCache(VrmlCoordinate* coord, VrmlColor* color, VrmlNormal* normal,
                   VrmlTextureCoordinate* texCoord, bool colorPerFace, bool normalPerFace, SoState* state);

  /// The render cases that the state asks for, as bits of Need: colors always, the others by lighting and
  /// texturing. To be met with `needFromState` and `renderCase`; the toolkit's mask has other bits.
  static int renderCaseMask(SoState* state);
  /// Whether the state needs something that the cache has not taken.
  bool mustFill(SoState* state) const { return (renderCaseMask(state) & needFromState) != 0; }

  /// The address of an entry, for its send function.
  static const GLfloat* at(const void* values, int stride, int index) {
    return reinterpret_cast<const GLfloat*>(static_cast<const char*>(values) +
                                            static_cast<std::ptrdiff_t>(stride) * index);
  }

  // Strides are in bytes. The arrays belong to the property nodes.
  SendFn vertexFunc = nullptr;
  const void* vertexPtr = nullptr;
  int vertexStride = 0;
  int numVerts = 0;

  SendFn normalFunc = nullptr;
  const void* normalPtr = nullptr;
  int normalStride = 0;
  int numNormals = 0;

  SendFn colorFunc = nullptr;
  const void* colorPtr = nullptr;
  int colorStride = 0;
  int numColors = 0;

  SendFn texCoordFunc = nullptr;
  const void* texCoordPtr = nullptr;
  int texCoordStride = 0;
  int numTexCoords = 0;

  bool generateNormals = false;    ///< no Normal: they are computed from the faces
  bool generateTexCoords = false;  ///< no TextureCoordinate: they are computed from the box
  std::uint8_t needFromState = needAll;
  std::uint8_t normalBinding = notBound;
  std::uint8_t materialBinding = notBound;
  std::uint8_t texCoordBinding = notBound;
  std::uint8_t renderCase = 0;
  bool colorIsInVP = false;   ///< the colors are the Color node's
  bool transpIsInVP = false;  ///< the material's transparency goes with each color

  /// The alpha that `colorAndAlpha` sends with a color.
  static float colorAlpha;
  static void colorAndAlpha(const GLfloat* rgb);
};
