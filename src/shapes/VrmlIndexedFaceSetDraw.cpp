// SPDX-License-Identifier: BSD-3-Clause

// How a face set is drawn: from its fields to a mesh when something changed, from the mesh in every frame.

#include <tessel/shapes/VrmlIndexedFaceSet.h>

#include <memory>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLMultiTextureCoordinateElement.h>
#include <Inventor/elements/SoOverrideElement.h>
#include <Inventor/elements/SoShapeStyleElement.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/system/gl.h>

#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlNormal.h>
#include <tessel/shapes/VrmlTextureCoordinate.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "shapes/BoxTexCoords.h"
#include "shapes/FaceDrawing.h"
#include "shapes/FaceMesh.h"
#include "shapes/RealNode.h"
#include "shapes/VrmlVertexPropertyCache.h"

namespace {

using tessel::CornerIndices;
using tessel::FaceDrawing;
using tessel::FaceMesh;
using Cache = VrmlVertexPropertyCache;
using By = CornerIndices::By;

/// The workshop of all sets that are not animated: one traversal runs at a time.
std::unique_ptr<tessel::FaceWorkshop>& sharedWorkshop() {
  static std::unique_ptr<tessel::FaceWorkshop> shop;
  return shop;
}

bool needsTexCoords(SoState* state) {
  const SoShapeStyleElement* style = SoShapeStyleElement::get(state);
  return style->needTexCoords() && !style->isTextureFunction();
}

FaceDrawing::Needs needsOf(SoState* state, bool hasColors) {
  FaceDrawing::Needs needs;
  needs.normals = SoShapeStyleElement::get(state)->needNormals();
  needs.texCoords = needsTexCoords(state);
  needs.colors = hasColors && !SoOverrideElement::getDiffuseColorOverride(state);
  if (needs.colors)
    needs.alpha = static_cast<std::uint8_t>((1 - SoLazyElement::getTransparency(state, 0)) * 255 + 0.5f);
  return needs;
}

/// Whether every point of a flat face gets the same color from the lights that GL has, so that it may be computed at
/// one corner.
bool lightIsEvenOnFlatFaces() {
  GLboolean localViewer = GL_FALSE;
  glGetBooleanv(GL_LIGHT_MODEL_LOCAL_VIEWER, &localViewer);
  if (localViewer) return false;
  GLint lights = 0;
  glGetIntegerv(GL_MAX_LIGHTS, &lights);
  for (GLint i = 0; i < lights; ++i) {
    const GLenum light = GL_LIGHT0 + static_cast<GLenum>(i);
    if (!glIsEnabled(light)) continue;
    GLfloat position[4];
    glGetLightfv(light, GL_POSITION, position);
    if (position[3] != 0) return false;
  }
  return true;
}

template <class T> std::span<const T> valuesAt(const void* values, int count) {
  return {static_cast<const T*>(values), static_cast<std::size_t>(count)};
}

}  // namespace

void VrmlIndexedFaceSet::GLRender(SoGLRenderAction* action) {
  SoState* state = action->getState();
  if (drawing->status == FaceDrawing::Status::failed) return;
  if (!VrmlContainerElement::has(state, VrmlContainerElement::shape)) return;
  sendShapeHintsToState(state);
  if (!shouldGLRender(action) || !prepare(action)) return;
  draw(action);

  const bool large = coordIndex.getNum() > FaceDrawing::autoCacheLimit;
  SoGLCacheContextElement::shouldAutoCache(state,
                                           large && !SoGLCacheContextElement::getIsRemoteRendering(state)
                                               ? SoGLCacheContextElement::DONT_AUTO_CACHE
                                               : SoGLCacheContextElement::DO_AUTO_CACHE);
}

