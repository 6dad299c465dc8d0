// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/shapes/VrmlVertexShape.h>

#include <cstdint>
#include <vector>

#include <Inventor/fields/SoMFInt32.h>

/// A geometry whose vertices are indices into its coordinates, in runs that end in -1.
class TESSEL_API VrmlIndexedShape : public tessel::NodeClass<VrmlIndexedShape, VrmlVertexShape> {
public:
  static constexpr const char* fileFormatName = "IndexedShape";
  static std::span<const tessel::FieldSpec> fields();

  SoMFInt32 coordIndex;      ///< field: indices of points, a negative one ends a run; -1
  SoMFInt32 colorIndex;      ///< field: indices of colors; -1
  SoMFInt32 set_coordIndex;  ///< eventIn: a new `coordIndex`
  SoMFInt32 set_colorIndex;  ///< eventIn: a new `colorIndex`

  void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
  void notify(SoNotList* list) override;

protected:
  VrmlIndexedShape();
  ~VrmlIndexedShape() override;

  /// The length of the run of `coordIndex` entries, none negative, that begins at `start`.
  int getNumVerts(int start) const;

  /// 0, 1, 2, ... with at least `n` entries, one array for all shapes; valid until a longer one is asked for.
  static const std::int32_t* allocateSequential(int n);
  /// An array as long as `coordIndex`: 0, 1, 2, ... where that is not negative, its entry where it is.
  std::vector<std::int32_t> allocateSequentialWithHoles() const;
};
