// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/Probe.h"

#include <cmath>
#include <map>
#include <tuple>
#include <utility>

#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/details/SoConeDetail.h>
#include <Inventor/details/SoCubeDetail.h>
#include <Inventor/details/SoCylinderDetail.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/details/SoLineDetail.h>
#include <Inventor/details/SoPointDetail.h>
#include <Inventor/details/SoTextDetail.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoSeparator.h>

namespace tessel::test {
namespace {

template <class Detail> const Detail* as(const SoDetail* detail) {
  return detail && detail->isOfType(Detail::getClassTypeId()) ? static_cast<const Detail*>(detail) : nullptr;
}

int partOf(const SoDetail* detail) {
  if (const auto* d = as<SoCubeDetail>(detail)) return d->getPart();
  if (const auto* d = as<SoConeDetail>(detail)) return d->getPart();
  if (const auto* d = as<SoCylinderDetail>(detail)) return d->getPart();
  if (const auto* d = as<SoLineDetail>(detail)) return d->getPartIndex();
  if (const auto* d = as<SoFaceDetail>(detail)) return d->getPartIndex();
  return -1;
}

Corner cornerOf(const SoCallbackAction& action, const SoPrimitiveVertex* v) {
  const SbVec4f st = v->getTextureCoords();
  SbColor ambient, diffuse, specular, emission;
  float shininess = 0, transparency = 0;
  action.getMaterial(ambient, diffuse, specular, emission, shininess, transparency, v->getMaterialIndex());
  return {v->getPoint(), v->getNormal(), diffuse, st[0], st[1], partOf(v->getDetail())};
}

}  // namespace

SbBox3f boxOf(SoNode* scene) {
  SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
  action.apply(scene);
  return action.getBoundingBox();
}

std::vector<Hit> hitsOf(SoNode* scene, const SbVec3f& from, const SbVec3f& along) {
  SoRayPickAction action(SbViewportRegion(100, 100));
  action.setRay(from, along);
  action.setPickAll(TRUE);
  action.apply(scene);
  std::vector<Hit> hits;
  const SoPickedPointList& list = action.getPickedPointList();
  for (int i = 0; i < list.getLength(); ++i) {
    const SoPickedPoint* p = list[i];
    const auto* path = static_cast<const SoFullPath*>(p->getPath());
    const SoDetail* detail = p->getDetail(path->getTail());
    Hit hit{p->getPoint(), p->getNormal(), p->getTextureCoords(), partOf(detail)};
    if (const auto* d = as<SoLineDetail>(detail)) hit.line = d->getLineIndex();
    if (const auto* d = as<SoPointDetail>(detail)) hit.coordinate = d->getCoordinateIndex();
    if (const auto* d = as<SoTextDetail>(detail)) {
      hit.line = d->getStringIndex();
      hit.character = d->getCharacterIndex();
    }
    hits.push_back(hit);
  }
  return hits;
}

std::vector<Triangle> trianglesOf(SoNode* scene, float complexity) {
  const SoRef<SoSeparator> root(new SoSeparator);
  auto* detailed = new SoComplexity;
  detailed->value = complexity;
  root->addChild(detailed);
  root->addChild(scene);
  std::vector<Triangle> triangles;
  SoCallbackAction action;
  action.addTriangleCallback(
      SoNode::getClassTypeId(),
      [](void* out, SoCallbackAction* at, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
         const SoPrimitiveVertex* c) {
        static_cast<std::vector<Triangle>*>(out)->push_back(
            {cornerOf(*at, a), cornerOf(*at, b), cornerOf(*at, c)});
      },
      &triangles);
  action.apply(root.get());
  return triangles;
}

bool isClosed(const std::vector<Triangle>& triangles) {
  using Place = std::tuple<long, long, long>;
  const auto place = [](const SbVec3f& p) {
    return Place(std::lround(p[0] * 1e4), std::lround(p[1] * 1e4), std::lround(p[2] * 1e4));
  };
  std::map<std::pair<Place, Place>, int> edges;
  for (const Triangle& t : triangles)
    for (int i = 0; i < 3; ++i) {
      const Place a = place(t[i].point), b = place(t[(i + 1) % 3].point);
      if (a == b) continue;
      a < b ? ++edges[{a, b}] : --edges[{b, a}];
    }
  for (const auto& [edge, balance] : edges)
    if (balance != 0) return false;
  return true;
}

double volumeOf(const std::vector<Triangle>& triangles) {
  double sum = 0;
  for (const auto& [a, b, c] : triangles) sum += a.point.dot(b.point.cross(c.point)) / 6.0;
  return sum;
}

LitDrawing::LitDrawing(SoNode* scene) : Drawing(scene) { root->insertChild(new SoDirectionalLight, 1); }

int countLit(SoNode* scene) { return countLit(LitDrawing(scene).frame()); }

}  // namespace tessel::test
