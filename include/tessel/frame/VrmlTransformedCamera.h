// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/SbMatrix.h>
#include <Inventor/SbRotation.h>
#include <Inventor/fields/SoSFMatrix.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSubNode.h>

/// A camera that stands in the coordinate system of a viewpoint.
///
/// `position` and `orientation` are in the frame that `matrix` takes to world space, so a host that sets
/// `matrix` from the camera callback navigates in the viewpoint's own frame, and a moving viewpoint carries
/// the viewer along. Of `matrix` only place and rotation count for where the camera looks: scale and shear
/// are taken out.
class TESSEL_API VrmlTransformedCamera : public SoPerspectiveCamera {
  typedef SoPerspectiveCamera inherited;
  SO_NODE_HEADER(VrmlTransformedCamera);

public:
  static void initClass();

  SoSFMatrix matrix;  ///< identity: the camera's frame to world space

  VrmlTransformedCamera();

  /// The view volume in world space. An aspect of 0 stands for the field `aspectRatio`.
  SbViewVolume getViewVolume(float aspect = 0) const override;
  /// The same without `matrix`.
  SbViewVolume getLocalViewVolume(float aspect = 0) const;
  /// The rotation of `matrix`.
  const SbRotation& getMatrixRotation() const;
  /// Position and orientation in world space.
  void getRealPosition(SbVec3f& result) const;
  void getRealOrientation(SbRotation& result) const;

  /// Moves back, looking as now, until a world-space box is wholly seen; an empty one counts as a sphere of
  /// radius 1 at the origin. `slack` times the radius of the box's sphere lies between the near and the far
  /// plane and its centre.
  void viewBoundingBox(const SbBox3f& box, float aspect, float slack) override;

protected:
  ~VrmlTransformedCamera() override;

private:
  mutable SbMatrix rotationOf = SbMatrix::identity();  // the matrix that `rotation` was worked out for
  mutable SbRotation rotation = SbRotation::identity();
};
