// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/MeshNeeds.h"

#include <cmath>

#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoOverrideElement.h>
#include <Inventor/elements/SoShapeStyleElement.h>
#include <Inventor/system/gl.h>

#include "shapes/MeshBuffers.h"

namespace tessel {

bool needsTexCoords(SoState* state) {
  const SoShapeStyleElement* style = SoShapeStyleElement::get(state);
  return style->needTexCoords() && !style->isTextureFunction();
}

MeshNeeds MeshNeeds::of(SoState* state, bool hasColors) {
  MeshNeeds needs;
  needs.normals = SoShapeStyleElement::get(state)->needNormals();
  needs.texCoords = needsTexCoords(state);
  needs.colors = hasColors && !SoOverrideElement::getDiffuseColorOverride(state);
  if (needs.colors)
    needs.alpha =
        static_cast<std::uint8_t>(std::lround((1 - SoLazyElement::getTransparency(state, 0)) * 255));
  return needs;
}

void drawTriangles(SoState* state, MeshBuffers& buffers, bool isFlat) {
  const auto* lazy = SoGLLazyElement::getInstance(state);
  lazy->send(state, SoLazyElement::ALL_MASK);
  if (isFlat) SoGLLazyElement::sendFlatshading(state, TRUE);
  buffers.draw(state, GL_TRIANGLES);
  if (SoCacheElement::anyOpen(state)) buffers.releaseMemory();  // the display list has it now
  // The colors of vertices went past the state.
  if (buffers.format().colors) lazy->reset(state, SoLazyElement::DIFFUSE_MASK);
}

}  // namespace tessel
