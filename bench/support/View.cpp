// SPDX-License-Identifier: BSD-3-Clause
#include "support/View.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/system/gl.h>

#include <tessel/shapes/VrmlGeometry.h>

#include "host/gl/OffscreenContext.h"

namespace bench {

namespace {

constexpr short width = 256, height = 256;

tessel::host::OffscreenContext& context() {
  static std::string failure;
  static const auto shared = tessel::host::OffscreenContext::create(width, height, failure);
  if (!shared) std::abort();
  return *shared;
}

struct Corner {
  SbVec3f normal, point;
};

}  // namespace

View::View()
    : root(new SoSeparator), camera(new SoPerspectiveCamera), render(SbViewportRegion(width, height)) {
  context();
  root->renderCaching = SoSeparator::OFF;
  root->addChild(camera);
  render.setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
}

void View::show(SoNode* node) {
  while (root->getNumChildren() > 1) root->removeChild(1);
  world.reset(node);
  if (!node) return;
  root->addChild(node);
  camera->viewAll(node, render.getViewportRegion(), 1);
}

void View::clear() const {
  context().makeCurrent();
  glEnable(GL_DEPTH_TEST);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void View::draw() {
  clear();
  if (world) preTraverse.apply(world.get());
  render.apply(root.get());
  glFinish();
}

View::Flat::Flat(View& v) : view(v) {
  std::vector<Corner> corners;
  SoCallbackAction collect;
  collect.addTriangleCallback(
      VrmlGeometry::getClassTypeId(),
      [](void* data, SoCallbackAction* action, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
         const SoPrimitiveVertex* c) {
        for (const SoPrimitiveVertex* vertex : {a, b, c}) {
          Corner corner{vertex->getNormal(), {}};
          action->getModelMatrix().multVecMatrix(vertex->getPoint(), corner.point);
          static_cast<std::vector<Corner>*>(data)->push_back(corner);
        }
      },
      &corners);
  collect.apply(view.world.get());
  numTriangles = corners.size() / 3;

  std::vector<GLuint> index(corners.size());
  for (std::size_t i = 0; i < index.size(); ++i) index[i] = static_cast<GLuint>(i);
  context().makeCurrent();
  glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
  glEnableClientState(GL_VERTEX_ARRAY);
  glEnableClientState(GL_NORMAL_ARRAY);
  glVertexPointer(3, GL_FLOAT, sizeof(Corner), &corners[0].point);
  glNormalPointer(GL_FLOAT, sizeof(Corner), &corners[0].normal);
  list = glGenLists(1);
  glNewList(list, GL_COMPILE);
  glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(index.size()), GL_UNSIGNED_INT, index.data());
  glEndList();
  glPopClientAttrib();
}

View::Flat::~Flat() { glDeleteLists(list, 1); }

void View::Flat::draw() const {
  view.clear();
  const SbViewVolume volume = view.camera->getViewVolume(static_cast<float>(width) / height);
  SbMatrix viewing, projection;
  volume.getMatrices(viewing, projection);
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glMatrixMode(GL_PROJECTION);
  glLoadMatrixf(projection[0]);
  glMatrixMode(GL_MODELVIEW);
  glLoadMatrixf(viewing[0]);
  glEnable(GL_LIGHTING);
  glEnable(GL_LIGHT0);
  glCallList(list);
  glFinish();
  glPopAttrib();
}

}  // namespace bench
