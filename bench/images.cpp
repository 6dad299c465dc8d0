// SPDX-License-Identifier: BSD-3-Clause
// How fast are image files decoded, beside the libraries that others use, or one pass over the memory?
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gif_lib.h>
#include <jpeglib.h>
#include <png.h>

#include <Inventor/SoInput.h>

#include "support/Bench.h"
#include "textures/ImageReaders.h"
#include "textures/RgbImage.h"

using namespace bench;

namespace {

using Bytes = std::unique_ptr<unsigned char[]>;
using OpenFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

OpenFile openFile(const std::string& path, const char* mode = "rb") {
  return {std::fopen(path.c_str(), mode), &std::fclose};
}

// The pictures: a smooth one with some grain, as photographs have, and a drawing of a few flat colours.

constexpr int side = 1024;

struct Picture {
  std::vector<unsigned char> rgb = std::vector<unsigned char>(3 * side * side);  // the bottom row first
};

Picture photo() {
  Picture picture;
  unsigned random = 1;
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      for (int c = 0; c < 3; ++c) {
        random = random * 1664525 + 1013904223;
        const int smooth = (x * (c + 1) + y * (3 - c)) * 255 / (4 * side);
        picture.rgb[static_cast<std::size_t>(3 * (y * side + x) + c)] =
            static_cast<unsigned char>(std::min(255, smooth + static_cast<int>(random >> 29)));
      }
  return picture;
}

Picture drawing() {
  Picture picture;
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x) {
      const int tile = (x / 96 + y / 64) % 7 + ((x - y) % 128 == 0 ? 1 : 0);
      for (int c = 0; c < 3; ++c)
        picture.rgb[static_cast<std::size_t>(3 * (y * side + x) + c)] =
            static_cast<unsigned char>(30 * tile + 20 * c);
    }
  return picture;
}

using MakePicture = Picture (*)();

// Files of them, written by the libraries.

/// A file that is there for as long as the object.
class ImageFile {
public:
  ImageFile(const Picture& picture, void (*write)(const Picture&, const std::string&)) : file("") {
    write(picture, file.path());
  }
  const std::string& path() const { return file.path(); }

private:
  TextFile file;
};

void writeGif(const Picture& picture, const std::string& path) {
  int error = 0;
  GifFileType* const gif = EGifOpenFileName(path.c_str(), false, &error);
  std::vector<GifColorType> colors(256);
  for (int i = 0; i < 256; ++i)
    colors[static_cast<std::size_t>(i)] = {static_cast<GifByteType>((i >> 5) * 36),
                                           static_cast<GifByteType>((i >> 2 & 7) * 36),
                                           static_cast<GifByteType>((i & 3) * 85)};
  ColorMapObject* const map = GifMakeMapObject(256, colors.data());
  EGifPutScreenDesc(gif, side, side, 8, 0, map);
  EGifPutImageDesc(gif, 0, 0, side, side, false, nullptr);
  for (int y = side; y-- > 0;) {
    std::vector<GifPixelType> row(side);
    for (std::size_t x = 0; x < side; ++x) {
      const unsigned char* p = &picture.rgb[3 * (static_cast<std::size_t>(y) * side + x)];
      row[x] = static_cast<GifPixelType>((p[0] & 0xe0) | (p[1] >> 5) << 2 | p[2] >> 6);
    }
    EGifPutLine(gif, row.data(), side);
  }
  GifFreeMapObject(map);
  EGifCloseFile(gif, &error);
}

template <unsigned Type> void writeRgb(const Picture& picture, const std::string& path) {
  RgbImage* const image = iopen(path.c_str(), "w", Type, 3, side, side, 3);
  std::vector<unsigned short> row(side);
  for (unsigned z = 0; z < 3; ++z)
    for (unsigned y = 0; y < side; ++y) {
      for (std::size_t x = 0; x < side; ++x) row[x] = picture.rgb[3 * (y * side + x) + z];
      putrow(image, row.data(), y, z);
    }
  iclose(image);
}

void writePng(const Picture& picture, const std::string& path) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = png.height = side;
  png.format = PNG_FORMAT_RGB;
  png_image_write_to_file(&png, path.c_str(), 0, picture.rgb.data(), -3 * side, nullptr);
}

void writeJpeg(const Picture& picture, const std::string& path) {
  jpeg_compress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  const OpenFile file = openFile(path, "wb");
  jpeg_stdio_dest(&jpeg, file.get());
  jpeg.image_width = jpeg.image_height = side;
  jpeg.input_components = 3;
  jpeg.in_color_space = JCS_RGB;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 85, TRUE);
  jpeg_start_compress(&jpeg, TRUE);
  for (int y = side; y-- > 0;) {
    JSAMPROW row = const_cast<JSAMPROW>(&picture.rgb[static_cast<std::size_t>(3 * y * side)]);
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
}

// The rivals.

