// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include <tessel/Export.h>

#include <Inventor/actions/SoAction.h>
#include <Inventor/actions/SoSubAction.h>

/// Counts the primitives of a scene.
class TESSEL_API VrmlCountAction : public SoAction {
  typedef SoAction inherited;
  SO_ACTION_HEADER(VrmlCountAction);

public:
  VrmlCountAction();
  ~VrmlCountAction() override;
  static void initClass();

  int lodMode = 0;     ///< which child of an LOD counts: 0 the current, 1 the first, 2 the last
  int skipCulled = 0;  ///< whether groups that the last frame culled are left out

  /// Adds to a result, which stops at the largest number it holds.
  static void add(int& result, std::int64_t amount) {
    result = static_cast<int>(std::min<std::int64_t>(result + amount, std::numeric_limits<int>::max()));
  }

  int numTriangles = 0;     ///< result
  int numLineSegments = 0;  ///< result
  int numPoints = 0;        ///< result

protected:
  void beginTraversal(SoNode* node) override;
};
