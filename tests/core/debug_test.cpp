// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstdlib>

#include <tessel/core/VrmlDebug.h>
#include <tessel/core/VrmlTransform.h>

#include "support/TestWorld.h"

namespace {

TEST(Debug, TheLogIsWrittenWhenItIsFull) {
  setenv("SG_DEBUG_BUFLEN", "3", 1);
  testing::internal::CaptureStderr();
  VrmlDebug::RTPrintf("a%d", 1);
  VrmlDebug::RTPrintf("b%d", 2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  testing::internal::CaptureStderr();
  VrmlDebug::RTPrintf("%s", std::string(500, 'c').c_str());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "a1b2" + std::string(199, 'c') + "\n");
  unsetenv("SG_DEBUG_BUFLEN");
  EXPECT_STREQ(VrmlDebug::GetEnv("SG_DEBUG_BUFLEN"), "3") << "remembered";
}

TEST(Debug, NamesAndFieldsArePrinted) {
  int thing = 0;
  EXPECT_STREQ(VrmlDebug::PtrName(&thing), "<noName>");
  VrmlDebug::NamePtr("thing", &thing);
  EXPECT_STREQ(VrmlDebug::PtrName(&thing), "thing");

  const tessel::test::TestWorld world("DEF T Transform { translation 1 2 3 }");
  testing::internal::CaptureStdout();
  VrmlDebug::printName(world.root());
  VrmlDebug::writeField(&world.get<VrmlTransform>("T")->translation);
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_TRUE(printed.starts_with("TField name is: translation\nField is part of node:\n")) << printed;
  EXPECT_NE(printed.find("translation 1 2 3"), std::string::npos) << printed;
}

}  // namespace
