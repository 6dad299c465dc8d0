// SPDX-License-Identifier: BSD-3-Clause
// The readers of PNG and JPEG files, whose decoding others do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>

#include <jpeglib.h>
#include <png.h>
#include <zlib.h>

#include "textures/ImageFile.h"

using namespace tessel::test;

namespace {

ReadImage readPng(const Bytes& file) { return readImage(tessel_ReadPNGImage, file); }
ReadImage readJpeg(const Bytes& file) { return readImage(tessel_ReadJPEGImage, file); }

// PNG files.

using PngSetUp = std::function<void(png_structp, png_infop)>;

constexpr double straight = 1 / 1.7;  // the file gamma that our screen's undoes

/// A PNG file of rows as they stand in it, the top one first; without a gamma of its own if that is 0.
Bytes pngFile(int width, int height, int depth, int colorType, const std::vector<Bytes>& rows,
              double gamma = straight, const PngSetUp& setUp = {}, int interlace = PNG_INTERLACE_NONE) {
  Bytes file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  const auto append = [](png_structp p, png_bytep data, std::size_t count) {
    auto& to = *static_cast<Bytes*>(png_get_io_ptr(p));
    to.insert(to.end(), data, data + count);
  };
  png_set_write_fn(png, &file, append, nullptr);
  png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), depth, colorType,
               interlace, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (gamma > 0) png_set_gAMA(png, info, gamma);
  if (setUp) setUp(png, info);
  png_write_info(png, info);
  const int passes = png_set_interlace_handling(png);
  for (int pass = 0; pass < passes; ++pass)
    for (const Bytes& row : rows) png_write_row(png, row.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return file;
}

constexpr png_color twoColors[] = {{10, 20, 30}, {40, 50, 60}};

TEST(PngReader, EveryKindBecomesBytes) {
  const auto gray = [](int depth, const Bytes& row, const PngSetUp& setUp = {}) {
    return readPng(pngFile(2, 1, depth, PNG_COLOR_TYPE_GRAY, {row}, straight, setUp));
  };
  const auto rgb = [](int depth, int type, const Bytes& row, const PngSetUp& setUp = {}) {
    return readPng(pngFile(2, 1, depth, type, {row}, straight, setUp));
  };
  const auto seeThrough = [](png_color_16 color) {
    return [color](png_structp png, png_infop info) { png_set_tRNS(png, info, nullptr, 0, &color); };
  };
  EXPECT_EQ(gray(1, {0x40}), (ReadImage{2, 1, 1, {0, 255}}));
  EXPECT_EQ(gray(2, {0x60}), (ReadImage{2, 1, 1, {85, 170}}));
  EXPECT_EQ(gray(4, {0x2f}), (ReadImage{2, 1, 1, {34, 255}}));
  EXPECT_EQ(gray(8, {7, 200}), (ReadImage{2, 1, 1, {7, 200}}));
  EXPECT_EQ(gray(16, {7, 99, 200, 255}), (ReadImage{2, 1, 1, {7, 200}}));
  EXPECT_EQ(gray(1, {0x40}, seeThrough({0, 0, 0, 0, 1})), (ReadImage{2, 1, 2, {0, 255, 255, 0}}));
  EXPECT_EQ(gray(8, {7, 200}, seeThrough({0, 0, 0, 0, 7})), (ReadImage{2, 1, 2, {7, 0, 200, 255}}));
  EXPECT_EQ(gray(16, {7, 99, 7, 98}, seeThrough({0, 0, 0, 0, 7 * 256 + 98})),
            (ReadImage{2, 1, 2, {7, 255, 7, 0}}))
      << "all 16 bits are compared";
  EXPECT_EQ(rgb(8, PNG_COLOR_TYPE_GRAY_ALPHA, {1, 2, 3, 4}), (ReadImage{2, 1, 2, {1, 2, 3, 4}}));
  EXPECT_EQ(rgb(8, PNG_COLOR_TYPE_RGB, {1, 2, 3, 4, 5, 6}), (ReadImage{2, 1, 3, {1, 2, 3, 4, 5, 6}}));
  EXPECT_EQ(rgb(8, PNG_COLOR_TYPE_RGB, {1, 2, 3, 4, 5, 6}, seeThrough({0, 4, 5, 6, 0})),
            (ReadImage{2, 1, 4, {1, 2, 3, 255, 4, 5, 6, 0}}));
  EXPECT_EQ(rgb(16, PNG_COLOR_TYPE_RGB, {1, 9, 2, 9, 3, 9, 4, 9, 5, 9, 6, 9}),
            (ReadImage{2, 1, 3, {1, 2, 3, 4, 5, 6}}));
  EXPECT_EQ(rgb(8, PNG_COLOR_TYPE_RGB_ALPHA, {1, 2, 3, 4, 5, 6, 7, 8}),
            (ReadImage{2, 1, 4, {1, 2, 3, 4, 5, 6, 7, 8}}));
  EXPECT_EQ(rgb(16, PNG_COLOR_TYPE_GRAY_ALPHA, {1, 9, 2, 9, 3, 9, 4, 9}), (ReadImage{2, 1, 2, {1, 2, 3, 4}}));
  for (const int depth : {1, 2, 4, 8}) {
    const Bytes row = depth == 8 ? Bytes{0, 1} : Bytes{static_cast<unsigned char>(1 << (8 - 2 * depth))};
    const png_byte alphas[] = {255, 33};
    const auto withAlpha = [&alphas](png_structp png, png_infop info) {
      png_set_PLTE(png, info, twoColors, 2);
      png_set_tRNS(png, info, alphas, 2, nullptr);
    };
    const auto solid = [](png_structp png, png_infop info) { png_set_PLTE(png, info, twoColors, 2); };
    EXPECT_EQ(rgb(depth, PNG_COLOR_TYPE_PALETTE, row, solid), (ReadImage{2, 1, 3, {10, 20, 30, 40, 50, 60}}));
    EXPECT_EQ(rgb(depth, PNG_COLOR_TYPE_PALETTE, row, withAlpha),
              (ReadImage{2, 1, 4, {10, 20, 30, 255, 40, 50, 60, 33}}));
  }
}

TEST(PngReader, TheBottomRowComesFirstAlsoOfInterlacedFiles) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 3}, {9, 17}, {20, 5}}) {
    std::mt19937 random(3);
    std::vector<Bytes> rows(static_cast<std::size_t>(height));
    Bytes expected;
    for (Bytes& row : rows)
      for (int i = 0; i < 3 * width; ++i) row.push_back(static_cast<unsigned char>(random()));
    for (auto row = rows.rbegin(); row != rows.rend(); ++row)
      expected.insert(expected.end(), row->begin(), row->end());
    for (const int interlace : {PNG_INTERLACE_NONE, PNG_INTERLACE_ADAM7})
      EXPECT_EQ(readPng(pngFile(width, height, 8, PNG_COLOR_TYPE_RGB, rows, straight, {}, interlace)),
                (ReadImage{width, height, 3, expected}))
          << width << 'x' << height << " interlaced " << interlace;
  }
}

