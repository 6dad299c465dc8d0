// SPDX-License-Identifier: BSD-3-Clause
// `tessel view` on a display of its own, with keys and mouse.
#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>

#include "host/HttpServer.h"
#include "host/Program.h"
#include "host/Screen.h"
#include "support/Paths.h"

namespace tessel::host {
namespace {

using ::testing::HasSubstr;

using Color = std::array<int, 3>;
constexpr Color black{0, 0, 0}, red{255, 0, 0}, green{0, 255, 0}, blue{0, 0, 255};

class ViewGL : public ::testing::Test {
protected:
  void SetUp() override {
    screen = Screen::start();
    if (!screen) GTEST_SKIP() << "no virtual X server here";
  }
  static std::string said() {
    std::ostringstream out;
    out << std::ifstream(test::scratchDir() / "stderr").rdbuf();
    return out.str();
  }
  std::unique_ptr<Screen> screen;
};

TEST_F(ViewGL, ShowsAWorldUnderItsTitleUntilItIsQuit) {
  makeFile("w.wrl", world("WorldInfo { title \"Red hall\" }\n" + shiningBox("0 0 0", "2 2 2", "1 0 0")));
  ASSERT_TRUE(screen->view({"w.wrl"}));
  EXPECT_TRUE(screen->shows(0.5, 0.5, red));
  EXPECT_TRUE(screen->shows(0.05, 0.5, black));
  EXPECT_THAT(screen->title(), HasSubstr("Red hall"));
  screen->key("q");
  EXPECT_EQ(screen->ended(), 0);
  EXPECT_EQ(said(), "");
}

TEST_F(ViewGL, PageKeysGoThroughTheViewpoints) {
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0") + shiningBox("100 0 0", "2 2 2", "0 1 0") +
                          "Viewpoint { description \"one\" }\nViewpoint { position 50 0 0 }\n"
                          "Viewpoint { position 100 0 10 description \"two\" }\n"));
  ASSERT_TRUE(screen->view({"w.wrl"}));
  EXPECT_TRUE(screen->shows(0.5, 0.5, red));
  screen->key("Next");
  EXPECT_TRUE(screen->shows(0.5, 0.5, green));
  screen->key("Prior");
  EXPECT_TRUE(screen->shows(0.5, 0.5, red));
  screen->key("Escape");
  EXPECT_EQ(screen->ended(), 0);
}

TEST_F(ViewGL, TheMouseTurnsTheWorld) {
  // Red in front, green on the left; half a window to the right brings the left side to the front.
  makeFile("w.wrl", world("NavigationInfo { type \"EXAMINE\" }\n" + shiningBox("0 0 2", "3 3 1", "1 0 0") +
                          shiningBox("-2 0 0", "1 3 3", "0 1 0") + shiningBox("2 0 -2", "1 1 1", "0 0 1")));
  ASSERT_TRUE(screen->view({"w.wrl"}));
  ASSERT_TRUE(screen->shows(0.5, 0.5, red));
  screen->drag(1, 200, 300, 500, 300);
  EXPECT_TRUE(screen->shows(0.5, 0.5, green));
}

TEST_F(ViewGL, ReadsTheFileAgainWhenItChanges) {
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0")));
  ASSERT_TRUE(screen->view({"w.wrl"}));
  ASSERT_TRUE(screen->shows(0.5, 0.5, red));
  makeFile("w.wrl", world("\n\nGroop { }"));
  std::this_thread::sleep_for(std::chrono::seconds(1));
  EXPECT_TRUE(screen->shows(0.5, 0.5, red)) << "the old world is gone";
  EXPECT_THAT(said(), HasSubstr("w.wrl:4: error: "));
  EXPECT_THAT(said(), HasSubstr("w.wrl: warning: the world that was read before stays\n"));
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "0 0 1")));
  EXPECT_TRUE(screen->shows(0.5, 0.5, blue));
}

TEST_F(ViewGL, ShowsWhatIsThereAndTheRestWhenItComes) {
  const std::string lamp =
      "PROTO Lamp [ field SFVec3f at 0 0 0 ] { Transform { translation IS at children [ " +
      shiningBox("0 0 0", "1 1 1", "0 1 0") + "] } }";
  HttpServer server(
      {{"/slow.wrl",
        {.body = world(shiningBox("0 0 0", "2 2 2", "1 0 0")), .delay = std::chrono::seconds(3)}},
       {"/lamps.wrl", {.body = world(lamp), .delay = std::chrono::seconds(1)}}});
  makeFile("w.wrl", world("EXTERNPROTO Lamp [ field SFVec3f at ] \"" + server.url("/lamps.wrl") + "\"\n" +
                          shiningBox("-3 0 0", "2 2 2", "0 0 1") + "Lamp { at 2.5 0 0 }\nInline { url \"" +
                          server.url("/slow.wrl") + "\" }\n"));
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(screen->view({"w.wrl"}));
  ASSERT_TRUE(screen->shows(0.2, 0.5, blue));
  EXPECT_TRUE(screen->shows(0.5, 0.5, black));
  if (std::chrono::steady_clock::now() - start > std::chrono::seconds(3))
    GTEST_SKIP() << "this machine is too slow today";
  EXPECT_TRUE(screen->shows(0.5, 0.5, red));
  EXPECT_TRUE(screen->shows(0.75, 0.5, green));
  EXPECT_EQ(server.count("/slow.wrl"), 1);
  EXPECT_EQ(said(), "");
}

// Nothing is drawn while it waits, and yet its time comes.
TEST_F(ViewGL, ATimerThatWaitsStartsOnTime) {
  const auto start = std::chrono::system_clock::now() + std::chrono::seconds(4);
  const double seconds = std::chrono::duration<double>(start.time_since_epoch()).count();
  makeFile("w.wrl",
           world(shiningBox("0 0 0", "2 2 2", "1 0 0") + shiningBox("100 0 0", "2 2 2", "0 1 0") +
                 "Viewpoint { }\nDEF V Viewpoint { position 100 0 10 }\nDEF T TimeSensor { startTime " +
                 std::to_string(seconds) + " }\nROUTE T.isActive TO V.set_bind\n"));
  ASSERT_TRUE(screen->view({"w.wrl"}));
  ASSERT_TRUE(screen->shows(0.5, 0.5, red));
  if (std::chrono::system_clock::now() > start) GTEST_SKIP() << "this machine is too slow today";
  ASSERT_TRUE(screen->shows(0.5, 0.5, green));
  EXPECT_GE(std::chrono::system_clock::now(), start);
  EXPECT_LT(std::chrono::system_clock::now(), start + std::chrono::seconds(3));
}

TEST_F(ViewGL, AStillWorldCostsNothing) {
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0")));
  ASSERT_TRUE(screen->view({"w.wrl"}));
  ASSERT_TRUE(screen->shows(0.5, 0.5, red));
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  const double before = screen->processorTime();
  std::this_thread::sleep_for(std::chrono::seconds(1));
  EXPECT_LT(screen->processorTime() - before, 0.1);
}

TEST(View, SaysThatThereIsNoDisplay) {
  makeFile("w.wrl", world(shiningBox("0 0 0", "2 2 2", "1 0 0")));
  const Outcome run = runTessel({"view", "w.wrl"});
  EXPECT_EQ(run.status, 3);
  EXPECT_THAT(run.err, HasSubstr("tessel: no display"));
}

}  // namespace
}  // namespace tessel::host
