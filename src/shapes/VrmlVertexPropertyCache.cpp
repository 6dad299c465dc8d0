// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/VrmlVertexPropertyCache.h"

#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoOverrideElement.h>
#include <Inventor/elements/SoShapeStyleElement.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/misc/SoState.h>

#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlNormal.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>

namespace {

/// Array, stride and count of a property from the values of its node's field.
template <class Field> void take(const Field& field, const void*& values, int& stride, int& count) {
  values = field.getValues(0);
  stride = sizeof(*field.getValues(0));
  count = field.getNum();
}

template <class Field> bool hasValues(const Field& field) { return field.getNum() > 0; }

void sendIndexColor(const GLfloat* index) { glIndexiv(reinterpret_cast<const GLint*>(index)); }

}  // namespace

float VrmlVertexPropertyCache::colorAlpha = 1;

void VrmlVertexPropertyCache::colorAndAlpha(const GLfloat* rgb) {
  glColor4f(rgb[0], rgb[1], rgb[2], colorAlpha);
}

int VrmlVertexPropertyCache::renderCaseMask(SoState* state) {
  const SoShapeStyleElement* style = SoShapeStyleElement::get(state);
  return needColors | needCoords | (style->needNormals() ? needNormals : 0) |
         (style->needTexCoords() ? needTexCoords : 0);
}

void VrmlVertexPropertyCache::fillInCache(VrmlCoordinate* coord, VrmlColor* color, VrmlNormal* normal,
                                          VrmlTextureCoordinate* texCoord, bool colorPerFace,
                                          bool normalPerFace, SoState* state) {
  *this = VrmlVertexPropertyCache();

  if (coord && hasValues(coord->point)) {
    vertexFunc = glVertex3fv;
    take(coord->point, vertexPtr, vertexStride, numVerts);
    needFromState &= ~needCoords;
  } else {
    SoDebugError::post("VrmlVertexPropertyCache::fillInCache", "no coordinates specified\n");
  }

  // Under an override of the diffuse color the own ones are not drawn; indices into them are right all the same.
  const bool hasColors = color && hasValues(color->color);
  const bool useColors = hasColors && !SoOverrideElement::getDiffuseColorOverride(state);
  materialBinding = overall;
  numColors = hasColors ? color->color.getNum() : 1;
  if (SoGLLazyElement::isColorIndex(state)) {
    const SoLazyElement* lazy = SoLazyElement::getInstance(state);
    colorFunc = sendIndexColor;
    colorStride = sizeof(std::int32_t);
    colorPtr = lazy->getColorIndexPointer();
    numColors = lazy->getNumColorIndices();
  } else {
    if (useColors) {
      take(color->color, colorPtr, colorStride, numColors);
      colorIsInVP = true;
      colorAlpha = 1 - SoLazyElement::getTransparency(state, 0);
      transpIsInVP = colorAlpha < 1;
      colorFunc = transpIsInVP ? colorAndAlpha : static_cast<SendFn>(glColor3fv);
    }
    needFromState &= ~needColors;
  }
  if (useColors) {
    materialBinding = colorPerFace ? perFace : perVertexIndexed;
    renderCase |= colorPerFace ? faceColorsCase : vertexColorsCase;
  }

  normalFunc = glNormal3fv;
  needFromState &= ~needNormals;
  generateNormals = !(normal && hasValues(normal->vector));
  if (generateNormals) {
    normalStride = sizeof(SbVec3f);
    normalBinding = perVertex;
    renderCase |= vertexNormalsCase;
  } else {
    take(normal->vector, normalPtr, normalStride, numNormals);
    normalBinding = normalPerFace ? perFace : perVertexIndexed;
    renderCase |= normalPerFace ? faceNormalsCase : vertexNormalsCase;
  }

  generateTexCoords = !(texCoord && hasValues(texCoord->point));
  if (generateTexCoords) {
    texCoordBinding = texDefault;
  } else {
    texCoordFunc = glTexCoord2fv;
    take(texCoord->point, texCoordPtr, texCoordStride, numTexCoords);
    needFromState &= ~needTexCoords;
    texCoordBinding = texPerVertexIndexed;
    renderCase |= texCoordsCase;
  }
}
