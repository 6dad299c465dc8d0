// SPDX-License-Identifier: BSD-3-Clause
#include "frame/MatrixRotation.h"

#include <Inventor/SbVec3f.h>

namespace tessel {

namespace {
constexpr float noLength = 0.00001F;  // squared length of a row that counts as zero
}

SbMatrix rotationPart(const SbMatrix& matrix) {
  SbVec3f z(matrix[2]);
  SbVec3f y(matrix[1]);
  SbVec3f x;
  z.normalize();
  if (y.sqrLength() < noLength) {
    y = z.cross(SbVec3f(matrix[0]));
    y.normalize();
    x = y.cross(z);
    x.normalize();
  } else {
    x = y.cross(z);
    x.normalize();
    y = z.cross(x);
    y.normalize();
  }
  return {x[0], x[1], x[2], 0, y[0], y[1], y[2], 0, z[0], z[1], z[2], 0, 0, 0, 0, 1};
}

}  // namespace tessel
