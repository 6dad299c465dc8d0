// SPDX-License-Identifier: BSD-3-Clause
#include "textures/RgbImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "support/Paths.h"
#include "textures/ImageFile.h"
#include "textures/RgbRunLength.h"

using namespace tessel::test;

namespace {

using Row = std::vector<unsigned short>;

constexpr unsigned verbatim = 0x0000, runLength = 0x0100;

// What the library complained of; a handler is a plain function.
std::string complaints;
struct Complaints {
  Complaints() {
    complaints.clear();
    i_seterror([](const char* text) { complaints += text; });
  }
  ~Complaints() { i_seterror(nullptr); }
};

/// A file laid out by hand: header, and what follows it.
Bytes rgbFile(unsigned type, unsigned dim, unsigned x, unsigned y, unsigned z, const Bytes& data,
              bool swapped = false) {
  Bytes file;
  const auto put = [&](auto value) { swapped ? little(file, value) : big(file, value); };
  for (const unsigned number : {474U, type, dim, x, y, z}) put(static_cast<std::uint16_t>(number));
  for (const unsigned number : {0U, 255U, 0U}) put(number);
  file.resize(512);
  file.insert(file.end(), data.begin(), data.end());
  return file;
}

/// The data of a run-length file: tables, and rows that lie one behind the other.
Bytes packedRows(const std::vector<Bytes>& rows) {
  Bytes data;
  auto offset = static_cast<std::uint32_t>(512 + 8 * rows.size());
  for (const Bytes& row : rows) {
    big(data, offset);
    offset += static_cast<std::uint32_t>(row.size());
  }
  for (const Bytes& row : rows) big(data, static_cast<std::uint32_t>(row.size()));
  for (const Bytes& row : rows) data.insert(data.end(), row.begin(), row.end());
  return data;
}

Bytes packedRow(const Row& values) {
  Bytes packed(tessel::longestPacked<tessel::ByteItems>(values.size()));
  packed.resize(tessel::img_rle_compact<tessel::ByteItems>(values.data(), values.size(), packed.data()));
  return packed;
}

ReadImage readRgb(const Bytes& file) { return readImage(tessel_ReadRgbImage, file); }

TEST(RgbLibrary, RowsThatAreWrittenAreRead) {
  const Complaints heard;
  std::mt19937 random(5);
  const auto path = scratchDir() / "image.rgb";
  const unsigned sizes[][3] = {{7, 1, 1}, {1, 5, 1}, {300, 4, 3}, {5, 3, 6}, {30'000, 2, 4}};
  for (const auto& [x, y, z] : sizes)
    for (const unsigned type : {verbatim | 1, verbatim | 2, runLength | 1, runLength | 2}) {
      SCOPED_TRACE(testing::Message() << std::hex << type << std::dec << ' ' << x << ' ' << y << ' ' << z);
      // Runs and literals of all lengths, up to what a row's 16-bit length bears.
      std::vector<Row> rows(std::size_t{y} * z, Row(x));
      for (Row& row : rows)
        for (std::size_t i = 0; i < x;) {
          const auto value = static_cast<unsigned short>(random() & ((type & 0xff) == 1 ? 0xff : 0xffff));
          for (auto n = x > 10'000 ? 300 : random() % 6 == 0 ? random() % 290 : 1; n-- > 0 && i < x;)
            row[i++] = value;
        }
      RgbImage* image = iopen(path.c_str(), "w", type, 3, x, y, z);
      ASSERT_TRUE(image);
      EXPECT_EQ(image->dim, z != 1 ? 3 : y != 1 ? 2 : 1);
      isetname(image, "a picture");
      isetcolormap(image, 3);
      std::size_t order[] = {rows.size() - 1, 0};  // the last row first, and the first one twice
      for (const std::size_t i : order)
        ASSERT_EQ(putrow(image, rows[i].data(), static_cast<unsigned>(i % y), static_cast<unsigned>(i / y)),
                  x);
      const std::uint32_t once =
          rows.size() > 1 && image->isRunLength() ? image->rowsize[0] : image->lostBytes;
      for (std::size_t i = 0; i + 1 < rows.size(); ++i)
        ASSERT_EQ(putrow(image, rows[i].data(), static_cast<unsigned>(i % y), static_cast<unsigned>(i / y)),
                  x);
      EXPECT_EQ(image->lostBytes, image->isRunLength() ? once : 0);
      ASSERT_EQ(iclose(image), 0);

      image = iopen(path.c_str(), "r", 0, 0, 0, 0, 0);
      ASSERT_TRUE(image);
      EXPECT_STREQ(image->name, "a picture");
      EXPECT_EQ(image->colormap, 3U);
      unsigned short least = 0xffff, most = 0;
      for (std::size_t i = rows.size(); i-- > 0;) {
        Row got(x);
        ASSERT_EQ(getrow(image, got.data(), static_cast<unsigned>(i % y), static_cast<unsigned>(i / y)), x);
        EXPECT_EQ(got, rows[i]) << "row " << i;
        least = std::min(least, *std::min_element(got.begin(), got.end()));
        most = std::max(most, *std::max_element(got.begin(), got.end()));
      }
      EXPECT_EQ(image->min, least);
      EXPECT_EQ(image->max, most);
      EXPECT_EQ(iclose(image), 0);
    }
  EXPECT_EQ(complaints, "");
}

TEST(RgbLibrary, PacketsHoldAtMost126Values) {
  const Row equal(300, 8);
  EXPECT_THAT(packedRow(equal), testing::ElementsAre(126, 8, 126, 8, 48, 8, 0));
  Row different(130);
  std::iota(different.begin(), different.end(), static_cast<unsigned short>(0));
  Bytes expected = {0x80 | 126};
  for (unsigned char i = 0; i < 126; ++i) expected.push_back(i);
  for (const unsigned char b : {0x80 | 2, 126, 127, 1, 128, 1, 129, 0}) expected.push_back(b);
  EXPECT_EQ(packedRow(different), expected);
  EXPECT_THAT(packedRow({1, 1, 2, 2, 2, 3}), testing::ElementsAre(0x82, 1, 1, 3, 2, 1, 3, 0));
  EXPECT_THAT(packedRow({}), testing::ElementsAre(0));
}

TEST(RgbLibrary, ComplainsInItsWordsAndEndsTheProcessWhereNobodyListens) {
  const auto open = [](const Bytes& bytes) {
    const OpenFile file = fileOf(bytes);
    RgbImage* const image = fiopen(dup(fileno(file.get())), "r", 0, 0, 0, 0, 0);
    EXPECT_EQ(image, nullptr);
  };
  const Bytes good = rgbFile(runLength | 1, 3, 2, 2, 3, Bytes(48));
  const struct {
    Bytes file;
    const char* words;
  } refused[] = {
      {Bytes(good.begin(), good.begin() + 151), "iopen: error on read of image header\n"},
      {Bytes(512, 'x'), "iopen: bad magic in image file 7878\n"},
      {Bytes(good.begin(), good.begin() + 512 + 23), "iopen: error on read of rowstart\n"},
      {Bytes(good.begin(), good.begin() + 512 + 47), "iopen: error on read of rowsize\n"},
      {rgbFile(runLength | 1, 3, 9, 65535, 65535, {}), "iopen: error on read of rowstart\n"},
  };
  for (const auto& [file, words] : refused) {
    const Complaints heard;
    open(file);
    EXPECT_EQ(complaints, words);
  }
  const Complaints heard;
  EXPECT_EQ(iopen("/nowhere", "r+", 0, 0, 0, 0, 0), nullptr);
  EXPECT_EQ(complaints, "iopen: read/write mode not supported\n");
  complaints.clear();
  EXPECT_EQ(iopen("/nowhere/image.rgb", "w", 1, 3, 2, 2, 3), nullptr);
  EXPECT_EQ(complaints, "iopen: can't open output file /nowhere/image.rgb\n");

  i_seterror(nullptr);
  EXPECT_EXIT(open(Bytes(512, 'x')), testing::ExitedWithCode(1), "bad magic in image file 7878");
}

TEST(RgbLibrary, RowsThatAreNotThereAreReportedAndTheLastOneIsReadOn) {
  const Complaints heard;
  const OpenFile file = fileOf(rgbFile(verbatim | 1, 2, 2, 3, 1, {1, 2, 3, 4, 5, 6}));
  RgbImage* const image = fiopen(dup(fileno(file.get())), "r", 0, 0, 0, 0, 0);
  ASSERT_TRUE(image);
  Row row(2);
  EXPECT_EQ(getrow(image, row.data(), 0, 7), 2) << "with two dimensions there is one channel";
  EXPECT_EQ(complaints, "");
  EXPECT_EQ(getrow(image, row.data(), 3, 0), 2);
  EXPECT_EQ(complaints, "img_seek: row number out of range\n");
  EXPECT_EQ(row, (Row{3, 4}));
  EXPECT_EQ(putrow(image, row.data(), 0, 0), -1) << "it is open for reading";
  EXPECT_EQ(iclose(image), 0);

  const struct {
    unsigned type, dim;
    const char* words;
  } weird[] = {{verbatim | 3, 3, "getrow: weird bpp\n"},
               {0x0201, 3, "img_seek: weird image type\ngetrow: weird image type\n"},
               {verbatim | 1, 9, "img_seek: weird dim\n"}};
  for (const auto& [type, dim, words] : weird) {
    complaints.clear();
    const OpenFile odd = fileOf(rgbFile(type, dim, 1, 1, 1, {5}));
    RgbImage* const opened = fiopen(dup(fileno(odd.get())), "r", 0, 0, 0, 0, 0);
    ASSERT_TRUE(opened);
    getrow(opened, row.data(), 0, 0);
    EXPECT_EQ(complaints, words);
    iclose(opened);
  }
}

TEST(RgbLibrary, WritingWhereNothingCanBeWrittenIsReported) {
  const Complaints heard;
  EXPECT_EQ(iopen("/dev/full", "w", runLength | 1, 3, 4, 2, 1), nullptr);
  EXPECT_EQ(complaints, "iopen: error on write of image header\n");

  const auto path = scratchDir() / "image.rgb";
  RgbImage* image = iopen(path.c_str(), "w", verbatim | 1, 3, 4, 2, 1);
  ASSERT_TRUE(image);
  const int full = open("/dev/full", O_WRONLY);
  dup2(full, image->file);  // the disk runs full
  close(full);
  const Row row(4);
  EXPECT_EQ(putrow(image, row.data(), 0, 0), 4);
  EXPECT_EQ(iflush(image), -1);
  EXPECT_EQ(putrow(image, row.data(), 2, 0), -1);
  complaints.clear();
  EXPECT_EQ(iclose(image), -1);
  EXPECT_THAT(complaints, testing::HasSubstr("iclose: error on write of image header\n"));

  complaints.clear();
  image = iopen(path.c_str(), "w", verbatim | 3, 3, 4, 2, 1);
  ASSERT_TRUE(image);
  EXPECT_EQ(putrow(image, row.data(), 0, 0), -1);
  EXPECT_EQ(complaints, "putrow: weird bpp\n");
  iclose(image);
}

TEST(RgbReader, ChannelsBecomePixelsFromTheBottom) {
  const ReadImage image =
      readRgb(rgbFile(verbatim | 1, 3, 2, 2, 3, {1, 2, 3, 4, 11, 12, 13, 14, 21, 22, 23, 24}));
  EXPECT_EQ(image, (ReadImage{2, 2, 3, {1, 11, 21, 2, 12, 22, 3, 13, 23, 4, 14, 24}}));
}

TEST(RgbReader, FilesOfTheOtherByteOrderReadTheSame) {
  const Bytes big16 = {1, 2, 3, 4}, little16 = {2, 1, 4, 3};
  const ReadImage low{2, 1, 1, {2, 4}};  // of two bytes the low one counts
  EXPECT_EQ(readRgb(rgbFile(verbatim | 2, 1, 2, 1, 1, big16)), low);
  EXPECT_EQ(readRgb(rgbFile(verbatim | 2, 1, 2, 1, 1, little16, true)), low);
  const Bytes packed = {0, 0, 2, 8, 0, 0, 0, 8, 0, 0x82, 1, 2, 3, 4, 0, 0};
  Bytes swapped = packed;
  for (std::size_t i = 0; i < 8; i += 4) std::reverse(swapped.begin() + i, swapped.begin() + i + 4);
  for (std::size_t i = 8; i < 16; i += 2) std::swap(swapped[i], swapped[i + 1]);
  EXPECT_EQ(readRgb(rgbFile(runLength | 2, 1, 2, 1, 1, packed)), low);
  EXPECT_EQ(readRgb(rgbFile(runLength | 2, 1, 2, 1, 1, swapped, true)), low);
}

TEST(RgbReader, AnAlphaChannelThatIsSolidIsDropped) {
  const auto withAlpha = [](unsigned channels, unsigned char alpha) {
    Bytes data(2 * (channels - 1), 7);
    data.push_back(255);
    data.push_back(alpha);
    return readRgb(rgbFile(verbatim | 1, 3, 2, 1, channels, data)).components;
  };
  EXPECT_EQ(withAlpha(4, 255), 3);
  EXPECT_EQ(withAlpha(2, 255), 1);
  EXPECT_EQ(withAlpha(4, 254), 4);
  EXPECT_EQ(withAlpha(2, 254), 2);
  EXPECT_EQ(withAlpha(3, 255), 3);
}

TEST(RgbReader, ARowIsNeitherLongerNorShorterThanTheImage) {
  const auto row = [](const Bytes& packed) {
    return readRgb(rgbFile(runLength | 1, 2, 4, 1, 1, packedRows({packed})));
  };
  const auto gives = [](const Bytes& pixels) { return ReadImage{4, 1, 1, pixels}; };
  EXPECT_EQ(row({0x7f, 9, 0}), gives({9, 9, 9, 9})) << "a run beyond the row";
  EXPECT_EQ(row({0xff, 1, 2, 3, 4, 5, 6}), gives({1, 2, 3, 4})) << "literals beyond the row";
  EXPECT_EQ(row({0xff, 1, 2}), gives({1, 2, 0, 0})) << "literals beyond the file's row";
  EXPECT_EQ(row({2, 5, 0}), gives({5, 5, 0, 0})) << "a short row";
  EXPECT_EQ(row({2, 5, 0, 2, 6}), gives({5, 5, 0, 0})) << "something behind its end";
  EXPECT_EQ(row({1, 5, 3}), gives({5, 0, 0, 0})) << "a run without its value";
  EXPECT_EQ(row({}), gives({0, 0, 0, 0}));
}

TEST(RgbReader, AFileThatEndsEarlyIsBlackFromThere) {
  // Two channels of two rows: channel 1 lies behind channel 0, so its second row is missing first.
  EXPECT_EQ(readRgb(rgbFile(verbatim | 1, 3, 2, 2, 2, {1, 2, 3, 4, 5, 6, 7})),
            (ReadImage{2, 2, 2, {1, 5, 2, 6, 3, 0, 4, 0}}));
  EXPECT_EQ(readRgb(rgbFile(verbatim | 1, 3, 2, 2, 2, {1, 2, 3, 4, 5})),
            (ReadImage{2, 2, 2, {1, 0, 2, 0, 0, 0, 0, 0}}));
  // A table that points nowhere, or says that there is no row.
  Bytes nowhere = packedRows({{2, 5, 0}, {2, 6, 0}});
  for (std::size_t i = 4; i < 8; ++i) nowhere[i] = 0xff;
  EXPECT_EQ(readRgb(rgbFile(runLength | 1, 2, 2, 2, 1, nowhere)), (ReadImage{2, 2, 1, {5, 5, 0, 0}}));
  Bytes noRow = packedRows({{2, 5, 0}, {2, 6, 0}});
  for (std::size_t i = 8; i < 12; ++i) noRow[i] = 0xff;
  EXPECT_EQ(readRgb(rgbFile(runLength | 1, 2, 2, 2, 1, noRow)), (ReadImage{2, 2, 1, {0, 0, 0, 0}}));
}

TEST(RgbReader, ImagesThatAreNoTexturesAreRefused) {
  for (const auto& [x, y, z] :
       {std::array{0U, 1U, 1U}, {1U, 0U, 1U}, {1U, 1U, 0U}, {1U, 1U, 5U}, {40000U, 1U, 1U}})
    EXPECT_FALSE(readRgb(rgbFile(verbatim | 1, 3, x, y, z, Bytes(16)))) << x << ' ' << y << ' ' << z;
}

}  // namespace
