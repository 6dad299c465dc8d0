// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlBox.h>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/details/SoCubeDetail.h>
#include <Inventor/elements/SoComplexityElement.h>
#include <Inventor/elements/SoComplexityTypeElement.h>
#include <Inventor/elements/SoGLTextureEnabledElement.h>
#include <Inventor/elements/SoMaterialBindingElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>

#include <tessel/actions/VrmlCountAction.h>

#include "core/NodeClassImpl.h"
#include "shapes/CornerBox.h"
#include "shapes/PickHit.h"
#include "shapes/PrimitiveSink.h"
#include "shapes/Subdivision.h"

namespace {

struct Face {
  int corners[4];  // seen from outside, counterclockwise from the lower left of the texture
  float normal[3];
};

const float coords[8][3] = {
    {-1, 1, -1}, {1, 1, -1}, {-1, -1, -1}, {1, -1, -1}, {-1, 1, 1}, {1, 1, 1}, {-1, -1, 1}, {1, -1, 1},
};
const Face faces[6] = {
    {{6, 7, 5, 4}, {0, 0, 1}},   // front
    {{3, 2, 0, 1}, {0, 0, -1}},  // back
    {{2, 6, 4, 0}, {-1, 0, 0}},  // left
    {{7, 3, 1, 5}, {1, 0, 0}},   // right
    {{4, 5, 1, 0}, {0, 1, 0}},   // top
    {{2, 3, 7, 6}, {0, -1, 0}},  // bottom
};
const SbVec2f texCoords[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

SbVec3f cornerOf(int face, int corner, const SbVec3f& half) {
  const float* unit = coords[faces[face].corners[corner]];
  return {unit[0] * half[0], unit[1] * half[1], unit[2] * half[2]};
}

/// The mesh, each edge of a face cut into as many pieces.
template <class Sink> void describeBox(Sink& sink, const SbVec3f& half, int divisions) {
  if (divisions == 1) sink.beginQuads();
  for (int face = 0; face < 6; ++face) {
    sink.part(face);
    sink.normal(SbVec3f(faces[face].normal));
    SbVec3f corners[4];
    for (int i = 0; i < 4; ++i) corners[i] = cornerOf(face, i, half);
    if (divisions == 1) {
      sink.quad(corners, texCoords);
      continue;
    }
    const float step = 1.0f / static_cast<float>(divisions);
    const SbVec3f along = (corners[1] - corners[0]) * step, across = (corners[3] - corners[0]) * step;
    const auto vertex = [&](int i, int row) {
      const float s = static_cast<float>(i), t = static_cast<float>(row);
      sink.texCoord(s * step, t * step);
      sink.vertex(corners[0] + along * s + across * t);
    };
    for (int row = 0; row < divisions; ++row) {
      sink.begin(tessel::Run::strip);
      for (int i = 0; i <= divisions; ++i) {
        vertex(i, row + 1);
        vertex(i, row);
      }
      sink.end();
    }
  }
  if (divisions == 1) sink.endQuads();
}

}  // namespace

std::span<const tessel::FieldSpec> VrmlBox::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlBox::size>("size", field, {2, 2, 2}),
  };
  return table;
}

VrmlBox::VrmlBox() { setUpFields(); }
VrmlBox::~VrmlBox() = default;

SbVec3f VrmlBox::getSize() const { return size.isIgnored() ? SbVec3f(1, 1, 1) : size.getValue() * 0.5f; }

int VrmlBox::computeNumDivisions(SoAction* action) {
  SoState* state = action->getState();
  const float c = SoComplexityElement::get(state);
  switch (SoComplexityTypeElement::get(state)) {
    case SoComplexityTypeElement::BOUNDING_BOX:
      return 1;
    case SoComplexityTypeElement::SCREEN_SPACE: {
      const SbVec3f half = getSize();
      const float pixels = tessel::largerExtent(getScreenSize(state, tessel::cornerBox(-half, half)));
      return tessel::pieces(tessel::wholeCount(pixels * 0.25f * c * c) + 1);
    }
    default:
      return c <= 0.5f ? 1 : tessel::pieces(tessel::wholeCount(c * 30) - 14);
  }
}

