// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlGeometry.h>

#include <memory>

#include <Inventor/fields/SoMFRotation.h>
#include <Inventor/fields/SoMFVec2f.h>
#include <Inventor/fields/SoMFVec3f.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/lists/SoCallbackList.h>
#include <Inventor/sensors/SoOneShotSensor.h>

namespace tessel {
class ExtrusionSurface;
}

/// Extrusion: a cross-section, an outline in the plane y = 0, swept along a spine.
///
/// The outline stands at each point of the spine, scaled, turned by `orientation`, and turned so that its y axis
/// follows the spine. Lists shorter than the spine hold their last value. The surface is made anew at the end of each
/// notification of a field that changes, as face sets of triangles that all actions go through.
class TESSEL_API VrmlExtrusion : public tessel::NodeClass<VrmlExtrusion, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "Extrusion";
  static std::span<const tessel::FieldSpec> fields();

  SoMFVec2f crossSection;    ///< field: the outline; a square of side 2
  SoMFRotation orientation;  ///< field, two identities: turns the outline, for each point of the spine
  SoMFVec2f scale;        ///< field, two 1 1: scales the outline, for each point of the spine; below 0 is 0
  SoMFVec3f spine;        ///< field: the way; 0 0 0 to 0 1 0
  SoSFBool beginCap;      ///< field, TRUE: closed at the first point of the spine
  SoSFBool endCap;        ///< field, TRUE: closed at the last
  SoSFBool ccw;           ///< field, TRUE: the outline is counter-clockwise seen from positive y
  SoSFBool solid;         ///< field, TRUE: the inside is not seen
  SoSFBool convex;        ///< field, TRUE: the outline is convex
  SoSFFloat creaseAngle;  ///< field, 0: faces that meet at a smaller angle, in radians, are smooth
  SoMFVec2f set_crossSection;    ///< eventIn: a new `crossSection`
  SoMFRotation set_orientation;  ///< eventIn: a new `orientation`
  SoMFVec2f set_scale;           ///< eventIn: a new `scale`
  SoMFVec3f set_spine;           ///< eventIn: a new `spine`

  VrmlExtrusion();

  /// Whether searches find the face sets that the surface is made of. They don't, unless a host says so.
  static inline bool searchingChildren = false;

  /// Makes the surface anew. A host needs it only after changes without notification.
  void updateSurface();
  /// A function that is called with its `data` and this node (a VrmlExtrusion*) after each update of the surface.
  void addUpdateSurfaceCallback(SoCallbackListCB* callback, void* data = nullptr);
  void removeUpdateSurfaceCallback(SoCallbackListCB* callback, void* data = nullptr);
  /// The length of the spine up to each of its points. `array` has `count` entries, and none for an empty spine.
  void createSpineDistanceArray(int& count, std::unique_ptr<float[]>& array) const;

  /// One child, a separator of the face sets.
  SoChildList* getChildren() const override;
  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void generatePrimitives(SoAction* action) override;

  bool readBody(tessel::WorldReader& reader) override;
  void notify(SoNotList* list) override;
  void notifyContainerOnly(const SoField* field) override;
  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;
  void handleEvent(SoHandleEventAction* action) override;
  void pick(SoPickAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void search(SoSearchAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;

protected:
  ~VrmlExtrusion() override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

private:
  static void fieldsChangedCB(void* self, SoSensor* sensor);
  void correctScale();
  void sync();

  std::unique_ptr<SoChildList> children;
  std::unique_ptr<tessel::ExtrusionSurface> surface;
  SoCallbackList updateCallbacks;
  SoOneShotSensor sensor;
  bool isStale = false;  // after a change that was not told
};
