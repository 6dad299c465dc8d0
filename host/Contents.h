// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <map>
#include <string>
#include <vector>

#include <Inventor/SbBox3f.h>

class SoNode;

namespace tessel::host {

class JsonWriter;

/// A Viewpoint of a world.
struct ViewpointEntry {
  std::string name;         ///< DEF name, empty if it has none
  std::string description;  ///< may be empty
};

/// What a world is made of.
struct Contents {
  long long triangles = 0, lines = 0, points = 0;  ///< as often as they are drawn
  std::map<std::string, long long> nodes;          ///< by type; a node used many times counts once
  long long nodeCount = 0;
  long long instances = 0;  ///< of prototypes
  long long protos = 0;     ///< prototype definitions that the world's instances are made from
  long long routes = 0;
  std::vector<ViewpointEntry> viewpoints;  ///< in file order
  SbBox3f box;                             ///< of everything there is to see; may be empty
};

/// Looks through a world; `root` may be null for an empty one.
Contents contentsOf(SoNode* root);

/// The contents as members of the JSON object that is open.
void write(JsonWriter& json, const Contents& contents);
/// The contents as lines of text.
std::string formatted(const Contents& contents);

}  // namespace tessel::host
