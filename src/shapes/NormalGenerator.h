// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <Inventor/SbVec3f.h>

namespace tessel {

/// Computes the normals of faces that have none of their own.
///
/// The normal of a corner is the mean of the unit normals of the faces that meet at its position and whose
/// planes differ from the corner's own face by less than the crease angle. Points at equal positions count as
/// one. Runs in linear time; an object that is used again allocates nothing for a mesh of the same size.
class NormalGenerator {
public:
  /// What the index into `normals()` depends on: the number of the face, the point, or the corner.
  enum class Sharing : std::uint8_t { perFace, perPoint, perCorner };

  /// @param points       positions                                                     [object space]
  /// @param coordIndex   faces as runs of indices into `points`, each ended by a negative entry or the end
  /// @param ccw          whether faces are counterclockwise as seen from where their normals point to
  /// @param creaseAngle  0 or less: each face flat; pi or more: all smooth             [radians]
  /// @param keepFaces    whether the same faces may come again with other points: then what depends on them alone
  ///                     is kept
  /// Expects every entry that is not negative below the number of points.
  /// Faces of fewer than three corners count as faces but shape no normal. A face without area takes the
  /// normals of the faces around it. Where normals cancel out, a corner keeps the normal of its face.
  void generate(std::span<const SbVec3f> points, std::span<const std::int32_t> coordIndex, bool ccw,
                float creaseAngle, bool keepFaces = false);

  Sharing sharing() const { return shared; }
  /// The normals, of unit length, or zero where there is nothing to compute one from.
  std::span<const SbVec3f> normals() const { return values; }
  /// The index into `normals()`: one entry a point or one a corner (entry of `coordIndex`), -1 where there is
  /// none; empty if normals are per face.
  std::span<const std::int32_t> indices() const {
    return shared == Sharing::perPoint    ? place
           : shared == Sharing::perCorner ? index
                                          : std::span<const std::int32_t>();
  }

  /// Whether normals are per corner and the last two calls gave the same indices.
  bool hasSameCorners() const { return shared == Sharing::perCorner && sameCorners; }

  /// The index into `normals()` of a corner.
  std::int32_t indexOf(std::int32_t face, std::int32_t point, std::int32_t corner) const {
    switch (shared) {
      case Sharing::perFace:
        return face;
      case Sharing::perPoint:
        return place[static_cast<std::size_t>(point)];
      default:
        return index[static_cast<std::size_t>(corner)];
    }
  }

  /// Gives all memory back.
  void release() { *this = NormalGenerator(); }

private:
  void computeFaceNormals(std::span<const SbVec3f> points, std::span<const std::int32_t> coordIndex,
                          bool ccw);
  void weld(std::span<const SbVec3f> points, std::span<const std::int32_t> coordIndex);
  void collectFaces(std::span<const std::int32_t> coordIndex);
  void rewindPlaces();
  using Faces = std::span<const std::int32_t>;
  void smooth(float creaseAngle, std::int32_t* numbers);
  void smoothAll(Faces faces, std::int32_t* numbers);
  bool smoothTogether(Faces faces, std::int32_t* numbers, float halfThreshold);
  void smoothGroup(Faces faces, std::int32_t* numbers, float threshold);
  void indexCorners(std::span<const std::int32_t> coordIndex, std::span<const std::int32_t> numbers);

  Sharing shared = Sharing::perFace;
  bool sameCorners = false;
  std::vector<SbVec3f> values;
  std::vector<std::int32_t> index;  // of corners: their normals

  std::vector<SbVec3f> faceNormals;
  std::vector<std::int32_t> place,
      lastPlace;  // of a point: the number of its position, -1 if no corner uses it
  std::size_t numPlaces = 0;
  std::vector<std::int32_t> table;          // hash table of positions: the first point at each
  std::vector<std::int32_t> firstCorner;    // of a place: where its corners begin in the two below
  std::vector<std::int32_t> cornerFaces;    // by place, in file order
  std::vector<std::int32_t> cornerNormals;  // their normals, if the faces are to be kept
  std::vector<std::int32_t> keptFaces;      // the indices that cornerFaces was made from, if it is to be kept
};

}  // namespace tessel
