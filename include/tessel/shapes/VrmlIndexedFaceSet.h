// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlIndexedShape.h>

#include <memory>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>

namespace tessel {
class FaceWalk;
class NormalGenerator;
struct FaceDrawing;
}  // namespace tessel

/// A surface of faces given as lists of indices into points.
///
/// The faces become a mesh of triangles when the node or what is needed of it changes, and later frames draw that
/// mesh. Index lists are checked then: a fault is reported once, and nothing is drawn until the node changes.
class TESSEL_API VrmlIndexedFaceSet : public tessel::NodeClass<VrmlIndexedFaceSet, VrmlIndexedShape> {
public:
  static constexpr const char* fileFormatName = "IndexedFaceSet";
  static std::span<const tessel::FieldSpec> fields();

  VrmlSFNode normal;            ///< exposedField: a Normal, NULL: normals are computed from the faces
  VrmlSFNode texCoord;          ///< exposedField: a TextureCoordinate, NULL: they are computed from the box
  SoSFBool colorPerVertex;      ///< field: a color is of a corner, not of a face; TRUE
  SoSFBool normalPerVertex;     ///< field: a normal is of a corner, not of a face; TRUE
  SoMFInt32 normalIndex;        ///< field: indices of normals; -1: as `coordIndex`, or the number of the face
  SoMFInt32 texCoordIndex;      ///< field: indices of texture coordinates; -1: as `coordIndex`
  SoSFBool ccw;                 ///< field: faces are counterclockwise as seen from their front; TRUE
  SoSFBool solid;               ///< field: the back of a face is never seen, so it is not drawn; TRUE
  SoSFBool convex;              ///< field: all faces are convex; TRUE
  SoSFFloat creaseAngle;        ///< field: faces at a smaller angle look smooth where they meet, radians; 0
  SoMFInt32 set_normalIndex;    ///< eventIn: a new `normalIndex`
  SoMFInt32 set_texCoordIndex;  ///< eventIn: a new `texCoordIndex`

  VrmlIndexedFaceSet();

  int getContainerFlags() const override;
  void generatePrimitives(SoAction* action) override;
  SoDetail* createTriangleDetail(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                 const SoPrimitiveVertex* v2, const SoPrimitiveVertex* v3,
                                 SoPickedPoint* point) override;

  void notify(SoNotList* list) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;

protected:
  ~VrmlIndexedFaceSet() override;

private:
  std::span<const std::int32_t> indices() const;
  void sendShapeHintsToState(SoState* state);
  void doVertexPropertyAction(SoAction* action);
  bool prepare(SoGLRenderAction* action);
  void draw(SoGLRenderAction* action);

  std::unique_ptr<tessel::FaceDrawing> drawing;
  std::unique_ptr<tessel::NormalGenerator> pickNormals;  // kept from one pick to the next
  const tessel::FaceWalk* walk = nullptr;                // at the face that makes primitives
};
