// SPDX-License-Identifier: BSD-3-Clause
// What all readers have in common.
#include "textures/ImageReaders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <Inventor/SoInput.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <tessel/textures/ImageLimit.h>

#include "support/Paths.h"
#include "textures/ImageFile.h"

using namespace tessel::test;

namespace {

namespace fs = std::filesystem;

Bytes bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

Bytes seed(const char* name) { return bytesOf(projectFile("fuzz/corpus") / name); }

struct Format {
  const char* file;
  tessel::ImageReader reader;
};
const Format formats[] = {{"rgb/packed.rgb", tessel_ReadRgbImage},
                          {"gif/color.gif", tessel_ReadGIFImage},
                          {"png/rgb.png", tessel_ReadPNGImage},
                          {"jpeg/color.jpg", tessel_ReadJPEGImage}};

std::ptrdiff_t openFiles() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

TEST(ImageReaders, EachTakesItsOwnFormatAloneByContents) {
  const PlainTexts heard;
  for (const Format& format : formats) {
    const Bytes bytes = seed(format.file);
    ASSERT_FALSE(bytes.empty()) << format.file;
    for (const Format& other : formats)
      EXPECT_EQ(static_cast<bool>(readImage(other.reader, bytes)), &format == &other) << format.file;
    // The name of a file says nothing, and a reader that refuses leaves it to the next as it was.
    const fs::path path = scratchDir() / "texture.txt";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    EXPECT_EQ(readImage(path), readImage(format.reader, bytes)) << format.file;
  }
}

TEST(ImageReaders, AFileThatIsNoImageIsRefusedByAllInTheWordsOfTheJpegLibrary) {
  const struct {
    Bytes bytes;
    const char* words;
  } files[] = {{{}, "Empty input file\n"}, {Bytes(5000, '#'), "Not a JPEG file: starts with 0x23 0x23\n"}};
  for (const auto& [bytes, words] : files) {
    const PlainTexts heard;
    for (const tessel::ImageReader reader : tessel::imageReaders) EXPECT_FALSE(readImage(reader, bytes));
    EXPECT_EQ(heard.text, words);
  }
}

TEST(ImageReaders, ACutFileIsAnImageOrNoneAndLeavesNothingOpen) {
  const PlainTexts heard;
  const SoInput first;  // the toolkit opens standard input once more with it
  const auto before = openFiles();
  for (const Format& format : formats)
    for (const auto& entry :
         fs::directory_iterator(fs::path(projectFile("fuzz/corpus") / format.file).parent_path())) {
      const Bytes bytes = bytesOf(entry.path());
      const ReadImage whole = readImage(format.reader, bytes);
      ASSERT_TRUE(whole) << entry.path();
      for (std::size_t length = 0; length < bytes.size(); ++length) {
        const ReadImage cut =
            readImage(format.reader, Bytes(bytes.begin(), bytes.begin() + static_cast<long>(length)));
        ASSERT_TRUE(!cut || (cut.width == whole.width && cut.height == whole.height))
            << entry.path() << " of " << length << " bytes";
      }
    }
  EXPECT_EQ(openFiles(), before);
}

TEST(ImageReaders, RefusalLeavesTheResultsAndTheFileAlone) {
  const PlainTexts heard;
  const OpenFile file = fileOf(Bytes(600, 'x'));
  SoInput in;
  in.setFilePointer(file.get());
  for (const tessel::ImageReader reader : tessel::imageReaders) {
    int width = 1, height = 2, components = 3;
    unsigned char* bytes = nullptr;
    EXPECT_EQ(reader(in, width, height, components, bytes), 0);
    EXPECT_TRUE(width == 1 && height == 2 && components == 3 && bytes == nullptr);
  }
  std::rewind(file.get());
  EXPECT_EQ(std::getc(file.get()), 'x');
  SoInput memory;
  memory.setBuffer("xx", 2);
  EXPECT_FALSE(memory.getCurFile());
  int ignored = 0;
  unsigned char* none = nullptr;
  for (const tessel::ImageReader reader : tessel::imageReaders)
    EXPECT_EQ(reader(memory, ignored, ignored, ignored, none), 0);
}

TEST(ImageReaders, AHostLimitsThePixels) {
  const PlainTexts heard;
  const std::int64_t before = tessel::imagePixelLimit();
  for (const Format& format : formats) {
    const Bytes bytes = seed(format.file);
    const auto pixels = static_cast<std::int64_t>(readImage(format.reader, bytes).pixels());
    tessel::setImagePixelLimit(pixels - 1);
    EXPECT_FALSE(readImage(format.reader, bytes)) << format.file;
    tessel::setImagePixelLimit(pixels);
    EXPECT_TRUE(readImage(format.reader, bytes)) << format.file;
    tessel::setImagePixelLimit(before);
  }
}

}  // namespace
