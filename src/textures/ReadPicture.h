// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbString.h>

#include "textures/DecodedImage.h"

namespace tessel {

/// Decodes a local file of any format that there is a reader for. False after a read error was posted.
bool readPicture(const SbString& fileName, DecodedImage& image);

}  // namespace tessel