TEST(PngReader, ValuesGoThroughTheGammaOfFileAndScreen) {
  Bytes all(256), curved(256);
  const auto expectCurve = [&](double fileGamma, double chunk, const PngSetUp& setUp, const char* what) {
    for (std::size_t i = 0; i < 256; ++i) {
      all[i] = static_cast<unsigned char>(i);
      curved[i] = static_cast<unsigned char>(std::lround(255 * std::pow(i / 255.0, 1 / (fileGamma * 1.7))));
    }
    EXPECT_EQ(readPng(pngFile(256, 1, 8, PNG_COLOR_TYPE_GRAY, {all}, chunk, setUp)).bytes, curved) << what;
  };
  expectCurve(1.0, 1.0, {}, "a file of plain light");
  expectCurve(0.45455, 0.45455, {}, "a usual file");
  expectCurve(0.45, 0, {}, "a file that does not tell");
  expectCurve(
      0.45, 0, [](png_structp png, png_infop info) { png_set_sRGB(png, info, 0); }, "sRGB is no gamma");
  // Alpha has none.
  EXPECT_EQ(readPng(pngFile(2, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {{0, 100, 255, 200}}, 1.0)).bytes,
            (Bytes{0, 100, 255, 200}));
}

TEST(PngReader, ABrokenFileIsRefusedAsAWhole) {
  const Bytes file = pngFile(4, 4, 8, PNG_COLOR_TYPE_RGB, std::vector<Bytes>(4, Bytes(12, 77)));
  ASSERT_TRUE(readPng(file));
  for (std::size_t length = 0; length < file.size(); ++length)
    ASSERT_FALSE(readPng(Bytes(file.begin(), file.begin() + static_cast<long>(length)))) << length;
  for (const std::size_t at : {std::size_t{3}, std::size_t{20}, file.size() - 20}) {
    Bytes wrong = file;
    wrong[at] ^= 1;
    EXPECT_FALSE(readPng(wrong)) << "a wrong byte at " << at;
  }
}

