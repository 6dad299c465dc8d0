// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/PrimitiveState.h"

namespace tessel {

PrimitiveState::PrimitiveState() {
  for (SoPrimitiveVertex& v : verts) {
    v.setNormal(0, 0, 1);
    v.setTextureCoords(SbVec4f(0, 0, 0, 0));
  }
}

PrimitiveState& PrimitiveState::get() {
  static PrimitiveState state;
  return state;
}

}  // namespace tessel
