// SPDX-License-Identifier: BSD-3-Clause
// The entry point of every test program. A test depends neither on a display nor on the graphics card.
#include <gmock/gmock.h>

#include <cstdlib>

int main(int argc, char** argv) {
  setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