TEST(PngReader, SizesAreCheckedBeforeMemoryIsTaken) {
  for (const auto& [width, height] :
       {std::pair{0U, 4U}, {4U, 0U}, {32768U, 1U}, {1U, 32768U}, {30000U, 30000U}}) {
    Bytes file = pngFile(4, 4, 8, PNG_COLOR_TYPE_RGB, std::vector<Bytes>(4, Bytes(12, 77)));
    Bytes header(file.begin() + 12, file.begin() + 16);
    big(header, width);
    big(header, height);
    header.insert(header.end(), file.begin() + 24, file.begin() + 29);
    big(header, static_cast<std::uint32_t>(crc32(0, header.data(), static_cast<uInt>(header.size()))));
    std::copy(header.begin(), header.end(), file.begin() + 12);
    EXPECT_FALSE(readPng(file)) << width << 'x' << height;
  }
}

// JPEG files.

using JpegSetUp = std::function<void(j_compress_ptr)>;

/// A JPEG file of pixels, the top row first.
Bytes jpegFile(unsigned width, unsigned height, int components, J_COLOR_SPACE space, Bytes pixels,
               const JpegSetUp& setUp = {}) {
  jpeg_compress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  unsigned char* data = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&jpeg, &data, &size);
  jpeg.image_width = width;
  jpeg.image_height = height;
  jpeg.input_components = components;
  jpeg.in_color_space = space;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 100, TRUE);
  jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;  // colours as fine as light
  if (setUp) setUp(&jpeg);
  jpeg_start_compress(&jpeg, TRUE);
  for (unsigned y = 0; y < height; ++y) {
    JSAMPROW row = pixels.data() + std::size_t{y} * width * static_cast<unsigned>(components);
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  const Bytes file(data, data + size);
  std::free(data);
  return file;
}

/// The upper half of one colour, the lower of another, 16 by 16 pixels.
Bytes halves(const Bytes& upper, const Bytes& lower) {
  Bytes pixels;
  for (int i = 0; i < 256; ++i)
    pixels.insert(pixels.end(), i < 128 ? upper.begin() : lower.begin(), i < 128 ? upper.end() : lower.end());
  return pixels;
}

/// Whether it is those halves, the lower one first, as far as the format keeps colours.
testing::AssertionResult isHalves(const ReadImage& image, const Bytes& upper, const Bytes& lower) {
  if (image.width != 16 || image.height != 16 || image.components != static_cast<int>(upper.size()))
    return testing::AssertionFailure() << image.width << 'x' << image.height << 'x' << image.components;
  for (std::size_t i = 0; i < image.bytes.size(); ++i) {
    const int expected = (i < image.bytes.size() / 2 ? lower : upper)[i % upper.size()];
    if (std::abs(image.bytes[i] - expected) > 2)
      return testing::AssertionFailure()
             << "byte " << i << " is " << +image.bytes[i] << " and not " << expected;
  }
  return testing::AssertionSuccess();
}

void noAdobe(j_compress_ptr jpeg) { jpeg->write_Adobe_marker = FALSE; }
void asYcck(j_compress_ptr jpeg) { jpeg_set_colorspace(jpeg, JCS_YCCK); }

