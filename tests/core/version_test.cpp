// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/version.h>

#include <gtest/gtest.h>

#include <string>

TEST(Version, TextAndNumbersOfTheHeaderAgreeWithTheLibrary) {
  const auto numbers = std::to_string(TESSEL_VERSION_MAJOR) + "." + std::to_string(TESSEL_VERSION_MINOR) +
                       "." + std::to_string(TESSEL_VERSION_PATCH);
  EXPECT_EQ(numbers, TESSEL_VERSION);
  EXPECT_STREQ(tessel::version(), TESSEL_VERSION);
}
