// SPDX-License-Identifier: BSD-3-Clause
#include "textures/ImageReaders.h"

#include <Inventor/SoInput.h>

namespace tessel {

int readImageFile(DecodeFile decode, const SoInput& in, int& width, int& height, int& components,
                  unsigned char*& bytes) {
  std::FILE* const file = in.getCurFile();
  DecodedImage image;
  if (!file || !decode(file, image)) return 0;
  width = image.width;
  height = image.height;
  components = image.components;
  bytes = image.bytes.release();
  return 1;
}

}  // namespace tessel
