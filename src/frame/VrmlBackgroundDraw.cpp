// SPDX-License-Identifier: BSD-3-Clause
// How a Background draws itself.
#include <cmath>
#include <numbers>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/caches/SoGLCacheList.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoDrawStyleElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoProjectionMatrixElement.h>
#include <Inventor/elements/SoTextureQualityElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/system/gl.h>

#include <tessel/frame/VrmlBackground.h>

#include "frame/BackgroundBands.h"
#include "frame/BackgroundImage.h"

using namespace tessel;

namespace {

constexpr int ringPoints = 16;
constexpr GLenum texture3D = 0x806F;
// Beyond this distance from the origin a sphere of radius 1 is lost in rounding.
constexpr float farAway = 1000;

/// The corners of a side of the cube, in the order of a strip.
using Side = float[4][3];
constexpr Side sides[VrmlBackground::numImages] = {
    {{-1, -1, -1}, {1, -1, -1}, {-1, 1, -1}, {1, 1, -1}},  // back
    {{-1, -1, 1}, {1, -1, 1}, {-1, -1, -1}, {1, -1, -1}},  // bottom
    {{1, -1, 1}, {-1, -1, 1}, {1, 1, 1}, {-1, 1, 1}},      // front
    {{-1, -1, 1}, {-1, -1, -1}, {-1, 1, 1}, {-1, 1, -1}},  // left
    {{1, -1, -1}, {1, -1, 1}, {1, 1, -1}, {1, 1, 1}},      // right
    {{-1, 1, -1}, {1, 1, -1}, {-1, 1, 1}, {1, 1, 1}},      // top
};

void renderFace(const Side& side) {
  constexpr float texCoords[4][2] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
  glColor3f(1, 1, 1);
  glBegin(GL_TRIANGLE_STRIP);
  for (int i = 0; i < 4; ++i) {
    glTexCoord2fv(texCoords[i]);
    glVertex3fv(side[i]);
  }
  glEnd();
}

/// Nothing but colours and textures counts.
void switchAllOff() {
  for (const GLenum what :
       {GLenum(GL_LIGHTING), GLenum(GL_POLYGON_STIPPLE), GLenum(GL_ALPHA_TEST), GLenum(GL_BLEND),
        GLenum(GL_CULL_FACE), GLenum(GL_DEPTH_TEST), GLenum(GL_FOG), GLenum(GL_SCISSOR_TEST),
        GLenum(GL_STENCIL_TEST), GLenum(GL_TEXTURE_1D), GLenum(GL_TEXTURE_2D), texture3D})
    glDisable(what);
  glShadeModel(GL_SMOOTH);
}

struct Ring {
  SbVec3f points[ringPoints];
  explicit Ring(float elevation) {
    const float angle = std::numbers::pi_v<float> / 2 + elevation;
    const float radius = std::sin(angle), height = -std::cos(angle);
    for (int j = 0; j < ringPoints; ++j) {
      const float turn = static_cast<float>(j) * -std::numbers::pi_v<float> / 8;
      points[j].setValue(radius * std::cos(turn), height, radius * std::sin(turn));
    }
  }
};

}  // namespace

void VrmlBackground::setUpColors() {
  const auto valuesOf = [](const auto& field) {
    return std::span(field.getValues(0), static_cast<std::size_t>(field.getNum()));
  };
  *bands = makeBackgroundBands(valuesOf(groundAngle), valuesOf(groundColor), valuesOf(skyAngle),
                               valuesOf(skyColor));
  cacheList->invalidateAll();
}

