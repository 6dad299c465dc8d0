// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlIndexedShape.h>

#include <algorithm>
#include <numeric>

#include <Inventor/actions/SoAction.h>
#include <Inventor/misc/SoNotification.h>

#include <tessel/shapes/VrmlCoordinate.h>

#include "core/NodeClassImpl.h"
#include "shapes/RealNode.h"

namespace {

/// Below this a box is found about as fast as its cache is looked up.
constexpr int fewIndices = 8;

}  // namespace

std::span<const tessel::FieldSpec> VrmlIndexedShape::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlIndexedShape::coordIndex>("coordIndex", field, {-1}),
      tessel::fieldSpec<&VrmlIndexedShape::colorIndex>("colorIndex", field, {-1}),
      tessel::fieldSpec<&VrmlIndexedShape::set_coordIndex>("set_coordIndex", eventIn, {-1}),
      tessel::fieldSpec<&VrmlIndexedShape::set_colorIndex>("set_colorIndex", eventIn, {-1}),
  };
  return table;
}

VrmlIndexedShape::VrmlIndexedShape() { setUpFields(); }

VrmlIndexedShape::~VrmlIndexedShape() = default;

void VrmlIndexedShape::computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) {
  if (haveBBoxCache(box, center)) return;
  const auto* node = tessel::realNode<VrmlCoordinate>(coord);
  if (!node) return;
  // Each point counts as often as it is used. Sums are double: a float loses the small parts of a large sum.
  const SbVec3f* points = node->point.getValues(0);
  const int numPoints = node->point.getNum();
  const std::int32_t* index = coordIndex.getValues(0);
  const int numIndices = coordIndex.getNum();
  SbVec3f low = box.getMin(), high = box.getMax();
  double sum[3] = {};
  int used = 0;
  for (int i = 0; i < numIndices; ++i) {
    if (index[i] < 0 || index[i] >= numPoints) continue;
    const SbVec3f& p = points[index[i]];
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], p[k]);
      high[k] = std::max(high[k], p[k]);
      sum[k] += p[k];
    }
    ++used;
  }
  box.setBounds(low, high);
  if (used)
    center.setValue(static_cast<float>(sum[0] / used), static_cast<float>(sum[1] / used),
                    static_cast<float>(sum[2] / used));
  if (numIndices > fewIndices) createBBoxCache(action->getState(), box, center);
}

void VrmlIndexedShape::notify(SoNotList* list) {
  mirror(list, coordIndex, set_coordIndex);
  mirror(list, colorIndex, set_colorIndex);
  VrmlVertexShape::notify(list);
}

int VrmlIndexedShape::getNumVerts(int start) const {
  const std::int32_t* index = coordIndex.getValues(0);
  const int end = coordIndex.getNum();
  int i = start;
  while (i < end && index[i] >= 0) ++i;
  return i - start;
}

const std::int32_t* VrmlIndexedShape::allocateSequential(int n) {
  static std::vector<std::int32_t> consecutiveIndices;
  const std::size_t had = consecutiveIndices.size();
  if (n > static_cast<int>(had)) {
    consecutiveIndices.resize(static_cast<std::size_t>(n));
    std::iota(consecutiveIndices.begin() + static_cast<std::ptrdiff_t>(had), consecutiveIndices.end(),
              static_cast<std::int32_t>(had));
  }
  return consecutiveIndices.data();
}

std::vector<std::int32_t> VrmlIndexedShape::allocateSequentialWithHoles() const {
  const std::int32_t* index = coordIndex.getValues(0);
  std::vector<std::int32_t> result(static_cast<std::size_t>(coordIndex.getNum()));
  std::transform(index, index + coordIndex.getNum(), result.begin(),
                 [next = 0](std::int32_t i) mutable { return i < 0 ? i : next++; });
  return result;
}

template class tessel::NodeClass<VrmlIndexedShape, VrmlVertexShape>;
