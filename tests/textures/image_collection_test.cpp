// SPDX-License-Identifier: BSD-3-Clause
// Images that others made, where a collection of worlds lies beside the project (or in $TESSEL_WORLDS): each is what
// ImageMagick makes of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <set>
#include <string>
#include <string_view>

#include "support/Paths.h"
#include "textures/ImageFile.h"

namespace {

namespace fs = std::filesystem;
using namespace tessel::test;

std::string outputOf(const std::string& command) {
  std::FILE* const pipe = popen(command.c_str(), "r");
  if (!pipe) return {};
  std::string text;
  char part[1 << 16];
  while (const std::size_t count = std::fread(part, 1, sizeof part, pipe)) text.append(part, count);
  pclose(pipe);
  return text;
}

/// ImageMagick's program; another may go by its name.
std::string magick() {
  for (const char* name : {"/usr/bin/convert", "convert", "magick"})
    if (outputOf(std::string(name) + " -version 2>&1").find("ImageMagick") != std::string::npos) return name;
  return {};
}

fs::path collection() {
  const char* told = std::getenv("TESSEL_WORLDS");
  return told ? fs::path(told) : projectFile("../shared/worlds");
}

/// All image files of the collection; of those with equal contents the first.
std::vector<fs::path> imageFiles() {
  static const std::set<std::string> endings = {".rgb", ".rgba", ".bw",  ".sgi",
                                                ".gif", ".png",  ".jpg", ".jpeg"};
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(collection())) {
    std::string ending = entry.path().extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char c) { return std::tolower(c); });
    if (entry.is_regular_file() && endings.count(ending)) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string contentsOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

/// What a PNG file's values become on a screen of gamma 1.7, from its own chunk of 100,000ths or 0.45.
Bytes gammaCurve(const std::string& png) {
  double gamma = 0.45;
  if (const auto at = png.find("gAMA"); at != std::string::npos && at < png.find("IDAT")) {
    const auto number = [](unsigned sum, char c) { return sum << 8 | static_cast<unsigned char>(c); };
    gamma = std::accumulate(png.begin() + at + 4, png.begin() + at + 8, 0U, number) / 100000.0;
  }
  Bytes curve(256);
  for (std::size_t i = 0; i < curve.size(); ++i)
    curve[i] = static_cast<unsigned char>(std::lround(255 * std::pow(i / 255.0, 1 / (gamma * 1.7))));
  return curve;
}

TEST(ImageCollectionSlow, ImagesAreWhatImageMagickDecodes) {
  const std::string convert = magick();
  if (!fs::exists(collection()) || convert.empty())
    GTEST_SKIP() << "no collection of worlds or no ImageMagick";
  const PlainTexts heard;  // some files are cut short
  std::set<std::size_t> seen;
  int compared = 0;
  for (const fs::path& file : imageFiles()) {
    const std::string contents = contentsOf(file);
    if (!seen.insert(std::hash<std::string>()(contents)).second) continue;
    SCOPED_TRACE(file);
    const ReadImage image = readImage(file);
    const std::string theirs = outputOf(convert + " '" + file.string() + "[0]' -depth 8 RGBA:- 2>/dev/null");
    if (theirs.empty()) {
      ADD_FAILURE() << "not read by ImageMagick" << (image ? ", but by us" : "");
      continue;
    }
    Bytes expected(theirs.begin(), theirs.end());
    if (contents.compare(1, 3, "PNG") == 0) {
      const Bytes curve = gammaCurve(contents);
      for (std::size_t i = 0; i < expected.size(); ++i)
        if (i % 4 != 3) expected[i] = curve[expected[i]];
    }
    if (!image) {
      ADD_FAILURE() << "not read";
      continue;
    }
    const Bytes ours = toRgba(image);
    EXPECT_EQ(ours.size(), expected.size());
    const auto [our, their] = std::mismatch(ours.begin(), ours.end(), expected.begin(), expected.end());
    if (our != ours.end() && their != expected.end()) {
      ADD_FAILURE() << "differs at byte " << our - ours.begin() << " of " << ours.size() << ": " << +*our
                    << " and not " << +*their;
    }
    ++compared;
  }
  EXPECT_GT(compared, 0);
}

}  // namespace