void VrmlBackground::drawIt(SoGLRenderAction* action) {
  SoState* state = action->getState();
  SoCacheElement::invalidate(state);
  constexpr GLbitfield colorAndDepth = GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT;
  if (SoViewVolumeElement::get(state).getProjectionType() != SbViewVolume::PERSPECTIVE) {
    glClear(colorAndDepth);
    return;
  }
  if (bands->empty()) setUpColors();
  if (needsFetchCheck) checkFetches();
  const bool useTexture = numTextures > 0 && SoTextureQualityElement::get(state) > 0;
  if (useTexture != lastUseTexture) cacheList->invalidateAll();
  lastUseTexture = useTexture;

  bool drawSphere = numTextures < numImages || anyAlpha || !useTexture;
  if (bands->angles.size() == 1) {
    const SbColor& color = bands->colors[0];
    glClearColor(color[0], color[1], color[2], 0);
    glClear(colorAndDepth);
    if (!useTexture) return;
    drawSphere = false;
  }
  if (bands->empty() && drawSphere) {
    glClear(colorAndDepth);
    return;
  }
  // A ground alone leaves the window above it as it was.
  if (drawSphere && bands->angles.back() < std::numbers::pi_v<float> / 2) glClear(GL_COLOR_BUFFER_BIT);

  glPushAttrib(GL_ALL_ATTRIB_BITS);
  if (SoDrawStyleElement::get(state) != SoDrawStyleElement::FILLED) glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  renderSphere(action, drawSphere, useTexture);
  glPopAttrib();
  // Making or playing the display list may have sent what is no longer so.
  SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::ALL_MASK);
}

void VrmlBackground::renderSphere(SoGLRenderAction* action, bool drawSphere, bool useTexture) {
  SoState* state = action->getState();
  const SbMatrix eyeToWorld = SoViewingMatrixElement::get(state).inverse();
  const SbVec3f eye(eyeToWorld[3][0], eyeToWorld[3][1], eyeToWorld[3][2]);
  const float distance = eye.length();
  const float size = distance > farAway ? distance : 1;

  // The near plane at 0.001, the far one at 2.
  SbMatrix projection = SoProjectionMatrixElement::get(state);
  projection[2][2] = -1.001F;
  projection[3][2] = -0.002001F * size;
  glMatrixMode(GL_PROJECTION);
  glPushMatrix();
  glLoadMatrixf(projection[0]);
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glTranslatef(eye[0], eye[1], eye[2]);
  if (size != 1) glScalef(size, size, size);
  glMultMatrixf(rotationMatrix[0]);

  if (useTexture) {
    for (const auto& image : images) image->dropForeignTexture(state);
    updateTextureFlags();
  }
  const bool canCache = missingLists == 0 && !SoCacheElement::anyOpen(state);
  state->push();
  if (!cacheList->call(action)) {
    if (canCache) cacheList->open(action, FALSE);  // this sends the state, so ours comes behind
    switchAllOff();
    glClear(GL_DEPTH_BUFFER_BIT);
    if (drawSphere) drawBands();
    if (useTexture) doTexturedCube(state);
    state->pop();
    if (canCache) cacheList->close(action);
  } else {
    state->pop();
  }
  glMatrixMode(GL_PROJECTION);
  glPopMatrix();
  glMatrixMode(GL_MODELVIEW);
  glPopMatrix();
}

void VrmlBackground::drawBands() const {
  Ring lower(-std::numbers::pi_v<float> / 2);
  for (std::size_t i = 1; i < bands->angles.size(); ++i) {
    const Ring upper(bands->angles[i]);
    if (bands->angles[i - 1] < bands->angles[i]) {
      glBegin(GL_TRIANGLE_STRIP);
      for (int j = 0; j <= ringPoints; ++j) {
        glColor3fv(bands->colors[i - 1].getValue());
        glVertex3fv(lower.points[j % ringPoints].getValue());
        glColor3fv(bands->colors[i].getValue());
        glVertex3fv(upper.points[j % ringPoints].getValue());
      }
      glEnd();
    }
    lower = upper;
  }
}

void VrmlBackground::doTexturedCube(SoState* state) {
  bool begun = false;
  for (int i = 0; i < numImages; ++i) {
    BackgroundImage& image = *images[i];
    if (!image.hasImage()) continue;
    if (!begun) {
      glEnable(GL_ALPHA_TEST);
      glEnable(GL_TEXTURE_2D);
      glShadeModel(GL_FLAT);
      if (anyAlpha) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
      }
      glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, modulates ? GL_MODULATE : GL_DECAL);
      glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
      begun = true;
    }
    image.bind(state);
    renderFace(sides[i]);
  }
  updateTextureFlags();
  if (begun) glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}
