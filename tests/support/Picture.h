// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include "host/Image.h"
#include "host/gl/OffscreenContext.h"

namespace tessel::test {

/// An OpenGL context without a display, current from here on. Throws if there is none: then nothing can be tested.
std::unique_ptr<host::OffscreenContext> openContext(int width = 128, int height = 128);

/// One pixel, or the mean of several; each channel 0 to 255.
struct Colour {
  int r = 0, g = 0, b = 0;
  friend bool operator==(const Colour&, const Colour&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Colour& c) {
    return out << "rgb(" << c.r << ", " << c.g << ", " << c.b << ')';
  }
};

/// The pixel at (x, y); (0, 0) is at the lower left.
Colour pixel(const host::Image& image, int x, int y);
/// Whether all channels of both differ by at most `tolerance`.
bool near(const Colour& a, const Colour& b, int tolerance = 12);
/// How many pixels are not of the colour `background`.
int countLit(const host::Image& image, const Colour& background = {});

/// Reads a PNG file as 8-bit RGB, bottom row first. Throws if it can't be read.
host::Image readPng(const std::filesystem::path& file);

/// How far a picture may be from the expected one: another version of the driver draws edges elsewhere, by a pixel.
struct PictureTolerance {
  double mean = 1.0;    ///< mean difference of all channels, 0 to 255
  int channel = 40;     ///< a pixel with a channel further off than this is wrong
  double wrong = 0.01;  ///< the share of wrong pixels that is let pass
};

/// Compares `actual` with the PNG file tests/`golden`. On failure it says by how much they differ and leaves
/// `actual`, the expected picture and their difference in the scratch folder. With TESSEL_UPDATE_GOLDEN=1 in the
/// environment the file is written instead; look at it before it is committed.
///
///     EXPECT_TRUE(looksLike("shapes/golden/cone.png", context->picture()));
::testing::AssertionResult looksLike(const std::string& golden, const host::Image& actual,
                                     const PictureTolerance& tolerance = {});

}  // namespace tessel::test
