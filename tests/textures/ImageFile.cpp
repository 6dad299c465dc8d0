// SPDX-License-Identifier: BSD-3-Clause
#include "textures/ImageFile.h"

#include <Inventor/SoInput.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

namespace tessel::test {
namespace {

ReadImage take(ImageReader reader, const SoInput& in) {
  ReadImage image;
  unsigned char* bytes = nullptr;
  if (!reader(in, image.width, image.height, image.components, bytes)) return {};
  const std::unique_ptr<unsigned char[]> owned(bytes);
  image.bytes.assign(bytes, bytes + image.pixels() * static_cast<std::size_t>(image.components));
  return image;
}

}  // namespace

ReadImage readImage(ImageReader reader, const Bytes& file) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> open(std::tmpfile(), &std::fclose);
  std::fwrite(file.data(), 1, file.size(), open.get());
  std::fflush(open.get());
  SoInput in;
  in.setFilePointer(open.get());
  return take(reader, in);
}

ReadImage readImage(const std::filesystem::path& file) {
  SoInput in;
  if (!in.openFile(file.c_str())) return {};
  for (const ImageReader reader : imageReaders)
    if (ReadImage image = take(reader, in)) return image;
  return {};
}

Bytes toRgba(const ReadImage& image) {
  // Which component is red, green, blue and alpha; none is 255.
  static constexpr std::array<int, 4> sources[] = {{0, 0, 0, -1}, {0, 0, 0, 1}, {0, 1, 2, -1}, {0, 1, 2, 3}};
  Bytes rgba;
  rgba.reserve(4 * image.pixels());
  for (int y = image.height; y-- > 0;)
    for (int x = 0; x < image.width; ++x)
      for (const int source : sources[image.components - 1])
        rgba.push_back(
            source < 0
                ? 255
                : image.bytes[static_cast<std::size_t>((y * image.width + x) * image.components + source)]);
  return rgba;
}

}  // namespace tessel::test
