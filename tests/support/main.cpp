// SPDX-License-Identifier: BSD-3-Clause
// The entry point of every test program. A test depends neither on a display nor on the graphics card.
#include <gmock/gmock.h>

#include <cstdlib>

#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>

int main(int argc, char** argv) {
  setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  ::testing::InitGoogleMock(&argc, argv);
  SoDB::init();  // a test may make its first node before its first world
  SoInteraction::init();
  return RUN_ALL_TESTS();
}
