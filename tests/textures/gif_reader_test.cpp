// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string_view>
#include <utility>

#include "textures/GifImage.h"
#include "textures/ImageFile.h"

using namespace tessel::test;

namespace {

ReadImage readGif(const Bytes& file) { return readImage(tessel_ReadGIFImage, file); }

/// Codes of changing width, the low bit first.
class CodeBits {
public:
  void put(int code, int width) {
    bits |= static_cast<unsigned>(code) << count;
    for (count += width; count >= 8; count -= 8, bits >>= 8)
      bytes.push_back(static_cast<unsigned char>(bits));
  }
  Bytes finish() {
    if (count > 0) bytes.push_back(static_cast<unsigned char>(bits));
    return std::exchange(bytes, {});
  }

private:
  Bytes bytes;
  unsigned bits = 0;
  int count = 0;
};

/// Image data as an honest encoder makes them; once its table is full it goes on with what it has.
Bytes packed(const Bytes& indices, int leastWidth) {
  const int clear = 1 << leastWidth;
  int width = leastWidth + 1, next = clear + 2;
  std::map<std::pair<int, int>, int> table;
  CodeBits out;
  out.put(clear, width);
  int string = -1;
  for (const int index : indices) {
    if (string < 0) {
      string = index;
    } else if (const auto known = table.find({string, index}); known != table.end()) {
      string = known->second;
    } else {
      out.put(string, width);
      if (next < 4096) {
        if (next == 1 << width && width < 12) ++width;
        table[{string, index}] = next++;
      }
      string = index;
    }
  }
  if (string >= 0) out.put(string, width);
  if (next == 1 << width && width < 12) ++width;  // the decoder's table is one entry behind
  out.put(clear + 1, width);
  return out.finish();
}

/// Puts a GIF file together.
struct Gif {
  Bytes file;

  /// `colors` is a power of two, of grey values 0, 1, 2, ... unless the table is given; 0 for none.
  explicit Gif(int colors, const Bytes& table = {}, std::string_view version = "GIF89a") {
    file.assign(version.begin(), version.end());
    little(file, std::uint16_t{999});  // the screen, which says nothing
    little(file, std::uint16_t{888});
    for (const int b : {colors > 0 ? 0x80 | sizeBits(colors) : 0, 0, 0})
      file.push_back(static_cast<unsigned char>(b));
    addColors(colors, table);
  }

  Gif& image(int width, int height, const Bytes& indices, int leastWidth = 2, int flags = 0,
             const Bytes& local = {}) {
    return imageOfCodes(width, height, packed(indices, leastWidth), leastWidth, flags, local);
  }

  Gif& imageOfCodes(int width, int height, const Bytes& codes, int leastWidth, int flags = 0,
                    const Bytes& local = {}) {
    const int colors = static_cast<int>(local.size()) / 3;
    file.push_back(',');
    for (const int number : {0, 0, width, height}) little(file, static_cast<std::uint16_t>(number));
    file.push_back(static_cast<unsigned char>(flags | (colors > 0 ? 0x80 | sizeBits(colors) : 0)));
    addColors(colors, local);
    file.push_back(static_cast<unsigned char>(leastWidth));
    blocks(codes);
    return *this;
  }

  Gif& transparent(int index) { return extension(0xf9, {1, 0, 0, static_cast<unsigned char>(index)}); }

  Gif& extension(int label, const Bytes& data) {
    file.push_back('!');
    file.push_back(static_cast<unsigned char>(label));
    blocks(data);
    return *this;
  }

  Gif& put(const Bytes& bytes) {
    file.insert(file.end(), bytes.begin(), bytes.end());
    return *this;
  }

private:
  static int sizeBits(int colors) {
    int bits = 0;
    while (2 << bits < colors) ++bits;
    return bits;
  }
  void addColors(int colors, const Bytes& table) {
    for (int i = 0; i < 3 * colors; ++i)
      file.push_back(table.empty() ? static_cast<unsigned char>(i / 3) : table[static_cast<std::size_t>(i)]);
  }
  void blocks(const Bytes& data) {
    for (std::size_t at = 0; at < data.size(); at += 255) {
      const std::size_t count = std::min<std::size_t>(255, data.size() - at);
      file.push_back(static_cast<unsigned char>(count));
      file.insert(file.end(), data.begin() + static_cast<long>(at),
                  data.begin() + static_cast<long>(at + count));
    }
    file.push_back(0);
  }
};

const Bytes redGreenBlueWhite = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};

/// The rows of an image of bytes, the other way up.
Bytes upsideDown(const Bytes& rows, std::size_t width) {
  Bytes turned;
  for (std::size_t at = rows.size(); at > 0; at -= width)
    turned.insert(turned.end(), rows.begin() + static_cast<long>(at - width),
                  rows.begin() + static_cast<long>(at));
  return turned;
}

