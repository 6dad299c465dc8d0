// SPDX-License-Identifier: BSD-3-Clause
// What the host reads from disk and writes to it.
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <png.h>

#include "host/FileWatch.h"
#include "host/Image.h"
#include "host/WorldFile.h"
#include "support/Paths.h"

namespace tessel::host {
namespace {

namespace fs = std::filesystem;

std::string scratch(const char* name) { return (test::scratchDir() / name).string(); }

void writeFile(const std::string& path, std::string_view text) {
  std::ofstream(path, std::ios::binary) << text;
}

TEST(Png, KeepsEveryPixelInItsPlace) {
  const Image image{3, 2, {255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3, 4, 5, 6, 7, 8, 9}};
  const std::string path = scratch("pixels.png");
  ASSERT_EQ(writePng(image, path), "");
  png_image read{};
  read.version = PNG_IMAGE_VERSION;
  ASSERT_TRUE(png_image_begin_read_from_file(&read, path.c_str()));
  ASSERT_EQ(read.width, 3u);
  ASSERT_EQ(read.height, 2u);
  read.format = PNG_FORMAT_RGB;
  std::vector<std::uint8_t> topDown(18);
  ASSERT_TRUE(png_image_finish_read(&read, nullptr, topDown.data(), 0, nullptr));
  // The image counts its rows from below, a file from above.
  EXPECT_EQ(topDown, (std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 255, 0, 0, 0, 255, 0, 0, 0, 255}));
}

TEST(Png, SaysWhyItCannotBeWritten) {
  const Image image{1, 1, {1, 2, 3}};
  EXPECT_NE(writePng(image, scratch("no/such/folder.png")), "");
  ASSERT_TRUE(fs::exists("/dev/full"));
  EXPECT_NE(writePng(image, "/dev/full"), "");
  EXPECT_TRUE(fs::exists("/dev/full")) << "a device was removed like a spoilt file";
}

TEST(WorldFile, TellsWhatCannotBeRead) {
  EXPECT_FALSE(readWorldFile(scratch("missing.wrl")).readable());
  EXPECT_FALSE(readWorldFile(test::scratchDir().string()).readable());
  writeFile(scratch("empty.wrl"), "");
  const WorldFile empty = readWorldFile(scratch("empty.wrl"));
  EXPECT_TRUE(empty.readable());
  EXPECT_TRUE(empty.bytes.empty());
}

TEST(WorldFile, KeepsBytesOfAnyKind) {
  std::string bytes;
  for (int i = 0; i < 300000; ++i) bytes += static_cast<char>(i * 7);
  writeFile(scratch("bytes.wrl"), bytes);
  EXPECT_EQ(readWorldFile(scratch("bytes.wrl")).bytes, bytes);
}

TEST(WorldFile, PicturesAreNamedAfterTheirWorld) {
  EXPECT_EQ(stemOf("rooms/hall.wrl"), "hall");
  EXPECT_EQ(stemOf("hall.wrl.gz"), "hall");
  EXPECT_EQ(stemOf("./.hidden.wrl"), ".hidden");
  EXPECT_EQ(stemOf("-"), "stdin");
}

TEST(FileWatch, WaitsUntilAFileIsWhole) {
  const std::string path = scratch("watched.wrl");
  writeFile(path, "one");
  FileWatch watch(path);
  EXPECT_FALSE(watch.changed());
  writeFile(path, "longer");
  EXPECT_FALSE(watch.changed()) << "may still be growing";
  EXPECT_TRUE(watch.changed());
  EXPECT_FALSE(watch.changed()) << "told twice";
}

TEST(FileWatch, SeesAFileThatAnEditorReplaced) {
  const std::string path = scratch("edited.wrl");
  writeFile(path, "one");
  FileWatch watch(path);
  fs::remove(path);
  EXPECT_FALSE(watch.changed()) << "gone is no change";
  EXPECT_FALSE(watch.changed());
  writeFile(scratch("edited.tmp"), "two");
  fs::rename(scratch("edited.tmp"), path);
  watch.changed();
  EXPECT_TRUE(watch.changed());
}

}  // namespace
}  // namespace tessel::host
