// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace tessel {

/// The faces of a list of indices as the draw loops take them: a leading run of triangles, then one of quads,
/// then the faces of any size, among them every triangle that follows a quad.
struct FaceRuns {
  int triangles = 0;
  int quads = 0;
  int faces = 0;

  int total() const { return triangles + quads + faces; }
};

/// Counts the runs. Only -1 ends a face; a list need not end in one. Fewer than three entries behind the runs
/// count nothing.
FaceRuns countRuns(std::span<const std::int32_t> coordIndex);

/// The largest entry, -1 for an empty list.
std::int32_t largestIndex(std::span<const std::int32_t> indices);

/// How a corner finds its color, normal or texture coordinate.
struct CornerIndices {
  enum class By : std::uint8_t {
    none,    ///< one value for all, or none at all
    face,    ///< by the number of its face
    corner,  ///< by its place in `coordIndex`
    point,   ///< by the number of its point
  };

  By by = By::none;
  /// What stands at that number; null if the number is the index itself.
  const std::int32_t* array = nullptr;

  /// The index of the value. A negative entry, which has no meaning here, counts as 0.
  std::int32_t operator()(std::int32_t face, std::int32_t point, std::int32_t corner) const {
    if (by == By::none) return 0;
    const std::int32_t number = by == By::face ? face : by == By::point ? point : corner;
    const std::int32_t index = array ? array[number] : number;
    return index < 0 ? 0 : index;
  }
};

/// One attribute of a face set as its node has it.
struct AttributeSource {
  std::span<const std::int32_t>
      indices;           ///< the node's index field; empty or led by a negative entry if unused
  int count = 0;         ///< values there are
  bool perFace = false;  ///< a value a face, not a corner
  bool used = false;     ///< false: one value for all, or none; only the range is checked

  bool hasIndices() const { return !indices.empty() && indices[0] >= 0; }
};

struct FaceSource {
  std::span<const std::int32_t> coordIndex;
  int numPoints = 0;
  int numFaces = 0;
  AttributeSource color, normal, texCoord;
  bool checkNormals = false;    ///< whether normals are sent, so that their indices matter
  bool checkTexCoords = false;  ///< the same of texture coordinates
  const char* name = "";        ///< the node's name, for reports
};

/// The index lists of the attributes, checked.
struct FaceIndices {
  CornerIndices color, normal, texCoord;
};

/// What is wrong with an index list: the two arguments of a report.
struct IndexFault {
  const char* source;
  std::string text;
};

/// Checks all index lists of a face set and says what each corner uses.
///
/// Attributes a corner without an index list of their own use `coordIndex`; attributes a face then count the
/// faces. Nothing else is repaired.
/// @return the first fault; `out` is complete if there is none, and its indices are then within the values
std::optional<IndexFault> prepareIndices(const FaceSource& source, FaceIndices& out);

}  // namespace tessel