TEST(JpegReader, GreyIsOneComponentAllElseIsRgb) {
  EXPECT_TRUE(isHalves(readJpeg(jpegFile(16, 16, 1, JCS_GRAYSCALE, halves({30}, {200}))), {30}, {200}));
  const Bytes upper = {200, 30, 40}, lower = {10, 100, 220};
  const Bytes rgb = halves(upper, lower);
  EXPECT_TRUE(isHalves(readJpeg(jpegFile(16, 16, 3, JCS_RGB, rgb)), upper, lower));
  EXPECT_TRUE(isHalves(readJpeg(jpegFile(16, 16, 3, JCS_RGB, rgb, jpeg_simple_progression)), upper, lower));
  // Inks of 60 %, 20 % and none, with black of 40 % and none; with Adobe's marker the file holds what they let through.
  const Bytes seenUpper = {61, 122, 153}, seenLower = {102, 204, 255};
  const Bytes inks = halves({153, 51, 0, 102}, {153, 51, 0, 0}),
              light = halves({102, 204, 255, 153}, {102, 204, 255, 255});
  EXPECT_TRUE(isHalves(readJpeg(jpegFile(16, 16, 4, JCS_CMYK, inks, noAdobe)), seenUpper, seenLower));
  EXPECT_TRUE(isHalves(readJpeg(jpegFile(16, 16, 4, JCS_CMYK, light)), seenUpper, seenLower));
  EXPECT_TRUE(isHalves(readJpeg(jpegFile(16, 16, 4, JCS_CMYK, light, asYcck)), seenUpper, seenLower));
  EXPECT_FALSE(readJpeg(jpegFile(16, 16, 2, JCS_UNKNOWN, halves({1, 2}, {3, 4})))) << "two that nobody knows";
}

TEST(JpegReader, ATruncatedFileIsFilledOrRefused) {
  const PlainTexts heard;
  const Bytes pixels = halves({200, 30, 40}, {10, 100, 220});
  for (const JpegSetUp& setUp : {JpegSetUp{}, JpegSetUp{jpeg_simple_progression}}) {
    const Bytes file = jpegFile(16, 16, 3, JCS_RGB, pixels, setUp);
    const ReadImage whole = readJpeg(file);
    bool filled = false;
    for (std::size_t length = 0; length < file.size(); ++length) {
      const ReadImage image = readJpeg(Bytes(file.begin(), file.begin() + static_cast<long>(length)));
      filled = static_cast<bool>(image);
      ASSERT_TRUE(!filled || image.bytes.size() == whole.bytes.size()) << length;
    }
    EXPECT_TRUE(filled);
    EXPECT_EQ(readJpeg(Bytes(file.begin(), file.end() - 2)), whole) << "only the end marker is missing";
  }
  EXPECT_THAT(heard.text, testing::HasSubstr("Premature end of JPEG file\n"));
}

TEST(JpegReader, SizesAndScansAreLimited) {
  const PlainTexts heard;
  Bytes file = jpegFile(16, 16, 3, JCS_RGB, halves({200, 30, 40}, {10, 100, 220}), jpeg_simple_progression);
  const auto marker = [&file](unsigned char which, bool last) {
    const Bytes text = {0xff, which};
    return last ? std::find_end(file.begin(), file.end(), text.begin(), text.end())
                : std::search(file.begin(), file.end(), text.begin(), text.end());
  };
  const Bytes scan(marker(0xda, true), file.end() - 2);
  Bytes scans(file.begin(), file.end() - 2);
  for (int i = 0; i < 600; ++i) scans.insert(scans.end(), scan.begin(), scan.end());
  EXPECT_FALSE(readJpeg(scans)) << "hundreds of scans";

  const auto sizes = marker(0xc2, false) + 5;  // height and width
  for (const auto& [high, low] : {std::pair{0, 0}, {0x80, 0}}) {
    sizes[0] = static_cast<unsigned char>(high);
    sizes[1] = static_cast<unsigned char>(low);
    EXPECT_FALSE(readJpeg(file)) << high;
  }
  std::fill_n(sizes, 4, static_cast<unsigned char>(0x7f));
  EXPECT_FALSE(readJpeg(file)) << "a thousand million pixels";
}

}  // namespace