/// The whole first image as indices; no colours are looked up.
Bytes gifIndices(const std::string& path) {
  int error = 0;
  GifFileType* const gif = DGifOpenFileName(path.c_str(), &error);
  DGifSlurp(gif);
  Bytes indices(new unsigned char[side * side]);
  std::memcpy(indices.get(), gif->SavedImages[0].RasterBits, side * side);
  DGifCloseFile(gif, &error);
  return indices;
}

/// Reads the file, and moves as many bytes as the image has from their channels to their pixels, row by row.
Bytes onePass(const std::string& path, const std::vector<unsigned char>& rows) {
  const OpenFile file = openFile(path);
  std::vector<unsigned char> contents(1 << 16);
  while (std::fread(contents.data(), 1, contents.size(), file.get()) > 0)
    benchmark::DoNotOptimize(contents.data());
  Bytes pixels(new unsigned char[3 * side * side]);
  unsigned char* to = pixels.get();
  for (const unsigned char* row = rows.data(); row != rows.data() + rows.size(); row += 3 * side)
    for (std::size_t x = 0; x < side; ++x, to += 3)
      for (std::size_t z = 0; z < 3; ++z) to[z] = row[z * side + x];
  return pixels;
}

Bytes barePng(const std::string& path) {
  const OpenFile file = openFile(path);
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file.get());
  png_read_info(png, info);
  png_set_gamma(png, 1.7, 0.45);
  png_read_update_info(png, info);
  const std::size_t rowBytes = png_get_rowbytes(png, info);
  Bytes pixels(new unsigned char[rowBytes * side]);
  for (std::size_t y = side; y-- > 0;) png_read_row(png, pixels.get() + y * rowBytes, nullptr);
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  return pixels;
}

Bytes bareJpeg(const std::string& path) {
  const OpenFile file = openFile(path);
  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&jpeg);
  jpeg_stdio_src(&jpeg, file.get());
  jpeg_read_header(&jpeg, TRUE);
  jpeg_start_decompress(&jpeg);
  Bytes pixels(new unsigned char[3 * side * side]);
  for (std::size_t y = side; y-- > 0;) {
    JSAMPROW row = pixels.get() + 3 * y * side;
    jpeg_read_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_decompress(&jpeg);
  jpeg_destroy_decompress(&jpeg);
  return pixels;
}

Bytes ours(tessel::ImageReader reader, const std::string& path) {
  const OpenFile file = openFile(path);
  SoInput in;
  in.setFilePointer(file.get());
  int width = 0, height = 0, components = 0;
  unsigned char* bytes = nullptr;
  if (!reader(in, width, height, components, bytes) || width != side || height != side || components != 3)
    std::abort();
  return Bytes(bytes);
}

// The duels.

struct Format {
  const char* name;
  void (*write)(const Picture&, const std::string&);
  tessel::ImageReader reader;
  Bytes (*rival)(const std::string& path);  // null for one pass over the memory
  double limit;
};
constexpr Format formats[] = {{"gif", writeGif, tessel_ReadGIFImage, gifIndices, 2},
                              {"rgb/verbatim", writeRgb<0x0001>, tessel_ReadRgbImage, nullptr, 2},
                              {"rgb/packed", writeRgb<0x0101>, tessel_ReadRgbImage, nullptr, 2},
                              {"png", writePng, tessel_ReadPNGImage, barePng, 1.1},
                              {"jpeg", writeJpeg, tessel_ReadJPEGImage, bareJpeg, 1.1}};

void decode(benchmark::State& state, const Format& format, MakePicture make) {
  start();
  const Picture picture = make();
  const ImageFile file(picture, format.write);
  // The channels of a row lie side by side.
  std::vector<unsigned char> rows(picture.rgb.size());
  for (std::size_t y = 0; y < side; ++y)
    for (std::size_t i = 0; i < 3 * side; ++i)
      rows[3 * side * y + i % 3 * side + i / 3] = picture.rgb[3 * side * y + i];
  const auto rival = [&] { return format.rival ? format.rival(file.path()) : onePass(file.path(), rows); };
  if (format.reader != tessel_ReadGIFImage &&
      std::memcmp(rival().get(), ours(format.reader, file.path()).get(), picture.rgb.size()) != 0) {
    state.SkipWithError("the reader gives another image");
    return;
  }
  Duel duel(state, format.limit);
  for (auto _ : state) {
    duel.rival(rival);
    duel.library([&] { return ours(format.reader, file.path()); });
  }
}

const bool registered = [] {
  for (const Format& format : formats)
    for (const auto& [name, make] :
         {std::pair<const char*, MakePicture>{"/photo", photo}, {"/drawing", drawing}})
      benchmark::RegisterBenchmark((std::string(format.name) + name).c_str(), decode, format, make)
          ->UseManualTime()
          ->Unit(benchmark::kMillisecond)
          ->Iterations(31);
  return true;
}();

}  // namespace
