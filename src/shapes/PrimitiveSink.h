// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <GL/gl.h>

#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoGLTextureEnabledElement.h>
#include <Inventor/elements/SoTextureCoordinateElement.h>

#include <tessel/shapes/VrmlGeometry.h>

namespace tessel {

/// How the vertices of a run make triangles.
enum class Run { strip, fan };

// A mesh of a primitive is described once, to a sink, in the words of GL: a part begins, a normal and texture
// coordinates hold until the next ones, vertices come in runs. One sink draws, the other feeds the pipeline.

/// Draws the mesh at once. What is not to be sent costs nothing.
template <bool normals, bool texCoords> class GLSink {
public:
  static constexpr bool wantsTexCoords = texCoords;
  /// Drivers join strips in a display list to one draw, but no fans.
  static constexpr bool wantsFans = false;

  explicit GLSink(SoMaterialBundle& bundle) : materials(bundle) {}

  /// Each part takes the material of its number instead of the first.
  void takeMaterialPerPart() { materialPerPart = true; }
  void part(int number) {
    if (materialPerPart) materials.send(number, TRUE);
  }
  void normal(const SbVec3f& n) {
    if constexpr (normals) {
      held = n;
      if (inRun) glNormal3fv(n.getValue());
    }
  }
  void texCoord(float s, float t) {
    if constexpr (texCoords) glTexCoord2f(s, t);
  }
  void begin(Run run) { beginPrimitive(run == Run::strip ? GL_TRIANGLE_STRIP : GL_TRIANGLE_FAN); }
  void vertex(const SbVec3f& p) { glVertex3fv(p.getValue()); }
  void end() {
    glEnd();
    inRun = false;
  }

  // Faces of four corners each, in one go.
  void beginQuads() { beginPrimitive(GL_QUADS); }
  void quad(const SbVec3f (&corners)[4], const SbVec2f (&st)[4]) {
    for (int i = 0; i < 4; ++i) {
      texCoord(st[i][0], st[i][1]);
      vertex(corners[i]);
    }
  }
  void endQuads() { end(); }

private:
  /// A normal outside glBegin and glEnd would cut a display list in two: drivers then draw it several times slower.
  void beginPrimitive(GLenum primitive) {
    glBegin(primitive);
    inRun = true;
    if constexpr (normals) glNormal3fv(held.getValue());
  }

  SoMaterialBundle& materials;
  SbVec3f held{0, 0, 1};  // the last normal
  bool inRun = false;
  bool materialPerPart = false;
};

/// Sends the first material of the state and calls `describe` with the sink that draws what the state needs:
/// normals under light, texture coordinates under a texture.
template <class Describe> void drawPrimitive(SoGLRenderAction* action, Describe&& describe) {
  const bool textured = SoGLTextureEnabledElement::get(action->getState());
  SoMaterialBundle materials(action);
  materials.sendFirst();
  if (materials.isColorOnly())
    textured ? describe(GLSink<false, true>(materials)) : describe(GLSink<false, false>(materials));
  else
    textured ? describe(GLSink<true, true>(materials)) : describe(GLSink<true, false>(materials));
}

/// Hands the mesh to a geometry's pipeline.
class PipelineSink {
public:
  static constexpr bool wantsTexCoords = true;
  static constexpr bool wantsFans = true;

  PipelineSink(VrmlGeometry* g, SoAction* a) : geometry(g), action(a) {
    SoState* state = action->getState();
    if (state->isElementEnabled(SoTextureCoordinateElement::getClassStackIndex()) &&
        SoTextureCoordinateElement::getType(state) == SoTextureCoordinateElement::FUNCTION)
      function = SoTextureCoordinateElement::getInstance(state);
  }

  void takeMaterialPerPart() { materialPerPart = true; }
  void part(int number) {
    if (materialPerPart) held.setMaterialIndex(number);
  }
  void normal(const SbVec3f& n) { held.setNormal(n); }
  void texCoord(float s, float t) {
    if (!function) held.setTextureCoords(s, t);
  }
  void begin(Run run) {
    geometry->beginShape(action,
                         run == Run::strip ? VrmlGeometry::TRIANGLE_STRIP : VrmlGeometry::TRIANGLE_FAN);
  }
  void vertex(const SbVec3f& p) {
    held.setPoint(p);
    if (function) held.setTextureCoords(function->get(p, held.getNormal()));
    VrmlGeometry::shapeVertex(&held);
  }
  void end() { VrmlGeometry::endShape(); }

  void beginQuads() {}
  void quad(const SbVec3f (&corners)[4], const SbVec2f (&st)[4]) {
    begin(Run::strip);
    for (const int i : {3, 0, 2, 1}) {
      texCoord(st[i][0], st[i][1]);
      vertex(corners[i]);
    }
    end();
  }
  void endQuads() {}

protected:
  SoPrimitiveVertex held;  // the vertex to come

private:
  VrmlGeometry* geometry;
  SoAction* action;
  const SoTextureCoordinateElement* function = nullptr;  // null: the mesh's own texture coordinates
  bool materialPerPart = false;
};

/// The same, with a detail that tells the part.
template <class Detail> class DetailSink : public PipelineSink {
public:
  DetailSink(VrmlGeometry* g, SoAction* a) : PipelineSink(g, a) { held.setDetail(&detail); }
  DetailSink(const DetailSink&) = delete;  // `held` points at this one's detail
  DetailSink& operator=(const DetailSink&) = delete;
  void part(int number) {
    detail.setPart(number);
    PipelineSink::part(number);
  }

private:
  Detail detail;
};

}  // namespace tessel