Bytes noise(std::size_t count, int colors) {
  std::mt19937 random(11);
  Bytes bytes(count);
  for (auto& b : bytes) b = static_cast<unsigned char>(random() % static_cast<unsigned>(colors));
  return bytes;
}

TEST(GifReader, DecodesWhatAnEncoderMakes) {
  for (const int leastWidth : {2, 3, 5, 8}) {
    const int colors = 1 << leastWidth;
    Bytes pictures[] = {noise(150 * 100, colors), Bytes(150 * 100, 3),
                        noise(150 * 100, 2)};  // the first fills the table
    for (const Bytes& indices : pictures)
      EXPECT_EQ(readGif(Gif(colors).image(150, 100, indices, leastWidth).file),
                (ReadImage{150, 100, 1, upsideDown(indices, 150)}))
          << leastWidth;
  }
}

TEST(GifReader, RowsOfInterlacedImagesComeInFourPasses) {
  for (int height = 1; height <= 20; ++height) {
    const Bytes indices = noise(3 * static_cast<std::size_t>(height), 4);
    Bytes woven;
    for (const auto& [first, step] : {std::pair{0, 8}, {4, 8}, {2, 4}, {1, 2}})
      for (int y = first; y < height; y += step)
        woven.insert(woven.end(), indices.begin() + 3 * y, indices.begin() + 3 * (y + 1));
    EXPECT_EQ(readGif(Gif(4).image(3, height, woven, 2, 0x40).file).bytes, upsideDown(indices, 3)) << height;
  }
}

TEST(GifReader, ComponentsAreThoseThatThePixelsNeed) {
  const auto components = [](const Bytes& table, const Bytes& indices, int transparent = -1) {
    Gif gif(4, table);
    if (transparent >= 0) gif.transparent(transparent);
    return readGif(gif.image(2, 1, indices).file);
  };
  EXPECT_EQ(components(redGreenBlueWhite, {0, 3}), (ReadImage{2, 1, 3, {255, 0, 0, 255, 255, 255}}));
  EXPECT_EQ(components(redGreenBlueWhite, {3, 3}), (ReadImage{2, 1, 1, {255, 255}})) << "only grey is used";
  EXPECT_EQ(components(redGreenBlueWhite, {3, 1}, 3),
            (ReadImage{2, 1, 4, {255, 255, 255, 0, 0, 255, 0, 255}}));
  EXPECT_EQ(components(redGreenBlueWhite, {3, 3}, 1), (ReadImage{2, 1, 2, {255, 255, 255, 255}}));
  EXPECT_EQ(components(redGreenBlueWhite, {1, 0}, 4).components, 3) << "no such colour to be seen through";
  EXPECT_EQ(components(redGreenBlueWhite, {1, 0}, 3).components, 4) << "a colour that no pixel has";
  EXPECT_EQ(components({}, {1, 2}), (ReadImage{2, 1, 1, {1, 2}}));
}

TEST(GifReader, AnIndexWithoutColourIsBlack) {
  EXPECT_EQ(readGif(Gif(2, {9, 9, 9, 8, 8, 8}).image(4, 1, {0, 1, 2, 3}).file),
            (ReadImage{4, 1, 1, {9, 8, 0, 0}}));
  EXPECT_EQ(readGif(Gif(0).image(2, 1, {0, 1}).file), (ReadImage{2, 1, 1, {0, 0}})) << "no table at all";
}

TEST(GifReader, TheTableOfTheImageComesFirst) {
  const Bytes local = {1, 1, 1, 2, 2, 2};
  EXPECT_EQ(readGif(Gif(4, redGreenBlueWhite).image(3, 1, {0, 1, 2}, 2, 0, local).file),
            (ReadImage{3, 1, 1, {1, 2, 0}}));
}

TEST(GifReader, OnlyTheFirstImageAndWhatStandsBeforeItCount) {
  Gif gif(4);
  gif.extension(0xfe, {'w', 'o', 'r', 'd'}).extension(0xff, Bytes(600, 'x')).transparent(2);
  gif.extension(0xf9, {0, 0, 0, 1}).extension(0xf9, {1, 0, 0});  // neither names another
  gif.image(2, 1, {1, 2});
  const ReadImage first{2, 1, 2, {1, 255, 2, 0}};
  EXPECT_EQ(readGif(gif.file), first);
  EXPECT_EQ(readGif(gif.transparent(1).image(1, 1, {3}).put({';'}).file), first);
  EXPECT_EQ(readGif(gif.put({'?', 'x'}).file), first) << "nothing behind it is read";
}