bool VrmlBox::isMaterialPerFace(SoAction* action) {
  SoState* state = action->getState();
  if (!state->isElementEnabled(SoMaterialBindingElement::getClassStackIndex())) return false;
  const int binding = SoMaterialBindingElement::get(state);
  return binding >= SoMaterialBindingElement::PER_PART &&
         binding <= SoMaterialBindingElement::PER_FACE_INDEXED;
}

template <class Sink> void VrmlBox::describe(Sink&& sink, SoAction* action) {
  if (isMaterialPerFace(action)) sink.takeMaterialPerPart();
  describeBox(sink, getSize(), computeNumDivisions(action));
}

void VrmlBox::GLRender(SoGLRenderAction* action) {
  if (!shouldGLRender(action)) return;
  beginSolidShape(action);
  tessel::drawPrimitive(action, [&](auto&& sink) { describe(sink, action); });
  endSolidShape(action);
}

void VrmlBox::generatePrimitives(SoAction* action) {
  describe(tessel::DetailSink<SoCubeDetail>(this, action), action);
}

void VrmlBox::rayPick(SoRayPickAction* action) {
  if (!shouldRayPick(action)) return;
  SoState* state = action->getState();
  state->push();
  // Twelve triangles are exact.
  SoComplexityElement::set(state, this, 0);
  SoComplexityTypeElement::set(state, this, SoComplexityTypeElement::OBJECT_SPACE);
  pickingBoundingBox = false;
  VrmlGeometry::rayPick(action);
  state->pop();
}

SoDetail* VrmlBox::createTriangleDetail(SoRayPickAction*, const SoPrimitiveVertex* v1,
                                        const SoPrimitiveVertex*, const SoPrimitiveVertex*, SoPickedPoint*) {
  if (pickingBoundingBox) return nullptr;
  return tessel::partDetail<SoCubeDetail>(static_cast<const SoCubeDetail*>(v1->getDetail())->getPart());
}

void VrmlBox::count(VrmlCountAction* action) { VrmlCountAction::add(action->numTriangles, 12); }

void VrmlBox::computeBBox(SoAction*, SbBox3f& box, SbVec3f& center) {
  const SbVec3f half = getSize();
  box = tessel::cornerBox(-half, half);
  center.setValue(0, 0, 0);
}

void VrmlBox::GLRenderBoundingBox(SoGLRenderAction* action, const SbBox3f& box) {
  if (box.isEmpty()) return;
  SoState* state = action->getState();
  state->push();
  SoGLTextureEnabledElement::set(state, this, FALSE);
  SoMaterialBundle materials(action);
  materials.sendFirst();
  const bool sendNormals = !materials.isColorOnly();
  const SbVec3f half = box.getSize() * 0.5f, center = box.getCenter();
  for (int face = 0; face < 6; ++face) {
    glBegin(GL_POLYGON);
    if (sendNormals) glNormal3fv(faces[face].normal);
    for (int i = 0; i < 4; ++i) glVertex3fv((cornerOf(face, i, half) + center).getValue());
    glEnd();
  }
  state->pop();
}

void VrmlBox::rayPickBoundingBox(SoRayPickAction* action, const SbBox3f& box) {
  if (box.isEmpty()) return;
  SbVec3f extent = box.getSize();
  for (int i = 0; i < 3; ++i)
    if (extent[i] == 0) extent[i] = 0.00001f;
  SoState* state = action->getState();
  state->push();
  SoComplexityElement::set(state, this, 0);
  SoComplexityTypeElement::set(state, this, SoComplexityTypeElement::OBJECT_SPACE);
  SoModelMatrixElement::translateBy(state, this, box.getCenter());
  SoModelMatrixElement::scaleBy(state, this, extent * 0.5f);
  computeObjectSpaceRay(action);
  pickingBoundingBox = true;
  generatePrimitives(action);
  pickingBoundingBox = false;
  state->pop();
}

template class tessel::NodeClass<VrmlBox, VrmlGeometry>;
