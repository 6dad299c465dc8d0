// SPDX-License-Identifier: BSD-3-Clause
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace tessel::test {

namespace fs = std::filesystem;

fs::path testFile(std::string_view name) { return fs::path(TESSEL_SOURCE_DIR) / "tests" / name; }

fs::path projectFile(std::string_view name) { return fs::path(TESSEL_SOURCE_DIR) / name; }

fs::path builtProgram(std::string_view name) { return fs::path(TESSEL_BINARY_DIR) / "bin" / name; }

const fs::path& scratchDir() {
  static const ::testing::TestInfo* owner = nullptr;
  static fs::path dir;
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  if (test == owner && !dir.empty()) return dir;
  owner = test;
  std::string name = test ? std::string(test->test_suite_name()) + "." + test->name() : "no-test";
  std::replace(name.begin(), name.end(), '/', '-');
  dir = fs::path(TESSEL_BINARY_DIR) / "test-scratch" / name;
  fs::remove_all(dir);
  fs::create_directories(dir);
  return dir;
}

}  // namespace tessel::test
