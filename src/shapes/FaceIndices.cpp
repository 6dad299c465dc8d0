// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/FaceIndices.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace tessel {

namespace {

using By = CornerIndices::By;

/// The words of an attribute in reports.
struct Wording {
  const char* index;    // in front of "index %d is out of range"
  const char* binding;  // in front of "binding, have only %d"
  const char* few;      // the whole text about too few values
};
constexpr Wording vertexWords = {"vertex", "", ""};
constexpr Wording colorWords = {"color", "material",
                                "Material binding is %s, but only %d colors given (%d needed)"};
constexpr Wording normalWords = {"normal", "normal",
                                 "Normal binding is %s, but only %d normals given (%d needed)"};
constexpr Wording texCoordWords = {"texture coordinate", "texCoord",
                                   "TexCoord binding is %s, but only %d texCoords given (%d needed)"};

__attribute__((format(printf, 1, 2))) std::string formatted(const char* format, ...) {
  char text[256];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

std::optional<std::string> outOfRange(std::span<const std::int32_t> indices, int count,
                                      const Wording& words) {
  // As unsigned numbers, -1 becomes 0 and anything below it too large.
  const auto limit = static_cast<std::uint32_t>(count);
  for (const std::int32_t index : indices)
    if (static_cast<std::uint32_t>(index) + 1u > limit)
      return formatted("%s index %d is out of range 0 - %d", words.index, index, count);
  return std::nullopt;
}

/// Chooses the index list of an attribute and checks that list and values are long enough.
std::optional<std::string> bind(const AttributeSource& attribute, const FaceSource& source,
                                const Wording& words, CornerIndices& out) {
  out = {};
  if (!attribute.used) return std::nullopt;
  std::span<const std::int32_t> inUse;
  const char* binding;
  std::size_t need = 0;
  if (!attribute.perFace) {
    binding = "PER_VERTEX_INDEXED";
    const bool own = attribute.hasIndices();
    inUse = own ? attribute.indices : source.coordIndex;
    need = source.coordIndex.size();
    out = own ? CornerIndices{By::corner, inUse.data()} : CornerIndices{By::point, nullptr};
  } else if (attribute.hasIndices()) {
    binding = "PER_FACE_INDEXED";
    inUse = attribute.indices;
    need = static_cast<std::size_t>(source.numFaces);
    out = {By::face, inUse.data()};
  } else {
    binding = "PER_FACE";
    out = {By::face, nullptr};
    if (attribute.count < source.numFaces)
      return formatted(words.few, binding, attribute.count, source.numFaces);
    return std::nullopt;
  }
  if (inUse.size() < need)
    return formatted("Need %d indices for %s  %s binding, have only %d", static_cast<int>(need), binding,
                     words.binding, static_cast<int>(inUse.size()));
  const std::int32_t largest = largestIndex(inUse);
  if (attribute.count <= largest) return formatted(words.few, binding, attribute.count, largest);
  return std::nullopt;
}

}  // namespace

FaceRuns countRuns(std::span<const std::int32_t> coordIndex) {
  FaceRuns runs;
  const std::int32_t* at = coordIndex.data();
  const std::int32_t* const end = at + coordIndex.size();

  // Whether exactly `corners` entries stand between here and the end of a face.
  const auto isFaceOf = [&](std::ptrdiff_t corners) {
    if (end - at < corners || (end - at > corners && at[corners] != -1)) return false;
    return std::none_of(at, at + corners, [](std::int32_t index) { return index == -1; });
  };
  const auto step = [&](std::ptrdiff_t corners) { at += std::min(corners + 1, end - at); };
  for (; isFaceOf(3); step(3)) ++runs.triangles;
  for (; isFaceOf(4); step(4)) ++runs.quads;
  if (end - at >= 3) {
    runs.faces = static_cast<int>(std::count(at, end, -1));
    if (end[-1] != -1) ++runs.faces;
  }
  return runs;
}

std::int32_t largestIndex(std::span<const std::int32_t> indices) {
  std::int32_t largest = -1;
  for (const std::int32_t index : indices) largest = std::max(largest, index);
  return largest;
}

std::optional<IndexFault> prepareIndices(const FaceSource& source, FaceIndices& out) {
  constexpr const char* node = "VrmlIndexedFaceSet";
  if (source.numPoints <= 0)
    return IndexFault{"VrmlIndexedFaceSet::setupIndices", "no coordinates specified\n"};

  const struct {
    std::span<const std::int32_t> indices;
    int count;
    const Wording& words;
    bool checked;
  } ranges[] = {
      {source.coordIndex, source.numPoints, vertexWords, true},
      {source.color.indices, source.color.count, colorWords, true},
      {source.normal.indices, source.normal.count, normalWords, source.checkNormals},
      {source.texCoord.indices, source.texCoord.count, texCoordWords, source.checkTexCoords},
  };
  for (const auto& range : ranges)
    if (range.checked)
      if (auto text = outOfRange(range.indices, range.count, range.words)) return IndexFault{node, *text};

  if (auto text = bind(source.color, source, colorWords, out.color)) return IndexFault{node, *text};
  if (source.checkNormals)
    if (auto text = bind(source.normal, source, normalWords, out.normal)) {
      // Alone among the three, the text about too few normals names the node.
      const bool few = text->starts_with("Normal");
      return IndexFault{node, few ? formatted("%s: ", source.name) + *text : *text};
    }
  if (source.checkTexCoords)
    if (auto text = bind(source.texCoord, source, texCoordWords, out.texCoord))
      return IndexFault{node, *text};
  return std::nullopt;
}

}  // namespace tessel
