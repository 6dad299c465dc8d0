// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbVec2s.h>
#include <Inventor/SbVec3f.h>

class SbMatrix;
class SoBoundingBoxCache;
class SoDetail;
class SoFaceDetail;
class SoPickedPoint;
class SoPrimitiveVertex;
class SoState;

namespace tessel {
class PipelineSink;
}

/// Base of every geometry.
///
/// It decides whether the node acts at all (only inside a Shape), caches bounding boxes, and turns the
/// vertices that a subclass generates into triangles, lines and points for the action that runs: picking,
/// rendering, collision or callbacks. All coordinates are in object space.
class TESSEL_API VrmlGeometry : public tessel::NodeClass<VrmlGeometry, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Geometry";
  static std::span<const tessel::FieldSpec> fields();

  /// How the vertices between `beginShape` and `endShape` make triangles.
  enum TriangleShape { TRIANGLE_STRIP, TRIANGLE_FAN, TRIANGLES, POLYGON };

  /// The low half of the container element while the property nodes of this geometry act: which it takes.
  virtual int getContainerFlags() const;
  /// Extends an empty `box` by the geometry and finds its center. Runs with the property nodes' bits set.
  virtual void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) = 0;
  /// Hands the geometry to the pipeline, vertex by vertex. Runs with the property nodes' bits set.
  virtual void generatePrimitives(SoAction* action) = 0;
  /// Whether the geometry is to be drawn now. Delays it if it is transparent and the action sorts, and
  /// draws its box where the complexity asks for that.
  virtual bool shouldGLRender(SoGLRenderAction* action);

  /// The detail of a picked primitive, owned by the caller; null for none.
  virtual SoDetail* createTriangleDetail(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                         const SoPrimitiveVertex* v2, const SoPrimitiveVertex* v3,
                                         SoPickedPoint* point);
  virtual SoDetail* createLineSegmentDetail(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                            const SoPrimitiveVertex* v2, SoPickedPoint* point);
  virtual SoDetail* createPointDetail(SoRayPickAction* action, const SoPrimitiveVertex* v,
                                      SoPickedPoint* point);

  void notify(SoNotList* list) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;

protected:
  VrmlGeometry();
  ~VrmlGeometry() override;

  // The primitive pipeline. One traversal runs at a time, so its working state is one for the library.

  /// Starts a shape of vertices. `detail` gets the points of each triangle, unless the shape is begun inside
  /// another; null for none. A polygon that the state's shape hints call convex becomes a fan.
  void beginShape(SoAction* action, TriangleShape type, SoFaceDetail* detail = nullptr);
  /// One more vertex, copied with its detail, which must be a SoPointDetail if there is a face detail.
  static void shapeVertex(const SoPrimitiveVertex* v);
  /// Ends the shape. Only now the triangles of a polygon that is not convex are made.
  static void endShape();

  // One primitive for the action that runs.
  void invokeTriangleCallbacks(SoAction* action, const SoPrimitiveVertex* v1, const SoPrimitiveVertex* v2,
                               const SoPrimitiveVertex* v3);
  void invokeLineSegmentCallbacks(SoAction* action, const SoPrimitiveVertex* v1, const SoPrimitiveVertex* v2);
  void invokePointCallbacks(SoAction* action, const SoPrimitiveVertex* v);

  /// Adds the hit of a triangle to a pick, if there is one, with normal, texture coordinates, material
  /// index and detail.
  void rayPickTriangle(SoRayPickAction* action, const SoPrimitiveVertex* v1, const SoPrimitiveVertex* v2,
                       const SoPrimitiveVertex* v3);
  void rayPickLineSegment(SoRayPickAction* action, const SoPrimitiveVertex* v1, const SoPrimitiveVertex* v2);
  void rayPickPoint(SoRayPickAction* action, const SoPrimitiveVertex* v);

  /// Whether a pick has to look at the geometry itself; handles the pick styles that do not.
  bool shouldRayPick(SoRayPickAction* action);
  /// Brings the ray of a pick into object space, the second form into a space below it.
  static void computeObjectSpaceRay(SoRayPickAction* action);
  static void computeObjectSpaceRay(SoRayPickAction* action, const SbMatrix& matrix);
  /// Gives a picked point its detail, recorded against the Shape if the path ends in it. Takes the detail.
  void setDetail(SoPickedPoint* point, SoDetail* detail, SoAction* action);

  void GLRenderBoundingBox(SoGLRenderAction* action);
  void rayPickBoundingBox(SoRayPickAction* action);

  /// Pushes the state and says that faces are counterclockwise and hide their back, if they are drawn filled.
  void beginSolidShape(SoGLRenderAction* action);
  void endSolidShape(SoGLRenderAction* action);

  /// The box and center that `createBBoxCache` kept, if nothing changed since.
  bool haveBBoxCache(SbBox3f& box, SbVec3f& center) const;
  void createBBoxCache(SoState* state, const SbBox3f& box, const SbVec3f& center);
  /// The kept cache, null if there is none.
  SoBoundingBoxCache* getBBoxCache() const { return bboxCache.get(); }

  /// Half the extent of a box on the screen, in pixels, each at most 32767.
  static SbVec2s getScreenSize(SoState* state, const SbBox3f& box);

  /// Runs `computeBBox` as from outside: with the property nodes' bits set. `box` starts empty.
  void computeGuardedBBox(SoAction* action, SbBox3f& box, SbVec3f& center);

  /// For `notify`: if a list or the event that replaces it was set itself, the other takes its value.
  template <class Field> void mirror(const SoNotList* list, Field& values, Field& event) {
    const SoField* from = mirrorSource(list, values, event);
    if (!from) return;
    const tessel::ScopedValue<bool> busy(isMirroring, true);
    if (from == &event)
      values = event;
    else
      event = values;
  }

private:
  friend class tessel::PipelineSink;
  void generateGuarded(SoAction* action);
  const SoField* mirrorSource(const SoNotList* list, const SoField& values, const SoField& event) const;

  tessel::SoRef<SoBoundingBoxCache> bboxCache;
  bool isMirroring = false;
};
