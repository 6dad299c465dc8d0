// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlIndexedShape.h>

#include <Inventor/fields/SoSFBool.h>

namespace tessel {
class UnlitBuffers;
}

/// Polylines, drawn without light or texture, in the colors of `color` or else in that of the state.
///
/// A color belongs to a vertex or to a whole polyline. A line set whose indices do not fit its values is not
/// drawn, after a report. Lines do not collide.
class TESSEL_API VrmlIndexedLineSet : public tessel::NodeClass<VrmlIndexedLineSet, VrmlIndexedShape> {
public:
  static constexpr const char* fileFormatName = "IndexedLineSet";
  static std::span<const tessel::FieldSpec> fields();

  SoSFBool colorPerVertex;  ///< field: whether a color belongs to a vertex, not to a polyline; TRUE

  VrmlIndexedLineSet();

  void notify(SoNotList* list) override;
  void GLRender(SoGLRenderAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;
  void generatePrimitives(SoAction* action) override;
  /// A SoLineDetail with the numbers of the polyline and of the segment, and both ends.
  SoDetail* createLineSegmentDetail(SoRayPickAction* action, const SoPrimitiveVertex* v1,
                                    const SoPrimitiveVertex* v2, SoPickedPoint* point) override;

protected:
  ~VrmlIndexedLineSet() override;

private:
  /// What the colors of the polylines follow.
  enum class ColorSource { own, colorIndex, coordIndex };
  /// Sizes of all that indices refer to, or that hold them.
  struct Sizes {
    int verts = 0, colors = 0, coordIndices = 0, colorIndices = 0;
    bool operator==(const Sizes&) const = default;
  };
  /// What a color belongs to: nothing in particular, a segment, a polyline, a vertex.
  enum ColorUse { Om, Pm, Fm, Vm };

  void countPolylinesAndSegments();
  bool setupIndices();
  bool areIndicesInRange() const;
  bool chooseColors();
  static int getMaterialBinding(SoAction* action);
  void doVertexPropertyAction(SoAction* action);
  /// The list that the colors follow; null if they come in their own order.
  const std::int32_t* colorIndices() const;
  template <ColorUse use> void draw(bool asPoints) const;
  void drawFromBuffers(SoState* state, ColorUse use, bool asPoints);

  std::unique_ptr<tessel::UnlitBuffers> buffers;
  std::vector<int> polylineCounts;  // vertices of each polyline
  int numSegments = -1;             // negative: not counted
  int numPolylines = -1;
  int numCounted = 0;                // entries of `coordIndex` that were counted
  Sizes checked;                     // for which the index lists were checked
  std::uint8_t preparedBinding = 0;  // the color binding for which the source was chosen
  ColorSource colorSource = ColorSource::own;
  bool indicesDirty = true;   // the index lists are to be checked
  bool indicesValid = false;  // the last check found them good
};
