// SPDX-License-Identifier: BSD-3-Clause

// How a face set is drawn: from its fields to a mesh when something changed, from the mesh in every frame.

#include <tessel/shapes/VrmlIndexedFaceSet.h>

#include <algorithm>
#include <memory>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLMultiTextureCoordinateElement.h>
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
using tessel::MeshNeeds;
using Cache = VrmlVertexPropertyCache;
using By = CornerIndices::By;

/// The workshop of all sets that are not animated: one traversal runs at a time.
std::unique_ptr<tessel::FaceWorkshop>& sharedWorkshop() {
  static std::unique_ptr<tessel::FaceWorkshop> shop;
  return shop;
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

bool isLarge(const VrmlIndexedFaceSet& set) { return set.coordIndex.getNum() > FaceDrawing::autoCacheLimit; }

// A large mesh has buffers of its own; small ones end in display lists.
bool keepsOutOfLists(const VrmlIndexedFaceSet& set, SoState* state) {
  return isLarge(set) && !SoGLCacheContextElement::getIsRemoteRendering(state);
}

template <class T> std::span<const T> valuesAt(const void* values, int count) {
  return {static_cast<const T*>(values), static_cast<std::size_t>(count)};
}

std::span<const std::int32_t> valuesOf(const SoMFInt32& list) {
  return valuesAt<std::int32_t>(list.getValues(0), list.getNum());
}

/// What has to be checked before anything is made of it.
tessel::FaceSource faceSource(const VrmlIndexedFaceSet& set, const Cache& cache, const MeshNeeds& needs,
                              const tessel::FaceRuns& runs) {
  tessel::FaceSource source;
  source.coordIndex = valuesOf(set.coordIndex);
  source.numPoints = cache.numVerts;
  source.numFaces = runs.total();
  source.color = {valuesOf(set.colorIndex), cache.numColors, !set.colorPerVertex.getValue(),
                  cache.materialBinding != Cache::overall};
  source.normal = {valuesOf(set.normalIndex), cache.numNormals, !set.normalPerVertex.getValue(),
                   !cache.generateNormals};
  if (cache.generateNormals)  // one for each corner
    source.normal.count =
        static_cast<int>(std::ranges::count_if(source.coordIndex, [](int i) { return i >= 0; }));
  source.texCoord = {valuesOf(set.texCoordIndex), cache.numTexCoords, false, !cache.generateTexCoords};
  source.checkNormals = needs.normals;
  source.checkTexCoords = needs.texCoords || !cache.generateTexCoords;
  source.name = set.getName().getString();
  return source;
}

/// All that a mesh is made of, but its runs and the normals that the node has not.
tessel::FaceMeshSource meshSource(const VrmlIndexedFaceSet& set, const Cache& cache, const MeshNeeds& needs,
                                  const tessel::FaceIndices& prepared) {
  tessel::FaceMeshSource source;
  source.coordIndex = valuesOf(set.coordIndex);
  source.convex = set.convex.getValue();
  source.points = valuesAt<SbVec3f>(cache.vertexPtr, cache.numVerts);
  if (cache.colorIsInVP && cache.materialBinding != Cache::overall) {
    source.colors = valuesAt<SbColor>(cache.colorPtr, cache.numColors);
    source.color = prepared.color;
    source.alpha = needs.alpha;
  }
  if (needs.normals && !cache.generateNormals) {
    source.normals = valuesAt<SbVec3f>(cache.normalPtr, cache.numNormals);
    source.normal = prepared.normal;
  }
  if (needs.texCoords && !cache.generateTexCoords) {
    source.texCoords = valuesAt<SbVec2f>(cache.texCoordPtr, cache.numTexCoords);
    source.texCoord = prepared.texCoord;
  }
  return source;
}

void generateNormals(const VrmlIndexedFaceSet& set, bool keepFaces, tessel::NormalGenerator& generator,
                     tessel::FaceMeshSource& source) {
  using Sharing = tessel::NormalGenerator::Sharing;
  generator.generate(source.points, source.coordIndex, set.ccw.getValue(), set.creaseAngle.getValue(),
                     keepFaces);
  const Sharing sharing = generator.sharing();
  source.normals = generator.normals();
  source.normal.by = sharing == Sharing::perFace    ? By::face
                     : sharing == Sharing::perPoint ? By::point
                                                    : By::corner;
  source.normal.array = sharing == Sharing::perFace ? nullptr : generator.indices().data();
}

}  // namespace

