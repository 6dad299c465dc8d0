// SPDX-License-Identifier: BSD-3-Clause
#include "textures/ReadPicture.h"

#include <cstdio>
#include <string>

#include <Inventor/SoInput.h>

#include "textures/ImageReaders.h"
#include "toolkit/ReadReport.h"

namespace tessel {

bool readPicture(const SbString& fileName, DecodedImage& image) {
  SoInput in;
  if (!in.openFile(fileName.getString(), TRUE)) {
    postReadError(std::string("Could not open texture file ") + fileName.getString() + ".");
    return false;
  }
  for (const ImageReader read : imageReaders) {
    if (std::FILE* file = in.getCurFile()) std::rewind(file);
    DecodedImage result;
    unsigned char* bytes = nullptr;
    if (!read(in, result.width, result.height, result.components, bytes)) continue;
    result.bytes.reset(bytes);
    image = std::move(result);
    return true;
  }
  const char* name = in.getCurFileName();
  postReadError(std::string("Could not read texture image ") + (name ? name : fileName.getString()) + ".");
  return false;
}

}  // namespace tessel
