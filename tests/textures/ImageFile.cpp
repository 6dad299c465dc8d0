// SPDX-License-Identifier: BSD-3-Clause
#include "textures/ImageFile.h"

#include <sys/mman.h>

#include <Inventor/SoInput.h>

#include <algorithm>
#include <array>

#include <tessel/toolkit/PlainReport.h>

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

OpenFile fileOf(const Bytes& bytes) {
  OpenFile file(fdopen(memfd_create("image", MFD_CLOEXEC), "w+b"), &std::fclose);
  std::fwrite(bytes.data(), 1, bytes.size(), file.get());
  std::fflush(file.get());
  return file;
}

ReadImage readImage(ImageReader reader, const Bytes& bytes) {
  const OpenFile file = fileOf(bytes);
  SoInput in;
  in.setFilePointer(file.get());
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

PlainTexts::PlainTexts() {
  setPlainReportHandler(
      [](std::string_view part, void* self) { static_cast<PlainTexts*>(self)->text += part; }, this);
}

PlainTexts::~PlainTexts() { setPlainReportHandler(nullptr, nullptr); }

}  // namespace tessel::test
