// SPDX-License-Identifier: BSD-3-Clause
#include "support/Picture.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include <png.h>

#include "support/Paths.h"

namespace tessel::test {

namespace {

/// What lies between two pictures of one size.
struct Difference {
  host::Image image;  // of each channel
  double mean = 0;
  double wrong = 0;  // share of the pixels
  int largest = 0;
};

Difference difference(const host::Image& a, const host::Image& b, int channel) {
  Difference result{a};
  const std::size_t pixels = a.rgb.size() / 3;
  double sum = 0;
  std::size_t wrong = 0;
  for (std::size_t p = 0; p < pixels; ++p) {
    int worst = 0;
    for (std::size_t i = 3 * p; i < 3 * p + 3; ++i) {
      const int off = std::abs(a.rgb[i] - b.rgb[i]);
      result.image.rgb[i] = static_cast<std::uint8_t>(off);
      worst = std::max(worst, off);
      sum += off;
    }
    result.largest = std::max(result.largest, worst);
    wrong += worst > channel;
  }
  result.mean = sum / static_cast<double>(3 * pixels);
  result.wrong = static_cast<double>(wrong) / static_cast<double>(pixels);
  return result;
}

void keep(const host::Image& image, const std::filesystem::path& file) {
  const auto failure = host::writePng(image, file.string());
  if (!failure.empty()) throw std::runtime_error(file.string() + ": " + failure);
}

}  // namespace

std::unique_ptr<host::OffscreenContext> openContext(int width, int height) {
  std::string failure;
  auto context = host::OffscreenContext::create(width, height, failure);
  if (!context) throw std::runtime_error(failure);
  return context;
}

Colour pixel(const host::Image& image, int x, int y) {
  const auto* at = image.rgb.data() + 3 * (static_cast<std::ptrdiff_t>(y) * image.width + x);
  return {at[0], at[1], at[2]};
}

bool near(const Colour& a, const Colour& b, int tolerance) {
  return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance &&
         std::abs(a.b - b.b) <= tolerance;
}

int countLit(const host::Image& image, const Colour& background) {
  int lit = 0;
  for (int y = 0; y < image.height; ++y)
    for (int x = 0; x < image.width; ++x) lit += pixel(image, x, y) != background;
  return lit;
}

host::Image readPng(const std::filesystem::path& file) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&png, file.c_str()))
    throw std::runtime_error(file.string() + ": " + png.message);
  png.format = PNG_FORMAT_RGB;
  host::Image image{static_cast<int>(png.width), static_cast<int>(png.height), {}};
  image.rgb.resize(PNG_IMAGE_SIZE(png));
  // A negative stride says that the first row in memory is the bottom of the picture.
  if (!png_image_finish_read(&png, nullptr, image.rgb.data(), -3 * image.width, nullptr))
    throw std::runtime_error(file.string() + ": " + png.message);
  return image;
}

::testing::AssertionResult looksLike(const std::string& golden, const host::Image& actual,
                                     const PictureTolerance& tolerance) {
  const auto file = testFile(golden);
  if (const char* update = std::getenv("TESSEL_UPDATE_GOLDEN"); update && *update == '1') {
    std::filesystem::create_directories(file.parent_path());
    keep(actual, file);
    return ::testing::AssertionSuccess();
  }
  const auto stem = scratchDir() / file.stem();
  keep(actual, stem.string() + "-actual.png");
  if (!std::filesystem::exists(file))
    return ::testing::AssertionFailure()
           << "no picture " << file << " yet; this one is " << stem << "-actual.png";
  const auto expected = readPng(file);
  if (expected.width != actual.width || expected.height != actual.height)
    return ::testing::AssertionFailure() << "the picture is " << actual.width << 'x' << actual.height
                                         << ", expected " << expected.width << 'x' << expected.height;
  const auto off = difference(expected, actual, tolerance.channel);
  if (off.mean <= tolerance.mean && off.wrong <= tolerance.wrong) return ::testing::AssertionSuccess();
  keep(expected, stem.string() + "-expected.png");
  keep(off.image, stem.string() + "-difference.png");
  return ::testing::AssertionFailure()
         << golden << " differs: by " << off.mean << " in the mean (at most " << tolerance.mean << "), "
         << 100 * off.wrong << " % of the pixels wrong (at most " << 100 * tolerance.wrong << " %), by "
         << off.largest << " at the worst; see " << stem.string() << "-*.png";
}

}  // namespace tessel::test