void VrmlIndexedFaceSet::GLRender(SoGLRenderAction* action) {
  SoState* state = action->getState();
  if (drawing->status == FaceDrawing::Status::failed) return;
  if (!VrmlContainerElement::has(state, VrmlContainerElement::shape)) return;
  sendShapeHintsToState(state);
  if (!shouldGLRender(action) || !prepare(action)) return;
  draw(action);

  SoGLCacheContextElement::shouldAutoCache(state, keepsOutOfLists(*this, state)
                                                      ? SoGLCacheContextElement::DONT_AUTO_CACHE
                                                      : SoGLCacheContextElement::DO_AUTO_CACHE);
}

// Makes the mesh if there is none that serves. False if there is nothing to draw.
bool VrmlIndexedFaceSet::prepare(SoGLRenderAction* action) {
  SoState* state = action->getState();
  FaceDrawing& d = *drawing;
  const tessel::MeshNeeds needs = tessel::MeshNeeds::of(state, tessel::realNode<VrmlColor>(color) != nullptr);
  // In a display list the lights of a later frame are not known.
  const bool mayBeFlat =
      isLarge(*this) && !SoCacheElement::anyOpen(state) && (!needs.normals || lightIsEvenOnFlatFaces());
  if (d.status == FaceDrawing::Status::ready) {
    const bool wrongLayout = d.isFlat && !mayBeFlat;
    if (!wrongLayout && d.madeFor.serve(needs) && d.buffers.isReady(state)) return true;
    if (wrongLayout) d.refuseFlat = true;
  }

  const tessel::FaceRuns runs = tessel::countRuns(indices());
  if (runs.total() == 0) return false;
  vpCache->fillInCache(tessel::realNode<VrmlCoordinate>(coord), tessel::realNode<VrmlColor>(color),
                       tessel::realNode<VrmlNormal>(normal),
                       tessel::realNode<VrmlTextureCoordinate>(texCoord), !colorPerVertex.getValue(),
                       !normalPerVertex.getValue(), state);
  tessel::FaceIndices prepared;
  if (const auto fault = tessel::prepareIndices(faceSource(*this, *vpCache, needs, runs), prepared)) {
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
  tessel::FaceMeshSource source = meshSource(*this, *vpCache, needs, prepared);
  source.runs = runs;
  source.smallestNormals = keepsOutOfLists(*this, state) ? tessel::MeshBuffers::smallestNormals(state)
                                                         : tessel::VertexFormat::NormalForm::floats;
  const bool generate = needs.normals && vpCache->generateNormals;
  if (generate) generateNormals(*this, animated, workshop->normals, source);

  const bool flat = mayBeFlat && !d.refuseFlat && FaceMesh::canBeFlat(source);
  const bool sameFaces = animated && !d.facesChanged && flat == d.isFlat &&
                         (!generate || source.normal.by != By::corner || workshop->normals.hasSameCorners());
  if (!sameFaces || !workshop->mesh.refresh(source))
    workshop->mesh.build(source, flat ? FaceMesh::Layout::flat : FaceMesh::Layout::smooth);
  if (!d.madeFor.serve(needs)) d.buffers.invalidate();  // also in other contexts
  d.buffers.fill(state, workshop->mesh.content(), isLarge(*this));
  d.isFlat = flat;
  d.facesChanged = false;
  d.madeFor = needs;
  d.status = FaceDrawing::Status::ready;
  if (isLarge(*this)) sharedWorkshop().reset();  // it has grown
  return true;
}

void VrmlIndexedFaceSet::draw(SoGLRenderAction* action) {
  SoState* state = action->getState();
  FaceDrawing& d = *drawing;
  if (!tessel::needsTexCoords(state)) {
    drawTriangles(state, d.buffers, d.isFlat);
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
    drawTriangles(state, d.buffers, d.isFlat);
  }
}