TEST(GifReader, DataThatEndEarlyLeaveColourZero) {
  const Bytes indices = noise(40 * 30, 3);
  Gif gif(4, {0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3});
  const std::size_t begin = gif.file.size() + 11;  // behind the descriptor and the code size
  gif.image(40, 30, indices);
  const Bytes all = upsideDown(readGif(gif.file).bytes, 40);
  std::size_t before = 0;
  for (std::size_t length = 0; length < gif.file.size(); ++length) {
    const ReadImage image = readGif(Bytes(gif.file.begin(), gif.file.begin() + static_cast<long>(length)));
    ASSERT_EQ(static_cast<bool>(image), length >= begin) << length;
    if (!image) continue;
    const Bytes got = upsideDown(image.bytes, 40);
    const auto decoded =
        static_cast<std::size_t>(std::mismatch(got.begin(), got.end(), all.begin()).first - got.begin());
    ASSERT_TRUE(
        std::all_of(got.begin() + static_cast<long>(decoded), got.end(), [](auto b) { return b == 0; }));
    ASSERT_GE(decoded, before);
    before = decoded;
  }
  EXPECT_EQ(before, all.size());
  EXPECT_EQ(readGif(Gif(4).image(3, 2, {1, 2, 3}).file).bytes, (Bytes{0, 0, 0, 1, 2, 3}))
      << "an early end code";
}

TEST(GifReader, ChainsOfCodesWithoutEndComeToAnEnd) {
  // Codes ahead of the table make entries whose prefix is not there yet: 259 leads to 300 and, later, 300 to 259.
  const int leastWidth = 8, width = 9;
  CodeBits bits;
  for (const int code : {256, 0, 300, 301}) bits.put(code, width);
  for (int entry = 260; entry < 299; ++entry) bits.put(1, width);
  for (const int code : {259, 2, 300, 300, 259, 300}) bits.put(code, width);
  Gif gif(256);
  const ReadImage image = readGif(gif.imageOfCodes(300, 300, bits.finish(), leastWidth).file);
  EXPECT_EQ(image.bytes.size(), 300U * 300U);

  // Any codes are taken for something: all twos, all ones and noise, at each code size that there can be.
  for (int least = 0; least <= 12; ++least)
    for (const Bytes& codes : {Bytes(5000, 0xaa), Bytes(5000, 0xff), noise(5000, 256)})
      EXPECT_EQ(readGif(Gif(256).imageOfCodes(100, 100, codes, least).file).bytes.size(), 10000U) << least;
  EXPECT_EQ(readGif(Gif(4, redGreenBlueWhite).imageOfCodes(2, 1, {1, 2, 3}, 255).file).bytes,
            (Bytes{255, 0, 0, 255, 0, 0}))
      << "a code size that can't be";
}

/// What is wrong with a file.
int errorOf(const Bytes& bytes) {
  const OpenFile file = fileOf(bytes);
  std::rewind(file.get());
  GifColor colors[gifColors];
  int width, height, numColors, transparentIndex, error;
  GifIndices(tessel_readGIF(file.get(), &width, &height, colors, &numColors, &transparentIndex, &error));
  return error;
}

TEST(GifReader, TellsWhatIsWrongWithAFile) {
  const Bytes head = Gif(4).file;
  const auto cut = [](Bytes bytes, std::size_t length) {
    bytes.resize(length);
    return bytes;
  };
  EXPECT_EQ(errorOf(cut(head, 5)), -1);
  EXPECT_EQ(errorOf(Bytes(40, 'G')), -2);
  EXPECT_EQ(errorOf(Gif(4, {}, "GIF90a").file), -3);
  EXPECT_EQ(errorOf(cut(head, 12)), -4);
  EXPECT_EQ(errorOf(cut(head, head.size() - 1)), -5);
  EXPECT_EQ(errorOf(head), -6);
  EXPECT_EQ(errorOf(Gif(4).put({';'}).file), -7);
  EXPECT_EQ(errorOf(Gif(4).put({'!'}).file), -8);
  EXPECT_EQ(errorOf(Gif(4).put({0}).image(1, 1, {1}).file), -9) << "also where an image follows";
  EXPECT_EQ(errorOf(Gif(4).put({',', 0, 0, 0, 0, 1, 0, 1, 0}).file), -10);
  EXPECT_EQ(errorOf(Gif(4).put({',', 0, 0, 0, 0, 1, 0, 1, 0, 0x80, 1, 1, 1}).file), -11);
  EXPECT_EQ(errorOf(Gif(4).image(1, 1, {1}).file), 0);
  EXPECT_EQ(errorOf(Gif(4, {}, "GIF87a").image(1, 1, {1}).file), 0);
  EXPECT_FALSE(readGif(Gif(4).put({0}).image(1, 1, {1}).file));
}

TEST(GifReader, ImagesTooLargeAreSaidToBeSo) {
  const PlainTexts heard;
  EXPECT_FALSE(readGif(Gif(4).image(65535, 65535, {1}).file));
  EXPECT_FALSE(readGif(Gif(4).image(32768, 1, {1}).file));
  EXPECT_EQ(heard.text, "Cannot allocate space for image data\nCannot allocate space for image data\n");
  EXPECT_FALSE(readGif(Gif(4).image(0, 9, {1}).file));
}

}  // namespace
