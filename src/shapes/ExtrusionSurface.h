// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <Inventor/SbRotation.h>
#include <Inventor/SbVec2f.h>
#include <Inventor/SbVec3d.h>
#include <Inventor/SbVec3f.h>

#include <tessel/toolkit/SoRef.h>

class SoSeparator;
class VrmlCoordinate;
class VrmlExtrusion;
class VrmlIndexedFaceSet;
class VrmlTextureCoordinate;

namespace tessel {

/// The face sets that stand for an Extrusion: one for the sides, one for each cap, below `root`.
///
/// A row is the outline at a point of the spine. The points of the sides are the rows, one after the other.
class ExtrusionSurface {
public:
  explicit ExtrusionSurface(const VrmlExtrusion& node);
  ~ExtrusionSurface();

  /// Makes all of it anew, but index lists that still hold.
  void update();

  const SoRef<SoSeparator> root;
  SoRef<VrmlIndexedFaceSet> sideFaces, beginFaces, endFaces;  ///< null: there is none

  /// Limit for the points of the sides: a short text could ask for any number of them.
  static constexpr std::int64_t maxPoints = 1 << 22;

private:
  struct Placement {
    SbVec3d x, z, origin;  // of the outline's axes
  };

  void calcCrossSectionUValues();
  void calcSpineVValues();
  void calcCapUVValues();
  bool isTooLarge() const;
  void buildSides();
  void buildSideIndices();
  void buildCaps();
  void cutCaps(std::span<const SbVec2f> outline);
  void buildCapNodes(bool haveBegin, bool haveEnd);
  void buildCap(VrmlIndexedFaceSet* faces, int row, std::span<const std::int32_t> indices);
  void clear();
  void loadShapeHints();

  Placement placementOf(int row) const;
  void getSpineInfo(int row, SbVec3f& translation, SbRotation& rotation) const;
  void loadRow(int row, std::span<SbVec3f> points) const;
  void loadTextureRow(int row, std::span<SbVec2f> coords) const;

  const VrmlExtrusion& node;
  std::span<const SbVec2f> crossSection;  // as long as an update goes on
  std::span<const SbVec3f> spine;
  double reach = 0;                    // the largest coordinate of the cross section
  int numSpine = 0, numCross = 0;      // at least 2
  int builtSpine = 0, builtCross = 0;  // that the sides' index list is for
  // Index lists of the caps, for as long as the outline stays as it is. Its closing point is not in it.
  struct {
    std::vector<SbVec2f> outline;
    std::vector<std::int32_t> begin, end;
  } caps;
  std::vector<float> crossSectionU, spineV;
  std::vector<SbVec2f> capUV;
  std::vector<SbRotation> spineRotations;
  SoRef<VrmlCoordinate> sideCoord;
  SoRef<VrmlTextureCoordinate> sideTexCoord, capTexCoord;
};

}  // namespace tessel
