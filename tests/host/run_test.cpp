// SPDX-License-Identifier: BSD-3-Clause
// `tessel run`, seen from the shell. A world in host/runs says in remarks how it is to run (`# run:` arguments,
// `# input:` lines of the input file, `# status:`, `# expect:` messages); what it prints stands beside it.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>

#include "host/Program.h"
#include "support/Paths.h"

namespace tessel::host {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

std::string contentOf(const fs::path& path) {
  std::ostringstream out;
  out << std::ifstream(path, std::ios::binary).rdbuf();
  return out.str();
}

// What stands behind `# KEY: ` in a world, line by line.
std::vector<std::string> remarks(const std::string& world, const std::string& key) {
  const std::string mark = "# " + key + ": ";
  std::vector<std::string> found;
  std::istringstream in(world);
  for (std::string line; std::getline(in, line);)
    if (line.starts_with(mark)) found.push_back(line.substr(mark.size()));
  return found;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

std::vector<std::string> argumentsFor(const std::string& world) {
  std::istringstream words(joined(remarks(world, "run")));
  std::vector<std::string> arguments;
  for (std::string word; words >> word;) arguments.push_back(word);
  return arguments;
}

std::vector<fs::path> filesNamed(const char* extension) {
  std::vector<fs::path> found;
  for (const auto& entry : fs::directory_iterator(test::testFile("host/runs")))
    if (entry.path().extension() == extension) found.push_back(entry.path());
  std::sort(found.begin(), found.end());
  return found;
}
std::vector<fs::path> worlds() { return filesNamed(".wrl"); }

// What some of the worlds ask for.
void makeParts() {
  for (const fs::path& part : filesNamed(".inc")) makeFile(part.filename().string(), contentOf(part));
}

class RunsGL : public ::testing::TestWithParam<fs::path> {};

TEST_P(RunsGL, SendTheseEventsInThisOrder) {
  const std::string text = contentOf(GetParam());
  const std::string name = makeFile(GetParam().filename().string(), text);
  makeParts();
  makeFile("input", joined(remarks(text, "input")));
  std::vector<std::string> arguments = {"run", name, "--input", "input"};
  for (const std::string& argument : argumentsFor(text)) arguments.push_back(argument);
  const Outcome first = runTessel(arguments);
  const auto status = remarks(text, "status");
  EXPECT_EQ(first.status, status.empty() ? 0 : std::stoi(status.front()));
  EXPECT_EQ(first.err, joined(remarks(text, "expect")));
  EXPECT_EQ(first.out, contentOf(fs::path(GetParam()).replace_extension(".trace")));
  EXPECT_EQ(runTessel(arguments).out, first.out) << "another run gives something else";
}

INSTANTIATE_TEST_SUITE_P(World, RunsGL, ::testing::ValuesIn(worlds()), [](const auto& info) {
  std::string name = info.param.stem().string();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

TEST(RunGL, TwoRunsDrawTheSamePictures) {
  const std::string text = contentOf(test::testFile("host/runs/machine.wrl"));
  makeFile("machine.wrl", text);
  makeParts();
  makeFile("input", joined(remarks(text, "input")));
  const auto pictures = [](const std::string& folder) {
    const Outcome shot = runTessel({"shot", "machine.wrl", "--input", "input", "--size", "160x120", "--time",
                                    "0.8", "--fps", "10", "--frames", folder});
    EXPECT_EQ(shot.status, 0) << shot.err;
    std::vector<std::string> found;
    for (int k = 0; k <= 8; ++k)
      found.push_back(contentOf(test::scratchDir() / folder / ("00000" + std::to_string(k) + ".png")));
    return found;
  };
  const auto first = pictures("first");
  EXPECT_TRUE(first == pictures("second")) << "another run draws something else";
  for (std::size_t k = 2; k < first.size(); ++k)
    EXPECT_TRUE(first[k] != first[k - 1]) << "nothing moves in picture " << k;
}

const std::string movedByInput =
    "DEF T Transform { }\nDEF U Transform { }\nROUTE T.translation TO U.translation\n";

TEST(RunGL, ClockAndFramesAreThoseThatWereAskedFor) {
  makeFile("w.wrl", world("DEF V Viewpoint { }\n" + movedByInput));
  makeFile("in",
           "# each line in the first frame that is not before it\n0.3 set T.translation 3 0 0\n\n"
           "0.05\tset T.translation 1 0 0\n  0.29 set T.translation 2 0 0\n9 set T.translation 4 0 0\r\n");
  const auto traced = [](std::vector<std::string> more) {
    std::vector<std::string> arguments = {"run",     "w.wrl", "--input", "in",
                                          "--trace", "T",     "--trace", "V.bindTime"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome run = runTessel(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    return run.out;
  };
  EXPECT_EQ(traced({"--time", "0.3", "--fps", "100", "--clock", "5"}),
            "0.000000\tV.bindTime\t5\n0.050000\tT.translation\t1 0 0\n0.290000\tT.translation\t2 0 0\n"
            "0.300000\tT.translation\t3 0 0\n");
  EXPECT_EQ(traced({"--time", "0.299", "--fps", "3"}), "0.000000\tV.bindTime\t1000000000\n");
  EXPECT_EQ(traced({"--time", "0.7", "--fps", "3"}),
            "0.000000\tV.bindTime\t1000000000\n0.333333\tT.translation\t1 0 0\n"
            "0.333333\tT.translation\t2 0 0\n0.333333\tT.translation\t3 0 0\n");
}

TEST(RunGL, InputThatIsNoneEndsBeforeTheRun) {
  makeFile("w.wrl", world(movedByInput));
  const std::pair<const char*, const char*> lines[] = {
      {"set T.translation 1 0 0", "\"set\" is no time in seconds"},
      {"-1 set T.translation 1 0 0", "\"-1\" is no time in seconds"},
      {"nan set T.translation 1 0 0", "\"nan\" is no time in seconds"},
      {"1", "\"\" is nothing that can be done"},
      {"1 jump", "\"jump\" is nothing that can be done"},
      {"1 set T", "\"set\" wants NODE.FIELD and a value"},
      {"1 viewpoint", "\"viewpoint\" wants a name"},
      {"1 press 10 10", "\"press\" is not there yet"}};
  for (const auto& [line, said] : lines) {
    makeFile("in", std::string("\n0 set T.translation 5 5 5\n") + line + "\n");
    const Outcome run = runTessel({"run", "w.wrl", "--input", "in", "--trace", "all"});
    EXPECT_EQ(run.status, 2) << line;
    EXPECT_EQ(run.err, std::string("in:3: error: ") + said + "\n");
    EXPECT_EQ(run.out, "");
  }
  EXPECT_EQ(runTessel({"run", "w.wrl", "--input", "missing"}).status, 3);
  EXPECT_EQ(runTessel({"run", "w.wrl", "--fps", "0"}).status, 2);
  EXPECT_EQ(runTessel({"run", "w.wrl", "--time", "-1"}).status, 2);
}

TEST(RunGL, AWorldThatCannotBeReadDoesNotRun) {
  makeFile("bad.wrl", world("Groop { }"));
  EXPECT_EQ(runTessel({"run", "bad.wrl"}).status, 1);
  EXPECT_EQ(runTessel({"run", "missing.wrl"}).status, 3);
}

// Where no driver can be found, as on a machine without graphics.
TEST(Run, GoesOnUndrawnWithoutGL) {
  makeFile("w.wrl", world("DEF V Viewpoint { }\n" + movedByInput));
  makeFile("in", "0 set T.translation 1 2 3\n");
  setenv("__EGL_VENDOR_LIBRARY_FILENAMES", "/nowhere", 1);
  const Outcome run = runTessel({"run", "w.wrl", "--input", "in", "--trace", "all", "--time", "0"});
  unsetenv("__EGL_VENDOR_LIBRARY_FILENAMES");
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.err, HasSubstr("the world runs undrawn"));
  EXPECT_THAT(run.out, HasSubstr("0.000000\tV.bindTime\t1000000000\n"));
  EXPECT_THAT(run.out, HasSubstr("0.000000\tT.translation\t1 2 3\n0.000000\tU.translation\t1 2 3\n"));
}

}  // namespace
}  // namespace tessel::host
