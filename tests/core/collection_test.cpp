// SPDX-License-Identifier: BSD-3-Clause
// Worlds that others wrote, where a collection of them lies beside the project (or in $TESSEL_WORLDS), with a
// manifest.tsv that tells what other readers think of each.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/Messages.h"
#include "support/Paths.h"
#include "support/TestWorld.h"

namespace {

namespace fs = std::filesystem;
using tessel::ReadStatus;

using Row = std::map<std::string, std::string>;

std::vector<std::string> cells(const std::string& line) {
  std::vector<std::string> parts;
  std::istringstream in(line);
  for (std::string cell; std::getline(in, cell, '\t');) parts.push_back(cell);
  return parts;
}

std::vector<Row> manifest(const fs::path& folder) {
  std::ifstream in(folder / "manifest.tsv");
  std::string line;
  std::getline(in, line);
  const auto names = cells(line);
  std::vector<Row> rows;
  while (std::getline(in, line)) {
    const auto values = cells(line);
    Row row;
    for (std::size_t i = 0; i < std::min(names.size(), values.size()); ++i) row[names[i]] = values[i];
    rows.push_back(row);
  }
  return rows;
}

fs::path collection() {
  const char* told = std::getenv("TESSEL_WORLDS");
  return told ? fs::path(told) : tessel::test::projectFile("../shared/worlds");
}

// Worlds of which other readers think otherwise, and why.
const std::map<std::string, const char*> exceptions = {
    {"castle/movie_texture/movie_texture_tests.wrl", "pauseTime of a MovieTexture"},
    {"castle/prototypes/proto_other.wrl", "a field IS an event"},
    {"library/Examples/DLMF/6.3.F3.wrl", "a hyphen in the name of a prototype"},
    {"openhrp3/sample/model/ball.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/ball2.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/ball4.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/cylinder.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/floor1.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/floor2.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/floor4.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/furniture.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/lofted.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/plane.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/rod.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/sample2.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/sphere.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/wall0.wrl", "a field IS an exposedField"},
    {"openhrp3/sample/model/wall1.wrl", "a field IS an exposedField"},
    {"openvrml/tests/vrml97/bad/route-from-field.wrl", "a ROUTE from a plain field"},
    {"titania/Library/Tests/1st/World_proto.wrl", "children of an instance that has none"},
    {"titania/Library/Tests/PROTO/Particle/Particle.wrl", "a field of type SFDouble"},
    {"titania/Library/Tests/ParticleSystems/Torus.wrl", "an exposedField in a Script"},
    {"white_dune/docs/x3d/Arc2DPROTO.wrl", "metadata of a node"},
    {"white_dune/docs/x3d/Polyline2DPROTO.wrl", "a field IS an exposedField"},
    {"xj3d/parsetest/exporter/externproto.wrl", "the file is read; what it asks for is elsewhere"},
    {"xj3d/parsetest/vrml97/externproto1.wrl", "an EXTERNPROTO without URLs"},
    {"xj3d/parsetest/vrml97/externproto2.wrl", "an EXTERNPROTO without URLs"},
    {"coin-io/models/io/correct/writeref-2.wrl", "a ROUTE from a plain field"},
    {"coin-io/models/io/correct/writeref-3.wrl", "a ROUTE from a plain field"},
    {"openvrml/tests/vrml97/bad/exposedfield-in-script.wrl", "an exposedField in a Script"},
    {"xj3d/parsetest/scripts/exposed_field.wrl", "an exposedField in a Script"},
    {"xj3d/parsetest/sensors/drag_over.wrl", "a ROUTE from isOver of a PlaneSensor"},
};

TEST(CollectionSlow, ValidWorldsReadAndInvalidOnesAreReported) {
  const fs::path folder = collection();
  if (!fs::exists(folder / "manifest.tsv")) GTEST_SKIP() << "no collection of worlds in " << folder;
  std::set<std::string> unused;
  for (const auto& [name, why] : exceptions) unused.insert(name);
  int valid = 0, invalid = 0;
  for (const Row& row : manifest(folder)) {
    const std::string& path = row.at("path");
    const std::string& validity = row.at("validity");
    if (!fs::exists(folder / path)) continue;
    const bool shouldRead = validity == "valid" || validity == "valid-with-remarks";
    if (!shouldRead && validity != "invalid") continue;
    const tessel::test::TestWorld world(folder / path);
    const bool failed = world.status == ReadStatus::failed;
    const bool expected = exceptions.contains(path) ? shouldRead : !shouldRead;
    unused.erase(path);
    EXPECT_EQ(failed, expected) << path << "\n" << world.messages.text();
    if (failed) {
      EXPECT_EQ(world.messages.all().front().rfind("Coin read error: ", 0), 0u) << path;
      EXPECT_GE(world.messages.count("Occurred at line"), 1) << path;
    }
    ++(shouldRead ? valid : invalid);
  }
  EXPECT_GT(valid, 300);
  EXPECT_GT(invalid, 3);
  EXPECT_TRUE(unused.empty()) << *unused.begin() << " is no longer met";
}

}  // namespace
