// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbRotation.h>
#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec3f.h>

namespace tessel::host {

/// Where the viewer stands and looks (along -z of `orientation`), in the frame of the bound viewpoint.
struct Pose {
  SbVec3f position{0, 0, 10};
  SbRotation orientation = SbRotation::identity();
};

/// How mouse movements move the viewer. Knows nothing of windows or cameras.
///
/// Movements are given in parts of the window's smaller side, x to the right and y upward, so that a window's
/// size doesn't change how they feel.
class Navigation {
public:
  enum class Mode {
    examine,  ///< round a pivot, as if the world lay in one's hand
    fly       ///< on the spot, as if the viewer turned the head
  };

  Mode mode = Mode::examine;
  SbVec3f pivot{0, 0, 0};         ///< what EXAMINE turns about, in the viewer's frame
  SbVec3f up{0, 1, 0};            ///< what FLY turns about
  float speed = 1;                ///< units a second in FLY
  float fieldOfView = 0.785398f;  ///< across the window's smaller side, radians
  float sceneSize = 1;            ///< extent of the world: the least step of EXAMINE is a part of it

  /// Left button: EXAMINE swings round the pivot, FLY turns the head. Half a window is a quarter turn.
  Pose turned(const Pose& from, const SbVec2f& drag) const;
  /// Middle button: sideways and up; in EXAMINE the pivot's depth follows the pointer.
  Pose panned(const Pose& from, const SbVec2f& drag) const;
  /// Right button and wheel: EXAMINE nears the pivot by a constant factor a unit and never reaches it, FLY
  /// goes forward. Positive is forward.
  Pose advanced(const Pose& from, float amount) const;

private:
  float pivotDistance(const Pose& pose) const;
};

}  // namespace tessel::host