// Makes the mesh if there is none that serves. False if there is nothing to draw.
bool VrmlIndexedFaceSet::prepare(SoGLRenderAction* action) {
  SoState* state = action->getState();
  FaceDrawing& d = *drawing;
  FaceDrawing::Needs needs = needsOf(state, tessel::realNode<VrmlColor>(color) != nullptr);

  // In a display list the lights of a later frame are not known.
  const auto mayBeFlat = [&] {
    return !SoCacheElement::anyOpen(state) && (!needs.normals || lightIsEvenOnFlatFaces());
  };
  if (d.status == FaceDrawing::Status::ready && d.madeFor.serve(needs) && d.buffers.isReady(state) &&
      (!d.isFlat || mayBeFlat()))
    return true;
  if (d.isFlat && d.status == FaceDrawing::Status::ready && !mayBeFlat()) d.refuseFlat = true;

  const tessel::FaceRuns runs = tessel::countRuns(indices());
  if (runs.total() == 0) return false;
  vpCache->fillInCache(tessel::realNode<VrmlCoordinate>(coord), tessel::realNode<VrmlColor>(color),
                       tessel::realNode<VrmlNormal>(normal),
                       tessel::realNode<VrmlTextureCoordinate>(texCoord), !colorPerVertex.getValue(),
                       !normalPerVertex.getValue(), state);
  const Cache& cache = *vpCache;

  tessel::FaceSource source;
  const auto span = [](const SoMFInt32& list) {
    return std::span(list.getValues(0), static_cast<std::size_t>(list.getNum()));
  };
  source.coordIndex = indices();
  source.numPoints = cache.numVerts;
  source.numFaces = runs.total();
  source.color = {span(colorIndex), cache.numColors, !colorPerVertex.getValue(),
                  cache.materialBinding != Cache::overall};
  source.normal = {span(normalIndex), cache.numNormals, !normalPerVertex.getValue(), !cache.generateNormals};
  if (cache.generateNormals) source.normal.count = coordIndex.getNum();
  source.texCoord = {span(texCoordIndex), cache.numTexCoords, false, !cache.generateTexCoords};
  source.checkNormals = needs.normals;
  source.checkTexCoords = needs.texCoords || !cache.generateTexCoords;
  const SbName name = getName();
  source.name = name.getString();
  tessel::FaceIndices of;
  if (const auto fault = tessel::prepareIndices(source, of)) {
    SoDebugError::post(fault->source, "%s", fault->text.c_str());
    d.status = FaceDrawing::Status::failed;
    SoGLCacheContextElement::shouldAutoCache(state, SoGLCacheContextElement::DO_AUTO_CACHE);
    return false;
  }

  const bool animated = d.timesRemade >= FaceDrawing::remadeOften;
  auto& workshop = animated ? d.workshop : sharedWorkshop();
  if (!workshop) {
    workshop = std::make_unique<tessel::FaceWorkshop>();
    d.facesChanged = true;
  }
  tessel::FaceWorkshop& shop = *workshop;
  tessel::FaceMeshSource mesh;
  mesh.coordIndex = indices();
  mesh.runs = runs;
  mesh.convex = convex.getValue();
  mesh.points = valuesAt<SbVec3f>(cache.vertexPtr, cache.numVerts);
  if (cache.colorIsInVP && cache.materialBinding != Cache::overall) {
    mesh.colors = valuesAt<SbColor>(cache.colorPtr, cache.numColors);
    mesh.color = of.color;
    mesh.alpha = needs.alpha;
  }
  if (needs.normals && cache.generateNormals) {
    shop.normals.generate(mesh.points, mesh.coordIndex, ccw.getValue(), creaseAngle.getValue(), animated);
    mesh.normals = shop.normals.normals();
    switch (shop.normals.sharing()) {
      case tessel::NormalGenerator::Sharing::perFace:
        mesh.normal = {By::face, nullptr};
        break;
      case tessel::NormalGenerator::Sharing::perPoint:
        mesh.normal = {By::point, shop.normals.indices().data()};
        break;
      case tessel::NormalGenerator::Sharing::perCorner:
        mesh.normal = {By::corner, shop.normals.indices().data()};
        break;
    }
  } else if (needs.normals) {
    mesh.normals = valuesAt<SbVec3f>(cache.normalPtr, cache.numNormals);
    mesh.normal = of.normal;
  }
  if (needs.texCoords && !cache.generateTexCoords) {
    mesh.texCoords = valuesAt<SbVec2f>(cache.texCoordPtr, cache.numTexCoords);
    mesh.texCoord = of.texCoord;
  }

  // Small meshes end in display lists; there is nothing to be saved.
  const bool large = coordIndex.getNum() > FaceDrawing::autoCacheLimit;
  const bool flat = large && !d.refuseFlat && FaceMesh::canBeFlat(mesh) && mayBeFlat();
  const bool sameFaces =
      animated && !d.facesChanged && flat == d.isFlat &&
      (mesh.normal.by != By::corner || !cache.generateNormals || shop.normals.hasSameCorners());
  if (!sameFaces || !shop.mesh.refresh(mesh))
    shop.mesh.build(mesh, flat ? FaceMesh::Layout::flat : FaceMesh::Layout::smooth);
  d.buffers.fill(state, shop.mesh.content(), large);
  d.isFlat = flat;
  d.facesChanged = false;
  d.madeFor = needs;
  d.status = FaceDrawing::Status::ready;
  if (large) sharedWorkshop().reset();  // it has grown
  return true;
}

void VrmlIndexedFaceSet::draw(SoGLRenderAction* action) {
  SoState* state = action->getState();
  FaceDrawing& d = *drawing;
  const auto* lazy = SoGLLazyElement::getInstance(state);
  const auto drawMesh = [&] {
    lazy->send(state, SoLazyElement::ALL_MASK);
    if (d.isFlat) SoGLLazyElement::sendFlatshading(state, TRUE);
    d.buffers.draw(state, GL_TRIANGLES);
    if (SoCacheElement::anyOpen(state)) d.buffers.releaseMemory();  // the display list has it now
  };
  if (!needsTexCoords(state)) {
    drawMesh();
  } else {
    const tessel::StateScope scope(state);
    SbBox3f box;
    SbVec3f center;
    if (!d.buffers.format().texCoords) computeBBox(action, box, center);
    const tessel::BoxTexCoords generated(box);
    if (d.buffers.format().texCoords)
      SoGLMultiTextureCoordinateElement::setTexGen(state, this, 0, nullptr, nullptr, nullptr, nullptr);
    else
      generated.generate(state, this);
    drawMesh();
  }
  // The colors of vertices went past the state.
  if (d.buffers.format().colors) lazy->reset(state, SoLazyElement::DIFFUSE_MASK);
}
