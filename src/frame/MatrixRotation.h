// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbMatrix.h>

namespace tessel {

/// The rotation in a matrix, as a matrix: the third row gives the direction of z, the second row the side on
/// which y lies. Scale, shear and translation are taken out.
SbMatrix rotationPart(const SbMatrix& matrix);

}  // namespace tessel
