// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlTransformedCamera.h>

#include <algorithm>
#include <cmath>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbSphere.h>

#include "frame/MatrixRotation.h"

SO_NODE_SOURCE(VrmlTransformedCamera);

namespace {

// How near the near plane may be, in parts of the distance that is looked at.
constexpr float nearestPart = 0.01F;

bool sameAxes(const SbMatrix& a, const SbMatrix& b) {
  return std::equal(a[0], a[0] + 3, b[0]) && std::equal(a[1], a[1] + 3, b[1]) &&
         std::equal(a[2], a[2] + 3, b[2]);
}

SbViewVolume standing(const VrmlTransformedCamera& camera, float aspect, const SbVec3f& position,
                      const SbRotation& orientation) {
  SbViewVolume volume;
  volume.perspective(camera.heightAngle.getValue(), aspect == 0 ? camera.aspectRatio.getValue() : aspect,
                     camera.nearDistance.getValue(), camera.farDistance.getValue());
  volume.rotateCamera(orientation);
  volume.translateCamera(position);
  return volume;
}

}  // namespace

void VrmlTransformedCamera::initClass() {
  SO_NODE_INIT_CLASS(VrmlTransformedCamera, SoPerspectiveCamera, "PerspectiveCamera");
}

VrmlTransformedCamera::VrmlTransformedCamera() {
  SO_NODE_CONSTRUCTOR(VrmlTransformedCamera);
  SO_NODE_ADD_FIELD(matrix, (SbMatrix::identity()));
  isBuiltIn = TRUE;
}

VrmlTransformedCamera::~VrmlTransformedCamera() = default;

SbViewVolume VrmlTransformedCamera::getViewVolume(float aspect) const {
  SbVec3f worldPosition;
  SbRotation worldOrientation;
  getRealPosition(worldPosition);
  getRealOrientation(worldOrientation);
  return standing(*this, aspect, worldPosition, worldOrientation);
}

SbViewVolume VrmlTransformedCamera::getLocalViewVolume(float aspect) const {
  return standing(*this, aspect, position.getValue(), orientation.getValue());
}

const SbRotation& VrmlTransformedCamera::getMatrixRotation() const {
  const SbMatrix& now = matrix.getValue();
  if (!sameAxes(now, rotationOf)) {
    rotationOf = now;
    rotation = SbRotation(tessel::rotationPart(now));
  }
  return rotation;
}

void VrmlTransformedCamera::getRealPosition(SbVec3f& result) const {
  matrix.getValue().multVecMatrix(position.getValue(), result);
}

void VrmlTransformedCamera::getRealOrientation(SbRotation& result) const {
  result = orientation.getValue() * getMatrixRotation();
}

void VrmlTransformedCamera::viewBoundingBox(const SbBox3f& box, float aspect, float slack) {
  SbSphere around(SbVec3f(0, 0, 0), 1);
  if (!box.isEmpty()) around.circumscribe(box);
  const float radius = around.getRadius();

  float halfHeight = std::tan(heightAngle.getValue() / 2);
  if (aspect < 1) halfHeight *= aspect;
  const float distance = radius / halfHeight;

  SbRotation worldOrientation;
  getRealOrientation(worldOrientation);
  SbVec3f back;
  worldOrientation.multVec(SbVec3f(0, 0, distance), back);
  SbVec3f local;
  matrix.getValue().inverse().multVecMatrix(around.getCenter() + back, local);
  position.setValue(local);

  nearDistance.setValue(std::max(distance - slack * radius, nearestPart * distance));
  farDistance.setValue(distance + slack * radius);
  focalDistance.setValue(distance);
}
