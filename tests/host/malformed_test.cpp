// SPDX-License-Identifier: BSD-3-Clause
// Faulty worlds, one file for each message: `# expect:` remarks in it say what the program prints behind its name.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <zlib.h>

#include "host/Program.h"
#include "support/Paths.h"

namespace tessel::host {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string contentOf(const fs::path& path) {
  std::ostringstream out;
  out << std::ifstream(path, std::ios::binary).rdbuf();
  return out.str();
}

// What the remarks of a world ask for, with its name in front: `w.wrl:3: error: ...`, `w.wrl: warning: ...`.
std::vector<std::string> expectedLines(const fs::path& world) {
  const std::string mark = "# expect: ";
  std::vector<std::string> lines;
  for (const std::string& line : linesOf(contentOf(world)))
    if (line.starts_with(mark)) {
      const std::string said = line.substr(mark.size());
      const bool hasLine = said.front() >= '0' && said.front() <= '9';
      lines.push_back(world.filename().string() + (hasLine ? ":" : ": ") + said);
    }
  return lines;
}

std::vector<fs::path> worldsIn(const char* folder) {
  std::vector<fs::path> worlds;
  for (const auto& entry : fs::directory_iterator(test::testFile(folder))) worlds.push_back(entry.path());
  std::sort(worlds.begin(), worlds.end());
  return worlds;
}

std::string nameOf(const ::testing::TestParamInfo<fs::path>& info) {
  std::string name = info.param.stem().string();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

class Malformed : public ::testing::TestWithParam<fs::path> {};

TEST_P(Malformed, IsReportedWithItsLine) {
  const std::string name = makeFile(GetParam().filename().string(), contentOf(GetParam()));
  const Outcome run = runTessel({"check", name});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(linesOf(run.err), expectedLines(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(World, Malformed, ::testing::ValuesIn(worldsIn("host/malformed")), nameOf);

// These read well; their fault shows when they are drawn.
class MalformedGL : public ::testing::TestWithParam<fs::path> {};

TEST_P(MalformedGL, IsReportedWhenDrawn) {
  const std::string name = makeFile(GetParam().filename().string(), contentOf(GetParam()));
  EXPECT_EQ(runTessel({"check", name}).status, 0);
  const Outcome run = runTessel({"shot", name, "-o", "w.png", "--size", "32x32"});
  EXPECT_EQ(run.status, 0) << run.err;
  for (const std::string& line : expectedLines(GetParam())) EXPECT_THAT(run.err, HasSubstr(line + "\n"));
}

INSTANTIATE_TEST_SUITE_P(World, MalformedGL, ::testing::ValuesIn(worldsIn("host/malformed-live")), nameOf);

std::string packed(const std::string& text) {
  const fs::path path = test::scratchDir() / "packed";
  gzFile file = gzopen(path.c_str(), "wb");
  gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
  gzclose(file);
  return contentOf(path);
}

TEST(Hostile, WorldsEndInAMessage) {
  const std::string many(1'000'000, 'n');
  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "Group { children ";
  std::string deepByUse = "DEF A0 Shape { }";
  for (int i = 1; i <= 5'000; ++i)
    deepByUse += "\nDEF A" + std::to_string(i) + " Group { children USE A" + std::to_string(i - 1) + " }";
  const struct {
    const char* name;
    std::string content;
    int status;
    std::string said;
  } cases[] = {
      {"deep.wrl", world(deep), 1, "deep.wrl:2: error: Nodes are nested more than 4000 levels deep\n"},
      {"deep-by-use.wrl", world(deepByUse), 1,
       "deep-by-use.wrl:4002: error: Nodes are nested more than 4000 levels deep\n"},
      {"long-name.wrl", world("DEF " + many + " Group { }\n" + many + " { }"), 1,
       "long-name.wrl:3: error: Unknown class \"n"},
      {"long-def.wrl", world("DEF " + many + " Group { }\nGroup { children USE " + many + " }"), 0, ""},
      {"long-string.wrl", world("WorldInfo { title \"" + many + "\" }"), 0, ""},
      {"huge-numbers.wrl", world("Transform { translation 1e999 -1e999 1e-999 }"), 0, ""},
      {"nan.wrl", world("\nTransform { translation nan 0 0 }"), 1,
       "nan.wrl:3: error: Couldn't read value for field \"translation\"\n"},
      {"open.wrl", world(std::string(100'000, '{')), 0, "open.wrl:2: warning: "},
      {"closed.wrl", world("Group { }\n" + std::string(100'000, '}')), 0, "closed.wrl:3: warning: "},
      {"zeros.wrl", std::string(100'000, '\0'), 1, "zeros.wrl:1: error: "},
      {"remark.wrl", world("Group { }\n# open"), 0,
       "remark.wrl:3: warning: EOF reached before end of comment\n"},
      {"packed.wrl", packed(world("\n\nGroop { }")), 1, "packed.wrl:4: error: "},
      {"old-mac.wrl", "#VRML V2.0 utf8\rGroup { }\r\rGroop { }\r", 1, "old-mac.wrl:4: error: "},
  };
  for (const auto& [name, content, status, said] : cases) {
    makeFile(name, content);
    const Outcome run = runTessel({"check", name});
    EXPECT_EQ(run.status, status) << name;
    EXPECT_THAT(run.err, HasSubstr(said)) << name;
    EXPECT_LT(run.err.size(), 4000u) << name;
  }
}

}  // namespace
}  // namespace tessel::host
