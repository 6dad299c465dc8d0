// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/frame/VrmlBindingNode.h>
#include <tessel/toolkit/SoRef.h>

#include <Inventor/SbRotation.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/SoPath.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFRotation.h>
#include <Inventor/fields/SoSFString.h>
#include <Inventor/fields/SoSFTime.h>
#include <Inventor/fields/SoSFVec3f.h>

/// Viewpoint: a place to look from. It draws nothing and moves no camera: the host does, when it is told.
class TESSEL_API VrmlViewpoint : public tessel::NodeClass<VrmlViewpoint, VrmlBindingNode> {
public:
  static constexpr const char* fileFormatName = "Viewpoint";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f position;        ///< exposedField, 0 0 10: in the node's own coordinates
  SoSFRotation orientation;  ///< exposedField, identity: turns the direction -z, with +y up
  SoSFFloat fieldOfView;     ///< exposedField, 0.785398: radians
  SoSFBool jump;             ///< exposedField, TRUE: whether a bind moves the viewer here
  SoSFTime bindTime;         ///< eventOut, 0: frame time of the last bind or unbind
  SoSFString description;    ///< field, empty: name for the user; without it the user is not offered the node

  VrmlViewpoint();

  /// How far the viewer had moved away from here when the node was unbound, in the node's coordinates; zero
  /// and identity if that is not known.
  const SbVec3f& getOffsetPosition() const { return offsetPosition; }
  const SbRotation& getOffsetOrientation() const { return offsetOrientation; }
  void setOffsets(const SbVec3f& movedBy, const SbRotation& turnedBy);

  /// The path to the node in the scene as of the last update of the bindings; null outside a scene.
  const SoPath* getPath() const { return path.get(); }
  void setPath(SoPath* newPath) { path.reset(newPath); }

  void doBind() override;
  void doUnbind() override;

protected:
  ~VrmlViewpoint() override;

private:
  SbVec3f offsetPosition{0, 0, 0};
  SbRotation offsetOrientation = SbRotation::identity();
  tessel::SoRef<SoPath> path;
};
