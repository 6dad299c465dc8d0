// SPDX-License-Identifier: BSD-3-Clause
#include "textures/GifImage.h"

#include <cstring>

#include <tessel/toolkit/PlainReport.h>

#include "textures/DecodedImage.h"
#include "textures/GifLzw.h"

namespace tessel {
namespace {

/// Why a file is refused; the numbers are what `tessel_readGIF` gives.
enum GifError {
  none = 0,
  noSignature = -1,
  notGif = -2,
  unknownVersion = -3,
  noScreen = -4,
  shortColors = -5,
  shortFile = -6,
  noImage = -7,
  shortExtension = -8,
  strayByte = -9,
  shortDescriptor = -10,
  shortLocalColors = -11
};

/// One pass over a file, up to the end of its first image.
class GifFile {
public:
  GifFile(std::FILE* from, GifColor* to) : file(from), colormap(to) { setColors(nullptr, 0); }

  void read() {
    if (!readSignature() || !readScreen()) return;
    while (!indices && readBlock()) {
    }
  }

  GifIndices indices;
  int width = 0, height = 0;
  int numColors = 0;
  int transparentIndex = -1;
  int error = none;

private:
  bool take(unsigned char* to, std::size_t count, GifError otherwise) {
    return std::fread(to, 1, count, file) == count || fail(otherwise);
  }
  bool fail(GifError why) {
    error = why;
    return false;
  }
  static int word(const unsigned char* at) { return at[0] | at[1] << 8; }

  bool readSignature();
  bool readScreen();
  bool readColors(unsigned flags, GifError otherwise);
  void setColors(const unsigned char* rgb, int count);
  bool readBlock();
  bool readExtension();
  bool readImage();
  bool decode(int leastCodeSize, bool interlaced);

  std::FILE* file;
  GifColor* colormap;
};

bool GifFile::readSignature() {
  unsigned char text[6];
  if (!take(text, sizeof text, noSignature)) return false;
  if (std::memcmp(text, "GIF", 3) != 0) return fail(notGif);
  if (std::memcmp(text + 3, "87a", 3) != 0 && std::memcmp(text + 3, "89a", 3) != 0)
    return fail(unknownVersion);
  return true;
}

constexpr unsigned hasColors = 0x80;
constexpr unsigned isInterlaced = 0x40;
int colorCount(unsigned flags) { return 2 << (flags & 7); }

/// The size of the screen, the background and the shape of pixels say nothing of the image.
bool GifFile::readScreen() {
  unsigned char bytes[7];
  if (!take(bytes, sizeof bytes, noScreen)) return false;
  const unsigned flags = bytes[4];
  numColors = colorCount(flags);
  return !(flags & hasColors) || readColors(flags, shortColors);
}

bool GifFile::readColors(unsigned flags, GifError otherwise) {
  unsigned char rgb[3 * gifColors];
  numColors = colorCount(flags);
  if (!take(rgb, 3 * static_cast<std::size_t>(numColors), otherwise)) return false;
  setColors(rgb, numColors);
  return true;
}

void GifFile::setColors(const unsigned char* rgb, int count) {
  constexpr std::uint8_t allThree = 7;
  const auto wide = [](unsigned char b) { return static_cast<std::uint16_t>(b * 0x101); };
  for (int i = 0; i < gifColors; ++i) {
    colormap[i] = {static_cast<std::uint32_t>(i), 0, 0, 0, allThree};
    if (i >= count) continue;
    colormap[i].red = wide(rgb[3 * i]);
    colormap[i].green = wide(rgb[3 * i + 1]);
    colormap[i].blue = wide(rgb[3 * i + 2]);
  }
}

/// Reads what comes next. False at the end of the file's story, good or bad.
bool GifFile::readBlock() {
  switch (std::getc(file)) {
    case ',':
      return readImage();
    case '!':
      return readExtension();
    case ';':
      return fail(noImage);
    case EOF:
      return fail(shortFile);
    default:
      error = strayByte;  // and goes on: there may be a block behind
      return true;
  }
}

bool GifFile::readExtension() {
  constexpr int graphicControl = 0xf9;
  const int label = std::getc(file);
  if (label == EOF) return fail(shortExtension);
  GifBlocks blocks(file);
  unsigned char block[GifBlocks::longest];
  // Of all that extensions tell, only the transparent index matters to a still picture.
  if (label == graphicControl && blocks.next(block) >= 4 && (block[0] & 1)) transparentIndex = block[3];
  blocks.skip();
  return true;
}

bool GifFile::readImage() {
  unsigned char bytes[9];
  if (!take(bytes, sizeof bytes, shortDescriptor)) return false;
  width = word(bytes + 4);
  height = word(bytes + 6);
  const unsigned flags = bytes[8];
  if ((flags & hasColors) && !readColors(flags, shortLocalColors)) return false;
  const int leastCodeSize = std::getc(file);
  return leastCodeSize == EOF ? fail(shortFile) : decode(leastCodeSize, flags & isInterlaced);
}

bool GifFile::decode(int leastCodeSize, bool interlaced) {
  const auto rowBytes = static_cast<std::size_t>(width), rows = static_cast<std::size_t>(height);
  if (rowBytes == 0 || rows == 0) return false;
  if (isReadableSize(rowBytes, rows)) indices.reset(static_cast<unsigned char*>(std::calloc(rowBytes, rows)));
  if (!indices) {
    postPlain("Cannot allocate space for image data\n");
    return false;
  }
  GifLzw lzw(file, leastCodeSize);
  if (!interlaced) {
    lzw.decode(indices.get(), rowBytes * rows);
    return true;
  }
  static constexpr struct { std::size_t first, step; } passes[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
  for (const auto& [first, step] : passes)
    for (std::size_t y = first; y < rows; y += step)
      if (lzw.decode(indices.get() + y * rowBytes, rowBytes) < rowBytes) return true;
  return true;
}

}  // namespace
}  // namespace tessel

unsigned char* tessel_readGIF(std::FILE* file, int* width, int* height, GifColor* colormap, int* numColors,
                              int* transparentIndex, int* error) {
  tessel::GifFile gif(file, colormap);
  gif.read();
  *width = gif.width;
  *height = gif.height;
  *numColors = gif.numColors;
  *transparentIndex = gif.transparentIndex;
  *error = gif.error;
  return gif.indices.release();
}
